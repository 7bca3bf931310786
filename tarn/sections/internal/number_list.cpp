#include "tarn/sections/internal/number_list.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "tarn/foundation/format.h"

namespace tarn::internal {
namespace {

bool IsBlank(wchar_t c) {
  return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n';
}

// Walks "n,n,...,n": calls parse(rest) for each number, which returns the
// characters it used (0 when no number starts there).
template <typename Parse>
bool ScanList(std::wstring_view text, size_t count, Parse parse) {
  size_t pos = 0;
  for (size_t i = 0; i < count; ++i) {
    if (i > 0) {
      while (pos < text.size() && IsBlank(text[pos])) {
        ++pos;
      }
      if (pos >= text.size() || text[pos] != L',') {
        return false;
      }
      ++pos;
    }
    const size_t used = parse(i, text.substr(pos));
    if (used == 0) {
      return false;
    }
    pos += used;
  }
  while (pos < text.size() && IsBlank(text[pos])) {
    ++pos;
  }
  return pos == text.size();
}

}  // namespace

bool ScanIntList(std::wstring_view text, std::span<std::int32_t> out) {
  std::vector<std::int32_t> values(out.size());
  const bool ok = ScanList(text, out.size(), [&values](size_t i, std::wstring_view rest) -> size_t {
    long long value = 0;
    const size_t used = ParseIntPrefix(rest, value);
    if (used == 0 || value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max()) {
      return 0;
    }
    values[i] = static_cast<std::int32_t>(value);
    return used;
  });
  if (ok) {
    std::copy(values.begin(), values.end(), out.begin());
  }
  return ok;
}

bool ScanRealList(std::wstring_view text, std::span<double> out) {
  std::vector<double> values(out.size());
  const bool ok = ScanList(text, out.size(), [&values](size_t i, std::wstring_view rest) -> size_t {
    double value = 0.0;
    const size_t used = ParseRealPrefix(rest, value);
    if (used == 0 || !std::isfinite(value)) {
      return 0;
    }
    values[i] = value;
    return used;
  });
  if (ok) {
    std::copy(values.begin(), values.end(), out.begin());
  }
  return ok;
}

}  // namespace tarn::internal
