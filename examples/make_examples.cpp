// Writes the sample print modes and media of examples/rip with the library itself, so
// the samples always carry the current file layout. Run by scripts/make-examples.
//
// usage: tarn_make_examples RIPFOLDER

#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tarn/tarn.h"

namespace {

struct Sample {
  const wchar_t* driver;   // folder under System/pmodes, and the printer definition's name
  const wchar_t* printer;  // the printer's display name
  const wchar_t* name;     // file name of the print mode
  const wchar_t* ink_set;
  const wchar_t* media_category;
  const wchar_t* media_description;
  // Section settings that make the sample worth looking at.
  std::function<void(tarn::CPrintModeData&)> tune;
};

// Points the print mode at a colour model and resolution of its printer
// (System/printers/<driver>.pdx) and builds its separations and fence points
// from that printer.
std::function<void(tarn::CPrintModeData&)> ForPrinter(const wchar_t* colorMode, const wchar_t* resolution) {
  return [colorMode, resolution](tarn::CPrintModeData& mode) {
    tarn::CPrinterData printer;
    if (!printer.LoadPrinter(mode.GetDriver())) {
      std::fprintf(stderr, "no printer definition for %s\n", tarn::ToUtf8(mode.GetDriver()).c_str());
      return;
    }
    mode.SetResolution(resolution);
    mode.ResetSeparationData(colorMode, &printer);
    mode.ResetFencePointData(&printer);
  };
}

// Linearisation as a colour engineer leaves it: each process ink pulled back
// in the mid-tones by its own dot gain (density in, density out).
void Linearise(tarn::CPrintModeData& mode, const double (&gain)[4]) {
  tarn::CPMTransferData& transfers = *mode.GetTransfers();
  transfers.SetEnable(true);
  for (unsigned plane = 1; plane <= 4; ++plane) {
    tarn::CPMCurveData curve = *transfers.GetCurve(plane, 0);
    for (const double x : curve.GetXAxis()) {
      curve.SetValue(x, x - gain[plane - 1] * x * (1.0 - x));
    }
    transfers.SetCurve(plane, curve, 0);
  }
}

std::function<void(tarn::CPrintModeData&)> Tuned(std::function<void(tarn::CPrintModeData&)> base,
                                                 const double (&gain)[4]) {
  return [base = std::move(base), &gain](tarn::CPrintModeData& mode) {
    base(mode);
    Linearise(mode, gain);
  };
}

const double kVinylGain[4] = {0.42, 0.38, 0.30, 0.46};
const double kFilmGain[4] = {0.25, 0.22, 0.18, 0.28};
const double kPaperGain[4] = {0.55, 0.50, 0.40, 0.60};

// A laser print mode with its engraving settings.
void LaserTuning(tarn::CPrintModeData& mode) {
  ForPrinter(L"Gray", L"500 dpi")(mode);
  tarn::CPMLaserData& laser = *mode.GetLaserData();
  laser.SetDPI(500);
  laser.SetRasterPower(0.65);
  laser.SetRasterSpeed(40.0);
}

constexpr double kMm = 72.0 / 25.4;

// The sample media of each printer, written through the printer's media list
// into its media folder (System/pmodes/<driver>/Media).
std::vector<tarn::CPrintMedia> SampleMedia(const std::wstring& driver) {
  std::vector<tarn::CPrintMedia> media;
  if (driver == L"Aurora64") {
    tarn::CPrintMedia roll;
    roll.CreateDefaultRoll(54 * 72.0);
    roll.SetName(L"Vinyl_Roll_54in");
    roll.SetMargins(0.2 * 72, 0.2 * 72, 0, 0);
    media.push_back(roll);

    // A maker's banner medium: locked, with its own page set-up.
    tarn::CPrintMedia banner;
    banner.SetType(tarn::CPrintMedia::MEDIA_FIXED);
    banner.SetName(L"Kestrel_Banner_1000x3000");
    banner.SetVersion(L"2");
    banner.SetCopyright(L"Kestrel Inks media definition");
    banner.SetSize(1000 * kMm, 3000 * kMm);
    banner.SetMargins(10 * kMm, 10 * kMm, 25 * kMm, 25 * kMm);
    banner.SetLocked(true);
    banner.SetPS(L"<< /PageSize [2834.646 8503.937] /MediaType (Banner) >> setpagedevice");
    banner.SetPSImageableArea(banner.MakePSImageableArea());
    banner.SetPSDimension(banner.MakePSDimension());
    media.push_back(banner);
  } else if (driver == L"Hexa6") {
    tarn::CPrintMedia proof;
    proof.SetType(tarn::CPrintMedia::MEDIA_SHEET);
    proof.SetName(L"Proof_A3_Plus");
    proof.SetSize(329 * kMm, 483 * kMm);
    proof.SetMargins(5 * kMm, 5 * kMm, 5 * kMm, 12 * kMm);
    media.push_back(proof);

    // Six labels of 60 x 80 mm on an A4-sized sheet, numbered down the columns.
    tarn::CQTAData quickSet;
    quickSet.SetNumber(3, 2);
    quickSet.SetSlotSize(60 * kMm, 80 * kMm);
    quickSet.SetSpacing(5 * kMm, 6 * kMm);
    quickSet.SetOffset(10 * kMm, 20 * kMm);
    quickSet.SetFillOrder(1);
    std::unique_ptr<tarn::CPrintMedia> labels = quickSet.GenerateTemplate();
    labels->SetName(L"Labels_3x2");
    labels->SetSize(tarn::CPrintMedia::kA4Width, tarn::CPrintMedia::kA4Height);
    media.push_back(*labels);
  } else if (driver == L"Lumen40") {
    tarn::CPrintMedia board;
    board.SetType(tarn::CPrintMedia::MEDIA_SHEET);
    board.SetName(L"Plywood_600x300");
    board.SetSize(600 * kMm, 300 * kMm);
    media.push_back(board);
  }
  return media;
}

int WriteSampleMedia(const std::wstring& driver) {
  tarn::CPrinterData printer;
  if (!printer.LoadPrinter(driver)) {
    std::fprintf(stderr, "no printer definition for %s\n", tarn::ToUtf8(driver).c_str());
    return 1;
  }
  tarn::CPrintMediaList list;
  list.Initialize(&printer, nullptr, nullptr);
  for (tarn::CPrintMedia& media : SampleMedia(driver)) {
    const std::wstring name = media.GetName();
    if (!list.UpdateMedia(media, name.c_str())) {
      std::fprintf(stderr, "media name refused: %s\n", tarn::ToUtf8(name).c_str());
      return 1;
    }
  }
  return list.WriteMediaToDisk() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: tarn_make_examples RIPFOLDER\n");
    return 2;
  }
  std::wstring rip = tarn::FromUtf8(argv[1]);
  if (rip.back() != L'/' && rip.back() != L'\\') {
    rip += L'\\';
  }
  tarn::SetTarnRipSystemRoot(rip.c_str());

  const std::vector<Sample> samples = {
      {L"Aurora64", L"Aurora 64 W+C", L"Gloss Vinyl 720.pmx", L"CMYKLcLmWV", L"Vinyl",
       L"Gloss self-adhesive vinyl", Tuned(ForPrinter(L"CMYKLcLmWV", L"720 x 720"), kVinylGain)},
      {L"Aurora64", L"Aurora 64 W+C", L"Backlit Film 1440.pmx", L"CMYKLcLmWV", L"Film",
       L"Backlit polyester film", Tuned(ForPrinter(L"CMYKLcLmWV", L"1440 x 720"), kFilmGain)},
      {L"Hexa6", L"Hexa 6", L"Coated Paper 600.pmx", L"CMYKOG", L"Paper", L"Coated proofing paper 190 g",
       Tuned(ForPrinter(L"CMYKOG", L"600 x 600"), kPaperGain)},
      {L"Lumen40", L"Lumen 40 Laser", L"Birch Plywood.pmx", L"Laser", L"Wood", L"Birch plywood 3 mm",
       LaserTuning},
  };
  int failures = 0;
  for (const Sample& sample : samples) {
    const std::wstring folder = tarn::GetPrintModesFolder() + sample.driver + L"\\";
    tarn::CreateFolders(folder);
    tarn::CPrintModeData mode;
    mode.SetName(sample.name);
    mode.SetPrinterX(sample.printer);
    mode.SetDriver(sample.driver);
    mode.SetInkSet(sample.ink_set);
    mode.SetManufacturer(L"Kestrel Inks");
    mode.SetMediaCategory(sample.media_category);
    mode.SetMediaDescription(sample.media_description);
    mode.SetCreationDate(L"2026-11-22");
    mode.SetRipVersion(L"10.9");
    sample.tune(mode);
    // Loading turns every override flag off, so the samples are written as a
    // load leaves them: each file is then exactly what loading and saving it writes.
    mode.DisableAllOverrideFlags();
    if (!mode.SavePrintMode(folder.c_str(), false)) {
      std::fprintf(stderr, "could not write %s\n", tarn::ToUtf8(folder + sample.name).c_str());
      ++failures;
    }
  }
  for (const wchar_t* driver : {L"Aurora64", L"Hexa6", L"Lumen40"}) {
    failures += WriteSampleMedia(driver);
  }
  return failures == 0 ? 0 : 1;
}
