#pragma once

// What the print mode harnesses share: a quiet library, and the fuzzer's
// bytes read as a print mode file.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tarn/foundation/platform.h"
#include "tarn/foundation/xml.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn::fuzz {

// Reads data as a print mode file into mode; false when it is not one.
inline bool ReadPrintMode(const uint8_t* data, size_t size, CPrintModeData& mode) {
  static const bool quiet = [] {
    SetMessageHandler([](const std::wstring&, const std::wstring&) {});
    return true;
  }();
  (void)quiet;
  pugi::xml_document document;
  if (!xml::LoadDocumentFromBuffer(document, std::string_view(reinterpret_cast<const char*>(data), size),
                                   "PMH")) {
    return false;
  }
  mode.ReadXML(document.first_child());
  return true;
}

}  // namespace tarn::fuzz
