// The small definition records: the defaults they fill in for what a
// definition leaves out, and the entries they skip.

#include <gtest/gtest.h>

#include "support/test_support.h"
#include "tarn/foundation/limits.h"
#include "tarn/printer/definitions.h"
#include "tarn/printer/generic_map.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

pugi::xml_node Parse(pugi::xml_document& document, const char* text) {
  EXPECT_TRUE(document.load_string(text));
  return document.first_child();
}

TEST(DefinitionsTest, ColourPlanesDefaultFromTheirName) {
  pugi::xml_document document;
  CColorDef model;
  ASSERT_TRUE(model.ReadXML(Parse(document,
                                  "<NCOLOR2><NAME>M</NAME><PLANE>Cyan</PLANE><PLANE>Orange</PLANE>"
                                  "<PLANE keyword=\"0\" color=\"0\" profile=\"7\">Black</PLANE><PLANE/>"
                                  "<PLANE>cyan</PLANE></NCOLOR2>")));
  ASSERT_EQ(model.GetPlaneDefs().size(), 4u);
  EXPECT_EQ(model.GetPlaneDefs()[0], (CColorPlaneDef{L"Cyan", true, true, -1}));
  EXPECT_EQ(model.GetPlaneDefs()[1], (CColorPlaneDef{L"Orange", false, true, -1}));
  EXPECT_EQ(model.GetPlaneDefs()[2], (CColorPlaneDef{L"Black", false, false, 7}));
  EXPECT_FALSE(model.GetPlaneDefs()[3].keyword);  // process plates are named exactly
  EXPECT_EQ(model.FindPlane(L"cyan"), &model.GetPlaneDefs()[3]);
  EXPECT_EQ(model.FindPlane(L"White"), nullptr);

  model.ReadXML(Parse(document, "<NCOLOR2/>"));
  EXPECT_TRUE(model.GetPlanes().empty());
  EXPECT_FALSE(model.ReadXML(pugi::xml_node()));
}

TEST(DefinitionsTest, OptionChoicesTakeTheirTextWhenTheyHaveNoValue) {
  pugi::xml_document document;
  CCustomDef option;
  ASSERT_TRUE(option.ReadXML(Parse(document,
                                   "<CUSTOM htm=\"yes\"><NAME>Passes</NAME><PROC>P</PROC>"
                                   "<CHOICE>4</CHOICE><CHOICE value=\"8\">Eight</CHOICE><CHOICE/>"
                                   "<CHOICE value=\"\">empty value</CHOICE>"
                                   "<CUSTOM><PROC>nameless</PROC></CUSTOM>"
                                   "<CUSTOM><NAME>Nested</NAME></CUSTOM></CUSTOM>")));
  EXPECT_TRUE(option.IsHTM());
  EXPECT_EQ(option.GetChoices(), (std::vector<CCustomChoice>{{L"4", L"4"}, {L"8", L"Eight"}}));
  ASSERT_EQ(option.GetOptions().size(), 1u);
  EXPECT_EQ(option.GetOptions()[0].GetName(), L"Nested");
  EXPECT_EQ(option.FindChoice(L"Eight"), nullptr);
}

// Options nested as deep as a file may hold them read; one level more, in a
// document built in memory (files that deep are refused on loading), is
// refused whole, with a message, and without exhausting a 1 MB stack.
TEST(DefinitionsTest, NestedOptionsAreBoundedInDepth) {
  const auto nested = [](int depth) { return test::Nested("<CUSTOM><NAME>o</NAME>", "</CUSTOM>", depth); };
  pugi::xml_document document;
  CCustomDef option;
  test::RunOnStack(1 << 20,
                   [&] { EXPECT_TRUE(option.ReadXML(Parse(document, nested(kMaxNestingDepth).c_str()))); });
  test::MessageCapture capture;
  test::RunOnStack(
      1 << 20, [&] { EXPECT_FALSE(option.ReadXML(Parse(document, nested(kMaxNestingDepth + 1).c_str()))); });
  EXPECT_EQ(option.GetName(), L"");
  EXPECT_TRUE(option.GetOptions().empty());
  EXPECT_EQ(capture.messages().size(), 1u);
}

TEST(DefinitionsTest, SNMPPresentMeansOnWithStandardSettings) {
  pugi::xml_document document;
  CSNMPData snmp;
  EXPECT_FALSE(snmp.IsEnabled());
  ASSERT_TRUE(snmp.ReadXML(Parse(document, "<SNMP><INKOID name=\"Cyan\"/><INKOID>1.2</INKOID></SNMP>")));
  EXPECT_TRUE(snmp.IsEnabled());
  EXPECT_EQ(snmp.GetCommunity(), L"public");
  EXPECT_EQ(snmp.GetPort(), 161);
  EXPECT_EQ(snmp.GetTimeout(), 1000);
  EXPECT_TRUE(snmp.GetInkOIDs().empty());
  snmp.ReadXML(Parse(document, "<SNMP enabled=\"0\"/>"));
  EXPECT_FALSE(snmp.IsEnabled());
}

TEST(DefinitionsTest, DeviceNamesMatchReportedNamesByPrefix) {
  pugi::xml_document document;
  CSNMPName names;
  names.ReadXML(Parse(document, "<SNMP_DeviceName><NAME>Aurora 64</NAME><NAME/></SNMP_DeviceName>"));
  EXPECT_TRUE(names.Matches(L"AURORA 64"));
  EXPECT_TRUE(names.Matches(L"aurora 64 rev 2"));
  EXPECT_FALSE(names.Matches(L"Aurora 6"));
  EXPECT_FALSE(names.Matches(L""));
}

TEST(DefinitionsTest, ButtonsShowTheirNameWithoutALabel) {
  pugi::xml_document document;
  CButtonDef button;
  button.ReadXML(Parse(document, "<DMBUTTON><NAME>Clean</NAME></DMBUTTON>"));
  EXPECT_EQ(button.GetLabel(), L"Clean");
  button.ReadXML(Parse(document, "<DMBUTTON><NAME>Clean</NAME><LABEL>Clean heads</LABEL></DMBUTTON>"));
  EXPECT_EQ(button.GetLabel(), L"Clean heads");
}

// Print modes are kept in the same kind of map by their callers.
TEST(DefinitionsTest, PrintModesFillAMapByTheirName) {
  pugi::xml_document document;
  const pugi::xml_node parent =
      Parse(document,
            "<MODES>"
            "<PMH version=\"8\"><METADATA><MEDIA_NAME>Vinyl.pmx</MEDIA_NAME></METADATA>"
            "<INVERT>1</INVERT></PMH>"
            "<PMH version=\"8\"><PRINTER>no name</PRINTER></PMH>"
            "</MODES>");
  CGenericMap<CPrintModeData> modes(L"PMH");
  modes.ReadXMLSection(parent);
  ASSERT_EQ(modes.size(), 1u);
  ASSERT_NE(modes.Get(L"VINYL.PMX"), nullptr);
  EXPECT_TRUE(modes.Get(L"vinyl.pmx")->GetInvert());
}

}  // namespace
}  // namespace tarn
