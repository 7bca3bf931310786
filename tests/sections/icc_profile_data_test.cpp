#include "tarn/sections/icc_profile_data.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tarn/foundation/paths.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

constexpr const char* kDeclaration = "<?xml version=\"1.0\"?>\n";

template <typename Writer>
std::string Written(Writer write) {
  pugi::xml_document document;
  write(document);
  return xml::SaveDocumentToString(document);
}

pugi::xml_node Parse(pugi::xml_document& document, const std::string& text) {
  EXPECT_TRUE(document.load_string(text.c_str())) << text;
  return document.first_child();
}

CPMICCProfileData RoundTrip(const CPMICCProfileData& section) {
  pugi::xml_document document;
  EXPECT_TRUE(xml::LoadDocumentFromBuffer(document, Written([&](pugi::xml_node n) { section.WriteXML(n); }),
                                          "ICCPROFILES"));
  CPMICCProfileData copy;
  copy.SetEnhancedInputs();  // reading must not depend on what was there before
  copy.SetICCUsed(ICC_USE_ICC_TAGS, true);
  EXPECT_TRUE(copy.ReadXML(document.first_child()));
  return copy;
}

CICCInfo Info(const CPMICCProfileData& section, int key) {
  CICCInfo info;
  EXPECT_TRUE(section.GetICCInfo(key, info));
  return info;
}

// A settings record with every field away from its default.
CICCInfo ChangedInfo(int seed) {
  CICCInfo info;
  info.intent = ICC_INTENT_SATURATION;
  info.configName = L"Proof <" + std::to_wstring(seed) + L">";
  info.deletable = true;
  info.isDefault = false;
  info.inIntent = 1 + seed;
  info.outIntent = 2 + seed;
  info.mergefactor = 3 + seed;
  info.chroma2 = -4 - seed;
  info.flags = 0xF0000001u + static_cast<unsigned>(seed);
  info.range = 5 + seed;
  info.blackMode = ICC_BLACK_PRESERVE_PLANE;
  info.gcr = 6 + seed;
  info.start = 7 + seed;
  info.width = 8 + seed;
  info.inksave = 9 + seed;
  info.shadows = true;
  info.blackRange = 10 + seed;
  info.inkMode = 11 + seed;
  info.maxink = 300 + seed;
  info.maxblack = 90 + seed;
  info.custom = L"C&M \"" + std::to_wstring(seed) + L"\"";
  info.links = {L"Link A.icc", L"L\u00e9en " + std::to_wstring(seed)};
  return info;
}

// base with the conversion settings of changed: what a print mode file keeps
// of a settings record ("Intent", "Exceptions", "links").
CICCInfo WithConversionOf(CICCInfo base, const CICCInfo& changed) {
  base.inIntent = changed.inIntent;
  base.outIntent = changed.outIntent;
  base.mergefactor = changed.mergefactor;
  base.chroma2 = changed.chroma2;
  base.flags = changed.flags;
  base.range = changed.range;
  base.links = changed.links;
  return base;
}

// Sets and restores the RIP folder around a test.
class IccPaths : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_ = GetTarnRipFolder();
    SetTarnRipSystemRoot(L"C:\\Kestrel\\rip\\");
  }
  void TearDown() override { SetTarnRipSystemRoot(saved_.c_str()); }

 private:
  std::wstring saved_;
};

TEST(IccKeys, EveryTranslationGoesBothWaysAndUnknownGivesMinusOne) {
  for (int slot = 0; slot <= 7; ++slot) {
    const std::wstring key = CPMICCProfileData::PathStringFromEnum(slot);
    EXPECT_FALSE(key.empty()) << slot;
    EXPECT_EQ(CPMICCProfileData::PathEnumFromString(key), slot);
  }
  for (int use = 0; use <= 9; ++use) {
    const std::wstring key = CPMICCProfileData::UseStringFromEnum(use);
    EXPECT_FALSE(key.empty()) << use;
    EXPECT_EQ(CPMICCProfileData::UseEnumFromString(key), use);
  }
  for (int info = 1; info <= 9; ++info) {
    const std::wstring key = CPMICCProfileData::StringFromEnum(info);
    EXPECT_FALSE(key.empty()) << info;
    EXPECT_EQ(CPMICCProfileData::EnumFromString(key), info);
  }
  EXPECT_EQ(CPMICCProfileData::PathStringFromEnum(ICC_OUT_DEVICE_PATH), L"OutTagDevicePath");
  EXPECT_EQ(CPMICCProfileData::PathStringFromEnum(ICC_SPT_DEVICE_PATH), L"SPTDevicePath");
  EXPECT_EQ(CPMICCProfileData::UseStringFromEnum(ICC_USE_ICC_TAGS), L"UseICCTags");
  EXPECT_EQ(CPMICCProfileData::UseStringFromEnum(ICC_USE_GRAYSCALE_MODE), L"CTGrayscaleMode");
  EXPECT_EQ(CPMICCProfileData::StringFromEnum(ICC_INFO_GREYSCALE), L"GREYSCALE_INFO");

  for (const wchar_t* unknown : {L"", L"la_rgbpath", L"LA_RGBPath ", L"UseICCTag", L"Bogus"}) {
    EXPECT_EQ(CPMICCProfileData::PathEnumFromString(unknown), -1) << unknown;
    EXPECT_EQ(CPMICCProfileData::UseEnumFromString(unknown), -1) << unknown;
    EXPECT_EQ(CPMICCProfileData::EnumFromString(unknown), -1) << unknown;
  }
  for (int bad : {-1, 10, 100}) {
    EXPECT_EQ(CPMICCProfileData::PathStringFromEnum(bad), L"") << bad;
    EXPECT_EQ(CPMICCProfileData::UseStringFromEnum(bad), L"") << bad;
    EXPECT_EQ(CPMICCProfileData::StringFromEnum(bad), L"") << bad;
  }
  EXPECT_EQ(CPMICCProfileData::PathStringFromEnum(8), L"");
  EXPECT_EQ(CPMICCProfileData::StringFromEnum(0), L"");
}

TEST(IccKeys, PathKeysLeadToTheirSettingsAndProfileTypesToTheirKeys) {
  EXPECT_EQ(CICCInfo::GetICCInfoKey(L"LA_RGBPath"), L"LA_RGB_INFO");
  EXPECT_EQ(CICCInfo::GetICCInfoKey(L"BMP_CMYKPath"), L"BMP_CMYK_INFO");
  EXPECT_EQ(CICCInfo::GetICCInfoKey(L"OutTagDevicePath"), L"OUTPUT_INFO");
  EXPECT_EQ(CICCInfo::GetICCInfoKey(L"SPTDevicePath"), L"SOFTPROOF_INFO");
  EXPECT_EQ(CICCInfo::GetICCInfoKey(L"UseLA_RGB"), L"");

  struct Case {
    const wchar_t* type;
    bool bitmap;
    const wchar_t* path;
    const wchar_t* used;
  };
  for (const Case& c :
       {Case{L"RGB", false, L"LA_RGBPath", L"UseLA_RGB"}, Case{L"RGB", true, L"BMP_RGBPath", L"UseBMP_RGB"},
        Case{L"Lab", true, L"BMP_LABPath", L"UseBMP_LAB"},
        Case{L"CMYK", false, L"LA_CMYKPath", L"UseLA_CMYK"},
        Case{L"OUTPUT", true, L"OutTagDevicePath", L"UseICCTags"},
        Case{L"SPOT", false, L"SPTDevicePath", L"UseSPTDevice"}, Case{L"GRAY", false, L"", L""}}) {
    EXPECT_EQ(CPMICCProfileData::GetICCProfilePathKey(c.type, c.bitmap), c.path) << c.type;
    EXPECT_EQ(CPMICCProfileData::GetICCProfileUsedKey(c.type, c.bitmap), c.used) << c.type;
  }
}

TEST(IccInfo, IntentNamesComeFromOneTable) {
  EXPECT_EQ(CICCInfo::GetIntentStr(0), L"Perceptual");
  EXPECT_EQ(CICCInfo::GetIntentStr(3), L"Absolute");
  EXPECT_EQ(CICCInfo::GetIntentStr(7), L"");
  EXPECT_EQ(CICCInfo::GetIntentStr(0xFFFFFFFFu), L"");
  for (std::uint32_t intent = 0; intent < 4; ++intent) {
    EXPECT_EQ(CICCInfo::IntentFromString(CICCInfo::GetIntentStr(intent)), static_cast<int>(intent));
  }
  EXPECT_EQ(CICCInfo::IntentFromString(L"relative"), -1);
}

TEST(IccInfo, DefaultsAreWrittenExactlyInBothForms) {
  const CICCInfo info;
  EXPECT_EQ(Written([&](pugi::xml_node n) { info.WriteXML(n, L"LA_RGB_INFO"); }),
            std::string(kDeclaration) +
                "<ICCINFO key=\"LA_RGB_INFO\">\n"
                "\t<Intent inIntent=\"14\" outIntent=\"14\" mergefactor=\"0\" chroma2=\"0\" />\n"
                "\t<Exceptions flags=\"0\" range=\"30\" />\n"
                "\t<links />\n"
                "</ICCINFO>\n");
  EXPECT_EQ(Written([&](pugi::xml_node n) { info.WritePMCXML(n); }),
            std::string(kDeclaration) +
                "<DEVICELINKDATA default=\"1\">\n"
                "\t<ConfigName>Default</ConfigName>\n"
                "\t<Deletable>0</Deletable>\n"
                "\t<Intent inIntent=\"14\" outIntent=\"14\" mergefactor=\"0\" chroma2=\"0\" />\n"
                "\t<Exceptions flags=\"0\" range=\"30\" />\n"
                "\t<links />\n"
                "\t<Black mode=\"2\" gcr=\"30\" start=\"20\" width=\"100\" inksave=\"0\" shadows=\"0\" "
                "range=\"100\" />\n"
                "\t<Ink mode=\"0\" maxink=\"400\" maxblack=\"100\" custom=\"\" />\n"
                "</DEVICELINKDATA>\n");
  EXPECT_EQ(Written([&](pugi::xml_node n) { info.WriteXML(n, L""); }), kDeclaration);
}

TEST(IccInfo, BothFormsKeepWhatTheyHold) {
  const CICCInfo changed = ChangedInfo(1);

  pugi::xml_document pmc;
  changed.WritePMCXML(pmc);
  CICCInfo fromPmc;
  ASSERT_TRUE(fromPmc.ReadPMCXML(pmc.first_child()));
  CICCInfo expectedPmc = changed;
  expectedPmc.intent = CICCInfo().intent;  // the wizard's form has no rendering intent
  EXPECT_TRUE(fromPmc == expectedPmc);

  pugi::xml_document print;
  changed.WriteXML(print, L"OUTPUT_INFO");
  CICCInfo fromPrint;
  ASSERT_TRUE(fromPrint.ReadXML(print.first_child()));
  // The print mode's form keeps the conversion settings only; the intent, the
  // black and ink settings and the bookkeeping are the wizard's.
  EXPECT_TRUE(fromPrint == WithConversionOf(CICCInfo(), changed));

  EXPECT_FALSE(fromPrint.ReadPMCXML(print.first_child()));
  EXPECT_FALSE(fromPmc.ReadXML(pmc.first_child()));
}

TEST(IccInfo, ReadingKeepsWhatIsAbsent) {
  CICCInfo info = ChangedInfo(2);
  const CICCInfo before = info;
  pugi::xml_document document;
  ASSERT_TRUE(
      info.ReadXML(Parse(document, "<ICCINFO key=\"x\"><Intent inIntent=\"3\"/><Unknown/></ICCINFO>")));
  CICCInfo expected = before;
  expected.inIntent = 3;
  EXPECT_TRUE(info == expected);

  // An empty links element empties the list; a missing one keeps it.
  ASSERT_TRUE(info.ReadPMCXML(Parse(document, "<DEVICELINKDATA><links><link/></links></DEVICELINKDATA>")));
  EXPECT_TRUE(info.links.empty());
  EXPECT_FALSE(info.isDefault);
}

TEST(IccInfo, OlderAttributesMapOntoIntentBlackAndExceptions) {
  struct Case {
    const char* attributes;
    std::uint32_t intent;
    std::int32_t blackMode;
    std::uint32_t flags;
  };
  const CICCInfo defaults;
  const std::vector<Case> cases = {
      {"", defaults.intent, defaults.blackMode, 0},
      {"intent=\"2\"", ICC_INTENT_SATURATION, defaults.blackMode, 0},
      {"intent=\"Absolute\"", ICC_INTENT_ABSOLUTE, defaults.blackMode, 0},
      {"intent=\"9\"", 9, defaults.blackMode, 0},
      {"keepK=\"1\"", defaults.intent, ICC_BLACK_KEEP_PURE, 0},
      {"preserveK=\"1\"", defaults.intent, ICC_BLACK_PRESERVE_PLANE, 0},
      {"preserveK=\"1\" keepK=\"1\"", defaults.intent, ICC_BLACK_PRESERVE_PLANE, 0},
      {"preserveK=\"0\" keepK=\"0\"", defaults.intent, defaults.blackMode, 0},
      {"preserveCMY=\"1\"", defaults.intent, defaults.blackMode, ICC_EXCEPTION_PURE_PRIMARIES},
      {"preserveCMY=\"true\" keepK=\"yes\" intent=\"1\"", ICC_INTENT_RELATIVE, ICC_BLACK_KEEP_PURE,
       ICC_EXCEPTION_PURE_PRIMARIES},
  };
  for (const Case& c : cases) {
    CICCInfo info;
    pugi::xml_document document;
    ASSERT_TRUE(info.ReadXML(Parse(document, std::string("<ICCINFO ") + c.attributes + "/>")));
    EXPECT_EQ(info.intent, c.intent) << c.attributes;
    EXPECT_EQ(info.blackMode, c.blackMode) << c.attributes;
    EXPECT_EQ(info.flags, c.flags) << c.attributes;
  }

  // preserveCMY="0" clears only its own bit; newer elements win over the old attributes.
  CICCInfo info;
  info.flags = 0x3;
  pugi::xml_document document;
  ASSERT_TRUE(
      info.ReadXML(Parse(document, "<ICCINFO preserveCMY=\"0\" keepK=\"1\"><Black mode=\"0\"/></ICCINFO>")));
  EXPECT_EQ(info.flags, 0x2u);
  EXPECT_EQ(info.blackMode, ICC_BLACK_PROFILE);
}

TEST(IccSection, DefaultsUseTheInputSlotsAndWriteNineEntriesInOrder) {
  const CPMICCProfileData section;
  const std::string text = Written([&](pugi::xml_node n) { section.WriteXML(n); });
  EXPECT_EQ(text.rfind(std::string(kDeclaration) +
                           "<ICCPROFILES sepbitmaps=\"1\" grayscalemode=\"0\" overrideinput=\"0\" "
                           "overrideoutput=\"0\" overrideother=\"0\" spotcolormatching=\"0\">\n"
                           "\t<ICCPROFILE name=\"LA_CMYKPath\" type=\"CMYK\">\n"
                           "\t\t<PATH>Orvel Vector CMYK.icm</PATH>\n"
                           "\t\t<USED>1</USED>\n"
                           "\t\t<ICCINFO key=\"LA_CMYK_INFO\">\n",
                       0),
            0u)
      << text;

  pugi::xml_document document;
  ASSERT_TRUE(xml::LoadDocumentFromBuffer(document, text, "ICCPROFILES"));
  struct Entry {
    std::string name, type, path, used, key;
  };
  std::vector<Entry> entries;
  for (const pugi::xml_node& entry : document.first_child().children("ICCPROFILE")) {
    const pugi::xml_node info = entry.child("ICCINFO");
    entries.push_back({entry.attribute("name").value(), entry.attribute("type").value(),
                       entry.child_value("PATH"), entry.child_value("USED"), info.attribute("key").value()});
    // Each settings element holds the key and the conversion settings, nothing more.
    EXPECT_EQ(info.first_attribute().next_attribute(), pugi::xml_attribute()) << entries.back().name;
    std::vector<std::string> children;
    for (const pugi::xml_node& child : info.children()) {
      children.emplace_back(child.name());
    }
    EXPECT_EQ(children, (std::vector<std::string>{"Intent", "Exceptions", "links"})) << entries.back().name;
  }
  const std::vector<Entry> expected = {
      {"LA_CMYKPath", "CMYK", "Orvel Vector CMYK.icm", "1", "LA_CMYK_INFO"},
      {"LA_LABPath", "LAB", "cielab.icm", "1", "LA_LAB_INFO"},
      {"LA_RGBPath", "RGB", "Orvel Vector RGB.icm", "1", "LA_RGB_INFO"},
      {"BMP_CMYKPath", "CMYK", "Orvel Image CMYK.icm", "1", "BMP_CMYK_INFO"},
      {"BMP_LABPath", "LAB", "cielab.icm", "1", "BMP_LAB_INFO"},
      {"BMP_RGBPath", "RGB", "Orvel Image RGB.icm", "1", "BMP_RGB_INFO"},
      {"SPTDevicePath", "SPOT", "", "0", "SOFTPROOF_INFO"},
      {"OutTagDevicePath", "OUTPUT", "Orvel Gen Inkjet.icm", "0", "OUTPUT_INFO"},
      {"UseICCTags", "OUTPUT", "", "0", "GREYSCALE_INFO"},
  };
  ASSERT_EQ(entries.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(entries[i].name, expected[i].name) << i;
    EXPECT_EQ(entries[i].type, expected[i].type) << i;
    EXPECT_EQ(entries[i].path, expected[i].path) << i;
    EXPECT_EQ(entries[i].used, expected[i].used) << i;
    EXPECT_EQ(entries[i].key, expected[i].key) << i;
  }
}

TEST(IccSection, EveryFieldSurvivesARoundTrip) {
  CPMICCProfileData section;
  for (int slot = 0; slot <= 7; ++slot) {
    section.SetICCPath(slot, L"%Lumascript%ICC\\Slot <" + std::to_wstring(slot) + L"> & \u00e9.icc");
  }
  for (int use = 0; use <= 9; ++use) {
    section.SetICCUsed(use, !section.GetICCUsed(use));
  }
  for (int info = 1; info <= 9; ++info) {
    // Only the conversion settings are part of a print mode; the rest keeps
    // the slot's defaults.
    section.SetICCInfo(info, WithConversionOf(Info(section, info), ChangedInfo(info)));
  }
  section.SetOverrideInput(true);
  section.SetOverrideOutput(true);
  section.SetOverrideOther(true);
  section.SetSpotColorMatching(true);

  const CPMICCProfileData copy = RoundTrip(section);
  EXPECT_TRUE(copy == section);
  EXPECT_EQ(copy.GetICCPath(ICC_OUT_DEVICE_PATH), L"%Lumascript%ICC\\Slot <7> & \u00e9.icc");
  EXPECT_TRUE(copy.GetICCUsed(ICC_USE_GRAYSCALE_MODE));
  EXPECT_FALSE(copy.GetSeparateBitmaps());
  EXPECT_TRUE(Info(copy, ICC_INFO_GREYSCALE) == Info(section, ICC_INFO_GREYSCALE));

  // The defaults too: the reader must not keep what the reading record held.
  EXPECT_TRUE(RoundTrip(CPMICCProfileData()) == CPMICCProfileData());
}

TEST(IccSection, ReadingSkipsUnknownEntriesAndKeepsDefaultsForAbsentParts) {
  CPMICCProfileData section;
  section.SetOverrideInput(true);
  pugi::xml_document document;
  ASSERT_TRUE(section.ReadXML(Parse(document,
                                    "<ICCPROFILES overrideother=\"1\">"
                                    "<ICCPROFILE name=\"Bogus\"><PATH>x</PATH><USED>1</USED></ICCPROFILE>"
                                    "<ICCPROFILE name=\"la_rgbpath\"><PATH>x</PATH></ICCPROFILE>"
                                    "<ICCPROFILE name=\"BMP_RGBPath\"><PATH>Mine.icc</PATH></ICCPROFILE>"
                                    "<ICCPROFILE name=\"LA_CMYKPath\"><USED>0</USED></ICCPROFILE>"
                                    "<ICCPROFILE><PATH>nameless</PATH></ICCPROFILE>"
                                    "<Other/>"
                                    "</ICCPROFILES>")));
  CPMICCProfileData expected;
  expected.SetOverrideOther(true);
  expected.SetICCPath(ICC_BMP_RGB_PATH, L"Mine.icc");
  expected.SetICCUsed(ICC_USE_LA_CMYK, false);
  EXPECT_TRUE(section == expected);
}

TEST(IccSection, OtherElementsAreRefusedAndChangeNothing) {
  CPMICCProfileData section;
  section.SetICCPath(ICC_LA_RGB_PATH, L"Mine.icc");
  const CPMICCProfileData before = section;
  pugi::xml_document document;
  EXPECT_FALSE(section.ReadXML(Parse(document, "<iccprofiles sepbitmaps=\"0\"/>")));
  EXPECT_FALSE(section.ReadXML(pugi::xml_node()));
  EXPECT_TRUE(section == before);
}

TEST(IccSection, RenderingIntentAgreesWithTheDefaults) {
  CPMICCProfileData section;
  const CPMICCProfileData defaults;
  section.SetRenderingIntent(ICC_INTENT_PERCEPTUAL, ICC_INTENT_RELATIVE);
  EXPECT_TRUE(section == defaults);

  CICCInfo changed = ChangedInfo(3);
  section.SetICCInfo(ICC_INFO_LA_RGB, changed);
  section.SetICCInfo(ICC_INFO_LA_LAB, changed);
  section.SetRenderingIntent(ICC_INTENT_ABSOLUTE);
  for (int key : {ICC_INFO_LA_RGB, ICC_INFO_BMP_RGB, ICC_INFO_LA_CMYK, ICC_INFO_BMP_CMYK}) {
    CICCInfo expected;
    expected.intent = ICC_INTENT_ABSOLUTE;
    EXPECT_TRUE(Info(section, key) == expected) << key;
  }
  EXPECT_TRUE(Info(section, ICC_INFO_LA_LAB) == changed);  // Lab records are not the intent's business
}

TEST(IccSection, InputSetsReplaceOnlyInputs) {
  CPMICCProfileData section;
  section.SetICCPath(ICC_OUT_DEVICE_PATH, L"Printer.icc");
  section.SetICCUsed(ICC_USE_LA_RGB, false);
  section.SetICCInfo(ICC_INFO_LA_RGB, ChangedInfo(4));
  section.SetICCInfo(ICC_INFO_OUTPUT, ChangedInfo(5));

  section.SetEnhancedInputs();
  EXPECT_EQ(section.GetICCPath(ICC_LA_RGB_PATH), L"Orvel Unified RGB.icm");
  EXPECT_EQ(section.GetICCPath(ICC_BMP_RGB_PATH), L"Orvel Unified RGB.icm");
  EXPECT_EQ(section.GetICCPath(ICC_BMP_CMYK_PATH), L"Orvel Vector CMYK.icm");
  EXPECT_EQ(section.GetICCPath(ICC_BMP_LAB_PATH), L"cielab.icm");
  EXPECT_EQ(section.GetICCPath(ICC_OUT_DEVICE_PATH), L"Printer.icc");
  EXPECT_FALSE(section.GetICCUsed(L"UseLA_RGB"));
  EXPECT_TRUE(Info(section, ICC_INFO_LA_RGB) == Info(CPMICCProfileData(), ICC_INFO_LA_RGB));
  EXPECT_TRUE(Info(section, ICC_INFO_OUTPUT) == ChangedInfo(5));

  section.SetDefaultInputs();
  EXPECT_EQ(section.GetICCPath(L"LA_RGBPath"), L"Orvel Vector RGB.icm");
  EXPECT_EQ(section.GetICCPath(L"BMP_RGBPath"), L"Orvel Image RGB.icm");
  EXPECT_EQ(section.GetICCPath(L"OutTagDevicePath"), L"Printer.icc");
}

TEST(IccSection, DisableAndReEnableRestoreAMixtureOfFlags) {
  CPMICCProfileData section;
  section.SetICCUsed(ICC_USE_LA_LAB, false);
  section.SetICCUsed(ICC_USE_BMP_CMYK, false);
  section.SetICCUsed(ICC_USE_SPT_DEVICE, true);
  const CPMICCProfileData before = section;

  section.DisableICCProfiles();
  EXPECT_FALSE(section.IsEnabled());
  for (int use = ICC_USE_LA_RGB; use <= ICC_USE_BMP_CMYK; ++use) {
    EXPECT_FALSE(section.GetICCUsed(use)) << use;
  }
  EXPECT_TRUE(section.GetICCUsed(ICC_USE_SPT_DEVICE));  // not an input slot
  section.DisableICCProfiles();                         // a second disable keeps the first memory

  section.ReEnableICCProfiles();
  EXPECT_TRUE(section.IsEnabled());
  EXPECT_TRUE(section == before);

  // Without a disable before it, re-enabling leaves the flags alone.
  section.SetICCUsed(ICC_USE_LA_RGB, false);
  section.ReEnableICCProfiles();
  EXPECT_FALSE(section.GetICCUsed(ICC_USE_LA_RGB));
}

TEST_F(IccPaths, PathsBelowTheSystemFolderAreStoredWithTheVariable) {
  CPMICCProfileData section;
  section.SetICCPath(ICC_LA_RGB_PATH, L"C:\\Kestrel\\rip\\system\\ICC\\A.icc");
  EXPECT_EQ(section.GetICCPath(ICC_LA_RGB_PATH), L"%Lumascript%ICC\\A.icc");
  section.SetICCPath(ICC_LA_RGB_PATH, L"c:/kestrel/RIP/System/ICC\\B.icc");  // Windows paths ignore case
  EXPECT_EQ(section.GetICCPath(ICC_LA_RGB_PATH), L"%Lumascript%ICC\\B.icc");
  for (const wchar_t* kept : {L"C:\\Kestrel\\rip\\systemx\\A.icc", L"C:\\Other\\system\\A.icc", L"A.icc",
                              L"C:\\Kestrel\\rip\\system\\"}) {
    section.SetICCPath(ICC_LA_RGB_PATH, kept);
    EXPECT_EQ(section.GetICCPath(ICC_LA_RGB_PATH), kept);
  }

  std::wstring absolute;
  section.SetICCPath(ICC_OUT_DEVICE_PATH, L"%Lumascript%ICC\\%Lumascript%.icc");
  ASSERT_TRUE(section.GetICCAbsolutePath(ICC_OUT_DEVICE_PATH, absolute));
  EXPECT_EQ(absolute, L"C:\\Kestrel\\rip\\system\\ICC\\%Lumascript%.icc");
  ASSERT_TRUE(section.GetICCAbsolutePath(L"LA_LABPath", absolute));
  EXPECT_EQ(absolute, L"cielab.icm");
  EXPECT_FALSE(section.GetICCAbsolutePath(L"UseICCTags", absolute));
  EXPECT_EQ(absolute, L"");
}

TEST_F(IccPaths, UpdateReplacesEveryOccurrence) {
  CPMICCProfileData section;
  section.SetICCPath(ICC_OUT_DEVICE_PATH, L"%Lumascript%Aurora\\aurora 64.icc");
  EXPECT_TRUE(section.UpdateICCPath(ICC_OUT_DEVICE_PATH, L"AURORA", L"Borealis"));
  EXPECT_EQ(section.GetICCPath(ICC_OUT_DEVICE_PATH), L"%Lumascript%Borealis\\Borealis 64.icc");
  EXPECT_FALSE(section.UpdateICCPath(ICC_OUT_DEVICE_PATH, L"Missing", L"x"));
  EXPECT_FALSE(section.UpdateICCPath(ICC_OUT_DEVICE_PATH, L"", L"x"));
  EXPECT_FALSE(section.UpdateICCPath(9, L"Borealis", L"x"));
  EXPECT_TRUE(section.UpdateICCPath(ICC_OUT_DEVICE_PATH, L"Borealis", L""));
  EXPECT_EQ(section.GetICCPath(ICC_OUT_DEVICE_PATH), L"%Lumascript%\\ 64.icc");
}

}  // namespace
}  // namespace tarn
