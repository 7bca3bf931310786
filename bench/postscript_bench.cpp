// The PostScript set-up of a print mode with every section in use, as the
// queue writes it before each job. Its pugixml twin prints the same print
// mode's XML document, so the ratio says what a set-up costs next to the
// plain save of the print mode it comes from.

#include <benchmark/benchmark.h>

#include <string>

#include "tarn/foundation/xml.h"
#include "tarn/postscript/postscript_setup.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"

namespace {

const tarn::CPrinterData& Printer() {
  static const tarn::CPrinterData printer = [] {
    tarn::CPrinterData loaded;
    loaded.LoadFile(tarn::FromUtf8(TARN_EXAMPLES_DIR "/rip/System/printers/Aurora64.pdx"));
    return loaded;
  }();
  return printer;
}

// Eight planes with their own separation curves, shaped transfer curves (one
// in level mode), screens in use, printer options, limits and fence points.
tarn::CPrintModeData FullPrintMode() {
  tarn::CPrintModeData mode;
  mode.SetName(L"Gloss Vinyl 720.pmx");
  mode.SetPrinterX(L"Aurora 64 W+C");
  mode.SetDriver(L"Aurora64");
  mode.ResetSeparationData(L"CMYKLcLmWV", &Printer());
  mode.SetResolution(L"720 x 720");
  mode.ResetFencePointData(&Printer());
  double factor = 0.55;
  for (const std::wstring& plane : mode.GetSeparations()->GetMainInks()) {
    mode.GetSeparations()->GetChannel(plane, 0u)->MakeLinear(factor);
    factor += 0.05;
  }
  for (unsigned plane = 1; plane <= 6; ++plane) {
    tarn::CPMCurveData curve(plane != 3, 0);
    if (curve.IsDensityMode()) {
      curve.SetValue(0.42, 0.3 + 0.02 * plane);
    } else {
      curve.SetValueStraight(1, 1.8);
    }
    mode.GetTransfers()->SetCurve(plane, curve, 0);
  }
  mode.GetHalftones()->SetIsUsed(true);
  mode.GetPrinterOptions()->SetOptionValue(L"Direction", L"Bi");
  mode.GetPrinterOptions()->SetOptionValue(L"Passes", L"8");
  mode.GetPrinterOptions()->SetOptionValue(L"WhiteMode", L"Under");
  mode.GetMaxInkEx()->SetEnable(true);
  mode.GetMaxInkEx()->SetValueB(300.0);
  mode.GetImageAdjust()->SetSaturation(110);
  return mode;
}

void SetupPugixml(benchmark::State& state) {
  const tarn::CPrintModeData mode = FullPrintMode();
  pugi::xml_document source;
  mode.WriteXML(source);
  for (auto _ : state) {
    benchmark::DoNotOptimize(tarn::xml::SaveDocumentToString(source));
  }
}

void SetupTarn(benchmark::State& state) {
  tarn::CPrintModeData mode = FullPrintMode();
  size_t bytes = 0;
  for (auto _ : state) {
    tarn::CPostscriptSetup setup(mode);
    setup.WritePostscriptSection(Printer());
    const std::string text = setup.GetBytes();
    bytes = text.size();
    benchmark::DoNotOptimize(text.data());
  }
  state.counters["bytes"] = static_cast<double>(bytes);
}

BENCHMARK(SetupPugixml)->Name("postscript setup/pugixml");
BENCHMARK(SetupTarn)->Name("postscript setup/tarn");

}  // namespace
