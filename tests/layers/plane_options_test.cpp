#include "tarn/layers/plane_options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/foundation/xml.h"
#include "tarn/printer/printer_data.h"

namespace tarn {
namespace {

PlaneOptions Plane(const std::wstring& name, bool enabled, const std::wstring& substitute = L"") {
  PlaneOptions plane(name);
  plane.SetEnabled(enabled);
  plane.SetSubstitute(substitute);
  return plane;
}

pugi::xml_node Parse(pugi::xml_document& document, const std::string& text) {
  EXPECT_TRUE(document.load_string(text.c_str())) << text;
  return document.first_child();
}

// The node's children as a document of their own, as files hold them.
std::string Text(const pugi::xml_node& node) {
  pugi::xml_document copy;
  copy.append_copy(node);
  return xml::SaveDocumentToString(copy);
}

// --- one plane ----------------------------------------------------------------

TEST(PlaneOptions, NamingResetsEveryOtherSetting) {
  PlaneOptions plane;
  EXPECT_FALSE(plane.IsEnabled());
  plane.SetFlood(true);
  plane.SetXShift(4);
  plane.SetYShift(-4);
  plane.SetSubstitute(L"Clear");
  plane.SetName(L"White");
  EXPECT_TRUE(plane.HasSameSettings(Plane(L"White", true, L"White")));
  EXPECT_TRUE(plane.IsEnabled());
  EXPECT_FALSE(plane.GetIfFlood());
  EXPECT_EQ(plane.GetXShift(), 0);
  EXPECT_EQ(plane.GetYShift(), 0);

  plane.SetChoke(5);
  plane.SetName(L"White");
  EXPECT_EQ(plane.GetChoke(), 0);
}

TEST(PlaneOptions, FloodAndChokeExcludeEachOther) {
  PlaneOptions plane(L"White");
  plane.SetChoke(3);
  plane.SetFlood(true);
  EXPECT_EQ(plane.GetChoke(), 0);

  plane.SetChoke(3);
  EXPECT_FALSE(plane.GetIfFlood());
  EXPECT_EQ(plane.GetChoke(), 3);

  plane.SetFlood(false);  // clearing the flood keeps the choke
  EXPECT_EQ(plane.GetChoke(), 3);

  plane.SetFlood(true);
  plane.SetChoke(0);  // a zero choke keeps the flood
  EXPECT_TRUE(plane.GetIfFlood());
  plane.SetChoke(-2);  // any non-zero choke, negative too, ends it
  EXPECT_FALSE(plane.GetIfFlood());
}

TEST(PlaneOptions, ProcessPlanesAreNamedExactlyAndNeverSubstituted) {
  struct Case {
    const wchar_t* name;
    bool cmyk;
    bool gray;
  };
  for (const Case& c :
       {Case{L"Cyan", true, false}, Case{L"Magenta", true, false}, Case{L"Yellow", true, false},
        Case{L"Black", true, false}, Case{L"Gray", false, true}, Case{L"gray", false, false},
        Case{L"black", false, false}, Case{L"Cyan ", false, false}, Case{L"White", false, false},
        Case{L"", false, false}}) {
    PlaneOptions plane(c.name);
    plane.SetSubstitute(L"White");
    SCOPED_TRACE(testing::Message() << "plane \"" << plane.GetName() << "\"");
    EXPECT_EQ(plane.IsCMYorK(), c.cmyk);
    EXPECT_EQ(plane.IsGray(), c.gray);
    EXPECT_EQ(plane.IsCMYKorGray(), c.cmyk || c.gray);
    EXPECT_EQ(plane.GetSubstitute(), c.cmyk || c.gray ? L"" : L"White");
  }
  EXPECT_EQ(Plane(L"White", true, L"").GetSubstitute(), L"White");
  EXPECT_EQ(Plane(L"White", false, L"White2").GetSubstitute(), L"White2");
  EXPECT_EQ(Plane(L"gray", true, L"").GetSubstitute(), L"gray");
}

TEST(PlaneOptions, EqualityLooksAtTheNameOnly) {
  PlaneOptions a = Plane(L"White", true, L"White2");
  PlaneOptions b = Plane(L"White", false, L"Clear");
  b.SetChoke(4);
  b.SetXShift(1);
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a.HasSameSettings(b));
  EXPECT_FALSE(a == PlaneOptions(L"white"));
}

TEST(PlaneOptionsXml, WritesEverySettingInOrder) {
  PlaneOptions plane = Plane(L"White & <Co>", false, L"White2");
  plane.SetFlood(true);
  plane.SetXShift(-12);
  plane.SetYShift(7);
  EXPECT_EQ(test::Written(plane),
            "<?xml version=\"1.0\"?>\n"
            "<PlaneOptions>\n"
            "\t<Name>White &amp; &lt;Co&gt;</Name>\n"
            "\t<Enabled>0</Enabled>\n"
            "\t<Flood>1</Flood>\n"
            "\t<Choke>0</Choke>\n"
            "\t<Substitute>White2</Substitute>\n"
            "\t<XShift>-12</XShift>\n"
            "\t<YShift>7</YShift>\n"
            "</PlaneOptions>\n");
}

TEST(PlaneOptionsXml, AbsentOrEmptyElementsKeepTheCurrentSetting) {
  PlaneOptions plane = Plane(L"White", true, L"White2");
  plane.SetChoke(3);
  plane.SetXShift(5);
  pugi::xml_document document;
  plane.ReadXML(Parse(document,
                      "<PlaneOptions><Name/><Enabled></Enabled><Choke></Choke><Substitute/>"
                      "<YShift>-1</YShift><Unknown>9</Unknown></PlaneOptions>"));
  PlaneOptions expected = Plane(L"White", true, L"White2");
  expected.SetChoke(3);
  expected.SetXShift(5);
  expected.SetYShift(-1);
  EXPECT_TRUE(plane.HasSameSettings(expected));

  // A file is read as it stands, even where the setters would not allow it.
  plane.ReadXML(Parse(document, "<PlaneOptions><Flood>1</Flood><Choke>4</Choke></PlaneOptions>"));
  EXPECT_TRUE(plane.GetIfFlood());
  EXPECT_EQ(plane.GetChoke(), 4);
}

// --- the plane list -----------------------------------------------------------

TEST(PlanesOptions, SubstitutesComeFromEnabledNonProcessPlanesOnly) {
  PlanesOptions list;
  list.SetPlaneOptions({Plane(L"Cyan", true, L"White"), Plane(L"White", true, L"White2"),
                        Plane(L"Clear", false, L"Varnish"), Plane(L"Gray", true, L"Clear"),
                        Plane(L"Promoter", true, L""), Plane(L"gray", true, L"")});
  std::vector<std::wstring> out = {L"kept"};
  list.GetSubstitutes(out);
  EXPECT_EQ(out, (std::vector<std::wstring>{L"kept", L"White2", L"Promoter", L"gray"}));

  PlanesOptions process;
  process.SetPlaneOptions(
      {PlaneOptions(L"Cyan"), PlaneOptions(L"Magenta"), PlaneOptions(L"Yellow"), PlaneOptions(L"Black")});
  std::vector<std::wstring> none;
  process.GetSubstitutes(none);
  EXPECT_TRUE(none.empty());
}

TEST(PlanesOptions, FindGivesTheFirstPlaneOfTheName) {
  PlanesOptions list;
  PlaneOptions out = Plane(L"untouched", false, L"x");
  EXPECT_FALSE(list.FindPlaneOptions(L"White", out));
  list.SetPlaneOptions({Plane(L"White", true, L"First"), Plane(L"White", true, L"Second")});
  EXPECT_FALSE(list.FindPlaneOptions(L"white", out));
  EXPECT_TRUE(out.HasSameSettings(Plane(L"untouched", false, L"x")));
  ASSERT_TRUE(list.FindPlaneOptions(L"White", out));
  EXPECT_EQ(out.GetStoredSubstitute(), L"First");
}

TEST(PlanesOptions, EqualityWantsTheSameNamesInTheSameOrder) {
  PlaneOptions choked(L"White");
  choked.SetChoke(5);
  PlanesOptions a;
  PlanesOptions b;
  a.SetPlaneOptions({PlaneOptions(L"Cyan"), PlaneOptions(L"White")});
  b.SetPlaneOptions({PlaneOptions(L"Cyan"), choked});
  EXPECT_TRUE(a == b);

  b.SetPlaneOptions({PlaneOptions(L"White"), PlaneOptions(L"Cyan")});
  EXPECT_FALSE(a == b);
  b.SetPlaneOptions({PlaneOptions(L"Cyan")});
  EXPECT_FALSE(a == b);

  b = a;
  b.SetLevel(128);
  EXPECT_FALSE(a == b);
  b = a;
  b.SetEnabled(true);
  EXPECT_FALSE(a == b);
}

TEST(PlanesOptionsXml, PrintModeFormHasOneChannelPerPlaneAndNothingElse) {
  PlanesOptions list;
  list.SetEnabled(true);
  pugi::xml_document empty;
  list.WritePFXML(empty);
  EXPECT_FALSE(empty.first_child());

  list.SetPlaneOptions({Plane(L"White", true, L"White2")});
  pugi::xml_document document;
  pugi::xml_node root = document.append_child("PMH");
  list.WritePFXML(root);
  EXPECT_EQ(Text(root),
            "<?xml version=\"1.0\"?>\n"
            "<PMH>\n"
            "\t<CHANNEL>White<PlaneOptions>\n"
            "\t\t\t<Name>White</Name>\n"
            "\t\t\t<Enabled>1</Enabled>\n"
            "\t\t\t<Flood>0</Flood>\n"
            "\t\t\t<Choke>0</Choke>\n"
            "\t\t\t<Substitute>White2</Substitute>\n"
            "\t\t\t<XShift>0</XShift>\n"
            "\t\t\t<YShift>0</YShift>\n"
            "\t\t</PlaneOptions>\n"
            "\t</CHANNEL>\n"
            "</PMH>\n");
}

TEST(PlanesOptionsXml, ReadAppendsToThePlanesHeld) {
  PlanesOptions list;
  list.SetEnabled(true);
  PlaneOptions white = Plane(L"White", false, L"White2");
  white.SetChoke(2);
  list.SetPlaneOptions({PlaneOptions(L"Cyan"), white});
  const std::string written = test::Written(list);

  PlanesOptions back;
  back.SetPlaneOptions({PlaneOptions(L"Black")});
  pugi::xml_document document;
  back.ReadXML(Parse(document, written));
  EXPECT_TRUE(back.IsEnabled());
  ASSERT_EQ(back.GetPlaneOptions().size(), 3u);
  EXPECT_EQ(back.GetPlaneOptions()[0].GetName(), L"Black");
  EXPECT_TRUE(back.GetPlaneOptions()[2].HasSameSettings(white));

  // The text reader parses and reads the same way.
  PlanesOptions fromText;
  fromText.ReadXML(std::wstring(written.begin(), written.end()));
  EXPECT_TRUE(fromText == list);
  EXPECT_TRUE(fromText.GetPlaneOptions()[1].HasSameSettings(white));
}

TEST(PlanesOptionsXml, OtherElementsAndBadTextReadNothing) {
  PlanesOptions list;
  pugi::xml_document document;
  EXPECT_TRUE(list.ReadXML(Parse(document, "<PlaneOptions><Name>White</Name></PlaneOptions>")));
  EXPECT_TRUE(list.ReadXML(Parse(document, "<planesoptions><Enabled>1</Enabled></planesoptions>")));
  EXPECT_TRUE(list.ReadXML(std::wstring(L"<PlanesOptions><Enabled>1</Enabled>")));
  EXPECT_TRUE(list.ReadXML(std::wstring()));
  EXPECT_TRUE(list == PlanesOptions());
}

// --- the printer's plane table ------------------------------------------------

TEST(PlaneMapping, PlanesKeepTheirSynonymsInOrderAndOneSubstitute) {
  PlaneMapping mapping;
  EXPECT_FALSE(mapping.FindPlane(L"White"));
  EXPECT_TRUE(mapping.GetSynonyms(L"White").empty());

  mapping.SetSubstitute(L"White", L"White2");
  mapping.AddNewPlane(L"White");  // keeps the substitute already set
  EXPECT_TRUE(mapping.AddSynonym(L"White", L"Opaque White"));
  EXPECT_TRUE(mapping.AddSynonym(L"White", L"Base"));
  mapping.AddNewPlane(L"Clear");
  EXPECT_TRUE(mapping.FindPlane(L"White"));
  EXPECT_FALSE(mapping.FindPlane(L"white"));
  EXPECT_EQ(mapping.GetSynonyms(L"White"), (std::vector<std::wstring>{L"White", L"Opaque White", L"Base"}));
  EXPECT_EQ(mapping.GetSubstitutes().at(L"White"), L"White2");
  EXPECT_EQ(mapping.GetSubstitutes().at(L"Clear"), L"Clear");
  EXPECT_EQ(mapping.GetPlanes(), (std::vector<std::wstring>{L"Clear", L"White"}));

  mapping.SetSubstitute(L"Clear", L"Varnish");
  EXPECT_EQ(mapping.GetSubstitutes().at(L"Clear"), L"Varnish");
  EXPECT_EQ(mapping.GetSubstitutes().size(), 2u);

  PlaneMapping copy = mapping;
  mapping.RemovePlane(L"White");
  EXPECT_FALSE(mapping.FindPlane(L"White"));
  EXPECT_EQ(mapping.GetSubstitutes().count(L"White"), 0u);
  EXPECT_TRUE(copy.FindPlane(L"White"));
}

class PlaneMappingSave : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(printer_.load_file(test::DataFile("valid/printer_planes.pdx").c_str()));
    planes_ = printer_.first_element_by_path("PRINTERLIST/PRINTER/PLANEMAPPING");
    ASSERT_TRUE(planes_);
  }

  pugi::xml_document printer_;
  pugi::xml_node planes_;
};

TEST_F(PlaneMappingSave, MergesIntoThePrinterPlaneList) {
  PlaneMapping mapping;
  mapping.AddNewPlane(L"White");
  mapping.AddSynonym(L"White", L"Opaque White");  // already in the file
  mapping.AddSynonym(L"White", L"Base White");
  mapping.AddSynonym(L"White", L"Base White");  // twice in the table
  mapping.SetSubstitute(L"White", L"White2");
  mapping.AddSynonym(L"Clear", L"Gloss");  // no substitute: the plane stands for itself
  mapping.AddNewPlane(L"Primer");
  mapping.AddSynonym(L"Primer", L"Primer");
  mapping.AddSynonym(L"Primer", L"Promoter");
  ASSERT_TRUE(mapping.SaveXML(planes_));

  const std::string expected =
      "<?xml version=\"1.0\"?>\n"
      "<PLANEMAPPING>\n"
      "\t<Plane name=\"White\">\n"
      "\t\t<Synonym>White</Synonym>\n"
      "\t\t<Synonym>Opaque White</Synonym>\n"
      "\t\t<Substitute>White2</Substitute>\n"
      "\t\t<Synonym>Base White</Synonym>\n"
      "\t</Plane>\n"
      "\t<Plane name=\"Clear\">\n"
      "\t\t<Synonym>Clear</Synonym>\n"
      "\t\t<Synonym>Gloss</Synonym>\n"
      "\t\t<Substitute>Clear</Substitute>\n"
      "\t</Plane>\n"
      "\t<Plane name=\"Primer\">\n"
      "\t\t<Synonym>Primer</Synonym>\n"
      "\t\t<Synonym>Promoter</Synonym>\n"
      "\t\t<Substitute>Primer</Substitute>\n"
      "\t</Plane>\n"
      "</PLANEMAPPING>\n";
  EXPECT_EQ(Text(planes_), expected);

  // Saving again changes nothing, and the printer definition still loads.
  ASSERT_TRUE(mapping.SaveXML(planes_));
  EXPECT_EQ(Text(planes_), expected);
  CPrinterData printer;
  EXPECT_TRUE(printer.ReadXML(printer_.first_element_by_path("PRINTERLIST/PRINTER")));
  EXPECT_NE(printer.GetColorModel(L"CMYKW"), nullptr);
}

TEST_F(PlaneMappingSave, ATableReadFromThePrinterSavesBackUnchanged) {
  PlaneMapping mapping;
  ASSERT_TRUE(mapping.ReadXML(planes_));
  EXPECT_EQ(mapping.GetPlanes(), (std::vector<std::wstring>{L"Clear", L"Varnish", L"White"}));
  EXPECT_EQ(mapping.GetSynonyms(L"White"), (std::vector<std::wstring>{L"White", L"Opaque White"}));
  EXPECT_EQ(mapping.GetSubstitutes().at(L"Clear"), L"Clear");  // the file gives none

  mapping.SaveXML(planes_);
  PlaneMapping again;
  again.ReadXML(planes_);
  EXPECT_TRUE(again == mapping);
  const std::string saved = Text(planes_);
  again.SaveXML(planes_);
  EXPECT_EQ(Text(planes_), saved);

  EXPECT_FALSE(again.ReadXML(pugi::xml_node()));
  EXPECT_TRUE(again.GetPlanes().empty());
}

TEST_F(PlaneMappingSave, AnEmptyTableLeavesThePlanesAlone) {
  const std::string before = Text(planes_);
  PlaneMapping mapping;
  mapping.SetSubstitute(L"White", L"White2");  // a substitute alone adds no plane
  ASSERT_TRUE(mapping.SaveXML(planes_));
  EXPECT_EQ(Text(planes_), before);
  EXPECT_FALSE(mapping.SaveXML(pugi::xml_node()));
}

}  // namespace
}  // namespace tarn
