// The conventions every record shares: how documents load and save, and how
// values read back.

#include "tarn/foundation/xml.h"

#include <gtest/gtest.h>

#include <climits>

#include "support/test_support.h"
#include "tarn/foundation/limits.h"

namespace tarn {
namespace {

TEST(XmlDocuments, SaveWithDeclarationTabsAndUtf8) {
  pugi::xml_document document;
  pugi::xml_node root = xml::AppendElement(document, "PMH");
  root.append_attribute("version").set_value(8);
  xml::AppendText(root, "PRINTER", L"Aurora \u00e9 64");
  pugi::xml_node meta = xml::AppendElement(root, "METADATA");
  xml::AppendBool(meta, "UNDERBASE", true);
  xml::AppendReal(meta, "GAMMA", 0.1);
  xml::AppendReal(meta, "LEVEL", 0.5, "%0.04f");
  EXPECT_EQ(xml::SaveDocumentToString(document),
            "<?xml version=\"1.0\"?>\n"
            "<PMH version=\"8\">\n"
            "\t<PRINTER>Aurora \xc3\xa9 64</PRINTER>\n"
            "\t<METADATA>\n"
            "\t\t<UNDERBASE>1</UNDERBASE>\n"
            "\t\t<GAMMA>0.10000000000000001</GAMMA>\n"
            "\t\t<LEVEL>0.5000</LEVEL>\n"
            "\t</METADATA>\n"
            "</PMH>\n");
}

TEST(XmlDocuments, LoadChecksTheRootExactly) {
  struct Case {
    const char* text;
    bool loads;
  };
  const Case cases[] = {
      {"<PMH version=\"8\"/>", true},
      {"<?xml version=\"1.0\"?>\n<!-- note -->\n<PMH/>", true},
      {"\xef\xbb\xbf<PMH/>", true},
      {"<pmh/>", false},
      {"<PMHX/>", false},
      {"<XREG/>", false},
      {"<PMH><PRINTER>x</PRINTER>", false},
      {"not xml at all", false},
      {"", false},
  };
  for (const Case& c : cases) {
    pugi::xml_document document;
    EXPECT_EQ(xml::LoadDocumentFromBuffer(document, c.text, "PMH"), c.loads) << c.text;
    if (!c.loads) {
      EXPECT_FALSE(document.first_child()) << "a refused document is left empty";
    }
  }
}

TEST(XmlDocuments, FailuresSayWhatIsWrong) {
  struct Case {
    const char* text;
    const wchar_t* reason;
  };
  const Case cases[] = {
      {"", L"empty file"},
      {"<PMH>\n\t<PRINTER>x</PRINTR>\n</PMH>", L"XML error at line 2, column 14: start-end tags mismatch"},
      {"<PMH>\n<INKSET>Gr\xc3\xbcn</INKSET>\n<A",
       L"XML error at line 3, column 2: error parsing start element tag"},
      {"<pmh/>", L"the root element is <pmh>, not <PMH>"},
  };
  for (const Case& c : cases) {
    pugi::xml_document document;
    std::wstring reason;
    EXPECT_FALSE(xml::LoadDocumentFromBuffer(document, c.text, "PMH", &reason));
    EXPECT_EQ(reason, c.reason) << c.text;
  }
}

// Nesting is bounded when the document loads, so no reader recursing over
// elements can run out of stack, even on a 1 MB thread.
TEST(XmlDocuments, NestingBeyondTheLimitIsRefused) {
  const auto nested = [](int depth) { return "<PMH>" + test::Nested("<A>", "</A>", depth - 1) + "</PMH>"; };
  pugi::xml_document document;
  EXPECT_TRUE(xml::LoadDocumentFromBuffer(document, nested(kMaxNestingDepth), "PMH"));
  std::wstring reason;
  EXPECT_FALSE(xml::LoadDocumentFromBuffer(document, nested(kMaxNestingDepth + 1), "PMH", &reason));
  EXPECT_EQ(reason, L"XML error at line 1, column 304: elements nested more than 100 levels deep");
  bool loaded = true;
  test::RunOnStack(1 << 20, [&] { loaded = xml::LoadDocumentFromBuffer(document, nested(200000), "PMH"); });
  EXPECT_FALSE(loaded);
}

// Whatever text a record holds, the file it writes is XML a strict parser
// accepts: what XML cannot carry at all becomes U+FFFD, the rest stays.
TEST(XmlDocuments, EverySavedDocumentIsStrictXml) {
  pugi::xml_document document;
  pugi::xml_node root = xml::AppendElement(document, "PMH");
  xml::AppendText(root, "CONTROL", L"bell\a nul-free \x1b[31m");
  xml::AppendText(root, "SURROGATE", L"lone \xDC00 half");
  xml::AppendCData(root, "CDATA", L"in cdata \x01");
  xml::SetAttribute(root, "note", L"tab\tform\f");
  // Bytes read from a file that are not UTF-8 at all.
  root.append_child("RAW").text().set("caf\xe9 \xff\xfe ok");
  xml::AppendText(root, "KEPT", L"Grün \U0001F600 <&> \t\n");
  const std::string text = xml::SaveDocumentToString(document);
  if (test::HaveStrictParser()) {
    EXPECT_EQ(test::StrictParserComplaint(text), "") << text;
  }
  pugi::xml_document again;
  ASSERT_TRUE(xml::LoadDocumentFromBuffer(again, text, "PMH"));
  const pugi::xml_node loaded = again.first_child();
  EXPECT_EQ(xml::ReadText(loaded.child("CONTROL")), L"bell\uFFFD nul-free \uFFFD[31m");
  EXPECT_EQ(xml::ReadText(loaded.child("SURROGATE")), L"lone \uFFFD half");
  EXPECT_EQ(xml::ReadText(loaded.child("CDATA")), L"in cdata \uFFFD");
  EXPECT_EQ(xml::ReadAttribute(loaded, "note"), L"tab\tform\uFFFD");
  EXPECT_EQ(xml::ReadText(loaded.child("RAW")), L"caf\uFFFD \uFFFD\uFFFD ok");
  EXPECT_EQ(xml::ReadText(loaded.child("KEPT")), L"Grün \U0001F600 <&> \t\n");
}

// Replaced as the file loads, not only as it saves: a record sorted by a name
// read from a damaged file must keep its place through every later save.
TEST(XmlDocuments, LoadingReplacesWhatNoFileCanHold) {
  pugi::xml_document document;
  ASSERT_TRUE(
      xml::LoadDocumentFromBuffer(document, "<PMH a=\"&#2;\"><N>&#1;Cyan</N><B>\xff</B></PMH>", "PMH"));
  const pugi::xml_node root = document.first_child();
  EXPECT_EQ(xml::ReadText(root.child("N")), L"\uFFFDCyan");
  EXPECT_EQ(xml::ReadText(root.child("B")), L"\uFFFD");
  EXPECT_EQ(xml::ReadAttribute(root, "a"), L"\uFFFD");
}

TEST(XmlDocuments, FilesThatCannotBeReadSayWhy) {
  test::TempFolder temp;
  test::WriteBytes(temp.path() / "empty.pmx", "");
  pugi::xml_document document;
  std::wstring reason;
  EXPECT_FALSE(xml::LoadDocument(document, temp.File("empty.pmx"), "PMH", &reason));
  EXPECT_EQ(reason, L"empty file");
  EXPECT_FALSE(xml::LoadDocument(document, temp.File(""), "PMH", &reason));
  EXPECT_EQ(reason, L"is a folder");
  EXPECT_FALSE(xml::LoadDocument(document, L"/dev/zero", "PMH", &reason));
  EXPECT_EQ(reason, L"not a regular file");
}

TEST(XmlDocuments, UtfSixteenFilesAreDetected) {
  test::TempFolder temp;
  std::string utf16 = "\xff\xfe";
  for (const char c : std::string("<PMH><PRINTER>A</PRINTER></PMH>")) {
    utf16 += c;
    utf16 += '\0';
  }
  test::WriteBytes(temp.path() / "wide.pmx", utf16);
  pugi::xml_document document;
  ASSERT_TRUE(xml::LoadDocument(document, temp.File("wide.pmx"), "PMH"));
  EXPECT_EQ(xml::ReadText(document.first_child().child("PRINTER")), L"A");
}

TEST(XmlValues, ReadWithTheSharedRules) {
  pugi::xml_document document;
  ASSERT_TRUE(xml::LoadDocumentFromBuffer(document,
                                          "<R a=\"2.5e1\" b=\"yes\">"
                                          "<T>1</T><F>0</F><E/><Y>true</Y><N>no</N>"
                                          "<I>42</I><J>-7x</J><K>abc</K><H>0x10</H>"
                                          "<D> 1.5</D><G>1,5</G><X>x</X>"
                                          "<C><![CDATA[a<b>&]]></C></R>",
                                          "R"));
  const pugi::xml_node r = document.first_child();
  EXPECT_TRUE(xml::ReadBool(r.child("T")));
  EXPECT_FALSE(xml::ReadBool(r.child("F")));
  EXPECT_FALSE(xml::ReadBool(r.child("E")));
  EXPECT_TRUE(xml::ReadBool(r.child("Y")));
  EXPECT_FALSE(xml::ReadBool(r.child("N")));
  EXPECT_FALSE(xml::ReadBool(r.child("MISSING")));
  EXPECT_EQ(xml::ReadInt(r.child("I")), 42);
  EXPECT_EQ(xml::ReadInt(r.child("J")), -7);
  EXPECT_EQ(xml::ReadInt(r.child("K")), 0);
  EXPECT_EQ(xml::ReadInt(r.child("H")), 16);
  EXPECT_EQ(xml::ReadReal(r.child("D")), 1.5);
  EXPECT_EQ(xml::ReadReal(r.child("G")), 1.0);  // a comma ends the number, whatever the locale
  EXPECT_EQ(xml::ReadReal(r.child("X")), 0.0);
  EXPECT_EQ(xml::ReadText(r.child("C")), L"a<b>&");
  EXPECT_EQ(xml::ReadAttributeReal(r, "a"), 25.0);
  EXPECT_TRUE(xml::ReadAttributeBool(r, "b"));
  EXPECT_EQ(xml::ReadAttribute(r, "missing"), L"");
}

// Numbers that do not fit their type: whole numbers are clamped as pugixml's
// getters clamp them; reals never become infinite or NaN, they read as text
// that is no number reads.
TEST(XmlValues, NumbersThatDoNotFitStayFinite) {
  pugi::xml_document document;
  ASSERT_TRUE(
      xml::LoadDocumentFromBuffer(document,
                                  "<R big=\"1e400\" nan=\"nan\"><I>99999999999999999999</I>"
                                  "<M>-99999999999999999999</M><B>1e400</B><S>-1e999</S><F>inf</F></R>",
                                  "R"));
  const pugi::xml_node r = document.first_child();
  EXPECT_EQ(xml::ReadInt(r.child("I")), INT_MAX);
  EXPECT_EQ(xml::ReadInt(r.child("M")), INT_MIN);
  EXPECT_EQ(xml::ReadInt64(r.child("I")), LLONG_MAX);
  EXPECT_EQ(xml::ReadReal(r.child("B")), 0.0);
  EXPECT_EQ(xml::ReadReal(r.child("S")), 0.0);
  EXPECT_EQ(xml::ReadReal(r.child("F")), 0.0);
  EXPECT_EQ(xml::ReadAttributeReal(r, "big"), 0.0);
  EXPECT_EQ(xml::ReadAttributeReal(r, "nan"), 0.0);
}

TEST(XmlValues, CDataSurvivesItsOwnTerminator) {
  pugi::xml_document document;
  pugi::xml_node root = xml::AppendElement(document, "R");
  xml::AppendCData(root, "V", L"<a href=\"x\">]]> & </a>");
  pugi::xml_document reread;
  ASSERT_TRUE(xml::LoadDocumentFromBuffer(reread, xml::SaveDocumentToString(document), "R"));
  // pugixml splits the value over two CDATA sections; it reads back whole.
  EXPECT_EQ(xml::ReadText(reread.first_child().child("V")), L"<a href=\"x\">]]> & </a>");
}

TEST(ExtractXMLSection, CutsTheEmbeddedPrintMode) {
  test::TempFolder temp;
  test::WriteBytes(temp.path() / "job.txt",
                   "%!PS job header\r\n"
                   "\r\n"
                   "% setup: <?xml version=\"1.0\"?>\r\n"
                   "<PMH version=\"8\">\n"
                   "\n"
                   "\t<PRINTER>Aurora</PRINTER>\r"
                   "</PMH> trailing words\n"
                   "showpage\n");
  std::wstring text;
  ASSERT_TRUE(xml::ExtractXMLSection(text, temp.File("job.txt")));
  EXPECT_EQ(text, L"<?xml version=\"1.0\"?>\n<PMH version=\"8\">\n\t<PRINTER>Aurora</PRINTER>\n</PMH>");
  pugi::xml_document document;
  EXPECT_TRUE(xml::LoadDocumentFromString(document, text, "PMH"));

  test::WriteBytes(temp.path() / "plain.txt", "no document here\n</PMH>\n");
  EXPECT_FALSE(xml::ExtractXMLSection(text, temp.File("plain.txt")));
  EXPECT_TRUE(text.empty());
  EXPECT_FALSE(xml::ExtractXMLSection(text, temp.File("missing.txt")));
}

}  // namespace
}  // namespace tarn
