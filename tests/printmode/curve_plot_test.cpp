// The SVG picture of a print mode's curves: well-formed, one path per curve in
// the right place and colour, nothing non-finite written, and the same bytes
// for the same print mode.

#include "tarn/printmode/curve_plot.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/foundation/format.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

struct PlottedCurve {
  std::string label;
  std::string stroke;
  std::vector<std::vector<std::pair<double, double>>> runs;  // the pieces between gaps
};

// Path data "M x,y L x,y ... M x,y ..." split into runs of points.
std::vector<std::vector<std::pair<double, double>>> ParsePath(std::string_view data) {
  std::vector<std::vector<std::pair<double, double>>> runs;
  while (!data.empty()) {
    const char command = data.front();
    EXPECT_TRUE(command == 'M' || command == 'L') << data;
    data.remove_prefix(1);
    double x = 0.0;
    double y = 0.0;
    size_t used = ParseRealPrefix(data, x);
    EXPECT_GT(used, 0u);
    EXPECT_EQ(data[used], ',');
    data.remove_prefix(used + 1);
    used = ParseRealPrefix(data, y);
    EXPECT_GT(used, 0u);
    data.remove_prefix(used);
    if (!data.empty() && data.front() == ' ') {
      data.remove_prefix(1);
    }
    if (command == 'M' || runs.empty()) {
      runs.emplace_back();
    }
    runs.back().emplace_back(x, y);
  }
  return runs;
}

// Curves by panel, parsed back from the picture.
std::vector<std::vector<PlottedCurve>> Parse(const std::string& svg) {
  pugi::xml_document document;
  const pugi::xml_parse_result parsed = document.load_string(svg.c_str());
  EXPECT_TRUE(parsed) << parsed.description();
  const pugi::xml_node root = document.child("svg");
  EXPECT_STREQ(root.attribute("xmlns").value(), "http://www.w3.org/2000/svg");
  std::vector<std::vector<PlottedCurve>> panels;
  for (const pugi::xml_node& panel : root.children("g")) {
    auto& curves = panels.emplace_back();
    for (const pugi::xpath_node& found : panel.select_nodes(".//path")) {
      const pugi::xml_node path = found.node();
      curves.push_back({path.child_value("title"), path.attribute("stroke").value(),
                        ParsePath(path.attribute("d").value())});
    }
  }
  return panels;
}

const PlottedCurve* Find(const std::vector<PlottedCurve>& curves, const std::string& label) {
  for (const auto& curve : curves) {
    if (curve.label == label) {
      return &curve;
    }
  }
  return nullptr;
}

CPrintModeData Sample() {
  CPrintModeData mode;
  CPMTransferData& transfers = *mode.GetTransfers();
  transfers.GetCurve(2, 0)->MakeLinear(0.5);
  CPMCurveData level(false, 0);
  level.SetValueStraight(1, 2.0);
  transfers.SetCurve(3, level, 1);

  CPMSeparationData& separations = *mode.GetSeparations();
  separations.AddLinearPlane(L"Cyan");
  separations.GetPlane(L"Cyan")->push_back(CPMCurveData());
  separations.GetPlane(L"Cyan")->back().SetName(L"Orange");
  separations.GetPlane(L"Cyan")->back().MakeLinear(0.25);
  // Only reaches density 0.5, then a vertical step that divides by zero: tones
  // it cannot evaluate must leave gaps, not NaN.
  auto broken = std::make_unique<CPMSeparationData::ChannelQueue>();
  pugi::xml_document document;
  document.load_string(
      "<CURVEDATA name=\"Gray\"><DATA_FLEXIBLE>0.25, 0.25;0.25, 0.5;0.5, 0.6;</DATA_FLEXIBLE>"
      "</CURVEDATA>");
  broken->emplace_back().ReadXML(document.first_child());
  separations.AddPlane(L"Gray", std::move(broken));
  return mode;
}

TEST(CurvePlot, OnePathPerCurveInEachPanel) {
  const auto panels = Parse(PlotCurvesSVG(Sample()));
  ASSERT_EQ(panels.size(), 3u);
  EXPECT_EQ(panels[0].size(), 7u);
  EXPECT_EQ(panels[1].size(), 7u);
  ASSERT_EQ(panels[2].size(), 3u);
  for (const char* label : {"All", "Cyan", "Magenta", "Yellow", "Black", "Hex0", "Hex1"}) {
    EXPECT_NE(Find(panels[0], label), nullptr) << label;
    EXPECT_NE(Find(panels[1], label), nullptr) << label;
  }
  EXPECT_NE(Find(panels[2], "Cyan"), nullptr);
  EXPECT_NE(Find(panels[2], "Cyan \xe2\x86\x90 Orange"), nullptr);
  EXPECT_NE(Find(panels[2], "Gray"), nullptr);
}

TEST(CurvePlot, CurvesLieWhereTheyEvaluate) {
  const auto panels = Parse(PlotCurvesSVG(Sample()));
  // The identity is the diagonal of the plot square: x + y is the same for
  // every point, and x runs over all 256 tones from left to right.
  const PlottedCurve* identity = Find(panels[0], "Cyan");
  ASSERT_NE(identity, nullptr);
  ASSERT_EQ(identity->runs.size(), 1u);
  const auto& points = identity->runs[0];
  ASSERT_EQ(points.size(), 256u);
  const double left = points.front().first;
  const double bottom = points.front().second;
  const double scale = (points.back().first - left) / 255.0;
  ASSERT_GT(scale, 0.0);
  for (size_t v = 0; v < points.size(); ++v) {
    EXPECT_NEAR(points[v].first, left + v * scale, 0.01) << v;
    EXPECT_NEAR(points[v].second, bottom - v * scale, 0.01) << v;
  }
  // Halved output density: tone 0 prints at 127.5.
  const PlottedCurve* magenta = Find(panels[0], "Magenta");
  ASSERT_NE(magenta, nullptr);
  EXPECT_NEAR(magenta->runs[0].front().second, bottom - 127.5 * scale, 0.01);
  // The second set has its own curves.
  const PlottedCurve* yellow = Find(panels[1], "Yellow");
  ASSERT_NE(yellow, nullptr);
  EXPECT_NEAR(yellow->runs[0][100].second, bottom - std::sqrt(100.0 / 255.0) * 255.0 * scale, 0.01);
}

TEST(CurvePlot, UnevaluableTonesLeaveGaps) {
  const std::string svg = PlotCurvesSVG(Sample());
  for (const char* bad : {"nan", "NaN", "inf"}) {
    EXPECT_EQ(svg.find(bad), std::string::npos) << bad;
  }
  const auto panels = Parse(svg);
  const PlottedCurve* gray = Find(panels[2], "Gray");
  ASSERT_NE(gray, nullptr);
  // Densities above 0.5 (tones below 127.5) are out of the curve's reach, and
  // the vertical step at density 0.25 (tone 191.25) divides by zero: only the
  // tones in between are drawn.
  size_t drawn = 0;
  for (const auto& run : gray->runs) {
    drawn += run.size();
    for (const auto& [x, y] : run) {
      EXPECT_TRUE(std::isfinite(x) && std::isfinite(y));
    }
  }
  EXPECT_EQ(drawn, 64u);  // tones 128 ... 191
}

TEST(CurvePlot, ColoursFollowTheCurves) {
  const auto panels = Parse(PlotCurvesSVG(Sample()));
  EXPECT_EQ(Find(panels[0], "Cyan")->stroke, "#00FFFF");  // 0x00BBGGRR
  EXPECT_EQ(Find(panels[0], "Magenta")->stroke, "#FF00FF");
  EXPECT_EQ(Find(panels[0], "Yellow")->stroke, "#FFFF00");
  // Curves without a colour get visible, distinct ones.
  std::set<std::string> uncoloured;
  for (const char* label : {"All", "Black", "Hex0", "Hex1"}) {
    const std::string& stroke = Find(panels[0], label)->stroke;
    EXPECT_EQ(stroke.size(), 7u) << label;
    EXPECT_NE(stroke, "#FFFFFF") << label;
    uncoloured.insert(stroke);
  }
  EXPECT_EQ(uncoloured.size(), 4u);
  // A channel pulling another ink is drawn in that ink's colour.
  EXPECT_NE(Find(panels[2], "Cyan \xe2\x86\x90 Orange")->stroke, Find(panels[2], "Cyan")->stroke);
}

TEST(CurvePlot, SamePrintModeSameBytes) {
  const CPrintModeData mode = Sample();
  const std::string svg = PlotCurvesSVG(mode);
  EXPECT_EQ(PlotCurvesSVG(CPrintModeData(mode)), svg);
  test::DecimalCommaLocale locale;
  EXPECT_EQ(PlotCurvesSVG(mode), svg);
  // An empty separation section still gives a well-formed picture.
  EXPECT_EQ(Parse(PlotCurvesSVG(CPrintModeData()))[2].size(), 0u);
}

TEST(CurvePlot, CommandWritesThePicture) {
  const std::string tool = TARN_TOOL_PATH;
  if (tool.empty()) {
    GTEST_SKIP() << "the tool is not built";
  }
  test::TempFolder temp;
  CPrintModeData mode = Sample();
  mode.SetName(L"Plot.pmx");
  ASSERT_TRUE(mode.SavePrintMode(temp.wide().c_str(), false));
  const std::string pmx = (temp.path() / "Plot.pmx").string();
  const std::string svg = (temp.path() / "Plot.svg").string();
  ASSERT_EQ(std::system(("\"" + tool + "\" curves \"" + pmx + "\" -o \"" + svg + "\"").c_str()), 0);
  EXPECT_EQ(test::ReadBytes(svg), PlotCurvesSVG(mode));
  EXPECT_NE(std::system(("\"" + tool + "\" curves \"" + pmx + "\" -o 2>/dev/null").c_str()), 0);
  EXPECT_NE(std::system(("\"" + tool + "\" curves \"" + svg + "x\" 2>/dev/null").c_str()), 0);
}

}  // namespace
}  // namespace tarn
