// Any bytes as a printer definition file: reading must never crash or leak,
// and the lists must hold only named entries.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tarn/printer/printer_data.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tarn::CPrinterData printer;
  if (!printer.LoadFromString(std::string_view(reinterpret_cast<const char*>(data), size))) {
    return 0;
  }
  for (const auto& [name, resolution] : printer.GetResolutions()) {
    if (name.empty() || resolution == nullptr) {
      std::abort();
    }
  }
  // Copies are deep and the queries walk every list.
  tarn::CPrinterData copy(printer);
  copy.HasAnyFMResolution();
  copy.IsHTMPrinter();
  copy.GetPages().IsPageSupported(8.5, 11.0);
  return 0;
}
