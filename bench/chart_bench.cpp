// Reading measurement charts: the CGATS text against Little CMS's reader of
// the same bytes, and the chart's XML form against raw pugixml.

#include <benchmark/benchmark.h>
#include <lcms2.h>

#include <string>

#include "tarn/colour/it8_chart.h"
#include "tarn/foundation/format.h"
#include "tarn/foundation/xml.h"

namespace {

// A press chart of the usual size: 1600 patches of CMYK and Lab.
const std::string& ChartText() {
  static const std::string text = [] {
    std::string out =
        "CGATS.17\nORIGINATOR \"bench\"\nNUMBER_OF_FIELDS 8\nBEGIN_DATA_FORMAT\n"
        "SAMPLE_ID CMYK_C CMYK_M CMYK_Y CMYK_K LAB_L LAB_A LAB_B\nEND_DATA_FORMAT\nNUMBER_OF_SETS "
        "1600\nBEGIN_DATA\n";
    for (int i = 0; i < 1600; ++i) {
      out += tarn::Format("%d %d %d %d %d %.2f %.2f %.2f\n", i + 1, i % 101, (i * 7) % 101, (i * 13) % 101,
                          (i * 29) % 101, 95.0 - (i % 90), (i % 160) - 80.0, (i % 150) - 75.0);
    }
    return out + "END_DATA\n";
  }();
  return text;
}

const std::string& ChartXml() {
  static const std::string text = [] {
    tarn::CIT8Chart chart;
    chart.ReadText(ChartText());
    pugi::xml_document document;
    chart.WriteXML(document);
    return tarn::xml::SaveDocumentToString(document);
  }();
  return text;
}

void ReadCgatsLcms(benchmark::State& state) {
  const std::string& text = ChartText();
  for (auto _ : state) {
    cmsHANDLE chart = cmsIT8LoadFromMem(nullptr, text.data(), static_cast<cmsUInt32Number>(text.size()));
    benchmark::DoNotOptimize(chart);
    cmsIT8Free(chart);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void ReadCgatsTarn(benchmark::State& state) {
  const std::string& text = ChartText();
  for (auto _ : state) {
    tarn::CIT8Chart chart;
    benchmark::DoNotOptimize(chart.ReadText(text));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void ReadChartXmlPugixml(benchmark::State& state) {
  const std::string& text = ChartXml();
  for (auto _ : state) {
    pugi::xml_document document;
    benchmark::DoNotOptimize(document.load_buffer(text.data(), text.size()));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void ReadChartXmlTarn(benchmark::State& state) {
  const std::string& text = ChartXml();
  for (auto _ : state) {
    pugi::xml_document document;
    tarn::CIT8Chart chart;
    tarn::xml::LoadDocumentFromBuffer(document, text, tarn::CIT8Chart::kElementName);
    benchmark::DoNotOptimize(chart.ReadXML(document.first_child()));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

BENCHMARK(ReadCgatsLcms)->Name("chart-text-read/lcms");
BENCHMARK(ReadCgatsTarn)->Name("chart-text-read/tarn");
BENCHMARK(ReadChartXmlPugixml)->Name("chart-xml-read/pugixml");
BENCHMARK(ReadChartXmlTarn)->Name("chart-xml-read/tarn");

}  // namespace
