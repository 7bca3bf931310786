#include "tarn/layers/layer.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "printmode/samples.h"
#include "support/test_support.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/xml.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

// The printer fixture's colour models: CMYK, CMYKW (white and clear, not
// keyword planes), CMYKOG (orange and green keyword planes) and WW2 (White,
// White2, Promoter).
class LayerTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(printer_.LoadFile(test::DataFile("valid/printer_planes.pdx").wstring()));
  }

  static CPrintModeData PrintMode(const std::wstring& name, const std::wstring& colorMode) {
    CPrintModeData mode;
    mode.SetName(name);
    mode.SetPrinterX(L"Lumen White 64");
    mode.GetPrinterOptions()->AddOption(L"Color Plane", colorMode);
    return mode;
  }

  static std::vector<std::wstring> Names(const Layer& layer) {
    std::vector<std::wstring> names;
    for (const PlaneOptions& plane : layer.GetPlanes()) {
      names.push_back(plane.GetName());
    }
    return names;
  }

  static PlaneOptions Plane(const std::wstring& name, bool enabled, const std::wstring& substitute = L"") {
    PlaneOptions plane(name);
    plane.SetEnabled(enabled);
    plane.SetSubstitute(substitute);
    return plane;
  }

  static Layer WithPlanes(const std::vector<PlaneOptions>& planes) {
    Layer layer;
    layer.SetPlaneOptions(planes);
    return layer;
  }

  CPrinterData printer_;
};

// --- a new layer and its copies -------------------------------------------------

TEST_F(LayerTest, NewLayerHasTheDocumentedDefaults) {
  SetTranslator([](const std::wstring& text) { return text == L"(*v*)Color Layer" ? L"Farbschicht" : text; });
  const Layer translated;
  SetTranslator({});
  EXPECT_EQ(translated.GetLayerName(), L"Farbschicht");

  const Layer layer;
  EXPECT_EQ(layer.GetLayerName(), L"(*v*)Color Layer");
  EXPECT_EQ(layer.GetRepeats(), 1u);
  EXPECT_EQ(layer.GetMirror(), 0u);
  EXPECT_EQ(layer.GetFloodLevel(), 255);
  EXPECT_EQ(layer.GetPage(), -1);
  EXPECT_EQ(layer.GetScaleX(), 1.0);
  EXPECT_EQ(layer.GetScaleY(), 1.0);
  EXPECT_TRUE(layer.IsPlanesAllKeyWords());
  EXPECT_TRUE(layer.GetPrintModeName().empty());
  ASSERT_NE(layer.GetPrintModePointer(), nullptr);
  EXPECT_TRUE(*layer.GetPrintModePointer() == CPrintModeData());
  EXPECT_EQ(Names(layer), (std::vector<std::wstring>{L"Cyan", L"Magenta", L"Yellow", L"Black"}));
  for (const PlaneOptions& plane : layer.GetPlanes()) {
    EXPECT_TRUE(plane.HasSameSettings(PlaneOptions(plane.GetName())));
  }
}

TEST_F(LayerTest, CopiesOwnTheirOwnPrintMode) {
  Layer original;
  original.SetLayerName(L"Original");
  original.GetPrintModePointer()->GetMaxInkEx()->SetValueA(150.0);

  Layer copy(original);
  ASSERT_NE(copy.GetPrintModePointer(), original.GetPrintModePointer());
  EXPECT_TRUE(copy == original);
  copy.GetPrintModePointer()->GetMaxInkEx()->SetValueA(90.0);
  EXPECT_FALSE(copy == original);
  EXPECT_EQ(original.GetPrintModePointer()->GetMaxInkEx()->GetValueA(), 150.0);

  Layer assigned;
  CPrintModeData* const before = assigned.GetPrintModePointer();
  assigned = original;
  EXPECT_NE(assigned.GetPrintModePointer(), original.GetPrintModePointer());
  EXPECT_NE(assigned.GetPrintModePointer(), before);
  EXPECT_TRUE(assigned == original);

  const Layer& self = assigned;
  assigned = self;
  EXPECT_TRUE(assigned == original);

  CPrintModeData out;
  ASSERT_TRUE(original.GetPrintMode(out));
  EXPECT_EQ(out.GetMaxInkEx()->GetValueA(), 150.0);

  // Copies made through a vector (reallocation moves) stay whole.
  std::vector<Layer> layers(3, original);
  layers.push_back(copy);
  EXPECT_TRUE(layers.front() == original);
  EXPECT_TRUE(layers.back() == copy);

  Layer moved(std::move(copy));
  EXPECT_FALSE(copy.GetPrintMode(out));  // NOLINT(bugprone-use-after-move): a moved-from layer holds none
  EXPECT_EQ(copy.GetPrinterL(), L"");
  EXPECT_FALSE(copy == moved);
}

// --- SetPrintMode -----------------------------------------------------------------

TEST_F(LayerTest, SetPrintModeRefusesWithoutAPrinterOrItsColourModel) {
  Layer layer = WithPlanes({Plane(L"Cyan", false, L"x")});
  const Layer unchanged = layer;
  EXPECT_FALSE(layer.SetPrintMode(PrintMode(L"A.pmx", L"CMYKW"), nullptr, nullptr));
  EXPECT_FALSE(layer.SetPrintMode(PrintMode(L"A.pmx", L"CMYKWX"), &printer_, nullptr));
  EXPECT_FALSE(layer.SetPrintMode(PrintMode(L"A.pmx", L""), &printer_, nullptr));
  EXPECT_TRUE(layer == unchanged);
  EXPECT_TRUE(layer.GetPlanes()[0].HasSameSettings(unchanged.GetPlanes()[0]));
  EXPECT_TRUE(layer.GetColorModel().empty());
}

TEST_F(LayerTest, SetPrintModeFollowsTheColourModel) {
  Layer layer;
  CPrintModeData mode = PrintMode(L"White 720.pmx", L"CMYKW");
  ASSERT_TRUE(layer.SetPrintMode(mode, &printer_, nullptr));
  EXPECT_NE(layer.GetPrintModePointer(), &mode);
  EXPECT_TRUE(*layer.GetPrintModePointer() == mode);
  EXPECT_EQ(layer.GetPrintModeName(), L"White 720.pmx");
  EXPECT_EQ(layer.GetColorModel(), L"CMYKW");
  EXPECT_EQ(layer.GetBaseModel(), L"CMYK");
  EXPECT_EQ(layer.GetPrinterL(), L"Lumen White 64");
  EXPECT_EQ(Names(layer),
            (std::vector<std::wstring>{L"Cyan", L"Magenta", L"Yellow", L"Black", L"White", L"Clear"}));
  EXPECT_FALSE(layer.IsPlanesAllKeyWords());  // white and clear are not keyword planes

  // The same colour model again keeps the planes as the user set them.
  std::vector<PlaneOptions> planes = layer.GetPlaneOptions();
  planes[4].SetChoke(3);
  planes[4].SetXShift(2);
  planes[5].SetFlood(true);
  layer.SetPlaneOptions(planes);
  mode.GetMaxInkEx()->SetValueA(120.0);
  mode.SetName(L"White 1440.pmx");
  ASSERT_TRUE(layer.SetPrintMode(mode, &printer_, nullptr));
  EXPECT_EQ(layer.GetPrintModeName(), L"White 1440.pmx");
  EXPECT_EQ(layer.GetPrintModePointer()->GetMaxInkEx()->GetValueA(), 120.0);
  for (size_t i = 0; i < planes.size(); ++i) {
    EXPECT_TRUE(layer.GetPlanes()[i].HasSameSettings(planes[i])) << i;
  }

  // Another model rebuilds them; without a previous layer nothing is carried over.
  ASSERT_TRUE(layer.SetPrintMode(PrintMode(L"Six.pmx", L"CMYKOG"), &printer_, nullptr));
  EXPECT_EQ(Names(layer),
            (std::vector<std::wstring>{L"Cyan", L"Magenta", L"Yellow", L"Black", L"Orange", L"Green"}));
  EXPECT_TRUE(layer.IsPlanesAllKeyWords());
  ASSERT_TRUE(layer.SetPrintMode(PrintMode(L"W.pmx", L"CMYKW"), &printer_, nullptr));
  EXPECT_EQ(layer.GetPlanes()[4].GetChoke(), 0);
}

TEST_F(LayerTest, SetPrintModeTakesLikeNamedPlanesFromThePreviousLayer) {
  PlaneOptions white = Plane(L"White", false, L"White2");
  white.SetChoke(4);
  PlaneOptions cyan = Plane(L"Cyan", false);
  cyan.SetYShift(-6);
  Layer previous = WithPlanes({white, Plane(L"Varnish", true), cyan});

  Layer layer;
  ASSERT_TRUE(layer.SetPrintMode(PrintMode(L"W.pmx", L"CMYKW"), &printer_, &previous));
  EXPECT_TRUE(layer.GetPlanes()[0].HasSameSettings(cyan));
  EXPECT_TRUE(layer.GetPlanes()[1].HasSameSettings(PlaneOptions(L"Magenta")));
  EXPECT_TRUE(layer.GetPlanes()[4].HasSameSettings(white));
  EXPECT_TRUE(layer.GetPlanes()[5].HasSameSettings(PlaneOptions(L"Clear")));

  // The layer itself as the previous one: its own settings carry over.
  ASSERT_TRUE(layer.SetPrintMode(PrintMode(L"WW2.pmx", L"WW2"), &printer_, &layer));
  EXPECT_EQ(Names(layer), (std::vector<std::wstring>{L"White", L"White2", L"Promoter"}));
  EXPECT_TRUE(layer.GetPlanes()[0].HasSameSettings(white));
  EXPECT_EQ(layer.GetBaseModel(), L"White");

  // Handing the layer its own print mode keeps it.
  CPrintModeData* own = layer.GetPrintModePointer();
  ASSERT_TRUE(layer.SetPrintMode(*own, &printer_, nullptr));
  EXPECT_EQ(layer.GetPrintModePointer(), own);
}

// --- planes -----------------------------------------------------------------------

TEST_F(LayerTest, ChannelCursorStopsAtTheEndAndLeavesTheOutRecord) {
  Layer layer = WithPlanes({Plane(L"White", true), Plane(L"Clear", false)});
  PlaneOptions out;
  ASSERT_TRUE(layer.GetFirstChannel(out));
  EXPECT_EQ(out.GetName(), L"White");
  ASSERT_TRUE(layer.GetNextChannel(out));
  EXPECT_EQ(out.GetName(), L"Clear");
  out = Plane(L"untouched", false, L"u");
  EXPECT_FALSE(layer.GetNextChannel(out));
  EXPECT_FALSE(layer.GetNextChannel(out));
  EXPECT_TRUE(out.HasSameSettings(Plane(L"untouched", false, L"u")));
  ASSERT_TRUE(layer.GetFirstChannel(out));  // a new walk starts again
  EXPECT_EQ(out.GetName(), L"White");
  EXPECT_EQ(layer.GetNumberOfChannels(), 2u);

  Layer empty = WithPlanes({});
  out = Plane(L"untouched", false, L"u");
  EXPECT_FALSE(empty.GetFirstChannel(out));
  EXPECT_FALSE(empty.GetNextChannel(out));
  EXPECT_TRUE(out.HasSameSettings(Plane(L"untouched", false, L"u")));
}

TEST_F(LayerTest, ChannelTestsLookAtTheEnabledFlagAsEachRequires) {
  const Layer disabledWhite = WithPlanes(
      {Plane(L"White", false), Plane(L"Clear", false), Plane(L"Promoter", false), Plane(L"Cyan", false)});
  EXPECT_TRUE(disabledWhite.HasWhiteChannel());
  EXPECT_TRUE(disabledWhite.HasClearChannel());
  EXPECT_TRUE(disabledWhite.HasPrimeChannel());
  EXPECT_FALSE(disabledWhite.HasColorChannels());
  EXPECT_FALSE(disabledWhite.HasOnlyWhiteChannelsEnabled());  // nothing is enabled
  EXPECT_FALSE(disabledWhite.IsPlaneEnable(L"White"));

  const Layer white2 = WithPlanes({Plane(L"White2", true), Plane(L"Cyan", false), Plane(L"WhiteHD", true)});
  EXPECT_FALSE(white2.HasWhiteChannel());
  EXPECT_TRUE(white2.HasOnlyWhiteChannelsEnabled());
  EXPECT_TRUE(white2.IsPlaneEnable(L"White2"));
  EXPECT_FALSE(white2.IsPlaneEnable(L"white2"));
  EXPECT_FALSE(white2.IsPlaneEnable(L"Magenta"));

  EXPECT_FALSE(WithPlanes({Plane(L"White", true), Plane(L"Clear", true)}).HasOnlyWhiteChannelsEnabled());
  EXPECT_FALSE(WithPlanes({Plane(L"white", true)}).HasOnlyWhiteChannelsEnabled());
  EXPECT_FALSE(WithPlanes({Plane(L"clear", true), Plane(L"Primer", true)}).HasClearChannel());
  EXPECT_FALSE(WithPlanes({Plane(L"Primer", true)}).HasPrimeChannel());

  for (const wchar_t* name : {L"Cyan", L"Magenta", L"Yellow", L"Black", L"Red", L"Green", L"Blue"}) {
    EXPECT_TRUE(WithPlanes({Plane(L"White", true), Plane(name, true)}).HasColorChannels()) << name;
  }
  for (const wchar_t* name : {L"Gray", L"Orange", L"blue", L"White"}) {
    EXPECT_FALSE(WithPlanes({Plane(name, true)}).HasColorChannels()) << name;
  }
}

TEST_F(LayerTest, SeparationChannelsComeFromThePrintMode) {
  Layer layer;
  EXPECT_FALSE(layer.HasSeparationChannels());
  CPrintModeData mode = PrintMode(L"Sep.pmx", L"CMYKOG");
  test::FillCurveSections(mode);  // a Cyan plane separated with an Orange curve
  mode.GetPrinterOptions()->SetOptionValue(L"Color Plane", L"CMYKOG");
  ASSERT_TRUE(layer.SetPrintMode(mode, &printer_, nullptr));
  EXPECT_TRUE(layer.HasSeparationChannels());
}

TEST_F(LayerTest, SubstitutesSkipProcessPlanes) {
  Layer layer = WithPlanes({Plane(L"Cyan", true, L"White"), Plane(L"White2", false, L"White"),
                            Plane(L"White", true, L"White2"), Plane(L"Clear", false, L""),
                            Plane(L"Gray", true, L"Clear")});
  std::vector<std::wstring> list = {L"kept"};
  layer.GetSubstitutes(list);  // disabled planes count here
  EXPECT_EQ(list, (std::vector<std::wstring>{L"kept", L"White", L"White2", L"Clear"}));

  std::map<std::wstring, std::wstring> map;
  layer.GetSubstituteMap(map);
  EXPECT_EQ(map, (std::map<std::wstring, std::wstring>{
                     {L"White2", L"White"}, {L"White", L"White2"}, {L"Clear", L"Clear"}}));

  EXPECT_EQ(layer.GetWhiteSubstitute(), L"White");  // White2 comes first
  layer.SetSynonym(L"White2", L"WhiteHD");
  layer.SetSynonym(L"Nowhere", L"x");
  EXPECT_EQ(layer.GetWhiteSubstitute(), L"WhiteHD");
  EXPECT_FALSE(layer.GetPlanes()[1].IsEnabled());  // only the substitute changed
  EXPECT_EQ(WithPlanes({Plane(L"Cyan", true), Plane(L"white", true, L"x")}).GetWhiteSubstitute(), L"");
  EXPECT_EQ(WithPlanes({Plane(L"White", true, L"White2")}).GetWhiteSubstitute(), L"White2");
}

// --- XML --------------------------------------------------------------------------

class LayerXml : public LayerTest {
 protected:
  // Every field changed, a print mode with changed sections, and planes with
  // floods, chokes, shifts and substitutes.
  Layer EveryField() {
    CPrintModeData mode;
    mode.SetName(L"Every Section.pmx");
    test::FillCurveSections(mode);
    test::FillScreenSections(mode);
    test::FillOptionSections(mode);
    mode.GetPrinterOptions()->SetOptionValue(L"Color Plane", L"CMYKW");
    mode.GetSeparations()->SetColorMode(L"CMYKW");

    Layer layer;
    EXPECT_TRUE(layer.SetPrintMode(mode, &printer_, nullptr));
    layer.SetLayerName(L"Underbase & <white>");
    layer.SetRepeats(3);
    layer.SetMirror(1);
    layer.SetFloodLevel(200);
    layer.SetPage(2);
    layer.SetExcludeFromPreview(true);
    layer.SetLayerDelayDlg(true);
    layer.SetLayerDelay(15);
    layer.SetTogglePort(true);
    layer.SetScaleX(0.1);
    layer.SetScaleY(1.0 / 3.0);
    CBmpProcessOptions& options = layer.GetBitmapOptions();
    options.SetWhiteUsage(WHITE_USAGE_UNDERBASE);
    options.SetColorBoost(1.25);
    options.SetWhiteMaxInk(87.5);
    options.GetWhiteMask().SetStrength(60);
    options.GetWhiteCurve().SetValue(0.5, 0.375);

    std::vector<PlaneOptions> planes = layer.GetPlaneOptions();
    planes[0].SetEnabled(false);
    planes[3].SetXShift(-4);
    planes[4].SetChoke(2);
    planes[4].SetYShift(7);
    planes[4].SetSubstitute(L"White2");
    planes[5].SetFlood(true);
    planes[5].SetSubstitute(L"");
    layer.SetPlaneOptions(planes);
    return layer;
  }

  Layer ReadBack(const std::string& text, CPrinterData* printer, Layer layer = Layer()) {
    pugi::xml_document document;
    EXPECT_TRUE(document.load_string(text.c_str())) << text;
    EXPECT_TRUE(layer.ReadXML(document.first_child(), printer));
    return layer;
  }

  static void ExpectSamePlanes(const Layer& a, const Layer& b) {
    ASSERT_EQ(a.GetPlanes().size(), b.GetPlanes().size());
    for (size_t i = 0; i < a.GetPlanes().size(); ++i) {
      EXPECT_TRUE(a.GetPlanes()[i].HasSameSettings(b.GetPlanes()[i])) << i;
    }
  }
};

TEST_F(LayerXml, WritesTheElementsInTheirOrder) {
  Layer layer = WithPlanes({Plane(L"White", true), Plane(L"Clear", true)});
  const std::string text = test::Written(layer);
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string(text.c_str()));
  std::vector<std::string> names;
  for (const pugi::xml_node& child : document.first_child().children()) {
    names.push_back(child.name());
  }
  EXPECT_EQ(names, (std::vector<std::string>{"LayerName", "PrintMode", "PMH", "ColorMode", "BaseModel",
                                             "Repeats", "Mirror", "FloodLevel", "Page", "ExcludeFromPreview",
                                             "LayerDelayDlg", "LayerDelay", "TogglePort", "ScaleX", "ScaleY",
                                             "BitmapProcessingOptions", "PlaneOptions", "PlaneOptions"}));
}

TEST_F(LayerXml, EveryFieldSurvivesAndWritesTheSameBytesAgain) {
  const Layer layer = EveryField();
  ASSERT_FALSE(layer == Layer());
  const std::string first = test::Written(layer);

  const Layer back = ReadBack(first, &printer_);
  EXPECT_TRUE(back == layer);
  ExpectSamePlanes(back, layer);
  EXPECT_EQ(back.GetPrintModePointer()->GetName(), L"Every Section.pmx");
  EXPECT_FALSE(back.IsPlanesAllKeyWords());
  EXPECT_EQ(test::Written(back), first);

  // Read without a printer, over a layer that held other planes.
  const Layer other = ReadBack(first, nullptr, WithPlanes({Plane(L"Varnish", true)}));
  EXPECT_TRUE(other == layer);
  ExpectSamePlanes(other, layer);
}

TEST_F(LayerXml, DecimalCommaLocaleWritesAndReadsTheSameBytes) {
  const std::string in_c = test::Written(EveryField());
  test::DecimalCommaLocale locale;
  if (!locale.active()) {
    GTEST_SKIP() << "no decimal-comma locale on this machine";
  }
  const Layer layer = EveryField();
  EXPECT_EQ(test::Written(layer), in_c);
  const Layer back = ReadBack(in_c, &printer_);
  EXPECT_TRUE(back == layer);
  EXPECT_EQ(test::Written(back), in_c);
}

TEST_F(LayerXml, ReadingReplacesThePrintModeButKeepsWhatTheFileLacks) {
  Layer layer = EveryField();
  CPrintModeData* const before = layer.GetPrintModePointer();
  layer = ReadBack(
      "<Layer><LayerName/><PrintMode>Plain.pmx</PrintMode><Repeats></Repeats><ScaleX>2.5</ScaleX>"
      "<FloodLevel>300</FloodLevel><Unknown>1</Unknown></Layer>",
      nullptr, layer);
  EXPECT_NE(layer.GetPrintModePointer(), before);
  EXPECT_TRUE(*layer.GetPrintModePointer() == CPrintModeData());
  EXPECT_EQ(layer.GetPrintModePointer()->GetName(), L"Plain.pmx");
  EXPECT_EQ(layer.GetLayerName(), L"Underbase & <white>");
  EXPECT_EQ(layer.GetRepeats(), 3u);
  EXPECT_EQ(layer.GetScaleX(), 2.5);
  EXPECT_EQ(layer.GetFloodLevel(), 255);
  EXPECT_EQ(layer.GetNumberOfChannels(), 6u);  // no printer: the planes stay

  // Another element, even one differing only in case, reads nothing.
  const Layer unchanged = layer;
  layer = ReadBack("<layer><LayerName>x</LayerName><PrintMode>y.pmx</PrintMode></layer>", &printer_, layer);
  EXPECT_TRUE(layer == unchanged);
  EXPECT_EQ(layer.GetLayerName(), L"Underbase & <white>");
}

TEST_F(LayerXml, OlderChannelsFormGivesThePlanes) {
  const Layer layer = ReadBack(
      "<Layer><Channels>"
      "<CHANNEL>White</CHANNEL>"
      "<CHANNEL enabled=\"0\"> Clear </CHANNEL>"
      "<CHANNEL name=\"Promoter\"/>"
      "<CHANNEL/>"
      "<CHANNEL>White2<PlaneOptions><Choke>3</Choke><Substitute>White</Substitute></PlaneOptions></CHANNEL>"
      "</Channels></Layer>",
      &printer_);
  PlaneOptions white2(L"White2");
  white2.SetChoke(3);
  white2.SetSubstitute(L"White");
  EXPECT_EQ(Names(layer), (std::vector<std::wstring>{L"White", L"Clear", L"Promoter", L"White2"}));
  EXPECT_TRUE(layer.GetPlanes()[0].HasSameSettings(PlaneOptions(L"White")));
  EXPECT_FALSE(layer.GetPlanes()[1].IsEnabled());
  EXPECT_TRUE(layer.GetPlanes()[3].HasSameSettings(white2));

  // What the print mode form writes reads back through the older element too.
  PlanesOptions list;
  list.SetPlaneOptions(layer.GetPlaneOptions());
  pugi::xml_document document;
  pugi::xml_node channels = document.append_child("Layer").append_child("Channels");
  list.WritePFXML(channels);
  Layer again = WithPlanes({});
  again.ReadXML(document.first_child(), nullptr);
  ExpectSamePlanes(again, layer);

  // PlaneOptions children win over the older form.
  const Layer both = ReadBack(
      "<Layer><PlaneOptions><Name>Clear</Name></PlaneOptions><Channels><CHANNEL>White</CHANNEL></Channels>"
      "</Layer>",
      &printer_);
  EXPECT_EQ(Names(both), (std::vector<std::wstring>{L"Clear"}));
}

TEST_F(LayerXml, WithoutPlanesInTheFileThePrinterGivesThem) {
  const std::string text =
      "<Layer><PrintMode>W.pmx</PrintMode><PMH><PRINTEROPTIONS><OPTION><PROC>Color Plane</PROC>"
      "<PARAM>WW2</PARAM></OPTION></PRINTEROPTIONS></PMH></Layer>";
  const Layer layer = ReadBack(text, &printer_);
  EXPECT_EQ(Names(layer), (std::vector<std::wstring>{L"White", L"White2", L"Promoter"}));
  EXPECT_FALSE(layer.IsPlanesAllKeyWords());

  // An empty older element counts as no planes.
  EXPECT_EQ(Names(ReadBack("<Layer><PrintMode>W.pmx</PrintMode><PMH><PRINTEROPTIONS><OPTION><PROC>Color Plane"
                           "</PROC><PARAM>WW2</PARAM></OPTION></PRINTEROPTIONS></PMH><Channels/></Layer>",
                           &printer_)),
            (std::vector<std::wstring>{L"White", L"White2", L"Promoter"}));

  // Without the printer, or when it lacks the model, the planes held stay.
  EXPECT_EQ(Names(ReadBack(text, nullptr)),
            (std::vector<std::wstring>{L"Cyan", L"Magenta", L"Yellow", L"Black"}));
  const Layer unknown = ReadBack("<Layer><PrintMode>X.pmx</PrintMode></Layer>", &printer_);
  EXPECT_EQ(unknown.GetNumberOfChannels(), 4u);
}

}  // namespace
}  // namespace tarn
