#include "tarn/sections/printer_options_data.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

#include <string>
#include <vector>

#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

bool ReadInto(CPMPrinterOptionsData& options, const std::string& text) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text.c_str())) << text;
  return options.ReadXML(document.first_child());
}

CPMPrinterOptionsData RoundTrip(const CPMPrinterOptionsData& options) {
  pugi::xml_document document;
  EXPECT_TRUE(xml::LoadDocumentFromBuffer(document, test::Written(options), "PRINTEROPTIONS"));
  CPMPrinterOptionsData copy;
  EXPECT_TRUE(copy.ReadXML(document.first_child()));
  return copy;
}

std::wstring ValueOf(const CPMPrinterOptionsData& options, const std::wstring& name) {
  const std::wstring* value = options.GetOptionValue(name);
  return value ? *value : L"<absent>";
}

TEST(PrinterOptionsXml, SwitchesOffWriteOnlyTheOptions) {
  CPMPrinterOptionsData options;
  EXPECT_EQ(test::Written(options), "<?xml version=\"1.0\"?>\n<PRINTEROPTIONS />\n");

  options.AddOption(L"Resolution", L"720x720");
  options.AddOption(L"Color Plane", L"CMYK");
  EXPECT_EQ(test::Written(options),
            "<?xml version=\"1.0\"?>\n"
            "<PRINTEROPTIONS>\n"
            "\t<OPTION>\n"
            "\t\t<PROC>Color Plane</PROC>\n"
            "\t\t<PARAM><![CDATA[CMYK]]></PARAM>\n"
            "\t</OPTION>\n"
            "\t<OPTION>\n"
            "\t\t<PROC>Resolution</PROC>\n"
            "\t\t<PARAM><![CDATA[720x720]]></PARAM>\n"
            "\t</OPTION>\n"
            "</PRINTEROPTIONS>\n");
}

TEST(PrinterOptionsXml, SwitchesOnAreWrittenFirst) {
  CPMPrinterOptionsData options;
  options.SetOverrideEnable(true);
  options.SetAdvanced(true);
  options.AddOption(L"Media", L"Gloss");
  EXPECT_EQ(test::Written(options),
            "<?xml version=\"1.0\"?>\n"
            "<PRINTEROPTIONS>\n"
            "\t<OVR_ENABLE>1</OVR_ENABLE>\n"
            "\t<ADVANCED>1</ADVANCED>\n"
            "\t<OPTION>\n"
            "\t\t<PROC>Media</PROC>\n"
            "\t\t<PARAM><![CDATA[Gloss]]></PARAM>\n"
            "\t</OPTION>\n"
            "</PRINTEROPTIONS>\n");
}

TEST(PrinterOptionsXml, ValuesSurviveMarkupAndCDataTerminators) {
  CPMPrinterOptionsData options;
  options.SetAdvanced(true);
  const std::vector<std::wstring> values = {
      L"<</PageSize [595 842]>> setpagedevice", L"a]]>b",      L"]]>", L"x]]>]]>y & \"z\" 'w'",
      L"\u00e9cru \u4e2d\u6587 \U0001F5A8",     L"  padded  ",
  };
  for (size_t i = 0; i < values.size(); ++i) {
    options.AddOption(L"Opt" + std::to_wstring(i), values[i]);
  }
  options.AddOption(L"<name & more>", L"v");

  const CPMPrinterOptionsData copy = RoundTrip(options);
  EXPECT_TRUE(copy == options);
  for (size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(ValueOf(copy, L"Opt" + std::to_wstring(i)), values[i]) << i;
  }
}

TEST(PrinterOptionsXml, ReadingSkipsEmptyOptionsAndLetsTheLastValueWin) {
  CPMPrinterOptionsData options;
  ASSERT_TRUE(ReadInto(options,
                       "<PRINTEROPTIONS>"
                       "<OPTION><PROC>Empty</PROC><PARAM></PARAM></OPTION>"
                       "<OPTION><PROC>NoParam</PROC></OPTION>"
                       "<OPTION><PROC></PROC><PARAM>orphan</PARAM></OPTION>"
                       "<OPTION><PARAM><![CDATA[orphan]]></PARAM></OPTION>"
                       "<OPTION><PROC>Media</PROC><PARAM>Matte</PARAM></OPTION>"
                       "<OPTION><PROC>Media</PROC><PARAM><![CDATA[Gloss]]></PARAM></OPTION>"
                       "<option><PROC>Lower</PROC><PARAM>x</PARAM></option>"
                       "<Unknown>1</Unknown>"
                       "</PRINTEROPTIONS>"));
  ASSERT_EQ(options.GetOptions().size(), 1u);
  EXPECT_EQ(ValueOf(options, L"Media"), L"Gloss");
  EXPECT_FALSE(options.GetOverrideEnable());
  EXPECT_FALSE(options.GetAdvanced());
}

TEST(PrinterOptionsXml, ReadingKeepsEarlierOptionsButResetsTheSwitches) {
  CPMPrinterOptionsData options;
  options.SetOverrideEnable(true);
  options.SetAdvanced(true);
  options.AddOption(L"Kept", L"1");
  options.AddOption(L"Replaced", L"old");
  ASSERT_TRUE(ReadInto(options,
                       "<PRINTEROPTIONS><ADVANCED>yes</ADVANCED>"
                       "<OPTION><PROC>Replaced</PROC><PARAM>new</PARAM></OPTION></PRINTEROPTIONS>"));
  EXPECT_FALSE(options.GetOverrideEnable());
  EXPECT_TRUE(options.GetAdvanced());
  EXPECT_EQ(ValueOf(options, L"Kept"), L"1");
  EXPECT_EQ(ValueOf(options, L"Replaced"), L"new");
}

TEST(PrinterOptionsXml, OtherElementsAreRefusedAndChangeNothing) {
  for (const char* text : {"<printeroptions><OVR_ENABLE>1</OVR_ENABLE></printeroptions>",
                           "<OPTIONS><OVR_ENABLE>1</OVR_ENABLE></OPTIONS>"}) {
    CPMPrinterOptionsData options;
    options.SetAdvanced(true);
    options.AddOption(L"A", L"1");
    const CPMPrinterOptionsData before = options;
    EXPECT_FALSE(ReadInto(options, text)) << text;
    EXPECT_TRUE(options == before) << text;
  }
}

TEST(PrinterOptionsReserved, LockActsOnlyOnAnExistingOption) {
  CPMPrinterOptionsData options;
  options.LockPM();
  EXPECT_FALSE(options.IsPMLocked());
  EXPECT_EQ(options.GetOptionValue(L"LOCKED"), nullptr);

  options.AddOption(L"LOCKED", L"0");
  EXPECT_FALSE(options.IsPMLocked());
  options.LockPM();
  EXPECT_EQ(ValueOf(options, L"LOCKED"), L"1");
  EXPECT_TRUE(options.IsPMLocked());
  options.UnlockPM();
  EXPECT_EQ(ValueOf(options, L"LOCKED"), L"0");
}

TEST(PrinterOptionsReserved, LockedIsReadAsAWholeNumber) {
  struct Case {
    const wchar_t* value;
    bool locked;
  };
  for (const Case& c : {Case{L"1", true}, Case{L"01", true}, Case{L" 1", true}, Case{L"1abc", true},
                        Case{L"2", false}, Case{L"true", false}, Case{L"-1", false}, Case{L"", false}}) {
    CPMPrinterOptionsData options;
    options.AddOption(L"LOCKED", c.value);
    EXPECT_EQ(options.IsPMLocked(), c.locked) << c.value;
  }
}

TEST(PrinterOptionsReserved, UploadStateKeepsItsInvertedCoding) {
  CPMPrinterOptionsData options;
  options.MarkForUpload();
  options.MarkForModify();
  EXPECT_EQ(options.GetOptionValue(L"REQUPLOAD"), nullptr);

  options.AddOption(L"REQUPLOAD", L"1");
  EXPECT_FALSE(options.IsMarkedForUpload());
  EXPECT_FALSE(options.IsMarkedAsModified());
  options.MarkForUpload();
  EXPECT_EQ(ValueOf(options, L"REQUPLOAD"), L"0");
  EXPECT_TRUE(options.IsMarkedForUpload());
  options.MarkForModify();
  EXPECT_EQ(ValueOf(options, L"REQUPLOAD"), L"2");
  EXPECT_TRUE(options.IsMarkedAsModified());
  EXPECT_FALSE(options.IsMarkedForUpload());
  options.UnMarkForUpload();
  EXPECT_EQ(ValueOf(options, L"REQUPLOAD"), L"1");

  // Upload states compare as exact text.
  options.SetOptionValue(L"REQUPLOAD", L"00");
  EXPECT_FALSE(options.IsMarkedForUpload());
  options.SetOptionValue(L"REQUPLOAD", L"02");
  EXPECT_FALSE(options.IsMarkedAsModified());
}

TEST(PrinterOptionsIteration, WalksInNameOrderAndSurvivesEdits) {
  CPMPrinterOptionsData options;
  std::wstring name;
  std::wstring value;
  EXPECT_FALSE(options.GetFirstOption(name, value));
  EXPECT_FALSE(options.GetNextOption(name, value));

  options.AddOption(L"b", L"2");
  options.AddOption(L"", L"empty");
  options.AddOption(L"a", L"1");
  options.AddOption(L"c", L"3");

  std::vector<std::wstring> seen;
  for (bool more = options.GetFirstOption(name, value); more; more = options.GetNextOption(name, value)) {
    seen.push_back(name + L"=" + value);
    if (name == L"a") {
      options.RemoveOption(L"a");  // the walk goes on after "a"
      options.AddOption(L"bb", L"inserted");
    }
  }
  EXPECT_EQ(seen, (std::vector<std::wstring>{L"=empty", L"a=1", L"b=2", L"bb=inserted", L"c=3"}));
  EXPECT_FALSE(options.GetNextOption(name, value));
}

}  // namespace
}  // namespace tarn
