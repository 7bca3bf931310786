// Any bytes as a layer element: reading must never crash or leak, and what was
// read must write and read back to the same text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tarn/foundation/xml.h"
#include "tarn/layers/layer.h"

namespace {

std::string Written(const tarn::Layer& layer) {
  pugi::xml_document document;
  layer.WriteXML(document);
  return tarn::xml::SaveDocumentToString(document);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  pugi::xml_document document;
  if (!tarn::xml::LoadDocumentFromBuffer(
          document, std::string_view(reinterpret_cast<const char*>(data), size), tarn::Layer::kElementName)) {
    return 0;
  }
  tarn::Layer layer;
  layer.ReadXML(document.first_child(), nullptr);
  const std::string text = Written(layer);

  pugi::xml_document reread;
  if (!tarn::xml::LoadDocumentFromBuffer(reread, text, tarn::Layer::kElementName)) {
    std::abort();
  }
  tarn::Layer again;
  again.ReadXML(reread.first_child(), nullptr);
  if (Written(again) != text || !(again == layer)) {
    std::abort();
  }
  return 0;
}
