#include "tarn/sections/halftone_data.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/test_support.h"
#include "tarn/foundation/registry.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

// Reads the first element of text into section.
bool ReadInto(CPMHalftoneData& section, const std::string& text) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text.c_str()));
  return section.ReadXML(document.first_child());
}

std::wstring Hft(const CPMHalftoneOption& option) {
  formatstringT buffer;
  option.AppendHFTPostscript(buffer);
  return buffer.str();
}

std::wstring Dsc(const CPMHalftoneOption& option, bool plain) {
  formatstringT buffer;
  option.AppendDSCPostscript(buffer, plain);
  return buffer.str();
}

TEST(HalftoneShapes, EveryDisplayNameFindsItsOwnIndex) {
  for (int i = 0; i < CPMHalftoneOption::kShapeCount; ++i) {
    const std::wstring name(CPMHalftoneOption::GetShapeName(i));
    EXPECT_EQ(CPMHalftoneOption::FindShape(name), i) << i;
    EXPECT_FALSE(CPMHalftoneOption::GetShapePostScriptName(i).empty()) << i;
  }
  EXPECT_TRUE(CPMHalftoneOption::GetShapeName(23).empty());
  EXPECT_TRUE(CPMHalftoneOption::GetShapePostScriptName(-1).empty());
  // The RIP registers these two with different capitalisation of "to".
  EXPECT_EQ(CPMHalftoneOption::GetShapePostScriptName(12), L"DiamondToSpot");
  EXPECT_EQ(CPMHalftoneOption::GetShapePostScriptName(13), L"EllipsetoDiamond");
  EXPECT_EQ(CPMHalftoneOption::GetShapePostScriptName(5), L"Inverted_Round");
}

TEST(HalftoneShapes, SetShapeByTextAcceptsNamesWithoutBlanksAndNumbers) {
  const struct {
    const wchar_t* text;
    int shape;
  } cases[] = {
      {L"Ellipse To Diamond", 13},
      {L"EllipseToDiamond", 13},
      {L"ellipse to diamond", 13},
      {L"Tri-dot", 10},
      {L"InvertedRound", 5},
      {L"7", 7},
      {L"0", 0},
      {L"22", 22},
      {L"25", 21},
      {L"23", 21},
      {L"-1", 21},
      {L"7 dots", 7},  // a text that is no name counts as the number it starts with
      {L"Bogus", 0},   // ... and as 0 when it starts with none
      {L"", 0},
  };
  for (const auto& c : cases) {
    CPMHalftoneOption option;
    option.SetShape(0);
    option.SetShape(c.text);
    EXPECT_EQ(option.GetShape(), c.shape) << c.text;
  }
  CPMHalftoneOption option;
  option.SetShape(5);
  option.SetShape(static_cast<const wchar_t*>(nullptr));
  EXPECT_EQ(option.GetShape(), 0);
  option.SetShape(-3);
  EXPECT_EQ(option.GetShape(), 21);
}

TEST(HalftonePostscript, DefaultScreenWritesItsDictionaryEntryAndPlateTest) {
  const CPMHalftoneOption option;
  EXPECT_EQ(
      Hft(option),
      L"      /Black <<\r\n        /HalftoneType 1\r\n        /Frequency 60\r\n        /Angle 45.0000\r\n"
      L"        /SpotFunction statusdict /EuclideanSmallEllipse get\r\n      >>\r\n");
  EXPECT_EQ(
      Dsc(option, true),
      L"(Black) eq {/thePlateFound true def 60 45.0000 statusdict /EuclideanSmallEllipse get setscreen} "
      L"if\r\n");
  EXPECT_EQ(Dsc(option, false),
            L"(Black) eq {userdict begin $Enable-Screen end /thePlateFound true def 60 45.0000 statusdict "
            L"/EuclideanSmallEllipse get setscreen userdict begin $Disable-Screen end} if\r\n");
}

TEST(HalftonePostscript, FrequencyIsTruncatedAndPlateAndNameGoToTheirPlaces) {
  test::DecimalCommaLocale locale;
  // The plate names the dictionary entry, the separation name the plate test.
  const CPMHalftoneOption option(133.9, 22.5, 13, L"Orange", L"PANTONE 021 C", false, 2);
  EXPECT_EQ(
      Hft(option),
      L"      /Orange <<\r\n        /HalftoneType 1\r\n        /Frequency 133\r\n        /Angle 22.5000\r\n"
      L"        /SpotFunction statusdict /EllipsetoDiamond get\r\n      >>\r\n");
  EXPECT_EQ(Dsc(option, true),
            L"(PANTONE 021 C) eq {/thePlateFound true def 133 22.5000 statusdict /EllipsetoDiamond get "
            L"setscreen} if\r\n");
  // Out-of-range rulings must not make the conversion undefined.
  CPMHalftoneOption huge;
  huge.SetFrequency(1e300);
  EXPECT_NE(Hft(huge).find(L"/Frequency 2147483647\r\n"), std::wstring::npos);
}

TEST(HalftoneOption, PlateNumbersNameTheStandardPlates) {
  CPMHalftoneOption option;
  std::wstring name;
  EXPECT_TRUE(option.GetPlate(1u, name));
  EXPECT_EQ(name, L"Magenta");
  EXPECT_EQ(option.GetPlate(), L"Magenta");
  EXPECT_EQ(option.GetName(), L"Magenta");
  EXPECT_FALSE(option.IsBlackPlate());

  EXPECT_FALSE(option.GetPlate(5u, name));
  EXPECT_TRUE(name.empty());
  EXPECT_EQ(option.GetPlate(), L"");  // the screen takes the empty name too
  EXPECT_EQ(option.GetName(), L"");
  option.SetPlate(L"black");
  EXPECT_TRUE(option.IsBlackPlate());
}

TEST(HalftoneOption, SaveXRLStoresOneTextPerStandardPlate) {
  test::DecimalCommaLocale locale;
  CXRegistry store;
  const CPMHalftoneOption cyan(150.25, 108.0, 5, L"Cyan", L"Cyan", false, 3);
  EXPECT_TRUE(cyan.SaveXRL(&store, L"Halftone"));
  std::wstring value;
  EXPECT_TRUE(store.GetString(L"Halftone/Cyan", value));
  EXPECT_EQ(value, L"150.2500,108.0000,Inverted Round,0,3");

  EXPECT_TRUE(CPMHalftoneOption().SaveXRL(&store, L"Halftone/"));
  EXPECT_TRUE(store.GetString(L"Halftone/Black", value));
  EXPECT_EQ(value, L"60.0000,45.0000,Euclidean Small Ellipse,1,0");

  const CPMHalftoneOption orange(60.0, 45.0, 21, L"Orange", L"Orange", true, 0);
  EXPECT_FALSE(orange.SaveXRL(&store, L"Halftone"));
  EXPECT_FALSE(store.HasValue(L"Halftone/Orange"));
  EXPECT_FALSE(cyan.SaveXRL(nullptr, L"Halftone"));
}

TEST(HalftoneSection, DefaultsHoldFiveScreensWithTheirAnglesAndAnUnusedSectionWritesNothing) {
  CPMHalftoneData section;
  ASSERT_EQ(section.GetHalftoneCount(), 5u);
  const struct {
    unsigned plate;
    const wchar_t* name;
    double angle;
  } plates[] = {{0, L"Cyan", 108.0},
                {1, L"Magenta", 90.0},
                {2, L"Yellow", 161.0},
                {3, L"Black", 45.0},
                {4, L"Spot", 45.0}};
  for (const auto& p : plates) {
    const CPMHalftoneOption* option = section.GetHalftoneOption(p.plate);
    ASSERT_NE(option, nullptr) << p.name;
    EXPECT_EQ(option->GetPlate(), p.name);
    EXPECT_EQ(option->GetAngle(), p.angle);
    EXPECT_EQ(*option, CPMHalftoneOption(60.0, p.angle, 21, p.name, p.name, true, 0));
  }
  EXPECT_EQ(section.GetHalftoneOption(5u), nullptr);
  EXPECT_EQ(section.GetJitter().size(), 21u);
  EXPECT_EQ(section.GetJitter().back(), (std::pair<std::int32_t, double>(100, 0.0)));

  EXPECT_EQ(test::Written(section), "<?xml version=\"1.0\"?>\n");
}

TEST(HalftoneSection, WritesSwitchesScreensAndJitterInOrder) {
  CPMHalftoneData section;
  section.SetIsUsed(true);
  section.SetEnable(true);
  section.SetUseSameShape(true);
  section.SetUseAppSpotFunction(true);
  section.ClearHalftones();
  const CPMHalftoneOption spot(85.5, 15.0, 13, L"Spot", L"Gold", false, 4);
  section.AddHalftoneOption(&spot);
  const CPMHalftoneOption unnamed(60.0, 45.0, 0, L"", L"", true, 0);
  section.AddHalftoneOption(&unnamed);  // an empty key is never written
  section.SetJitter({{0, 0.5}, {50, -1.25}});
  EXPECT_EQ(test::Written(section),
            "<?xml version=\"1.0\"?>\n"
            "<HALFTONEDATA enable=\"1\" app=\"0\" spot=\"1\" same=\"1\" super=\"1\">\n"
            "\t<OVR_ENABLE>1</OVR_ENABLE>\n"
            "\t<HALFTONE name=\"Spot\">\n"
            "\t\t<SHAPE>Ellipse To Diamond</SHAPE>\n"
            "\t\t<FREQUENCY>85.5</FREQUENCY>\n"
            "\t\t<ANGLE>15</ANGLE>\n"
            "\t\t<PLATE>Spot</PLATE>\n"
            "\t\t<NAME>Gold</NAME>\n"
            "\t\t<SEP>0</SEP>\n"
            "\t\t<CHOKE>4</CHOKE>\n"
            "\t</HALFTONE>\n"
            "\t<JitterData>\n"
            "\t\t<JitterValue key=\"0\" value=\"0.5\" />\n"
            "\t\t<JitterValue key=\"50\" value=\"-1.25\" />\n"
            "\t</JitterData>\n"
            "</HALFTONEDATA>\n");

  section.SetEnable(false);
  section.SetJitter({});
  const std::string text = test::Written(section);
  EXPECT_EQ(text.find("OVR_ENABLE"), std::string::npos);
  EXPECT_NE(text.find("<JitterData />"), std::string::npos);
}

TEST(HalftoneSection, EveryFieldSurvivesWriteAndRead) {
  CPMHalftoneData section;
  section.SetIsUsed(true);
  section.SetEnable(true);
  section.SetUseSameShape(true);
  section.SetUseSuperCell(false);
  section.SetUseAppHalftoning(true);
  section.SetUseAppSpotFunction(true);
  section.SetJitter({{0, 0.1}, {7, 2.5}, {100, -3.0}});
  section.GetHalftoneOption(L"Cyan")->SetFrequency(133.33333333333334);
  section.GetHalftoneOption(L"Black")->SetShape(0);
  const CPMHalftoneOption orange(71.0, 33.3, 9, L"Orange", L"Orange Ink", false, -2);
  section.AddHalftoneOption(&orange);

  pugi::xml_document document;
  pugi::xml_node root = document;
  section.WriteXML(root);
  CPMHalftoneData copy;
  ASSERT_TRUE(copy.ReadXML(document.first_child()));
  EXPECT_EQ(copy, section);
  ASSERT_NE(copy.GetHalftoneOption(L"Orange"), nullptr);
  EXPECT_EQ(copy.GetHalftoneOption(L"Orange")->GetName(), L"Orange Ink");

  // Reading starts from the defaults: standard plates the element leaves out
  // come back with their default screens, beside the screens it holds.
  section.ClearHalftones();
  section.AddHalftoneOption(&orange);
  pugi::xml_document second;
  pugi::xml_node second_root = second;
  section.WriteXML(second_root);
  ASSERT_TRUE(copy.ReadXML(second.first_child()));
  EXPECT_EQ(copy.GetHalftoneCount(), 6u);
  EXPECT_EQ(*copy.GetHalftoneOption(L"Orange"), orange);
  ASSERT_NE(copy.GetHalftoneOption(L"Magenta"), nullptr);
  EXPECT_EQ(*copy.GetHalftoneOption(L"Magenta"), copy.GetDefaultHaftone(L"Magenta"));
}

TEST(HalftoneSection, ScreensTheElementLeavesOutKeepTheirDefaults) {
  CPMHalftoneData section;
  section.GetHalftoneOption(L"Magenta")->SetFrequency(150.0);  // what the record held before
  ASSERT_TRUE(ReadInto(section,
                       "<HALFTONEDATA enable=\"1\"><HALFTONE name=\"Cyan\"><FREQUENCY>85</FREQUENCY>"
                       "</HALFTONE></HALFTONEDATA>"));
  EXPECT_EQ(section.GetHalftoneCount(), 5u);
  EXPECT_EQ(section.GetHalftoneOption(L"Cyan")->GetFrequency(), 85.0);
  EXPECT_EQ(section.GetHalftoneOption(L"Cyan")->GetAngle(), 108.0);
  const CPMHalftoneData defaults;
  for (const wchar_t* plate : {L"Magenta", L"Yellow", L"Black", L"Spot"}) {
    ASSERT_NE(section.GetHalftoneOption(plate), nullptr) << plate;
    EXPECT_EQ(*section.GetHalftoneOption(plate), *defaults.GetHalftoneOption(plate)) << plate;
  }
}

TEST(HalftoneSection, ReadingSkipsWhatItCannotPlace) {
  const struct {
    const char* what;
    const char* xml;
    size_t screens;
    int black_shape;
    size_t jitter;
  } cases[] = {
      {"screen without a name",
       "<HALFTONEDATA enable=\"1\"><HALFTONE><SHAPE>Round</SHAPE></HALFTONE></HALFTONEDATA>", 5, 21, 21},
      {"unknown shape name counts as the number it starts with, none here",
       "<HALFTONEDATA enable=\"1\"><HALFTONE "
       "name=\"Black\"><SHAPE>Starburst</SHAPE></HALFTONE></HALFTONEDATA>",
       5, 0, 21},
      {"shape number past the table falls back to the default shape",
       "<HALFTONEDATA><HALFTONE name=\"Black\"><SHAPE>40</SHAPE></HALFTONE></HALFTONEDATA>", 5, 21, 21},
      {"shape given by number",
       "<HALFTONEDATA><HALFTONE name=\"Black\"><SHAPE>3</SHAPE></HALFTONE></HALFTONEDATA>", 5, 3, 21},
      {"tag in the wrong case is ignored",
       "<HALFTONEDATA><HALFTONE name=\"Black\"><shape>Round</shape></HALFTONE></HALFTONEDATA>", 5, 21, 21},
      {"jitter entry without a key",
       "<HALFTONEDATA><JitterData><JitterValue value=\"1\"/><JitterValue key=\"5\" value=\"2\"/></JitterData>"
       "</HALFTONEDATA>",
       5, 21, 1},
  };
  for (const auto& c : cases) {
    CPMHalftoneData section;
    EXPECT_TRUE(ReadInto(section, c.xml)) << c.what;
    EXPECT_EQ(section.GetHalftoneCount(), c.screens) << c.what;
    const CPMHalftoneOption* black = section.GetHalftoneOption(L"Black");
    EXPECT_EQ(black ? black->GetShape() : -1, c.black_shape) << c.what;
    EXPECT_EQ(section.GetJitter().size(), c.jitter) << c.what;
  }

  CPMHalftoneData section;
  section.SetUseSameShape(true);
  EXPECT_FALSE(ReadInto(section, "<HalftoneData enable=\"1\"/>"));
  EXPECT_TRUE(section.GetUseSameShape());  // a refused element changes nothing
  EXPECT_EQ(section.GetHalftoneCount(), 5u);

  // Absent switches keep their defaults, "super" among them.
  ASSERT_TRUE(ReadInto(section, "<HALFTONEDATA enable=\"1\"/>"));
  EXPECT_TRUE(section.GetIsUsed());
  EXPECT_TRUE(section.GetUseSuperCell());
  EXPECT_FALSE(section.GetUseSameShape());
}

TEST(HalftoneSection, VerifyFillsMissingPlatesAndKeepsTheBalckKey) {
  CPMHalftoneData section;
  section.ClearHalftones();
  section.VerifyHalftones();
  std::wstring keys;
  for (const auto& [key, option] : section.GetHalftones()) {
    keys += key + L";";
  }
  EXPECT_EQ(keys, L"Balck;Cyan;Magenta;Spot;Yellow;");
  EXPECT_EQ(section.GetHalftoneOption(L"Balck")->GetPlate(), L"Black");
  EXPECT_EQ(section.GetHalftoneOption(3u), nullptr);

  // The Black screen is made anew on every call, so edits to it do not last.
  section.GetHalftoneOption(L"Balck")->SetFrequency(99.0);
  section.GetHalftoneOption(L"Cyan")->SetFrequency(99.0);
  section.VerifyHalftones();
  EXPECT_EQ(section.GetHalftoneOption(L"Balck")->GetFrequency(), 60.0);
  EXPECT_EQ(section.GetHalftoneOption(L"Cyan")->GetFrequency(), 99.0);
  EXPECT_EQ(section.GetHalftoneCount(), 5u);
}

TEST(HalftoneSection, AddAndMergeKeyScreensByPlate) {
  CPMHalftoneData section;
  CPMHalftoneData other;
  other.ClearHalftones();
  const CPMHalftoneOption cyan(175.0, 15.0, 2, L"Cyan", L"Cyan", true, 1);
  const CPMHalftoneOption green(90.0, 75.0, 4, L"Green", L"Green", true, 0);
  other.AddHalftoneOption(&cyan);
  other.AddHalftoneOption(&green);
  section.MergeHalftones(&other);
  section.MergeHalftones(nullptr);
  EXPECT_EQ(section.GetHalftoneCount(), 6u);
  EXPECT_EQ(*section.GetHalftoneOption(L"Cyan"), cyan);
  EXPECT_EQ(*section.GetHalftoneOption(L"Green"), green);

  // A screen stored under another key still lands under its plate.
  CPMHalftoneData verified;
  verified.ClearHalftones();
  verified.VerifyHalftones();
  section.MergeHalftones(&verified);
  EXPECT_EQ(section.GetHalftoneOption(L"Balck"), nullptr);
  EXPECT_EQ(section.GetHalftoneOption(L"Cyan")->GetFrequency(), 60.0);

  // Merging a section into itself is harmless.
  const CPMHalftoneData before = section;
  section.MergeHalftones(&section);
  EXPECT_EQ(section, before);
}

TEST(HalftoneSection, IterationWalksInKeyOrderAndSurvivesEdits) {
  CPMHalftoneData section;
  std::wstring key;
  std::wstring keys;
  for (CPMHalftoneOption* option = section.GetFirstHalftone(&key); option != nullptr;
       option = section.GetNextHalftone(&key)) {
    keys += key + L";";
    if (key == L"Cyan") {
      section.AddHalftoneOption(
          std::make_unique<CPMHalftoneOption>(section.GetDefaultHaftone(L"Gray")).get());
      section.AddHalftoneOption(
          std::make_unique<CPMHalftoneOption>(section.GetDefaultHaftone(L"Apricot")).get());
    }
  }
  // "Apricot" sorts before the cursor and is not visited; "Gray" is.
  EXPECT_EQ(keys, L"Black;Cyan;Gray;Magenta;Spot;Yellow;");
  EXPECT_EQ(section.GetNextHalftone(), nullptr);

  CPMHalftoneData copy(section);
  EXPECT_NE(copy.GetFirstHalftone(&key), nullptr);
  EXPECT_EQ(key, L"Apricot");
}

}  // namespace
}  // namespace tarn
