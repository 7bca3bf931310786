// Print modes that consult their printer definition: laser data follows the
// printer, and the plane, resolution, separation and fence-point questions are
// answered from the sample printers of examples/rip.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/text.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

const std::filesystem::path kSamplePrinters =
    std::filesystem::path(TARN_TEST_DATA_DIR) / ".." / ".." / "examples" / "rip" / "System" / "printers";

// A RIP folder holding the sample printer definitions.
class PrintModePrinterTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(rip_.path() / "System" / "printers");
    for (const char* name : {"Aurora64.pdx", "Hexa6.pdx", "Lumen40.pdx"}) {
      test::WriteBytes(rip_.path() / "System" / "printers" / name, test::ReadBytes(kSamplePrinters / name));
    }
    SetTarnRipSystemRoot(rip_.wide().c_str());
    ASSERT_TRUE(hexa_.LoadPrinter(L"Hexa6"));
    ASSERT_TRUE(aurora_.LoadPrinter(L"Aurora64"));
  }
  void TearDown() override { SetTarnRipSystemRoot(L""); }

  CPrintModeData Mode(const wchar_t* driver, const wchar_t* colorMode, const wchar_t* resolution) {
    CPrintModeData mode;
    mode.SetName(L"Sample.pmx");
    mode.SetDriver(driver);
    mode.GetPrinterOptions()->SetOptionValue(L"Color Plane", colorMode);
    mode.SetResolution(resolution);
    return mode;
  }

  // Saves mode into the RIP folder and returns the file's text.
  std::string SaveAndRead(CPrintModeData& mode) {
    EXPECT_TRUE(mode.SavePrintMode(rip_.wide().c_str(), false));
    return test::ReadBytes(rip_.path() / ToUtf8(mode.GetName()));
  }

  test::TempFolder rip_;
  CPrinterData hexa_;
  CPrinterData aurora_;
};

TEST_F(PrintModePrinterTest, LaserDataIsWrittenOnlyForALaserPrinter) {
  CPrintModeData laser = Mode(L"Lumen40", L"Gray", L"500 dpi");
  laser.GetLaserData()->SetRasterPower(0.8);
  laser.GetLaserData()->SetDPI(500);
  const std::string text = SaveAndRead(laser);
  EXPECT_NE(text.find("<LASERDATA"), std::string::npos);
  // Laser data is the last element of the print mode.
  EXPECT_LT(text.find("<FENCEPOINTS"), text.find("<LASERDATA"));

  CPrintModeData reloaded(laser.GetFullPath());
  ASSERT_TRUE(reloaded.IsLoaded());
  EXPECT_EQ(reloaded.GetLaserData()->GetRasterPower(), 0.8);
  EXPECT_EQ(reloaded.GetLaserData()->GetDPI(), 500);

  for (const wchar_t* driver : {L"Hexa6", L"NoSuchPrinter", L""}) {
    CPrintModeData inkjet = Mode(driver, L"CMYK", L"600 x 600");
    inkjet.SetName(L"Inkjet.pmx");
    inkjet.GetLaserData()->SetRasterPower(0.8);
    EXPECT_EQ(SaveAndRead(inkjet).find("<LASERDATA"), std::string::npos) << ToUtf8(driver);
  }
}

// A printer definition with options nested far too deep is refused when it
// loads, so saving a print mode that names it neither crashes nor writes
// laser data, even on a 1 MB stack.
TEST_F(PrintModePrinterTest, ADeeplyNestedPrinterIsRefusedAndTheSaveGoesOn) {
  const std::string deep = "<PRINTERLIST><PRINTER><LONGNAME>Deep</LONGNAME><LASERDEVICE>1</LASERDEVICE>" +
                           test::Nested("<CUSTOM><NAME>o</NAME>", "</CUSTOM>", 100000) +
                           "</PRINTER></PRINTERLIST>";
  test::WriteBytes(rip_.path() / "System" / "printers" / "Deep.pdx", deep);
  bool loaded = true;
  bool saved = false;
  test::RunOnStack(1 << 20, [&] {
    CPrinterData printer;
    loaded = printer.LoadPrinter(L"Deep");
    CPrintModeData mode = Mode(L"Deep", L"Gray", L"500 dpi");
    saved = mode.SavePrintMode(rip_.wide().c_str(), false);
  });
  EXPECT_FALSE(loaded);
  EXPECT_TRUE(saved);
  EXPECT_EQ(test::ReadBytes(rip_.path() / "Sample.pmx").find("LASERDATA"), std::string::npos);
}

TEST_F(PrintModePrinterTest, PlanesComeFromTheColourModel) {
  const CPrintModeData mode = Mode(L"Aurora64", L"CMYKLcLmWV", L"720 x 720");
  std::vector<std::pair<std::wstring, bool>> planes;
  ASSERT_TRUE(mode.GetPlanes(planes, &aurora_));
  ASSERT_EQ(planes.size(), 8u);
  EXPECT_EQ(planes[4], (std::pair<std::wstring, bool>{L"Light Cyan", true}));
  EXPECT_EQ(planes[6], (std::pair<std::wstring, bool>{L"White", false}));
  EXPECT_FALSE(mode.IsColorPlane(L"Varnish", &aurora_));
  EXPECT_TRUE(mode.IsKeyWordPlane(L"Light Magenta", &aurora_));
  EXPECT_FALSE(mode.IsKeyWordPlane(L"White", &aurora_));
  // Without a printer argument the print mode loads its own definition.
  EXPECT_FALSE(mode.IsColorPlane(L"White"));

  // The colour model can be named by its display name too.
  const CPrintModeData byDisplayName = Mode(L"Aurora64", L"White underbase", L"720 x 720");
  ASSERT_TRUE(byDisplayName.GetPlanes(planes, &aurora_));
  EXPECT_EQ(planes, (std::vector<std::pair<std::wstring, bool>>{{L"White", false}}));
}

TEST_F(PrintModePrinterTest, WithoutTheColourModelOnlyProcessPlatesAreKeywordPlanes) {
  CPrintModeData mode = Mode(L"Hexa6", L"Unknown", L"600 x 600");
  mode.GetSeparations()->AddLinearPlane(L"Cyan");
  mode.GetSeparations()->AddLinearPlane(L"Spot 1");
  std::vector<std::pair<std::wstring, bool>> planes;
  EXPECT_FALSE(mode.GetPlanes(planes, &hexa_));
  EXPECT_EQ(planes, (std::vector<std::pair<std::wstring, bool>>{{L"Cyan", true}, {L"Spot 1", false}}));
  EXPECT_TRUE(mode.IsKeyWordPlane(L"Gray", &hexa_));
  EXPECT_FALSE(mode.IsKeyWordPlane(L"cyan", &hexa_));
  EXPECT_FALSE(mode.IsColorPlane(L"Orange", &hexa_));
}

TEST_F(PrintModePrinterTest, BitsPerPixelComeFromTheResolutionOrThePrinter) {
  EXPECT_TRUE(Mode(L"Hexa6", L"CMYK", L"600 x 600").Is2BitPerPixel(&hexa_));
  EXPECT_EQ(Mode(L"Hexa6", L"CMYK", L"300 x 300").GetBitsPerPixel(&hexa_), 1);
  EXPECT_EQ(Mode(L"Hexa6", L"CMYK", L"no such resolution").GetBitsPerPixel(&hexa_), 2);  // "BITS"
  EXPECT_TRUE(Mode(L"Lumen40", L"Gray", L"1000 dpi").Is8BitPerPixel());

  CPrintModeData mode;
  mode.GetSeparations()->SetResolution(L"300 x 300");
  EXPECT_EQ(mode.GetResolution(), L"300 x 300");
  mode.SetResolution(L"600 x 600");
  EXPECT_EQ(mode.GetResolution(), L"600 x 600");
  EXPECT_EQ(mode.GetSeparations()->GetResolution(), L"600 x 600");
}

TEST_F(PrintModePrinterTest, SeparationsAreRebuiltAndCheckedAgainstTheColourModel) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYK", L"600 x 600");
  EXPECT_FALSE(mode.ValidateSeparationData(&hexa_));

  EXPECT_FALSE(mode.ResetSeparationData(L"Unknown", &hexa_));
  EXPECT_EQ(mode.GetSeparations()->GetPlaneCount(), 0u);

  ASSERT_TRUE(mode.ResetSeparationData(L"cmykog", &hexa_));
  EXPECT_EQ(mode.GetColorModeName(), L"CMYKOG");
  EXPECT_EQ(mode.GetSeparations()->GetColorMode(), L"CMYKOG");
  EXPECT_EQ(mode.GetSeparations()->GetMainInks().size(), 6u);
  EXPECT_EQ(mode.GetSeparations()->GetResolution(), L"600 x 600");  // a reset keeps the resolution
  EXPECT_TRUE(mode.ValidateSeparationData(&hexa_));

  mode.GetSeparations()->AddLinearPlane(L"Violet");
  EXPECT_FALSE(mode.ValidateSeparationData(&hexa_));
  ASSERT_TRUE(mode.ResetSeparationData(L"CMYKOG", &hexa_));
  mode.GetPrinterOptions()->SetOptionValue(L"Color Plane", L"CMYK");
  EXPECT_FALSE(mode.ValidateSeparationData(&hexa_));
}

TEST_F(PrintModePrinterTest, FencePointsAreBuiltFromTheResolutionAndSurviveASave) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYKOG", L"600 x 600");
  EXPECT_TRUE(mode.ValidateFencePointData(&hexa_));  // none in use
  EXPECT_FALSE(mode.HasDotSizeData());

  ASSERT_TRUE(mode.ResetFencePointData(&hexa_));
  const CPMFencePointData& fence = *mode.GetFencePointData();
  EXPECT_TRUE(fence.GetEnabled());
  EXPECT_EQ(fence.GetColorMode(), L"CMYKOG");
  EXPECT_EQ(fence.GetProfileCount(), 6u);  // three from the resolution, raised to the six planes
  FenceProfile profile{};
  ASSERT_TRUE(fence.GetProfile(0, profile));
  EXPECT_EQ(profile, (FenceProfile{60, 150, 30, 190}));
  EXPECT_EQ(fence.GetTrizone(0)->GetSMZone(), 48);
  EXPECT_EQ(fence.GetColorMap().size(), 6u);
  EXPECT_EQ(fence.GetDotSizeMap().size(), 3u);
  EXPECT_TRUE(mode.HasDotSizeData());
  EXPECT_TRUE(mode.ValidateFencePointData(&hexa_));

  SaveAndRead(mode);
  CPrintModeData reloaded(mode.GetFullPath());
  ASSERT_TRUE(reloaded.IsLoaded());
  EXPECT_EQ(*reloaded.GetFencePointData(), fence);
  EXPECT_TRUE(reloaded.ValidateFencePointData(&hexa_));

  // Dot sizes of another resolution do not fit.
  reloaded.SetResolution(L"300 x 300");
  EXPECT_FALSE(reloaded.ValidateFencePointData(&hexa_));
  // An ink the colour model lacks does not fit either.
  mode.GetFencePointData()->MapColorToData(L"Violet", 2);
  EXPECT_FALSE(mode.ValidateFencePointData(&hexa_));
}

TEST_F(PrintModePrinterTest, ResolutionWithoutFencePointsStillMapsEveryInk) {
  CPrintModeData mode = Mode(L"Aurora64", L"CMYKLcLmWV", L"1440 x 720");
  ASSERT_TRUE(mode.ResetFencePointData());
  const CPMFencePointData& fence = *mode.GetFencePointData();
  EXPECT_FALSE(fence.GetEnabled());
  std::uint32_t position = 0;
  ASSERT_TRUE(fence.GetColorPosition(L"Light Cyan", position));
  EXPECT_EQ(position, 0u);
  ASSERT_TRUE(fence.GetColorPosition(L"Varnish", position));
  EXPECT_EQ(position, 5u);
  EXPECT_EQ(fence.GetDotSizeMap().size(), 2u);  // "Large" belongs to 720 x 720 only
  EXPECT_FALSE(Mode(L"Aurora64", L"Unknown", L"1440 x 720").ResetFencePointData(&aurora_));
}

TEST_F(PrintModePrinterTest, SaveAndApplyKeepsTheRecordsOwnFile) {
  CPrintModeData original = Mode(L"Hexa6", L"CMYK", L"600 x 600");
  SaveAndRead(original);
  CPrintModeData edited(original);
  edited.SetName(L"Other.pmx");
  edited.SetInvert(true);
  ASSERT_TRUE(edited.ResetSeparationData(L"CMYKOG", &hexa_));

  ASSERT_TRUE(original.SaveAndApply(edited));
  EXPECT_EQ(original.GetName(), L"Sample.pmx");
  EXPECT_FALSE(std::filesystem::exists(rip_.path() / "Other.pmx"));
  CPrintModeData reloaded(original.GetFullPath());
  EXPECT_TRUE(reloaded.GetInvert());
  EXPECT_TRUE(reloaded.ValidateSeparationData(&hexa_));

  CPrintModeData unbound;
  EXPECT_FALSE(unbound.SaveAndApply(edited));
}

}  // namespace
}  // namespace tarn
