#include "tarn/sections/separation_data.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

#include <memory>
#include <string>
#include <vector>

#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

using Names = std::vector<std::wstring>;

CPMSeparationData RoundTrip(const CPMSeparationData& separations) {
  pugi::xml_document document;
  pugi::xml_node root = document;
  separations.WriteXML(root);
  CPMSeparationData copy;
  EXPECT_TRUE(copy.ReadXML(document.first_child(), false));
  return copy;
}

bool ReadInto(CPMSeparationData& separations, const char* text, bool keep) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text));
  return separations.ReadXML(document.first_child(), keep);
}

// Factors are powers of two so that every point survives the four decimals of the file.
CPMCurveData Channel(const std::wstring& name, double factor) {
  CPMCurveData curve;
  curve.SetName(name);
  curve.MakeLinear(factor);
  return curve;
}

// Cyan {Cyan, Orange} and Magenta {Magenta, Orange}.
CPMSeparationData TwoPlanes() {
  CPMSeparationData separations;
  auto cyan = std::make_unique<CPMSeparationData::ChannelQueue>();
  cyan->push_back(Channel(L"Cyan", 0.5));
  cyan->push_back(Channel(L"Orange", 0.25));
  auto magenta = std::make_unique<CPMSeparationData::ChannelQueue>();
  magenta->push_back(Channel(L"Magenta", 2.0));
  magenta->push_back(Channel(L"Orange", 0.5));
  EXPECT_TRUE(separations.AddPlane(L"Magenta", std::move(magenta)));
  EXPECT_TRUE(separations.AddPlane(L"Cyan", std::move(cyan)));
  return separations;
}

TEST(SeparationDataTest, WrittenExactly) {
  EXPECT_EQ(test::Written(CPMSeparationData()),
            "<?xml version=\"1.0\"?>\n<SEPARATION name=\"\">\n\t<OVR_ENABLE>0</OVR_ENABLE>\n</SEPARATION>\n");

  CPMSeparationData separations;
  separations.SetColorMode(L"CMYK");
  separations.SetIdentifier(L"Set A");
  separations.SetEnable(true);
  separations.AddLinearPlane(L"Cyan");
  separations.AddPlane(L"Empty", nullptr);
  EXPECT_EQ(test::Written(separations),
            "<?xml version=\"1.0\"?>\n"
            "<SEPARATION name=\"CMYK\" identifier=\"Set A\">\n"
            "\t<OVR_ENABLE>1</OVR_ENABLE>\n"
            "\t<PLANE name=\"Cyan\" channels=\"1\">\n"
            "\t\t<CURVEDATA name=\"Cyan\" type=\"1\" keep0=\"0\">\n"
            "\t\t\t<DATA>0.0000,0.0500,0.1000,0.2000,0.3000,0.4000,0.5000,0.6000,0.7000,0.8000,0.9000,0.9500,"
            "1.0000</DATA>\n"
            "\t\t</CURVEDATA>\n"
            "\t</PLANE>\n"
            "\t<PLANE name=\"Empty\" channels=\"0\" />\n"
            "</SEPARATION>\n");
}

TEST(SeparationDataTest, RoundTripKeepsPlanesAndChannels) {
  CPMSeparationData separations = TwoPlanes();
  separations.SetColorMode(L"CMYK+O");
  separations.SetIdentifier(L"id 7");
  separations.SetEnable(true);
  separations.GetChannel(L"Cyan", 1u)->SetValue(0.42, 0.1);
  separations.GetChannel(L"Cyan", 1u)->SetKeepZero(true);
  separations.AddPlane(L"Empty", nullptr);
  CPMSeparationData copy = RoundTrip(separations);
  EXPECT_EQ(copy, separations);
  EXPECT_EQ(copy.GetPlaneChannelCount(L"Empty"), 0u);
  EXPECT_EQ(copy.GetPlaneCount(), 3u);
}

TEST(SeparationDataTest, AddingPlanes) {
  CPMSeparationData separations;
  EXPECT_TRUE(separations.AddLinearPlane(L"Cyan"));
  EXPECT_FALSE(separations.AddLinearPlane(L"Cyan"));
  EXPECT_EQ(separations.GetPlaneChannelCount(L"Cyan"), 1u);
  const CPMCurveData* linear = separations.GetChannel(L"Cyan", 0u);
  ASSERT_NE(linear, nullptr);
  EXPECT_EQ(linear->GetName(), L"Cyan");
  EXPECT_EQ(linear->GetValues(), GetDefaultCurve());

  auto queue = std::make_unique<CPMSeparationData::ChannelQueue>();
  queue->push_back(Channel(L"X", 0.5));
  EXPECT_FALSE(separations.AddPlane(L"Cyan", std::move(queue)));
  EXPECT_EQ(separations.GetPlaneChannelCount(L"Cyan"), 1u);
  // A refused plane changes nothing, so the caller keeps its channels.
  ASSERT_NE(queue, nullptr);
  ASSERT_EQ(queue->size(), 1u);
  EXPECT_EQ(queue->front().GetName(), L"X");
  EXPECT_TRUE(separations.AddPlane(L"Orange", std::move(queue)));
  EXPECT_EQ(queue, nullptr);
  EXPECT_EQ(separations.GetPlaneChannelCount(L"Orange"), 1u);
  EXPECT_FALSE(separations.AddPlane(L"", nullptr));
  EXPECT_FALSE(separations.AddLinearPlane(L""));
  EXPECT_TRUE(separations.AddPlane(L"Black", nullptr));
  ASSERT_NE(separations.GetPlane(L"Black"), nullptr);
  EXPECT_TRUE(separations.GetPlane(L"Black")->empty());
  EXPECT_EQ(separations.GetPlane(L"black"), nullptr);  // names compare exactly
  EXPECT_EQ(separations.GetPlaneChannelCount(L"White"), 0u);
}

TEST(SeparationDataTest, FindingChannels) {
  CPMSeparationData separations = TwoPlanes();
  EXPECT_EQ(separations.GetChannel(L"Cyan", 1u)->GetName(), L"Orange");
  EXPECT_EQ(separations.GetChannel(L"Cyan", 2u), nullptr);
  EXPECT_EQ(separations.GetChannel(L"White", 0u), nullptr);
  EXPECT_EQ(separations.GetChannel(L"Magenta", L"Orange")->GetValue(1), 0.5);
  EXPECT_EQ(separations.GetChannel(L"Magenta", L"Cyan"), nullptr);
  EXPECT_EQ(separations.GetChannel(L"White", L"Orange"), nullptr);
  // Planes are searched in name order: Cyan before Magenta.
  EXPECT_EQ(separations.GetChannel(L"Orange")->GetValue(1), 0.25);
  EXPECT_EQ(separations.GetChannel(L"orange"), nullptr);
  EXPECT_EQ(CPMSeparationData::GetChannel(nullptr, L"Orange"), nullptr);
  EXPECT_EQ(CPMSeparationData::GetChannel(separations.GetPlane(L"Magenta"), L"Magenta")->GetValue(1), 2.0);
}

TEST(SeparationDataTest, InkLists) {
  CPMSeparationData separations = TwoPlanes();
  EXPECT_EQ(separations.GetMainInks(), (Names{L"Cyan", L"Magenta"}));
  EXPECT_EQ(separations.GetSepInks(), (Names{L"Orange"}));
  separations.GetPlane(L"Magenta")->push_front(Channel(L"Green", 1));
  separations.AddLinearPlane(L"Black");
  EXPECT_EQ(separations.GetMainInks(), (Names{L"Black", L"Cyan", L"Magenta"}));
  EXPECT_EQ(separations.GetSepInks(), (Names{L"Orange", L"Green"}));

  Names walked;
  std::wstring name;
  for (auto* plane = separations.GetFirstPlane(name); plane; plane = separations.GetNextPlane(name)) {
    walked.push_back(name);
    EXPECT_EQ(plane, separations.GetPlane(name));
  }
  EXPECT_EQ(walked, separations.GetMainInks());
}

TEST(SeparationDataTest, InkLimitingIsolatesListedInks) {
  CPMSeparationData separations = TwoPlanes();
  const CPMSeparationData before = separations;
  separations.SetForInkLimiting({{L"Cyan", false}, {L"cyan", true}, {L"White", true}});
  EXPECT_EQ(separations.GetChannel(L"Cyan", L"Cyan")->GetValues(), GetDefaultCurve());
  for (const auto& [x, y] : separations.GetChannel(L"Cyan", L"Orange")->GetValues()) {
    EXPECT_EQ(y, 0.0) << x;
  }
  EXPECT_EQ(*separations.GetPlane(L"Magenta"), *before.GetPlane(L"Magenta"));
}

TEST(SeparationDataTest, ReadingTheElement) {
  CPMSeparationData separations;
  separations.SetResolution(L"720x720");
  ASSERT_TRUE(ReadInto(separations,
                       "<SEPARATION name=\"CMYK\" identifier=\"A\"><OVR_ENABLE>yes</OVR_ENABLE>"
                       "<PLANE name=\"Cyan\" channels=\"5\"><CURVEDATA name=\"Cyan\" type=\"0\"/>"
                       "<CURVEDATA2 name=\"skipped\"/><CURVEDATA name=\"Orange\"/></PLANE>"
                       "<PLANE channels=\"1\"><CURVEDATA/></PLANE>"
                       "<PLANE name=\"Magenta\"><CURVEDATA name=\"first\"/></PLANE>"
                       "<PLANE name=\"Magenta\"><CURVEDATA name=\"second\"/></PLANE>"
                       "<unknown/></SEPARATION>",
                       false));
  EXPECT_EQ(separations.GetColorMode(), L"CMYK");
  EXPECT_EQ(separations.GetIdentifier(), L"A");
  EXPECT_EQ(separations.GetResolution(), L"720x720");  // not in the element; kept
  EXPECT_TRUE(separations.GetEnable());
  // The channel count attribute is not trusted: the curves present are the channels.
  EXPECT_EQ(separations.GetPlaneChannelCount(L"Cyan"), 2u);
  EXPECT_FALSE(separations.GetChannel(L"Cyan", 0u)->IsDensityMode());
  // A nameless plane is skipped; a repeated plane is replaced by the later one.
  EXPECT_EQ(separations.GetMainInks(), (Names{L"Cyan", L"Magenta"}));
  EXPECT_EQ(separations.GetChannel(L"Magenta", 0u)->GetName(), L"second");
  EXPECT_EQ(separations.GetPlaneChannelCount(L"Magenta"), 1u);

  // Empty attributes leave colour mode and identifier as they are.
  ASSERT_TRUE(ReadInto(separations, "<SEPARATION name=\"\"/>", false));
  EXPECT_EQ(separations.GetColorMode(), L"");  // reset by the defaults
  EXPECT_EQ(separations.GetIdentifier(), L"A");
  EXPECT_EQ(separations.GetPlaneCount(), 0u);
  EXPECT_FALSE(separations.GetEnable());
}

TEST(SeparationDataTest, ReadingWithKeepAddsPlanes) {
  CPMSeparationData separations = TwoPlanes();
  separations.SetColorMode(L"CMYK");
  ASSERT_TRUE(ReadInto(separations,
                       "<SEPARATION><PLANE name=\"Black\"><CURVEDATA name=\"Black\"/></PLANE>"
                       "<PLANE name=\"Magenta\"/></SEPARATION>",
                       true));
  EXPECT_EQ(separations.GetMainInks(), (Names{L"Black", L"Cyan", L"Magenta"}));
  EXPECT_EQ(separations.GetColorMode(), L"CMYK");
  EXPECT_EQ(separations.GetPlaneChannelCount(L"Cyan"), 2u);
  EXPECT_EQ(separations.GetPlaneChannelCount(L"Magenta"), 0u);  // the file's plane replaces it
}

TEST(SeparationDataTest, PrintModeElementAndForeignElements) {
  CPMSeparationData separations = TwoPlanes();
  EXPECT_TRUE(
      ReadInto(separations, "<PMH><SEPARATION name=\"RGB\"><PLANE name=\"Red\"/></SEPARATION></PMH>", false));
  EXPECT_EQ(separations.GetColorMode(), L"RGB");
  EXPECT_EQ(separations.GetMainInks(), (Names{L"Red"}));

  // Only the first child of "PMH" is looked at.
  EXPECT_FALSE(ReadInto(
      separations,
      "<PMH><PRINTER>x</PRINTER><SEPARATION name=\"RGB\"><PLANE name=\"Red\"/></SEPARATION></PMH>", false));
  EXPECT_EQ(separations, CPMSeparationData());
  separations = TwoPlanes();
  EXPECT_FALSE(ReadInto(separations, "<separation name=\"RGB\"/>", false));
  EXPECT_EQ(separations.GetPlaneCount(), 0u);
  separations = TwoPlanes();
  EXPECT_FALSE(separations.ReadXML(pugi::xml_node(), true));
  EXPECT_EQ(separations.GetPlaneCount(), 2u);
}

}  // namespace
}  // namespace tarn
