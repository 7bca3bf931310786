// Writes the sample print modes of examples/rip with the library itself, so
// the samples always carry the current file layout. Run by scripts/make-examples.
//
// usage: tarn_make_examples RIPFOLDER

#include <cstdio>
#include <functional>
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

// A laser print mode with its engraving settings.
void LaserTuning(tarn::CPrintModeData& mode) {
  ForPrinter(L"Gray", L"500 dpi")(mode);
  tarn::CPMLaserData& laser = *mode.GetLaserData();
  laser.SetDPI(500);
  laser.SetRasterPower(0.65);
  laser.SetRasterSpeed(40.0);
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
      {L"Aurora64", L"Aurora 64 W+C", L"Gloss Vinyl 720.pmx", L"CMYKLcLmWV", L"Vinyl", L"Gloss self-adhesive vinyl",
       ForPrinter(L"CMYKLcLmWV", L"720 x 720")},
      {L"Aurora64", L"Aurora 64 W+C", L"Backlit Film 1440.pmx", L"CMYKLcLmWV", L"Film", L"Backlit polyester film",
       ForPrinter(L"CMYKLcLmWV", L"1440 x 720")},
      {L"Hexa6", L"Hexa 6", L"Coated Paper 600.pmx", L"CMYKOG", L"Paper", L"Coated proofing paper 190 g",
       ForPrinter(L"CMYKOG", L"600 x 600")},
      {L"Lumen40", L"Lumen 40 Laser", L"Birch Plywood.pmx", L"Laser", L"Wood", L"Birch plywood 3 mm", LaserTuning},
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
    if (!mode.SavePrintMode(folder.c_str(), false)) {
      std::fprintf(stderr, "could not write %s\n", tarn::ToUtf8(folder + sample.name).c_str());
      ++failures;
    }
  }
  return failures == 0 ? 0 : 1;
}
