// Reading and writing print modes, against raw pugixml on the same bytes.
// Each tarn benchmark has a pugixml twin; the ratios are printed at the end
// (1.0 would mean tarn costs nothing beyond the parser itself).

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

#include "tarn/foundation/xml.h"
#include "tarn/printmode/print_mode_data.h"

namespace {

// A print mode as the library writes it, with everything it knows set.
const std::string& SampleFile() {
  static const std::string text = [] {
    tarn::CPrintModeData mode;
    mode.SetName(L"Gloss Vinyl 720.pmx");
    mode.SetPrinterX(L"Aurora 64 W+C");
    mode.SetDriver(L"Aurora64");
    mode.SetInkSet(L"CMYKLcLmWV");
    mode.SetManufacturer(L"Kestrel Inks");
    mode.SetMediaCategory(L"Vinyl");
    mode.SetMediaDescription(L"Gloss self-adhesive vinyl");
    pugi::xml_document document;
    mode.WriteXML(document);
    return tarn::xml::SaveDocumentToString(document);
  }();
  return text;
}

void ReadPugixml(benchmark::State& state) {
  const std::string& text = SampleFile();
  for (auto _ : state) {
    pugi::xml_document document;
    benchmark::DoNotOptimize(document.load_buffer(text.data(), text.size()));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void ReadTarn(benchmark::State& state) {
  const std::string& text = SampleFile();
  for (auto _ : state) {
    pugi::xml_document document;
    tarn::CPrintModeData mode;
    tarn::xml::LoadDocumentFromBuffer(document, text, "PMH");
    benchmark::DoNotOptimize(mode.ReadXML(document.first_child()));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void WritePugixml(benchmark::State& state) {
  pugi::xml_document source;
  source.load_buffer(SampleFile().data(), SampleFile().size());
  for (auto _ : state) {
    pugi::xml_document document;
    document.append_copy(source.first_child());
    benchmark::DoNotOptimize(tarn::xml::SaveDocumentToString(document));
  }
}

void WriteTarn(benchmark::State& state) {
  tarn::CPrintModeData mode;
  pugi::xml_document source;
  tarn::xml::LoadDocumentFromBuffer(source, SampleFile(), "PMH");
  mode.ReadXML(source.first_child());
  for (auto _ : state) {
    pugi::xml_document document;
    mode.WriteXML(document);
    benchmark::DoNotOptimize(tarn::xml::SaveDocumentToString(document));
  }
}

BENCHMARK(ReadPugixml)->Name("read/pugixml");
BENCHMARK(ReadTarn)->Name("read/tarn");
BENCHMARK(WritePugixml)->Name("write/pugixml");
BENCHMARK(WriteTarn)->Name("write/tarn");

// Prints "read: tarn/pugixml = 1.8" for every pair of benchmarks named
// "<what>/tarn" and "<what>/pugixml" (or "<what>/lcms").
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      times_[run.benchmark_name()] = run.GetAdjustedRealTime();
    }
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    for (const auto& [name, time] : times_) {
      const size_t slash = name.rfind("/tarn");
      if (slash == std::string::npos) {
        continue;
      }
      // The twin is raw pugixml, or Little CMS for the chart text it reads too.
      for (const char* other : {"pugixml", "lcms"}) {
        const auto twin = times_.find(name.substr(0, slash) + "/" + other);
        if (twin != times_.end() && twin->second > 0) {
          std::printf("ratio %s: tarn/%s = %.2f\n", name.substr(0, slash).c_str(), other,
                      time / twin->second);
        }
      }
    }
  }

 private:
  std::map<std::string, double> times_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
