#include "printmode/samples.h"

#include "support/test_support.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>

namespace tarn::test {

namespace {

// Every point has at most four decimals, so that it survives the file's "%0.04f".
CPMCurveData Shaped(const std::wstring& name, double factor, double y = 0.3125) {
  CPMCurveData curve;
  curve.SetName(name);
  curve.MakeLinear(factor);
  curve.SetValue(0.42, y);
  return curve;
}

// Changes what a print mode file keeps of a slot's settings; the intent and
// the black and ink settings are the creation wizard's and keep the slot's own.
CICCInfo Settings(CICCInfo info, int seed) {
  info.inIntent = seed;
  info.outIntent = seed + 1;
  info.mergefactor = seed + 2;
  info.chroma2 = seed + 3;
  info.flags = 0x80000000u | static_cast<unsigned>(seed);
  info.range = seed + 4;
  info.links = {L"Device \u00e9 " + std::to_wstring(seed) + L".icc"};
  return info;
}

}  // namespace

void FillCurveSections(CPrintModeData& mode) {
  CPMTransferData& transfers = *mode.GetTransfers();
  transfers.SetEnable(true);
  transfers.SetMode(0);
  transfers.SetInRipSeps(true);
  for (unsigned plane = 1; plane < CPMTransferData::kPlaneCount; ++plane) {
    transfers.SetCurve(plane, Shaped(L"", plane % 2 ? 0.5 : 0.25, 0.0625 * plane), 0);
  }
  CPMCurveData level(false, 0);
  level.SetValueStraight(0, 10);
  level.SetValueStraight(1, 1.25);
  level.SetValueStraight(2, 245);
  level.SetKeepZero(true);
  transfers.SetCurve(4, level, 1);
  transfers.GetCurve(1, 1)->MakeLinear(0.5);

  CPMSeparationData separations;
  separations.SetEnable(true);
  separations.SetIdentifier(L"Orange set <2>");
  // Loading takes the separations' colour mode from the printer options.
  separations.SetColorMode(L"CMYK+O");
  mode.GetPrinterOptions()->AddOption(L"Color Plane", L"CMYK+O");
  auto cyan = std::make_unique<CPMSeparationData::ChannelQueue>();
  cyan->push_back(Shaped(L"Cyan", 0.5));
  cyan->push_back(Shaped(L"Orange", 0.25));
  cyan->back().SetKeepZero(true);
  separations.AddPlane(L"Cyan", std::move(cyan));
  separations.AddLinearPlane(L"Orange");
  separations.AddPlane(L"White", nullptr);
  mode.SetSeparationData(separations);
}

void FillScreenSections(CPrintModeData& mode) {
  CPMImageAdjustData* imaging = mode.GetImageAdjust();
  imaging->SetSampling(3);
  imaging->SetBlur(-2);
  imaging->SetSaturation(125);

  CPMHalftoneData* halftones = mode.GetHalftones();
  halftones->SetIsUsed(true);
  halftones->SetEnable(true);
  halftones->SetUseSameShape(true);
  halftones->SetUseSuperCell(false);
  halftones->SetUseAppHalftoning(true);
  halftones->SetUseAppSpotFunction(true);
  halftones->SetJitter({{0, 0.25}, {50, 1.5}});
  const CPMHalftoneOption cyan(133.9, 15.0, 13, L"Cyan", L"Process Cyan", false, 2);
  halftones->AddHalftoneOption(&cyan);
  const CPMHalftoneOption orange(85.0, 67.5, 0, L"Orange", L"Orange", true, -1);
  halftones->AddHalftoneOption(&orange);

  CPMMaxInkData* max_ink = mode.GetMaxInkEx();
  max_ink->SetValueA(180.5);
  max_ink->SetValueB(320.25);
  max_ink->SetValueC(260.125);
  max_ink->SetOldMaxInk(290.0);  // also enables the limits

  CPMFencePointData* fences = mode.GetFencePointData();
  fences->SetEnabled(true);
  fences->SetUsed(1);
  fences->SetOffset(true);
  fences->SetColorMode(L"CMYK");
  fences->SetProfileCount(2);
  fences->SetProfile(0, {60, 150, 30, 190});
  fences->SetProfile(1, {70, 170, 40, 200});
  fences->SetColorPosition(L"Cyan", 0);
  fences->SetColorPosition(L"Black", 1);
  fences->SetTDLow(80);
  fences->SetTDHigh(180);
  fences->SetTDLimit(95);
  fences->SetDotSizeData(L"Small", CDotSizeData{4, 0.35});
  fences->SetDotSizeData(L"Large", CDotSizeData{12, 1.0});
  fences->SetThresholdOffset(32);
  fences->SetUseAlpha(1);
  fences->SetAdjustHoles(0.8);
  fences->SetInkRemovalEnabled(true);
  fences->SetInkRemovalAngle(30.0);
  fences->SetInkRemovalFrequency(25.5);
  fences->SetInkRemovalShape(2);
  fences->SetForSmallMediumLargeM5();
  fences->GetTrizone(1)->SetVLD(L"VD2");
}

void FillOptionSections(CPrintModeData& mode) {
  CPMICCProfileData& icc = *mode.GetICCProfiles();
  for (int slot = 0; slot <= 7; ++slot) {
    icc.SetICCPath(slot, L"C:\\Profiles\\Slot " + std::to_wstring(slot) + L" & <more>.icc");
  }
  for (int use = 0; use <= 9; ++use) {
    icc.SetICCUsed(use, !icc.GetICCUsed(use));
  }
  for (int info = 1; info <= 9; ++info) {
    CICCInfo settings;
    icc.GetICCInfo(info, settings);
    icc.SetICCInfo(info, Settings(settings, info * 10));
  }
  icc.SetSpotColorMatching(true);

  CPMPrinterOptionsData& options = *mode.GetPrinterOptions();
  options.SetAdvanced(true);
  options.AddOption(L"Resolution", L"720x1440");
  options.AddOption(L"Color Plane", L"CMYKOG");
  options.AddOption(L"LOCKED", L"1");
  options.AddOption(L"REQUPLOAD", L"2");
  options.AddOption(L"Setup", L"<< /HWResolution [720 1440] >> ]]> setpagedevice");
  // Loading gives the separations the printer options' colour mode.
  mode.GetSeparations()->SetColorMode(L"CMYKOG");
}

void InstallTestPrinters(const std::filesystem::path& rip) {
  namespace fs = std::filesystem;
  const fs::path printers = rip / "System" / "printers";
  fs::create_directories(printers);
  const fs::path samples =
      fs::path(TARN_TEST_DATA_DIR).parent_path().parent_path() / "examples" / "rip" / "System" / "printers";
  for (const fs::path& folder : {samples, DataFile("postscript/printers")}) {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
      WriteBytes(printers / entry.path().filename(), ReadBytes(entry.path()));
    }
  }
}

}  // namespace tarn::test
