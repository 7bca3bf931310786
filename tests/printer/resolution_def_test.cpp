// Resolution definitions: reading, visibility, ink density range and the
// life of their fence-point records.

#include <gtest/gtest.h>

#include "tarn/printer/resolution_def.h"
#include "tarn/sections/fence_point_data.h"

namespace tarn {
namespace {

pugi::xml_node Parse(pugi::xml_document& document, const char* text) {
  EXPECT_TRUE(document.load_string(text));
  return document.first_child();
}

TEST(ResolutionDefTest, ReadsEveryField) {
  pugi::xml_document document;
  const pugi::xml_node node = Parse(document,
                                    "<RES>"
                                    "<RESLABEL>720 x 1440</RESLABEL><RESPROC>Res720x1440</RESPROC>"
                                    "<BITSPERPIXEL>2</BITSPERPIXEL><RESX>720</RESX><RESY>1440</RESY>"
                                    "<resx>1</resx><RESY>abc</RESY>"
                                    "<VOLUMEPERPIXEL> 4.20 </VOLUMEPERPIXEL>"
                                    "<INKDENSITY_RANGE min=\"20\" max=\"120\"/>"
                                    "<VALIDDOTSIZE>S,M,L</VALIDDOTSIZE>"
                                    "</RES>");
  CResolutionDef res;
  ASSERT_TRUE(res.ReadXML(node));
  EXPECT_EQ(res.GetName(), L"720 x 1440");
  EXPECT_EQ(res.GetProcedure(), L"Res720x1440");
  EXPECT_EQ(res.GetBitsPerPixel(), 2);
  EXPECT_EQ(res.GetResolutionX(), 720);  // lower-case "resx" is not the key
  EXPECT_EQ(res.GetResolutionY(), 0);    // the later, malformed value wins as 0
  EXPECT_EQ(res.GetVolumePerPixel(), L" 4.20 ");
  EXPECT_EQ(res.GetInkDensityMin(), 20);
  EXPECT_EQ(res.GetInkDensityMax(), 120);
  EXPECT_EQ(res.GetValidDotSize(), L"S,M,L");
  EXPECT_TRUE(res.IsVisible());
  EXPECT_EQ(res.GetFencePoints(), nullptr);
  EXPECT_FALSE(res.IsFM());

  EXPECT_FALSE(res.ReadXML(pugi::xml_node()));
  EXPECT_EQ(res.GetName(), L"");
}

TEST(ResolutionDefTest, VisibleAttributeIsReadAsLeadingInteger) {
  const struct {
    const char* element;
    bool visible;
  } cases[] = {
      {"<RES visible=\"0\"/>", false}, {"<RES visible=\"\"/>", true},     {"<RES/>", true},
      {"<RES visible=\"2\"/>", true},  {"<RES visible=\"00x\"/>", false}, {"<RES visible=\"no\"/>", false},
      {"<RES visible=\" 1\"/>", true},
  };
  for (const auto& test : cases) {
    pugi::xml_document document;
    CResolutionDef res;
    res.ReadXML(Parse(document, test.element));
    EXPECT_EQ(res.IsVisible(), test.visible) << test.element;
  }
}

TEST(ResolutionDefTest, InkDensityRangeLeavesAMissingBoundAsItWas) {
  pugi::xml_document document;
  CResolutionDef res;
  res.ReadXML(
      Parse(document, "<RES><INKDENSITY_RANGE min=\"10\" max=\"90\"/><INKDENSITY_RANGE min=\"30\"/></RES>"));
  EXPECT_EQ(res.GetInkDensityMin(), 30);
  EXPECT_EQ(res.GetInkDensityMax(), 90);
}

TEST(ResolutionDefTest, ValidDotSizeSurvivesSetDefaultsAndARereadWithoutIt) {
  pugi::xml_document first;
  pugi::xml_document second;
  CResolutionDef res;
  res.ReadXML(Parse(first, "<RES><RESLABEL>a</RESLABEL><VALIDDOTSIZE>S,L</VALIDDOTSIZE></RES>"));
  res.ReadXML(Parse(second, "<RES><RESLABEL>b</RESLABEL></RES>"));
  EXPECT_EQ(res.GetValidDotSize(), L"S,L");
  res.SetDefaults();
  EXPECT_EQ(res.GetValidDotSize(), L"S,L");
  EXPECT_EQ(res.GetName(), L"");
}

constexpr const char* kTwoFencePoints =
    "<RES><RESLABEL>720</RESLABEL>"
    "<FENCEPOINTS enabled=\"1\" profiles=\"1\"><COLORMODE>CMYK</COLORMODE></FENCEPOINTS>"
    "<FENCEPOINTS enabled=\"0\" profiles=\"2\"><COLORMODE>CMYKOG</COLORMODE></FENCEPOINTS>"
    "</RES>";

// Dropped fence-point records stay alive (and are freed with the resolution,
// which the address sanitizer checks).
TEST(ResolutionDefTest, DroppedFencePointsStayValidUntilTheResolutionGoes) {
  pugi::xml_document document;
  auto res = std::make_unique<CResolutionDef>();
  ASSERT_TRUE(res->ReadXML(Parse(document, kTwoFencePoints)));
  CPMFencePointData* current = res->GetFencePoints();
  ASSERT_NE(current, nullptr);
  EXPECT_EQ(current->GetColorMode(), L"CMYKOG");
  EXPECT_EQ(current->GetProfileCount(), 2u);

  res->SetDefaults();
  EXPECT_EQ(res->GetFencePoints(), nullptr);
  EXPECT_EQ(current->GetColorMode(), L"CMYKOG");  // still a live record

  res->ReadXML(document.first_child());
  EXPECT_NE(res->GetFencePoints(), current);
  EXPECT_EQ(current->GetColorMode(), L"CMYKOG");
  res.reset();
}

TEST(ResolutionDefTest, CopiesOwnTheirOwnFencePoints) {
  pugi::xml_document document;
  CResolutionDef source;
  source.ReadXML(Parse(document, kTwoFencePoints));
  source.SetScreeningKind(1);

  CResolutionDef copy(source);
  ASSERT_NE(copy.GetFencePoints(), nullptr);
  EXPECT_NE(copy.GetFencePoints(), source.GetFencePoints());
  EXPECT_EQ(*copy.GetFencePoints(), *source.GetFencePoints());
  EXPECT_TRUE(copy.IsFM());
  copy.GetFencePoints()->SetColorMode(L"changed");
  EXPECT_EQ(source.GetFencePoints()->GetColorMode(), L"CMYKOG");

  CResolutionDef plain;
  copy = plain;
  EXPECT_EQ(copy.GetFencePoints(), nullptr);
  copy = source;
  ASSERT_NE(copy.GetFencePoints(), nullptr);
  EXPECT_EQ(copy.GetFencePoints()->GetColorMode(), L"CMYKOG");
}

}  // namespace
}  // namespace tarn
