// Any bytes as a configuration store: loading must never crash, and a store
// that loads must save and load back to the same text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tarn/foundation/platform.h"
#include "tarn/foundation/registry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool quiet = [] {
    tarn::SetMessageHandler([](const std::wstring&, const std::wstring&) {});
    return true;
  }();
  (void)quiet;
  tarn::CXRegistry store;
  if (!store.LoadFromString(std::string(reinterpret_cast<const char*>(data), size))) {
    return 0;
  }
  const std::string text = store.SaveToString();
  tarn::CXRegistry again;
  if (!again.LoadFromString(text) || again.SaveToString() != text) {
    std::abort();
  }
  return 0;
}
