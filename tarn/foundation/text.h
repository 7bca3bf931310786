#pragma once

// The one place where text changes between the wide strings of the records and
// the UTF-8 that pugixml and the operating system use.

#include <string>
#include <string_view>

#include "tarn/foundation/export.h"

namespace tarn {

// Converts wide text to UTF-8. Never fails: unpaired surrogates are written as
// pugixml writes them.
TARN_API std::string ToUtf8(std::wstring_view text);

// Converts UTF-8 to wide text. Never fails: invalid sequences are decoded as
// pugixml decodes them.
TARN_API std::wstring FromUtf8(std::string_view text);

// Lower-cases wide text for comparisons that ignore case, as Windows paths and
// definition names do. Only the letters the C++ library knows are folded;
// the process locale plays no part.
TARN_API std::wstring FoldCase(std::wstring_view text);

// True when the two texts are equal ignoring case (see FoldCase).
TARN_API bool EqualsNoCase(std::wstring_view a, std::wstring_view b);

// Ordinal comparison ignoring case: negative, zero or positive.
TARN_API int CompareNoCase(std::wstring_view a, std::wstring_view b);

}  // namespace tarn
