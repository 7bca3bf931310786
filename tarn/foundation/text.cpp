#include "tarn/foundation/text.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cwctype>

namespace tarn {

std::string ToUtf8(std::wstring_view text) {
  return pugi::as_utf8(std::wstring(text));
}

std::wstring FromUtf8(std::string_view text) {
  return pugi::as_wide(std::string(text));
}

namespace {

// towlower follows the C locale until the program calls setlocale, and the
// library never does; Latin-1 and the common letters above it still fold, so
// names like "Grün" compare as a Windows user would expect.
wchar_t FoldChar(wchar_t c) {
  if (c < 0x80) {
    return (c >= L'A' && c <= L'Z') ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
  }
  if ((c >= 0xC0 && c <= 0xDE && c != 0xD7)) {
    return static_cast<wchar_t>(c + 0x20);
  }
  return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
}

}  // namespace

std::wstring FoldCase(std::wstring_view text) {
  std::wstring out(text);
  std::transform(out.begin(), out.end(), out.begin(), FoldChar);
  return out;
}

int CompareNoCase(std::wstring_view a, std::wstring_view b) {
  const size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    const wchar_t ca = FoldChar(a[i]);
    const wchar_t cb = FoldChar(b[i]);
    if (ca != cb) {
      return ca < cb ? -1 : 1;
    }
  }
  if (a.size() == b.size()) {
    return 0;
  }
  return a.size() < b.size() ? -1 : 1;
}

bool EqualsNoCase(std::wstring_view a, std::wstring_view b) {
  return a.size() == b.size() && CompareNoCase(a, b) == 0;
}

}  // namespace tarn
