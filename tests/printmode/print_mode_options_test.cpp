#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "printmode/samples.h"
#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/xml.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

CPrintModeData OptionsSample() {
  CPrintModeData mode;
  mode.SetName(L"Options.pmx");
  test::FillOptionSections(mode);
  return mode;
}

// Sets a RIP folder on disk for one test and restores the old one after.
class PrintModeOptions : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_root_ = GetTarnRipFolder();
    SetTarnRipSystemRoot(rip_.wide().c_str());
  }
  void TearDown() override { SetTarnRipSystemRoot(saved_root_.c_str()); }

  void AddProfile(const std::string& relative) {
    const auto path = rip_.path() / "system" / relative;
    std::filesystem::create_directories(path.parent_path());
    test::WriteBytes(path, "icc");
  }

  // Saves mode into the RIP folder and loads it into a fresh record.
  CPrintModeData SaveAndReload(const CPrintModeData& mode) {
    CPrintModeData saved = mode;
    EXPECT_TRUE(saved.SavePrintMode(rip_.wide().c_str(), false));
    CPrintModeData reloaded(rip_.wide() + mode.GetName());
    EXPECT_TRUE(reloaded.IsLoaded());
    return reloaded;
  }

  test::TempFolder rip_;
  test::MessageCapture messages_;

 private:
  std::wstring saved_root_;
};

TEST_F(PrintModeOptions, SectionsStandInTheirPlaces) {
  const std::string text = test::Written(OptionsSample());
  const size_t imaging = text.find("\t<IMAGING");
  const size_t icc = text.find("\t<ICCPROFILES ");
  const size_t halftones = text.find("\t<HALFTONEDATA");
  const size_t options = text.find("\t<PRINTEROPTIONS>");
  const size_t maxInk = text.find("\t<MAXINKEX");
  ASSERT_NE(imaging, std::string::npos);
  ASSERT_NE(icc, std::string::npos);
  ASSERT_NE(options, std::string::npos);
  ASSERT_NE(maxInk, std::string::npos);
  EXPECT_LT(imaging, icc);
  EXPECT_LT(icc, options);
  EXPECT_LT(options, maxInk);
  // Halftones, when there are any to write, stand between the two.
  if (halftones != std::string::npos) {
    EXPECT_LT(icc, halftones);
    EXPECT_LT(halftones, options);
  }
  // Laser data waits for the printer definition to say the printer is a laser.
  EXPECT_EQ(text.find("LASERDATA"), std::string::npos);
}

TEST_F(PrintModeOptions, EveryFieldSurvivesSaveAndReload) {
  const CPrintModeData mode = OptionsSample();
  const CPrintModeData reloaded = SaveAndReload(mode);
  EXPECT_TRUE(reloaded == mode);
  // Section by section too, so that a section left out of operator== shows.
  EXPECT_TRUE(*reloaded.GetICCProfiles() == *mode.GetICCProfiles());
  EXPECT_TRUE(*reloaded.GetPrinterOptions() == *mode.GetPrinterOptions());
  EXPECT_EQ(reloaded.GetICCProfiles()->GetICCPath(ICC_OUT_DEVICE_PATH), L"C:\\Profiles\\Slot 7 & <more>.icc");
  EXPECT_EQ(test::Written(reloaded), test::Written(mode));
  EXPECT_TRUE(messages_.empty());
}

// Every override flag of a print mode, in a fixed order.
std::vector<bool> OverrideFlags(const CPrintModeData& mode) {
  const CPMICCProfileData& icc = *mode.GetICCProfiles();
  return {mode.GetTransfers()->GetEnable(),
          mode.GetSeparations()->GetEnable(),
          mode.GetHalftones()->GetEnable(),
          mode.GetPrinterOptions()->GetOverrideEnable(),
          icc.GetOverrideInput(),
          icc.GetOverrideOutput(),
          icc.GetOverrideOther()};
}

TEST_F(PrintModeOptions, LoadingClearsTheOverrideFlags) {
  const std::vector<bool> allOn(7, true);
  const std::vector<bool> allOff(7, false);
  CPrintModeData mode = OptionsSample();
  mode.EnableAllOverrideFlags();
  EXPECT_EQ(OverrideFlags(mode), allOn);
  const std::string written = test::Written(mode);
  EXPECT_NE(written.find("overrideinput=\"1\" overrideoutput=\"1\" overrideother=\"1\""), std::string::npos);
  EXPECT_NE(written.find("<OVR_ENABLE>1</OVR_ENABLE>"), std::string::npos);

  const CPrintModeData reloaded = SaveAndReload(mode);
  EXPECT_EQ(OverrideFlags(reloaded), allOff);
  mode.DisableAllOverrideFlags();
  EXPECT_EQ(OverrideFlags(mode), allOff);
  EXPECT_TRUE(reloaded == mode);
}

TEST_F(PrintModeOptions, LoadingTakesTheColourModeFromThePrinterOptions) {
  CPrintModeData mode = OptionsSample();
  mode.GetSeparations()->SetColorMode(L"Stale");
  EXPECT_EQ(SaveAndReload(mode).GetSeparations()->GetColorMode(), L"CMYKOG");

  mode.GetPrinterOptions()->RemoveOption(L"Color Plane");
  EXPECT_EQ(SaveAndReload(mode).GetSeparations()->GetColorMode(), L"");
}

TEST_F(PrintModeOptions, LoadingRepairsProfilesMovedOutOfTheInkCountFolders) {
  AddProfile("ICC/Vector RGB.icc");
  AddProfile("ICC/Printer.icc");
  CPrintModeData mode;
  mode.SetName(L"Moved.pmx");
  CPMICCProfileData& icc = *mode.GetICCProfiles();
  icc.SetICCPath(ICC_LA_RGB_PATH, GetSystemFolder() + L"ICC\\4Color\\Vector RGB.icc");
  icc.SetICCPath(ICC_BMP_LAB_PATH, L"%Lumascript%ICC\\6Color\\Lab.icc");
  icc.SetICCPath(ICC_OUT_DEVICE_PATH, L"%Lumascript%ICC\\6Color\\Printer.icc");
  icc.SetICCPath(ICC_SPT_DEVICE_PATH, L"%Lumascript%ICC\\6Color\\Printer.icc");
  // Stored relative to the RIP, so the file stays valid when the RIP moves.
  EXPECT_EQ(icc.GetICCPath(ICC_LA_RGB_PATH), L"%Lumascript%ICC\\4Color\\Vector RGB.icc");

  const CPrintModeData reloaded = SaveAndReload(mode);
  const CPMICCProfileData& repaired = *reloaded.GetICCProfiles();
  EXPECT_EQ(repaired.GetICCPath(ICC_LA_RGB_PATH), GetSystemFolder() + L"ICC\\Vector RGB.icc");
  EXPECT_EQ(repaired.GetICCPath(ICC_BMP_LAB_PATH), GetSystemFolder() + L"ICC\\Lab.icc");
  EXPECT_EQ(repaired.GetICCPath(ICC_LA_CMYK_PATH), L"Orvel Vector CMYK.icm");
  EXPECT_EQ(repaired.GetICCPath(ICC_OUT_DEVICE_PATH), GetSystemFolder() + L"ICC\\Printer.icc");
  EXPECT_EQ(repaired.GetICCPath(ICC_SPT_DEVICE_PATH), L"%Lumascript%ICC\\6Color\\Printer.icc");
  EXPECT_TRUE(mode.CompareForPreviewRegenerate(reloaded));

  // Inputs where the print mode says they are need no repair; the output is
  // checked by itself.
  AddProfile("ICC/4Color/Vector RGB.icc");
  const CPrintModeData again = SaveAndReload(mode);
  EXPECT_EQ(again.GetICCProfiles()->GetICCPath(ICC_BMP_LAB_PATH), L"%Lumascript%ICC\\6Color\\Lab.icc");
  EXPECT_EQ(again.GetICCProfiles()->GetICCPath(ICC_OUT_DEVICE_PATH), GetSystemFolder() + L"ICC\\Printer.icc");
}

TEST_F(PrintModeOptions, LaserDataIsReadWhenTheFileHoldsIt) {
  CPrintModeData mode = OptionsSample();
  pugi::xml_document document;
  mode.WriteXML(document);
  CPMLaserData laser;
  laser.SetDPI(600);
  laser.GetPens().AddColor(CColor::FromName(L"Cut"));
  laser.WriteXML(document.first_child());

  CPrintModeData read;
  ASSERT_TRUE(read.ReadXML(document.first_child()));
  EXPECT_TRUE(*read.GetLaserData() == laser);
  // Laser data takes no part in the comparison.
  EXPECT_TRUE(read == mode);
}

TEST(PrintModeOptionsCompare, IccAndPrinterOptionsTakePartLaserDoesNot) {
  const CPrintModeData sample = OptionsSample();
  CPrintModeData changed = sample;
  EXPECT_TRUE(changed == sample);
  EXPECT_FALSE(changed.CompareForPreviewRegenerate(sample));

  changed.GetICCProfiles()->SetICCUsed(ICC_USE_GRAYSCALE_MODE, false);
  EXPECT_FALSE(changed == sample);
  EXPECT_TRUE(changed.CompareForPreviewRegenerate(sample));

  changed = sample;
  changed.GetPrinterOptions()->SetOptionValue(L"Setup", L"other");
  EXPECT_FALSE(changed == sample);
  EXPECT_FALSE(changed.CompareForPreviewRegenerate(sample));  // options need no new preview

  changed = sample;
  changed.GetLaserData()->SetRasterPower(1.0);
  EXPECT_TRUE(changed == sample);
}

TEST(PrintModeOptionsSync, UploadStateAndLockDecideSyncingAndCustom) {
  struct Case {
    const wchar_t* upload;  // null: no REQUPLOAD option
    SYNC_TYPE sync;
  };
  for (const Case& c : {Case{nullptr, SYNC_NONE}, Case{L"0", SYNC_UPLOAD}, Case{L"1", SYNC_NONE},
                        Case{L"2", SYNC_MODIFIED}, Case{L"00", SYNC_NONE}, Case{L"", SYNC_NONE}}) {
    CPrintModeData mode;
    if (c.upload) {
      mode.GetPrinterOptions()->AddOption(L"REQUPLOAD", c.upload);
    }
    EXPECT_EQ(mode.DoesRequireSyncing(), c.sync) << (c.upload ? c.upload : L"(none)");
  }

  CPrintModeData mode;
  EXPECT_TRUE(mode.IsCustom());
  mode.GetPrinterOptions()->LockPM();  // no LOCKED option: nothing to lock
  EXPECT_TRUE(mode.IsCustom());
  mode.GetPrinterOptions()->AddOption(L"LOCKED", L"0");
  mode.GetPrinterOptions()->LockPM();
  EXPECT_FALSE(mode.IsCustom());
  mode.GetPrinterOptions()->UnlockPM();
  EXPECT_TRUE(mode.IsCustom());
}

}  // namespace
}  // namespace tarn
