// Any bytes as a media file: reading must never crash or leak, a medium read
// and written once must write the same bytes again, and its picture and its
// quick-set's template must be made without trouble.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tarn/foundation/xml.h"
#include "tarn/media/print_media.h"
#include "tarn/media/template_plot.h"

namespace {

std::string Written(const tarn::CPrintMedia& media) {
  pugi::xml_document document;
  media.WriteXML(document);
  return tarn::xml::SaveDocumentToString(document);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  pugi::xml_document document;
  if (!tarn::xml::LoadDocumentFromBuffer(document,
                                         std::string_view(reinterpret_cast<const char*>(data), size),
                                         tarn::CPrintMedia::kElementName)) {
    return 0;
  }
  tarn::CPrintMedia media;
  media.ReadXML(document.first_child());
  const std::string first = Written(media);
  pugi::xml_document again;
  if (!tarn::xml::LoadDocumentFromBuffer(again, first, tarn::CPrintMedia::kElementName)) {
    std::abort();
  }
  tarn::CPrintMedia read;
  read.ReadXML(again.first_child());
  if (Written(read) != first) {
    std::abort();
  }
  tarn::PlotMediaSVG(media);
  media.GetQuickSet().GenerateTemplate();
  media.IsDataValid();
  return 0;
}
