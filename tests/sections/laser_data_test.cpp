#include "tarn/sections/laser_data.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

CPMLaserData RoundTrip(const CPMLaserData& laser) {
  pugi::xml_document document;
  EXPECT_TRUE(xml::LoadDocumentFromBuffer(document, test::Written(laser), "LASERDATA"));
  CPMLaserData copy;
  copy.GetPens().AddColor(CColor::FromRGB(1, 2, 3));  // reading must start from the defaults
  EXPECT_TRUE(copy.ReadXML(document.first_child()));
  return copy;
}

std::vector<std::uint32_t> Indexes(const CVectorPenList& pens) {
  std::vector<std::uint32_t> out;
  for (size_t i = 0; i < pens.Count(); ++i) {
    out.push_back(pens.GetPen(i)->GetIndex());
  }
  return out;
}

TEST(LaserColor, ScreenColourAndNameFollowTheColourSpace) {
  struct Case {
    CColor color;
    std::uint32_t screen;
    std::wstring name;
  };
  const std::vector<Case> cases = {
      {CColor::FromRGB(0, 128, 255), 0xFF8000u, L"RGB: (0,128,255)"},
      {CColor::FromCMYK(0, 0, 0, 100), 0u, L"CMYK: (0,0,0,100)"},
      {CColor::FromCMYK(100, 0, 0, 0), 0xFFFF00u, L"CMYK: (100,0,0,0)"},
      // 255 - 127.5 truncates to 127, less k' = truncate(0.2 * 255) = 51; blue clamps at 0.
      {CColor::FromCMYK(50, 0, 100, 20), 76u | (204u << 8) | (0u << 16), L"CMYK: (50,0,100,20)"},
      {CColor::FromCMYK(50, 10, 0, 0), 127u | (229u << 8) | (255u << 16), L"CMYK: (50,10,0,0)"},
      {CColor::FromName(L"Cut <outer>"), 0u, L"Cut <outer>"},
      {CColor(7, 0x123456u), 0u, L""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.color.GetScreenColor(), c.screen) << c.color.FormatColorName();
    EXPECT_EQ(c.color.FormatColorName(), c.name);
  }
}

TEST(LaserColor, ComponentsArePackedFirstInTheLowestByte) {
  CColor color = CColor::FromCMYK(1, 2, 3, 4);
  EXPECT_EQ(color.GetFullColor(), 0x04030201u);
  color.SetM(0x1FF);  // only the low byte is kept
  EXPECT_EQ(color.GetFullColor(), 0x0403FF01u);
  EXPECT_EQ(color.GetK(), 4);
  EXPECT_EQ(color.GetB(), color.GetY());
}

TEST(LaserColor, XmlKeepsSpaceNameAndEveryBitOfTheValue) {
  pugi::xml_document document;
  CColor(CColor::kNamed, 0xFF000001u, L"a]]>b & <c>").WriteXML(document);
  EXPECT_EQ(xml::SaveDocumentToString(document),
            "<?xml version=\"1.0\"?>\n"
            "<VPCOLOR cspace=\"2\" cname=\"a]]>b &amp; &lt;c>\"><![CDATA[-16777215]]></VPCOLOR>\n");

  for (const CColor& color : {CColor::FromRGB(0, 128, 255), CColor(CColor::kCMYK, 0xFFFFFFFFu),
                              CColor(CColor::kNamed, 5, L"Engrave")}) {
    pugi::xml_document out;
    color.WriteXML(out);
    CColor back(CColor::kNamed, 99, L"stale");
    ASSERT_TRUE(back.ReadXML(out.first_child()));
    EXPECT_TRUE(back == color) << color.FormatColorName();
  }

  // "%u" text from other writers reads to the same bits; junk reads as 0.
  for (const auto& [text, value] :
       std::vector<std::pair<std::string, std::uint32_t>>{{"<VPCOLOR>4294967295</VPCOLOR>", 0xFFFFFFFFu},
                                                          {"<VPCOLOR><![CDATA[255]]></VPCOLOR>", 255u},
                                                          {"<VPCOLOR>junk</VPCOLOR>", 0u},
                                                          {"<VPCOLOR/>", 0u}}) {
    pugi::xml_document in;
    ASSERT_TRUE(in.load_string(text.c_str()));
    CColor color = CColor::FromRGB(9, 9, 9);
    ASSERT_TRUE(color.ReadXML(in.first_child())) << text;
    EXPECT_EQ(color.GetFullColor(), value) << text;
    EXPECT_EQ(color.GetColorSpace(), CColor::kRGB) << text;
  }
}

TEST(LaserPens, SameColourIsRefusedByValueOrByName) {
  CVectorPenList pens;
  ASSERT_TRUE(pens.AddColor(CColor::FromCMYK(0, 100, 0, 0)));
  ASSERT_TRUE(pens.AddPen(true, 0.8, 20, 500, CColor::FromName(L"Cut")));
  const CVectorPenList before = pens;

  EXPECT_FALSE(pens.AddPen(false, 0.1, 1, 1, CColor::FromCMYK(0, 100, 0, 0)));
  EXPECT_FALSE(pens.AddColor(CColor::FromName(L"Cut")));
  EXPECT_FALSE(pens.InsertPen(0, CLaserPen(true, 1, 1, 1, CColor::FromName(L"Cut"))));
  EXPECT_TRUE(pens == before);

  // A named colour is known by its name only, whatever value it packs.
  EXPECT_TRUE(pens.AddColor(CColor(CColor::kNamed, CColor::FromCMYK(0, 100, 0, 0).GetFullColor(), L"Score")));
  EXPECT_TRUE(pens.AddColor(CColor(CColor::kRGB, 0)));   // the named pens' value 0 does not count
  EXPECT_TRUE(pens.AddColor(CColor::FromName(L"cut")));  // names compare exactly
  EXPECT_EQ(pens.Count(), 5u);
  EXPECT_EQ(pens.GetPenByName(L""), nullptr);
  EXPECT_EQ(pens.GetPenByName(L"Score"), pens.GetPen(2));
  EXPECT_EQ(pens.GetPenByColor(0), pens.GetPen(3));
}

TEST(LaserPens, EveryChangeRenumbersFromOne) {
  CVectorPenList pens;
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(pens.AddColor(CColor::FromRGB(i, 0, 0)));
  }
  EXPECT_EQ(Indexes(pens), (std::vector<std::uint32_t>{1, 2, 3}));

  ASSERT_TRUE(pens.RemovePenByColor(CColor::FromRGB(0, 0, 0).GetFullColor()));
  EXPECT_EQ(Indexes(pens), (std::vector<std::uint32_t>{1, 2}));
  EXPECT_EQ(pens.GetPen(0)->GetColor().GetR(), 1);

  ASSERT_TRUE(pens.InsertPen(0, CLaserPen(true, 0.5, 50, 300, CColor::FromName(L"First"))));
  ASSERT_TRUE(pens.InsertPen(99, CLaserPen(true, 0.5, 50, 300, CColor::FromName(L"Last"))));
  EXPECT_EQ(Indexes(pens), (std::vector<std::uint32_t>{1, 2, 3, 4}));
  EXPECT_EQ(pens.GetPen(0)->GetColor().GetName(), L"First");
  EXPECT_EQ(pens.GetPen(3)->GetColor().GetName(), L"Last");

  ASSERT_TRUE(pens.RemovePenByName(L"First"));
  EXPECT_FALSE(pens.RemovePenByName(L"First"));
  EXPECT_FALSE(pens.RemovePenByColor(0x777777u));
  EXPECT_EQ(Indexes(pens), (std::vector<std::uint32_t>{1, 2, 3}));

  std::vector<std::wstring> walked;
  for (CLaserPen* pen = pens.GetFirstPen(); pen; pen = pens.GetNextPen()) {
    walked.push_back(pen->GetColor().FormatColorName());
  }
  EXPECT_EQ(walked, (std::vector<std::wstring>{L"RGB: (1,0,0)", L"RGB: (2,0,0)", L"Last"}));
  EXPECT_EQ(pens.GetNextPen(), nullptr);
}

TEST(LaserPens, CopiesAreDeep) {
  CVectorPenList pens;
  ASSERT_TRUE(pens.AddColor(CColor::FromRGB(1, 1, 1)));
  CVectorPenList copy = pens;
  copy.GetPen(0)->SetPower(0.9);
  EXPECT_EQ(pens.GetPen(0)->GetPower(), 0.5);
  pens = copy;
  EXPECT_EQ(pens.GetPen(0)->GetPower(), 0.9);
  EXPECT_NE(pens.GetPen(0), copy.GetPen(0));
}

TEST(LaserSection, DefaultsAreWrittenExactly) {
  EXPECT_EQ(test::Written(CPMLaserData()),
            "<?xml version=\"1.0\"?>\n"
            "<LASERDATA version=\"2\">\n"
            "\t<RPOWER>0.5</RPOWER>\n"
            "\t<RSPEED>50</RSPEED>\n"
            "\t<DPI>300</DPI>\n"
            "\t<RSTOTALWIDTH>10</RSTOTALWIDTH>\n"
            "\t<RSSPLITWIDTH>3</RSSPLITWIDTH>\n"
            "\t<RSSPLITPOWER>0.59999999999999998</RSSPLITPOWER>\n"
            "\t<USEVECTORSPEEDANDPOWER>1</USEVECTORSPEEDANDPOWER>\n"
            "\t<VRESOLUTION>1016</VRESOLUTION>\n"
            "\t<CURVEDATA name=\"\" type=\"1\" keep0=\"0\">\n"
            "\t\t<DATA>0.0000,0.0500,0.1000,0.2000,0.3000,0.4000,0.5000,0.6000,0.7000,0.8000,0.9000,0.9500,"
            "1.0000</DATA>\n"
            "\t</CURVEDATA>\n"
            "\t<USEHOTWATCH>1</USEHOTWATCH>\n"
            "</LASERDATA>\n");
}

CPMLaserData ChangedLaser() {
  CPMLaserData laser;
  laser.SetVectorResolution(508);
  laser.SetRasterPower(0.1);
  laser.SetRasterSpeed(12.75);
  laser.SetRotaryFixture(80.3);
  laser.SetUseRotaryFixture(true);
  laser.SetRasterTotalWidth(-4);
  laser.SetRasterSplitWidth(7);
  laser.SetRasterSplitPower(1.0 / 3.0);
  laser.SetDPI(1200);
  laser.SetUseHotWatch(false);
  laser.SetUseVectorSpeedAndPower(false);
  laser.GetPowerCurve().SetValue(0.42, 0.3);
  laser.GetPowerCurve().SetName(L"Power <curve>");
  laser.GetPens().AddPen(false, 0.25, 7.5, 1e-3, CColor::FromCMYK(10, 20, 30, 40));
  laser.GetPens().AddPen(true, 1.0, 100, 1000, CColor(CColor::kNamed, 0x80000000u, L"Cut ]]> <here>"));
  laser.GetPens().AddPen(true, 0.3, 3, 3, CColor(CColor::kRGB, 0xFF000000u));
  return laser;
}

TEST(LaserSection, EveryStoredFieldSurvivesARoundTrip) {
  const CPMLaserData laser = ChangedLaser();
  const CPMLaserData copy = RoundTrip(laser);
  EXPECT_TRUE(copy == laser);
  EXPECT_EQ(copy.GetPens().Count(), 3u);
  EXPECT_EQ(copy.GetRasterSplitPower(), 1.0 / 3.0);
  EXPECT_EQ(copy.GetPowerCurve().GetPointCount(), 14u);

  EXPECT_TRUE(RoundTrip(CPMLaserData()) == CPMLaserData());
}

TEST(LaserSection, BytesDoNotDependOnTheLocale) {
  const std::string expected = test::Written(ChangedLaser());
  test::DecimalCommaLocale comma;
  if (!comma.active()) {
    GTEST_SKIP() << "no locale with a decimal comma on this machine";
  }
  EXPECT_EQ(test::Written(ChangedLaser()), expected);
  EXPECT_TRUE(RoundTrip(ChangedLaser()) == ChangedLaser());
}

TEST(LaserSection, TheRotaryFixtureIsWrittenOnlyWhenInUse) {
  CPMLaserData laser;
  laser.SetRotaryFixture(99);
  EXPECT_EQ(test::Written(laser).find("ROTARYFIXTURE"), std::string::npos);
  EXPECT_EQ(RoundTrip(laser).GetRotaryFixture(), 25.4);
  laser.SetUseRotaryFixture(true);
  EXPECT_NE(test::Written(laser).find("<ROTARYFIXTURE>99</ROTARYFIXTURE>"), std::string::npos);
}

TEST(LaserSection, MalformedInputKeepsDefaults) {
  struct Case {
    const char* text;
    bool accepted;
    size_t pens;
  };
  const std::vector<Case> cases = {
      {"<laserdata version=\"2\"><DPI>1</DPI></laserdata>", false, 0},
      {"<LASERDATA version=\"1\"/>", true, 0},
      {"<LASERDATA><CURVEDATA><DATA>1,2</DATA></CURVEDATA><UNKNOWN>1</UNKNOWN></LASERDATA>", true, 0},
      {"<LASERDATA><VPEN/><VPEN/></LASERDATA>", true, 1},  // two pens of the default colour
      {"<LASERDATA><VPEN power=\"x\"><VPCOLOR cspace=\"1\">100</VPCOLOR></VPEN><vpen/></LASERDATA>", true, 1},
      {"<LASERDATA><VPEN><VPCOLOR cspace=\"2\"/></VPEN><VPEN><VPCOLOR cspace=\"2\"/></VPEN></LASERDATA>",
       true, 2},
  };
  for (const Case& c : cases) {
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(c.text)) << c.text;
    CPMLaserData laser = ChangedLaser();
    EXPECT_EQ(laser.ReadXML(document.first_child()), c.accepted) << c.text;
    EXPECT_EQ(laser.GetPens().Count(), c.pens) << c.text;
    EXPECT_EQ(laser.GetDPI(), 300) << c.text;
    EXPECT_FALSE(laser.GetUseRotaryFixture()) << c.text;
    for (size_t i = 0; i < c.pens; ++i) {
      EXPECT_EQ(laser.GetPens().GetPen(i)->GetIndex(), i + 1) << c.text;
    }
  }
}

}  // namespace
}  // namespace tarn
