#include "tarn/foundation/format_string.h"

namespace tarn {

bool formatstringT::RemoveLastOf(std::wstring_view chars) {
  const size_t at = text_.find_last_of(chars);
  if (at == std::wstring::npos) {
    return false;
  }
  text_.erase(at, 1);
  return true;
}

}  // namespace tarn
