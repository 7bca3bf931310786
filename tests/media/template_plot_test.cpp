#include "tarn/media/template_plot.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "support/test_support.h"
#include "tarn/media/print_media.h"

namespace tarn {
namespace {

// The image numbers the picture writes into its slots, in slot order.
std::vector<std::string> SlotLabels(const std::string& svg) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(svg.c_str()));
  std::vector<std::string> labels;
  for (const pugi::xml_node& group : document.child("svg").children("g")) {
    labels.push_back(group.child("text").text().get());
  }
  return labels;
}

TEST(MediaPlot, SlotsShowTheirImageNumbersToScale) {
  CQTAData quickSet;
  quickSet.SetNumber(3, 2);
  quickSet.SetSlotSize(100, 50);
  quickSet.SetOffset(10, 10);
  std::unique_ptr<CPrintMedia> media = quickSet.GenerateTemplate(1);
  media->SetName(L"Labels & <more>");
  media->SetSize(72.0 / 25.4 * 200, 72.0 / 25.4 * 100);
  media->SetMargins(5, 5, 5, 5);
  const std::string svg = PlotMediaSVG(*media);
  EXPECT_EQ(SlotLabels(svg), (std::vector<std::string>{"1", "3", "5", "2", "4", "6"}));
  // 200 x 100 mm and a border of 1 % of the longer side all round.
  EXPECT_NE(svg.find("width=\"204.00mm\" height=\"104.00mm\""), std::string::npos) << svg;
  EXPECT_NE(svg.find("class=\"margins\""), std::string::npos);
  EXPECT_EQ(svg, PlotMediaSVG(*media));

  // The same picture written to a file is well-formed for a strict parser too.
  if (std::system("xmllint --version >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "xmllint is not installed";
  }
  test::TempFolder folder;
  test::WriteBytes(folder.path() / "labels.svg", svg);
  EXPECT_EQ(std::system(("xmllint --noout \"" + (folder.path() / "labels.svg").string() + "\"").c_str()), 0);
}

TEST(MediaPlot, SlotsOffTheSheetAndBadNumbersStayDrawable) {
  CPrintMedia media;
  media.CreateDefaultTemplate();
  media.SetMargins(0, 0, 0, 0);
  _SlotData outside;
  outside.x = -100;
  outside.y = 900;
  outside.width = 50;
  outside.height = -50;
  outside.item = 2;
  media.GetSlots().Add(outside);
  _SlotData broken;
  broken.x = std::numeric_limits<double>::quiet_NaN();
  broken.width = std::numeric_limits<double>::infinity();
  media.GetSlots().Add(broken);
  const std::string svg = PlotMediaSVG(media);
  EXPECT_EQ(svg.find("class=\"margins\""), std::string::npos);
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string(svg.c_str()));
  // Every coordinate is a plain number.
  for (const pugi::xpath_node& found : document.select_nodes("//rect/@* | //text/@x | //text/@y")) {
    const std::string value = found.attribute().value();
    if (std::string(found.attribute().name()) != "class") {
      EXPECT_EQ(value.find_first_not_of("-0123456789."), std::string::npos) << value;
    }
  }
  // The picture reaches out to the slot left of and below the page.
  double left = 0, top = 0, width = 0, height = 0;
  ASSERT_EQ(std::sscanf(document.child("svg").attribute("viewBox").value(), "%lf %lf %lf %lf", &left, &top,
                        &width, &height),
            4);
  EXPECT_LT(left, -100);
  EXPECT_GT(top + height, 900);
  EXPECT_EQ(SlotLabels(svg), (std::vector<std::string>{"0", "2", "0"}));
}

}  // namespace
}  // namespace tarn
