#include "tarn/sections/fence_point_data.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

std::string TrizoneText(const CTrizoneData& trizone) {
  pugi::xml_document document;
  trizone.WriteXML(document);
  return document.first_child().text().get();
}

// A section with every part of the body filled, one entry each.
CPMFencePointData SmallSection() {
  CPMFencePointData section;
  section.SetColorMode(L"CMYK");
  section.SetProfileCount(1);
  section.SetColorPosition(L"Cyan", 0);
  section.SetDotSizeData(L"Small", CDotSizeData{7, 0.5});
  return section;
}

TEST(Trizone, SettersKeepTheLevelsOrdered) {
  using Setter = int (CTrizoneData::*)(int);
  const struct {
    const char* what;
    Setter setter;
    int value;
    int result;
  } cases[] = {
      {"small max above medium max", &CTrizoneData::SetSmallMax, 200, 85},
      {"small max within range", &CTrizoneData::SetSmallMax, 120, 120},
      {"small max clamped to 0", &CTrizoneData::SetSmallMax, -40, 0},
      {"small min above medium min", &CTrizoneData::SetSmallMin, 1, 0},
      {"medium min above medium max", &CTrizoneData::SetMediumMin, 171, 0},
      {"medium min within range", &CTrizoneData::SetMediumMin, 170, 170},
      {"medium max below small max", &CTrizoneData::SetMediumMax, 84, 170},
      {"medium max clamped to 255", &CTrizoneData::SetMediumMax, 999, 255},
      {"SM zone limited to the medium range above small", &CTrizoneData::SetSMZone, 100, 85},
      {"SM zone below the limit", &CTrizoneData::SetSMZone, 30, 30},
      {"ML zone limited by the coverage", &CTrizoneData::SetMLZone, 100, 85},
      {"ML zone clamped to 0", &CTrizoneData::SetMLZone, -1, 0},
      {"coverage clamped to 255", &CTrizoneData::SetMaxCoverage, 300, 255},
  };
  for (const auto& c : cases) {
    CTrizoneData trizone;
    EXPECT_EQ((trizone.*c.setter)(c.value), c.result) << c.what;
  }

  // With less coverage the medium/large blend has no room left above medium max.
  CTrizoneData trizone;
  trizone.SetMaxCoverage(50);
  EXPECT_EQ(trizone.SetMLZone(40), 0);
  trizone.SetMediumMax(100);
  EXPECT_EQ(trizone.SetMLZone(40), 27);  // trunc(127.5 - 100)
}

TEST(Trizone, PresetsWriteTheirLevelsWithTheZonesLast) {
  const struct {
    const char* what;
    std::function<void(CTrizoneData&)> preset;
    const char* text;
  } cases[] = {
      {"defaults", [](CTrizoneData&) {}, "85,0,170,0,100,20,20"},
      {"small only", &CTrizoneData::SetForSmallOnly, "255,255,255,255,100,0,0"},
      {"medium only", &CTrizoneData::SetForMediumOnly, "0,0,255,255,100,0,0"},
      {"large only", &CTrizoneData::SetForLargeOnly, "0,0,0,0,100,0,0"},
      {"small/medium", &CTrizoneData::SetForSmallMediumSMD2, "87,0,254,254,100,60,0"},
      {"medium/large", &CTrizoneData::SetForMediumLargeMLD2, "0,0,87,0,100,0,60"},
      {"three sizes", &CTrizoneData::SetForSmallMediumLargeM5, "50,0,100,0,100,48,50"},
  };
  for (const auto& c : cases) {
    CTrizoneData trizone;
    trizone.SetVLD(L"VD3");
    c.preset(trizone);
    EXPECT_EQ(TrizoneText(trizone), c.text) << c.what;
    EXPECT_EQ(trizone.GetVLD(), L"VD3") << c.what;

    CTrizoneData copy;
    pugi::xml_document document;
    trizone.WriteXML(document);
    EXPECT_TRUE(copy.ReadXML(document.first_child())) << c.what;
    EXPECT_EQ(copy, trizone) << c.what;
  }

  // The section's presets act on its first record only.
  CPMFencePointData section;
  section.SetForMediumLargeMLD2();
  EXPECT_EQ(TrizoneText(*section.GetTrizone(0)), "0,0,87,0,100,0,60");
  EXPECT_EQ(*section.GetTrizone(1), CTrizoneData());
  EXPECT_EQ(section.GetTrizone(9), nullptr);
}

TEST(Trizone, ReadRefusesTextThatIsNotSevenWholeNumbers) {
  const char* texts[] = {
      "1,2,3,4,5,6",       "1,2,3,4,5,6,7,8", "1,2,3,4,5,6,x", "1;2;3;4;5;6;7", "", "1,2,3,4,5,6,99999999999",
      "1,2,3,4,5,6,7 junk"};
  for (const char* text : texts) {
    pugi::xml_document document;
    pugi::xml_node node = document.append_child("ScreenData");
    node.text().set(text);
    node.append_attribute("VLD").set_value("VD3");
    CTrizoneData trizone;
    EXPECT_FALSE(trizone.ReadXML(node)) << text;
    EXPECT_EQ(trizone, CTrizoneData()) << text;
  }
  pugi::xml_document document;
  document.load_string("<SCREENDATA>1,2,3,4,5,6,7</SCREENDATA>");
  CTrizoneData trizone;
  EXPECT_FALSE(trizone.ReadXML(document.first_child()));

  // Blanks around the numbers are accepted, as the RIP's own reader accepts them.
  document.load_string("<ScreenData> 1, 2 ,3,4,5,6,7 </ScreenData>");
  EXPECT_TRUE(trizone.ReadXML(document.first_child()));
  EXPECT_EQ(TrizoneText(trizone), "1,2,3,4,5,6,7");
}

TEST(FencePoints, DefaultSectionWritesOnlyTheScreenSettings) {
  EXPECT_EQ(test::Written(CPMFencePointData()),
            "<?xml version=\"1.0\"?>\n"
            "<FENCEPOINTS>\n"
            "\t<THRESHOLD_OFFSET>64</THRESHOLD_OFFSET>\n"
            "\t<USE_ALPHA>0</USE_ALPHA>\n"
            "\t<ADJUST_HOLES>1</ADJUST_HOLES>\n"
            "\t<INK_REMOVAL_ENABLED>0</INK_REMOVAL_ENABLED>\n"
            "\t<INK_REMOVAL_ANGLE>22</INK_REMOVAL_ANGLE>\n"
            "\t<INK_REMOVAL_FREQUENCY>20</INK_REMOVAL_FREQUENCY>\n"
            "\t<INK_REMOVAL_SHAPE>5</INK_REMOVAL_SHAPE>\n"
            "</FENCEPOINTS>\n");

  // The body needs a colour mode and both maps.
  const std::function<void(CPMFencePointData&)> missing[] = {
      [](CPMFencePointData& s) { s.SetColorMode(L""); },
      [](CPMFencePointData& s) { s.ClearColors(); },
      [](CPMFencePointData& s) { s.ClearDotSizeData(); },
  };
  for (const auto& take_away : missing) {
    CPMFencePointData section = SmallSection();
    take_away(section);
    EXPECT_EQ(test::Written(section).find("COLORMODE"), std::string::npos);
  }
}

TEST(FencePoints, FullSectionWritesTheBodyInOrder) {
  CPMFencePointData section = SmallSection();
  section.SetEnabled(true);
  section.SetProfile(0, {10, 20, 30, 40});
  section.SetProfile(1, {1, 2, 3, 4});  // beyond the profile count: not written
  EXPECT_EQ(
      test::Written(section),
      "<?xml version=\"1.0\"?>\n"
      "<FENCEPOINTS enabled=\"1\" used=\"2\" profiles=\"1\" TDHigh=\"170\" TDLow=\"85\" TDLimit=\"100\" "
      "Offset=\"0\">\n"
      "\t<COLORMODE>CMYK</COLORMODE>\n"
      "\t<FPPROFILE profile=\"0\">\n"
      "\t\t<DATA>10,20,30,40</DATA>\n"
      "\t</FPPROFILE>\n"
      "\t<FPCOLORDATA profile=\"0\">Cyan</FPCOLORDATA>\n"
      "\t<DOTSIZEDATA>\n"
      "\t\t<DOTSIZEDATA_PROFILE name=\"Small\" size=\"7\" usage=\"0.50000000\" />\n"
      "\t</DOTSIZEDATA>\n"
      "\t<TriZone>\n"
      "\t\t<ScreenData VLD=\"\">85,0,170,0,100,20,20</ScreenData>\n"
      "\t\t<ScreenData VLD=\"\">85,0,170,0,100,20,20</ScreenData>\n"
      "\t\t<ScreenData VLD=\"\">85,0,170,0,100,20,20</ScreenData>\n"
      "\t\t<ScreenData VLD=\"\">85,0,170,0,100,20,20</ScreenData>\n"
      "\t\t<ScreenData VLD=\"\">85,0,170,0,100,20,20</ScreenData>\n"
      "\t\t<ScreenData VLD=\"\">85,0,170,0,100,20,20</ScreenData>\n"
      "\t\t<ScreenData VLD=\"\">85,0,170,0,100,20,20</ScreenData>\n"
      "\t\t<ScreenData VLD=\"\">85,0,170,0,100,20,20</ScreenData>\n"
      "\t\t<ScreenData VLD=\"\">85,0,170,0,100,20,20</ScreenData>\n"
      "\t</TriZone>\n"
      "\t<THRESHOLD_OFFSET>64</THRESHOLD_OFFSET>\n"
      "\t<USE_ALPHA>0</USE_ALPHA>\n"
      "\t<ADJUST_HOLES>1</ADJUST_HOLES>\n"
      "\t<INK_REMOVAL_ENABLED>0</INK_REMOVAL_ENABLED>\n"
      "\t<INK_REMOVAL_ANGLE>22</INK_REMOVAL_ANGLE>\n"
      "\t<INK_REMOVAL_FREQUENCY>20</INK_REMOVAL_FREQUENCY>\n"
      "\t<INK_REMOVAL_SHAPE>5</INK_REMOVAL_SHAPE>\n"
      "</FENCEPOINTS>\n");
}

CPMFencePointData EverythingChanged() {
  CPMFencePointData section;
  section.SetEnabled(true);
  section.SetUsed(1);
  section.SetOffset(true);
  section.SetColorMode(L"CMYKOG");
  section.SetProfileCount(9);
  for (std::uint32_t i = 0; i < 9; ++i) {
    const std::int32_t n = static_cast<std::int32_t>(i);
    section.SetProfile(i, {n, 100 + n, 200 + n, 255 - n});
    section.GetTrizone(i)->SetSmallMax(60 + n);
    section.GetTrizone(i)->SetVLD(L"VD" + std::to_wstring(i));
  }
  section.SetColorPosition(L"Cyan", 0);
  section.SetColorPosition(L"Magenta", 1);
  section.SetColorPosition(L"Orange", 8);
  section.SetColorPosition(L"Grün & <Blau>", 4);
  section.SetTDLow(10);
  section.SetTDHigh(250);
  section.SetTDLimit(90);
  section.SetDotSizeData(L"Small", CDotSizeData{3, 0.125});
  section.SetDotSizeData(L"Large", CDotSizeData{21, 1.0});
  section.SetThresholdOffset(12);
  section.SetUseAlpha(1);
  section.SetAdjustHoles(0.75);
  section.SetInkRemovalEnabled(true);
  section.SetInkRemovalAngle(37.5);
  section.SetInkRemovalFrequency(48.25);
  section.SetInkRemovalShape(13);
  return section;
}

TEST(FencePoints, EveryFieldSurvivesWriteAndRead) {
  test::DecimalCommaLocale locale;
  const CPMFencePointData section = EverythingChanged();
  pugi::xml_document document;
  section.WriteXML(document);
  CPMFencePointData copy;
  ASSERT_TRUE(copy.ReadXML(document.first_child()));
  EXPECT_EQ(copy, section);
  EXPECT_EQ(test::Written(copy), test::Written(section));
}

TEST(FencePoints, ReadingStartsFromDefaultsUnlessAskedToReadOver) {
  CPMFencePointData section = EverythingChanged();
  section.SetDefaults();
  // A reset keeps the ink-removal screen; only construction sets it.
  EXPECT_TRUE(section.GetInkRemovalEnabled());
  EXPECT_EQ(section.GetInkRemovalShape(), 13);
  EXPECT_TRUE(section.GetColorMap().empty());
  EXPECT_FALSE(section.HasDotSizeData());
  EXPECT_EQ(*section.GetTrizone(3), CTrizoneData());

  // Reading a file, though, gives exactly what the file holds.
  pugi::xml_document document;
  document.load_string("<FENCEPOINTS><USE_ALPHA>1</USE_ALPHA></FENCEPOINTS>");
  section = EverythingChanged();
  ASSERT_TRUE(section.ReadXML(document.first_child()));
  CPMFencePointData expected;
  expected.SetUseAlpha(1);
  EXPECT_EQ(section, expected);

  section = EverythingChanged();
  ASSERT_TRUE(section.ReadXML(document.first_child(), false));
  expected = EverythingChanged();
  expected.SetUseAlpha(1);
  EXPECT_EQ(section, expected);
}

TEST(FencePoints, ReadingSkipsMalformedPartsAndKeepsTheRest) {
  const std::string valid =
      "<FENCEPOINTS enabled=\"1\" used=\"2\" profiles=\"2\" TDHigh=\"170\" TDLow=\"85\" TDLimit=\"100\">"
      "<COLORMODE>CMYK</COLORMODE>"
      "<FPPROFILE profile=\"1\"><DATA>1,2,3,4</DATA></FPPROFILE>"
      "<FPCOLORDATA profile=\"1\">Cyan</FPCOLORDATA>"
      "<DOTSIZEDATA><DOTSIZEDATA_PROFILE name=\"Small\" size=\"7\" usage=\"0.5\"/></DOTSIZEDATA>"
      "<TriZone><ScreenData VLD=\"\">85,0,170,0,100,20,20</ScreenData>"
      "<ScreenData VLD=\"VD\">1,1,2,2,100,0,0</ScreenData></TriZone>"
      "<INK_REMOVAL_SHAPE>7</INK_REMOVAL_SHAPE>"
      "</FENCEPOINTS>";
  const auto read = [](const std::string& text) {
    pugi::xml_document document;
    EXPECT_TRUE(document.load_string(text.c_str()));
    CPMFencePointData section;
    EXPECT_TRUE(section.ReadXML(document.first_child()));
    return section;
  };
  const auto replaced = [&valid](const std::string& from, const std::string& to) {
    std::string text = valid;
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
  };

  const CPMFencePointData good = read(valid);
  FenceProfile profile{};
  ASSERT_TRUE(good.GetProfile(1, profile));
  EXPECT_EQ(profile, (FenceProfile{1, 2, 3, 4}));
  EXPECT_EQ(good.GetColorMap().at(L"Cyan"), 1u);
  EXPECT_EQ(good.GetTrizone(1)->GetVLD(), L"VD");
  EXPECT_EQ(good.GetInkRemovalShape(), 7);

  const FenceProfile kDefaultProfile{64, 160, 32, 192};
  const struct {
    const char* what;
    std::string text;
    std::function<bool(const CPMFencePointData&)> holds;
  } cases[] = {
      {"profile with three levels", replaced("1,2,3,4", "1,2,3"),
       [&](const CPMFencePointData& s) { return s.GetProfile(1, profile) && profile == kDefaultProfile; }},
      {"profile index beyond the nine", replaced("profile=\"1\"><DATA>", "profile=\"9\"><DATA>"),
       [&](const CPMFencePointData& s) { return s.GetProfile(1, profile) && profile == kDefaultProfile; }},
      {"profile without an index", replaced("<FPPROFILE profile=\"1\">", "<FPPROFILE>"),
       [&](const CPMFencePointData& s) { return s.GetProfile(0, profile) && profile == kDefaultProfile; }},
      {"profile count beyond nine", replaced("profiles=\"2\"", "profiles=\"12\""),
       [](const CPMFencePointData& s) { return s.GetProfileCount() == 9; }},
      {"negative profile count", replaced("profiles=\"2\"", "profiles=\"-3\""),
       [](const CPMFencePointData& s) { return s.GetProfileCount() == 0; }},
      {"unnamed colour", replaced(">Cyan<", "><"),
       [](const CPMFencePointData& s) { return s.GetColorMap().empty(); }},
      {"unnamed dot size", replaced("name=\"Small\"", "name=\"\""),
       [](const CPMFencePointData& s) { return !s.HasDotSizeData(); }},
      {"malformed trizone keeps its place", replaced("85,0,170,0,100,20,20", "85,0,170"),
       [](const CPMFencePointData& s) { return s.GetTrizone(1)->GetVLD() == L"VD"; }},
      {"shape outside the table", replaced(">7<", ">23<"),
       [](const CPMFencePointData& s) { return s.GetInkRemovalShape() == 5; }},
      {"element name in the wrong case is ignored",
       replaced("<COLORMODE>CMYK</COLORMODE>", "<colormode>X</colormode>"),
       [](const CPMFencePointData& s) { return s.GetColorMode().empty(); }},
  };
  for (const auto& c : cases) {
    const CPMFencePointData section = read(c.text);
    EXPECT_TRUE(c.holds(section)) << c.what;
    // Whatever else the element holds is still read.
    EXPECT_TRUE(section.GetEnabled()) << c.what;
    EXPECT_EQ(section.GetTrizone(1)->GetSmallMax(), 1) << c.what;
  }

  pugi::xml_document document;
  document.load_string("<FencePoints enabled=\"1\"/>");
  CPMFencePointData section;
  EXPECT_FALSE(section.ReadXML(document.first_child()));
  EXPECT_FALSE(section.GetEnabled());
}

TEST(FencePoints, PositionsOfTheColourMap) {
  const struct {
    const char* what;
    std::vector<std::pair<const wchar_t*, std::uint32_t>> colors;
    std::uint32_t next;
  } cases[] = {
      {"empty map", {}, CPMFencePointData::kNoPosition},
      {"0, 1, 2 in map order", {{L"A", 0}, {L"B", 1}, {L"C", 2}}, 3},
      {"all nine used",
       {{L"A", 0}, {L"B", 1}, {L"C", 2}, {L"D", 3}, {L"E", 4}, {L"F", 5}, {L"G", 6}, {L"H", 7}, {L"I", 8}},
       CPMFencePointData::kNoPosition},
      // Only the run after the first entry's position counts.
      {"gap after the first", {{L"A", 0}, {L"B", 2}}, 1},
      {"first entry not at zero", {{L"A", 4}, {L"B", 0}, {L"C", 5}}, 6},
      {"first entry at the last position", {{L"A", 8}}, CPMFencePointData::kNoPosition},
      {"first entry at the largest position", {{L"A", 0xFFFFFFFFu}}, CPMFencePointData::kNoPosition},
  };
  for (const auto& c : cases) {
    CPMFencePointData section;
    for (const auto& [name, position] : c.colors) {
      section.SetColorPosition(name, position);
    }
    EXPECT_EQ(section.GetNextPosition(), c.next) << c.what;
  }

  CPMFencePointData section;
  section.SetColorPosition(L"Cyan", 0);
  section.SetColorPosition(L"Light Cyan", 0);
  section.SetColorPosition(L"Black", 3);
  EXPECT_FALSE(section.IsPositionUnique(0));
  EXPECT_TRUE(section.IsPositionUnique(3));
  EXPECT_FALSE(section.IsPositionUnique(5));
}

}  // namespace
}  // namespace tarn
