// The conventions every record shares: how documents load and save, and how
// values read back.

#include "tarn/foundation/xml.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

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
