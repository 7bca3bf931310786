// Any bytes as a chart text file: reading must never crash, hang or leak, and
// whatever reads must write back to text and XML that reads as the same chart.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <pugixml.hpp>

#include "tarn/colour/delta_e.h"
#include "tarn/colour/it8_chart.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tarn::CIT8Chart chart;
  if (!chart.ReadText(std::string_view(reinterpret_cast<const char*>(data), size))) {
    if (chart.GetTableCount() != 0) {
      std::abort();  // a failed read leaves nothing half read
    }
    return 0;
  }
  std::string text;
  if (chart.WriteText(text)) {
    tarn::CIT8Chart again;
    if (!again.ReadText(text) || !(again == chart)) {
      std::abort();
    }
  }
  pugi::xml_document document;
  if (chart.WriteXML(document)) {
    tarn::CIT8Chart again;
    if (!again.ReadXML(document.first_child()) || !(again == chart)) {
      std::abort();
    }
  }
  for (std::size_t t = 0; t < chart.GetTableCount(); ++t) {
    const tarn::CIT8Table& table = *chart.GetTable(t);
    for (std::size_t row = 0; row < table.GetRowCount(); ++row) {
      tarn::CLabColor lab;
      table.GetLab(row, lab);
      table.FindPatch(table.GetPatchKey(row));
    }
  }
  tarn::CChartComparison comparison;
  tarn::CompareCharts(chart, chart, comparison);
  return 0;
}
