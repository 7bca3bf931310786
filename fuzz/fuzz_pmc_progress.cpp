// Any bytes as a creation-progress element: reading must never crash or leak,
// and what reads must write text that reads and writes back to the same text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <pugixml.hpp>

#include "tarn/colour/pmc_progress.h"
#include "tarn/foundation/xml.h"

namespace {

std::string Written(const tarn::CPMCProgress& progress) {
  pugi::xml_document document;
  progress.WriteXML(document);
  return tarn::xml::SaveDocumentToString(document);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  pugi::xml_document document;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (!tarn::xml::LoadDocumentFromBuffer(document, bytes, tarn::CPMCProgress::kElementName)) {
    return 0;
  }
  tarn::CPMCProgress progress;
  if (!progress.ReadXML(document.first_child())) {
    std::abort();  // the root was checked above
  }
  const std::string text = Written(progress);
  pugi::xml_document reread;
  tarn::CPMCProgress again;
  if (!tarn::xml::LoadDocumentFromBuffer(reread, text, tarn::CPMCProgress::kElementName) ||
      !again.ReadXML(reread.first_child()) || Written(again) != text) {
    std::abort();
  }
  tarn::CPMCProgress copy(again);
  if (!(copy == again)) {
    std::abort();
  }
  return 0;
}
