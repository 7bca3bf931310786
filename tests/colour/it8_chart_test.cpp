#include "tarn/colour/it8_chart.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "support/test_support.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

// Two tables as profiling tools write them: a sheet type, quoted and unquoted
// values, declarations, comments, a NUMBER_OF_FIELDS that disagrees with the
// field list, quoted cells, tabs, and a second table with its own sheet type.
constexpr const char* kTwoTables =
    "CTI3   \n"
    "\n"
    "DESCRIPTOR \"Press check\"\n"
    "ORIGINATOR \"Spectro 2\"  # the handheld\n"
    "CREATED Sun Sep 04 06:04:18 2022\n"
    "KEYWORD \"SAMPLE_LOC\"\n"
    "# measured twice, averaged\n"
    "NUMBER_OF_FIELDS 7\n"
    "BEGIN_DATA_FORMAT\n"
    "SAMPLE_ID SAMPLE_NAME SAMPLE_LOC\n"
    "LAB_L LAB_A LAB_B\n"
    "END_DATA_FORMAT\n"
    "\n"
    "NUMBER_OF_SETS\t3\n"
    "BEGIN_DATA\n"
    "A1\t\"Paper white\"\t\"A1\"\t95.5\t-0.5\t2.25\n"
    "# a comment among the rows\n"
    "A2 Cyan B1 55.1 -37.0 -50.0\n"
    "A3 'Say \"black\"' C1 1.6e1 0.25 -0.75\n"
    "END_DATA\n"
    "CTI3\n"
    "KEYWORD \"INDEX\"\n"
    "NUMBER_OF_FIELDS 2\n"
    "BEGIN_DATA_FORMAT\n"
    "INDEX XYZ_Y\n"
    "END_DATA_FORMAT\n"
    "NUMBER_OF_SETS 1\n"
    "BEGIN_DATA\n"
    "0 100\n"
    "END_DATA\n"
    "# end of file\n";

CIT8Chart Read(const std::string& text) {
  CIT8Chart chart;
  CIT8Issue error;
  EXPECT_TRUE(chart.ReadText(text, &error)) << ToUtf8(error.Describe());
  return chart;
}

std::string Write(const CIT8Chart& chart) {
  std::string out;
  std::wstring error;
  EXPECT_TRUE(chart.WriteText(out, &error)) << ToUtf8(error);
  return out;
}

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  if (at != std::string::npos) {
    text.replace(at, from.size(), to);
  }
  return text;
}

TEST(It8Chart, ReadsWhatProfilingToolsWrite) {
  const CIT8Chart chart = Read(kTwoTables);
  ASSERT_EQ(chart.GetTableCount(), 2u);
  const CIT8Table& table = *chart.GetTable(0);
  EXPECT_EQ(table.GetSheetType(), L"CTI3");
  ASSERT_NE(table.GetProperty(L"CREATED"), nullptr);
  EXPECT_EQ(*table.GetProperty(L"CREATED"), L"Sun Sep 04 06:04:18 2022");
  EXPECT_EQ(*table.GetProperty(L"ORIGINATOR"), L"Spectro 2");
  EXPECT_EQ(table.GetProperties()[1].note, L" the handheld");
  EXPECT_EQ(table.GetProperties()[4].kind, CIT8Property::Kind::kComment);
  EXPECT_EQ(table.GetProperties()[4].value, L" measured twice, averaged");

  // The field list wins over NUMBER_OF_FIELDS, and says so.
  EXPECT_EQ(table.GetFieldCount(), 6u);
  ASSERT_EQ(chart.GetWarnings().size(), 1u);
  EXPECT_EQ(chart.GetWarnings()[0].line, 8u);

  EXPECT_EQ(table.GetRowCount(), 3u);
  EXPECT_EQ(table.GetCell(0, 1), L"Paper white");
  EXPECT_EQ(table.GetCell(2, 1), L"Say \"black\"");
  double value = 0.0;
  EXPECT_TRUE(table.GetCellReal(2, 3, value));
  EXPECT_EQ(value, 16.0);
  EXPECT_FALSE(table.GetCellReal(0, 1, value));

  EXPECT_EQ(table.FindPatch(L"A2"), 1);
  EXPECT_EQ(table.FindPatch(L"Paper white"), 0);
  EXPECT_EQ(table.FindPatch(L"nothing"), -1);
  CLabColor lab;
  ASSERT_TRUE(table.GetLab(1, lab));
  EXPECT_EQ(lab, (CLabColor{55.1, -37.0, -50.0}));

  EXPECT_EQ(chart.GetTable(1)->GetSheetType(), L"CTI3");
  EXPECT_EQ(chart.GetTrailingComments(), std::vector<std::wstring>{L" end of file"});
  EXPECT_EQ(chart.GetLineEnding(), CIT8Chart::LineEnding::kLF);
}

TEST(It8Chart, WritesTheStandardLayout) {
  const CIT8Chart chart = Read(kTwoTables);
  EXPECT_EQ(Write(chart),
            "CTI3\n"
            "DESCRIPTOR \"Press check\"\n"
            "ORIGINATOR \"Spectro 2\" # the handheld\n"
            "CREATED Sun Sep 04 06:04:18 2022\n"
            "KEYWORD \"SAMPLE_LOC\"\n"
            "# measured twice, averaged\n"
            "\n"
            "NUMBER_OF_FIELDS 6\n"
            "BEGIN_DATA_FORMAT\n"
            "SAMPLE_ID SAMPLE_NAME SAMPLE_LOC LAB_L LAB_A LAB_B\n"
            "END_DATA_FORMAT\n"
            "\n"
            "NUMBER_OF_SETS 3\n"
            "BEGIN_DATA\n"
            "A1 \"Paper white\" A1 95.5 -0.5 2.25\n"
            "A2 Cyan B1 55.1 -37.0 -50.0\n"
            "A3 'Say \"black\"' C1 1.6e1 0.25 -0.75\n"
            "END_DATA\n"
            "\n"
            "CTI3\n"
            "KEYWORD \"INDEX\"\n"
            "\n"
            "NUMBER_OF_FIELDS 2\n"
            "BEGIN_DATA_FORMAT\n"
            "INDEX XYZ_Y\n"
            "END_DATA_FORMAT\n"
            "\n"
            "NUMBER_OF_SETS 1\n"
            "BEGIN_DATA\n"
            "0 100\n"
            "END_DATA\n"
            "# end of file\n");
}

TEST(It8Chart, RoundTripsInBothLineEndings) {
  std::string crlf;
  for (const char c : std::string(kTwoTables)) {
    if (c == '\n') {
      crlf += "\r\n";
    } else {
      crlf.push_back(c);
    }
  }
  for (const std::string& text : {std::string(kTwoTables), crlf}) {
    const CIT8Chart chart = Read(text);
    const std::string written = Write(chart);
    EXPECT_EQ(written.find("\r\n") != std::string::npos, text.find('\r') != std::string::npos);
    const CIT8Chart again = Read(written);
    EXPECT_EQ(again, chart);
    EXPECT_EQ(Write(again), written);
  }
  // A lone CR ends a line too, as old Mac tools wrote.
  std::string cr = kTwoTables;
  std::replace(cr.begin(), cr.end(), '\n', '\r');
  EXPECT_EQ(Read(cr).GetTable(0)->GetRowCount(), 3u);
}

TEST(It8Chart, BadInputSaysWhatAndWhere) {
  const struct {
    const char* what;
    std::string text;
    std::size_t line;
    const wchar_t* message;
  } cases[] = {
      {"row too short", Replace(kTwoTables, "A2 Cyan B1 55.1 -37.0 -50.0", "A2 Cyan B1 55.1 -37.0"), 18,
       L"5 values where the data format has 6 fields"},
      {"row too long", Replace(kTwoTables, "0 100\n", "0 100 7\n"), 29,
       L"3 values where the data format has 2 fields"},
      {"decimal comma", Replace(kTwoTables, "55.1", "55,1"), 18,
       L"\"55,1\" is not a number (field LAB_L); numbers are written with a decimal point"},
      {"missing END_DATA", Replace(kTwoTables, "0 100\nEND_DATA\n", "0 100\n"), 30,
       L"END_DATA is missing: the data that begins on line 28 runs to the end of the text"},
      {"missing END_DATA_FORMAT", Replace(kTwoTables, "INDEX XYZ_Y\nEND_DATA_FORMAT\n", "INDEX XYZ_Y\n"), 26,
       L"END_DATA_FORMAT is missing before NUMBER_OF_SETS (the data format begins on line 24)"},
      {"missing END_DATA before the next table", Replace(kTwoTables, "END_DATA\nCTI3\n", "CTI3\n"), 20,
       L"1 values where the data format has 6 fields"},
      {"missing END_DATA before a data format",
       Replace(kTwoTables, "0 100\nEND_DATA\n", "0 100\nBEGIN_DATA_FORMAT\n"), 30,
       L"END_DATA is missing before BEGIN_DATA_FORMAT (the data begins on line 28)"},
      {"undeclared fields", Replace(kTwoTables, "BEGIN_DATA_FORMAT\nINDEX XYZ_Y\nEND_DATA_FORMAT\n", ""), 25,
       L"BEGIN_DATA before any data format (BEGIN_DATA_FORMAT): the fields are undeclared"},
      {"field twice", Replace(kTwoTables, "INDEX XYZ_Y", "INDEX INDEX"), 25,
       L"the field INDEX appears twice in the data format"},
      {"binary junk", Replace(kTwoTables, "Cyan", std::string("Cy\0an\x01", 6)), 18,
       L"binary data (control characters): this is not a chart text file"},
      {"unclosed quote", Replace(kTwoTables, "\"Press check\"", "\"Press check"), 3,
       L"a quoted value is not closed"},
      {"text after a quoted value", Replace(kTwoTables, "\"Press check\"", "\"Press\" check"), 3,
       L"text after the quoted value of DESCRIPTOR"},
      {"count not a number", Replace(kTwoTables, "NUMBER_OF_SETS 1", "NUMBER_OF_SETS one"), 27,
       L"NUMBER_OF_SETS must be followed by a whole number"},
      {"stray END_DATA", Replace(kTwoTables, "# end of file\n", "END_DATA\n"), 31,
       L"END_DATA without its BEGIN"},
      {"table without data", std::string(kTwoTables) + "CTI3\nDESCRIPTOR \"left over\"\n", 32,
       L"the table that begins here has no data (BEGIN_DATA)"},
      {"nothing", "# only a comment\n", 0,
       L"no chart data: the text has no BEGIN_DATA_FORMAT and BEGIN_DATA"},
      {"empty", "", 0, L"no chart data: the text has no BEGIN_DATA_FORMAT and BEGIN_DATA"},
  };
  for (const auto& c : cases) {
    CIT8Chart chart = Read(kTwoTables);
    CIT8Issue error;
    EXPECT_FALSE(chart.ReadText(c.text, &error)) << c.what;
    EXPECT_EQ(error.line, c.line) << c.what;
    EXPECT_EQ(error.text, c.message) << c.what;
    EXPECT_EQ(chart.GetTableCount(), 0u) << c.what;
  }
}

TEST(It8Chart, AMillionRowsAreReadAndCounted) {
  std::string text =
      "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_ID LAB_L LAB_A LAB_B\nEND_DATA_FORMAT\nBEGIN_DATA\n";
  constexpr std::size_t kRows = 1000000;
  text.reserve(kRows * 24);
  for (std::size_t i = 0; i < kRows; ++i) {
    text += std::to_string(i) + " 50.5 -1 2\n";
  }
  text += "END_DATA\n";
  const CIT8Chart chart = Read(text);
  ASSERT_EQ(chart.GetTableCount(), 1u);
  EXPECT_EQ(chart.GetTable(0)->GetRowCount(), kRows);
  EXPECT_EQ(chart.GetTable(0)->GetCell(kRows - 1, 0), L"999999");
}

TEST(It8Chart, LatinOneFilesAreReadAsLatinOne) {
  const CIT8Chart chart = Read(Replace(kTwoTables, "Press check",
                                       "Pr\xFC"
                                       "fdruck"));
  EXPECT_EQ(*chart.GetTable(0)->GetProperty(L"DESCRIPTOR"), L"Pr\u00FCfdruck");
  // Written back as UTF-8.
  EXPECT_NE(Write(chart).find("Pr\xC3\xBC"
                              "fdruck"),
            std::string::npos);
}

TEST(It8Chart, EditingKeepsTheFileReadable) {
  CIT8Chart chart;
  CIT8Table& table = chart.AddTable();
  table.SetSheetType(L"CGATS.17");
  EXPECT_TRUE(table.SetProperty(L"ORIGINATOR", L"tarn"));
  EXPECT_TRUE(table.SetProperty(L"PRINTER_PASS", L"2"));
  EXPECT_FALSE(table.SetProperty(L"TWO WORDS", L"x"));
  // A keyword the standard does not know is declared before it is used.
  ASSERT_EQ(table.GetProperties().size(), 3u);
  EXPECT_EQ(table.GetProperties()[1].kind, CIT8Property::Kind::kDeclaration);
  EXPECT_TRUE(table.SetProperty(L"PRINTER_PASS", L"3"));
  EXPECT_EQ(table.GetProperties().size(), 3u);

  EXPECT_TRUE(table.SetFields({L"SAMPLE_ID", L"SAMPLE_NAME", L"LAB_L", L"LAB_A", L"LAB_B"}));
  EXPECT_FALSE(table.SetFields({L"A", L"A"}));
  EXPECT_TRUE(table.AddRow({L"1", L"", L"50", L"0", L"0"}));
  EXPECT_TRUE(table.AddRow({L"2", L"END_DATA", L"50", L"0", L"0"}));
  EXPECT_FALSE(table.AddRow({L"3"}));
  EXPECT_FALSE(table.SetFields({L"SAMPLE_ID"}));  // rows hold five cells
  EXPECT_TRUE(table.SetCellReal(0, 2, 1.0 / 3.0));
  EXPECT_EQ(table.GetCell(0, 2), L"0.333333");
  EXPECT_FALSE(table.SetCell(9, 0, L"x"));

  // Empty cells and cells that look like structure are quoted.
  const CIT8Chart again = Read(Write(chart));
  EXPECT_EQ(again, chart);
  EXPECT_EQ(again.GetTable(0)->GetCell(1, 1), L"END_DATA");

  // What cannot be written is refused with the reason.
  ASSERT_TRUE(table.SetCell(0, 1, L"both \" and '"));
  std::string out;
  std::wstring error;
  EXPECT_FALSE(chart.WriteText(out, &error));
  EXPECT_EQ(error, L"\"both \" and '\" holds both kinds of quote and cannot be written");
  EXPECT_TRUE(out.empty());
  ASSERT_TRUE(table.SetCell(0, 1, L"two\nlines"));
  EXPECT_FALSE(chart.WriteText(out, &error));
}

TEST(It8Chart, LabFromXyzUsesTheStatedWhite) {
  const CIT8Chart chart = Read(
      "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_ID XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\nBEGIN_DATA\n"
      "W 96.42 100 82.49\nP 20.5 18.25 9.5\nEND_DATA\n");
  const CIT8Table& table = *chart.GetTable(0);
  CLabColor lab;
  ASSERT_TRUE(table.GetLab(0, lab));
  EXPECT_NEAR(lab.L, 100.0, 1e-9);
  EXPECT_NEAR(lab.a, 0.0, 1e-9);
  EXPECT_NEAR(lab.b, 0.0, 1e-9);

  const CXYZColor d65{95.047, 100.0, 108.883};
  ASSERT_TRUE(table.GetLab(1, lab, d65));
  const cmsCIEXYZ white{0.95047, 1.0, 1.08883};
  const cmsCIEXYZ xyz{0.205, 0.1825, 0.095};
  cmsCIELab expected;
  cmsXYZ2Lab(&white, &expected, &xyz);
  EXPECT_NEAR(lab.L, expected.L, 1e-9);
  EXPECT_NEAR(lab.a, expected.a, 1e-9);
  EXPECT_NEAR(lab.b, expected.b, 1e-9);
}

// Little CMS writes numbers with the C library's printf: under a decimal-comma
// locale its files say "1,5". Ours must not, and must read the same values.
TEST(It8Chart, NumbersDoNotFollowTheLocale) {
  test::DecimalCommaLocale comma;
  if (!comma.active()) {
    GTEST_SKIP() << "no decimal-comma locale on this machine";
  }
  cmsHANDLE lcms = cmsIT8Alloc(nullptr);
  cmsIT8SetDataFormat(lcms, 0, "SAMPLE_ID");
  cmsIT8SetDataFormat(lcms, 1, "LAB_L");
  cmsIT8SetPropertyDbl(lcms, "NUMBER_OF_FIELDS", 2);
  cmsIT8SetPropertyDbl(lcms, "NUMBER_OF_SETS", 1);
  cmsIT8SetDataRowCol(lcms, 0, 0, "A1");
  cmsIT8SetDataRowColDbl(lcms, 0, 1, 1.5);
  char buffer[2048] = {};
  cmsUInt32Number size = sizeof buffer;
  ASSERT_TRUE(cmsIT8SaveToMem(lcms, buffer, &size));
  cmsIT8Free(lcms);
  const bool lcms_follows_locale = std::strstr(buffer, "1,5") != nullptr;

  CIT8Chart chart = Read(kTwoTables);
  ASSERT_TRUE(chart.GetTable(0)->SetCellReal(0, 3, 1.5));
  const std::string written = Write(chart);
  EXPECT_NE(written.find("A1 \"Paper white\" A1 1.5 "), std::string::npos);
  CLabColor lab;
  ASSERT_TRUE(Read(written).GetTable(0)->GetLab(0, lab));
  EXPECT_EQ(lab.L, 1.5);
  RecordProperty("lcms_writes_decimal_comma", lcms_follows_locale ? "yes" : "no");
}

TEST(It8Chart, XmlFormRoundTrips) {
  const CIT8Chart chart = Read(kTwoTables);
  pugi::xml_document document;
  std::wstring error;
  ASSERT_TRUE(chart.WriteXML(document, &error)) << ToUtf8(error);
  const std::string text = xml::SaveDocumentToString(document);
  EXPECT_NE(text.find("<It8Chart lineEnding=\"LF\">"), std::string::npos) << text;
  EXPECT_NE(text.find("<Keyword name=\"CREATED\" quoted=\"0\">Sun Sep 04 06:04:18 2022</Keyword>"),
            std::string::npos)
      << text;

  pugi::xml_document reread;
  ASSERT_TRUE(xml::LoadDocumentFromBuffer(reread, text, CIT8Chart::kElementName));
  CIT8Chart again;
  CIT8Issue issue;
  ASSERT_TRUE(again.ReadXML(reread.first_child(), &issue)) << ToUtf8(issue.Describe());
  EXPECT_EQ(again, chart);

  // Rows that do not fit the fields are refused, not half read.
  pugi::xml_node data = reread.first_child().child("Table").child("Data");
  data.text().set("A1 \"Paper white\" A1 95.5\n");
  EXPECT_FALSE(again.ReadXML(reread.first_child(), &issue));
  EXPECT_EQ(issue.Describe(), L"table 1, data line 1: 4 values where the data format has 6 fields");
  EXPECT_EQ(again.GetTableCount(), 0u);
}

}  // namespace
}  // namespace tarn
