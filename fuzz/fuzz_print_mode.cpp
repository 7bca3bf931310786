// Any bytes as a print mode file: reading must never crash, and what was read
// must write and read back to the same text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz_support.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/xml.h"
#include "tarn/printmode/print_mode_data.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  tarn::CPrintModeData mode;
  if (!tarn::fuzz::ReadPrintMode(data, size, mode)) {
    return 0;
  }
  pugi::xml_document written;
  mode.WriteXML(written);
  const std::string text = tarn::xml::SaveDocumentToString(written);

  tarn::CPrintModeData again;
  pugi::xml_document reread;
  if (!tarn::xml::LoadDocumentFromBuffer(reread, text, "PMH") || !again.ReadXML(reread.first_child())) {
    std::abort();
  }
  pugi::xml_document rewritten;
  again.WriteXML(rewritten);
  if (tarn::xml::SaveDocumentToString(rewritten) != text) {
    std::abort();
  }
  return 0;
}
