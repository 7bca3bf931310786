#pragma once

// formatstringT: the growable wide text buffer into which sections and writers
// append PostScript and curve texts.
//
//   formatstringT ps;
//   ps.AppendFormat(L"%0.04f, %0.04f, ", x, y);   // "0.2000, 0.1800, "
//
// Formatting never depends on the process locale (see format.h).

#include <string>
#include <string_view>

#include "tarn/foundation/export.h"
#include "tarn/foundation/format.h"

namespace tarn {

class TARN_API formatstringT {
 public:
  formatstringT() = default;
  explicit formatstringT(std::wstring_view text) : text_(text) {}

  // Appends printf-style formatted text ("C" locale); returns *this.
  template <typename... Args>
  formatstringT& AppendFormat(std::wstring_view format, const Args&... args) {
    const FormatArg list[] = {FormatArg(args)..., FormatArg(0)};
    AppendFormatV(text_, format, std::span<const FormatArg>(list, sizeof...(Args)));
    return *this;
  }

  formatstringT& Append(std::wstring_view text) {
    text_.append(text);
    return *this;
  }
  formatstringT& operator+=(std::wstring_view text) { return Append(text); }

  // Removes the last character of the buffer that is one of chars; returns
  // false, changing nothing, when there is none.
  bool RemoveLastOf(std::wstring_view chars);

  const std::wstring& str() const { return text_; }
  std::wstring& str() { return text_; }
  const wchar_t* c_str() const { return text_.c_str(); }
  size_t length() const { return text_.size(); }
  bool empty() const { return text_.empty(); }
  void clear() { text_.clear(); }

 private:
  std::wstring text_;
};

}  // namespace tarn
