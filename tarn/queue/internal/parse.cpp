#include "tarn/queue/internal/parse.h"

#include <algorithm>
#include <cstring>

#include "tarn/foundation/format.h"
#include "tarn/foundation/text.h"

namespace tarn::internal {

bool ParseDocument(pugi::xml_document& document, std::string_view utf8, const char* root,
                   std::wstring* error) {
  // An element whose whole text is blanks keeps it: a value of blanks is a value.
  const pugi::xml_parse_result result = document.load_buffer(
      utf8.data(), utf8.size(), pugi::parse_default | pugi::parse_ws_pcdata_single, pugi::encoding_auto);
  if (!result) {
    const size_t offset =
        std::min(static_cast<size_t>(std::max<std::ptrdiff_t>(result.offset, 0)), utf8.size());
    const size_t line = 1 + static_cast<size_t>(std::count(utf8.begin(), utf8.begin() + offset, '\n'));
    if (error) {
      *error = Format(L"XML error at line %zu: %s", line, result.description());
    }
    document.reset();
    return false;
  }
  const pugi::xml_node first = document.first_child();
  const bool named =
      first.type() == pugi::node_element && (root == nullptr || std::strcmp(first.name(), root) == 0);
  if (!named) {
    if (error) {
      *error = first.type() == pugi::node_element ? Format(L"the root element is '%s', not '%s'",
                                                           FromUtf8(first.name()), FromUtf8(root ? root : ""))
                                                  : std::wstring(L"the document has no root element");
    }
    document.reset();
    return false;
  }
  return true;
}

}  // namespace tarn::internal
