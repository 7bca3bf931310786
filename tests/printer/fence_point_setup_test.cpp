// Filling a print mode's fence points from a printer definition.

#include <gtest/gtest.h>

#include "tarn/printer/printer_data.h"
#include "tarn/sections/fence_point_data.h"

namespace tarn {
namespace {

CPrinterData SixColorPrinter() {
  CPrinterData printer;
  EXPECT_TRUE(printer.LoadFromString(
      "<PRINTERLIST><PRINTER>"
      "<NCOLOR2><NAME>CMYKOG</NAME>"
      "<PLANE>Cyan</PLANE><PLANE>Magenta</PLANE><PLANE>Yellow</PLANE><PLANE>Black</PLANE>"
      "<PLANE profile=\"0\">Light Cyan</PLANE><PLANE profile=\"12\">Orange</PLANE></NCOLOR2>"
      "<NCOLOR2><NAME>Wide</NAME><PLANE>1</PLANE><PLANE>2</PLANE><PLANE>3</PLANE><PLANE>4</PLANE>"
      "<PLANE>5</PLANE><PLANE>6</PLANE><PLANE>7</PLANE><PLANE>8</PLANE><PLANE>9</PLANE><PLANE>10</PLANE>"
      "</NCOLOR2>"
      "<DOTPROFILE><NAME>Small</NAME><SIZE>4</SIZE><USAGE>0.5</USAGE><RESOLUTION>720</RESOLUTION></"
      "DOTPROFILE>"
      "<DOTPROFILE><NAME>Large</NAME><SIZE>12</SIZE><USAGE>0.25</USAGE></DOTPROFILE>"
      "</PRINTER></PRINTERLIST>"));
  return printer;
}

TEST(FencePointSetupTest, InitializeColorsGivesEachPlaneAPosition) {
  const CPrinterData printer = SixColorPrinter();
  CPMFencePointData fence;
  fence.MapColorToData(L"Stale", 3);
  fence.InitializeColors(*printer.GetColorModel(L"CMYKOG"));
  const CPMFencePointData::ColorMap expected{
      {L"Cyan", 0}, {L"Magenta", 1}, {L"Yellow", 2}, {L"Black", 3}, {L"Light Cyan", 0}};
  EXPECT_EQ(fence.GetColorMap(), expected);  // Orange names a profile beyond the ninth
  EXPECT_EQ(fence.GetProfileCount(), 4u);

  fence.InitializeColors(*printer.GetColorModel(L"Wide"));
  EXPECT_EQ(fence.GetColorMap().size(), 9u);
  EXPECT_EQ(fence.GetProfileCount(), 9u);
  EXPECT_EQ(fence.GetNextPosition(), CPMFencePointData::kNoPosition);
}

TEST(FencePointSetupTest, MapColorToDataRefusesWhatCannotBeAProfile) {
  CPMFencePointData fence;
  EXPECT_FALSE(fence.MapColorToData(L"", 0));
  EXPECT_FALSE(fence.MapColorToData(L"Cyan", 9));
  EXPECT_TRUE(fence.GetColorMap().empty());
  EXPECT_TRUE(fence.MapColorToData(L"Cyan", 8));
}

TEST(FencePointSetupTest, ResetCLinkCompositePlanesDropsForeignInks) {
  const CPrinterData printer = SixColorPrinter();
  CPMFencePointData fence;
  fence.MapColorToData(L"Cyan", 0);
  fence.MapColorToData(L"cyan", 1);  // plane names compare exactly
  fence.MapColorToData(L"Composite", 2);
  EXPECT_EQ(fence.ResetCLinkCompositePlanes(*printer.GetColorModel(L"CMYKOG")), 2u);
  EXPECT_EQ(fence.GetColorMap(), (CPMFencePointData::ColorMap{{L"Cyan", 0}}));
}

TEST(FencePointSetupTest, DotSizesComeFromTheProfilesOfTheResolution) {
  const CPrinterData printer = SixColorPrinter();
  CPMFencePointData fence;
  fence.SetDotSizeData(L"Stale", CDotSizeData{1, 1.0});
  fence.UpdateDotSizeData(printer, L"720");
  EXPECT_EQ(fence.GetDotSizeMap(), (CPMFencePointData::DotSizeMap{{L"Small", CDotSizeData{4, 0.5}},
                                                                  {L"Large", CDotSizeData{12, 0.25}}}));
  fence.UpdateDotSizeData(printer, L"360");
  EXPECT_EQ(fence.GetDotSizeMap(), (CPMFencePointData::DotSizeMap{{L"Large", CDotSizeData{12, 0.25}}}));
}

TEST(FencePointSetupTest, ExchangeTrizoneDataTakesProfilesAndTrizonesOnly) {
  CPMFencePointData source;
  source.SetProfileCount(2);
  source.SetProfile(1, FenceProfile{1, 2, 3, 4});
  source.GetTrizone(1)->SetForSmallMediumLargeM5();
  source.SetTDLow(10);
  source.SetColorMode(L"Source");
  source.MapColorToData(L"Cyan", 1);

  CPMFencePointData target;
  target.SetColorMode(L"Target");
  target.ExchangeTrizoneData(source);
  EXPECT_EQ(target.GetProfileCount(), 2u);
  FenceProfile profile{};
  ASSERT_TRUE(target.GetProfile(1, profile));
  EXPECT_EQ(profile, (FenceProfile{1, 2, 3, 4}));
  EXPECT_EQ(*target.GetTrizone(1), *source.GetTrizone(1));
  EXPECT_EQ(target.GetTDLow(), 10);
  EXPECT_EQ(target.GetColorMode(), L"Target");
  EXPECT_TRUE(target.GetColorMap().empty());
}

}  // namespace
}  // namespace tarn
