#pragma once

// Readers for the packed number lists some sections keep in one element text
// ("85,0,170,0,100,20,20", "0.000000,0.000000,400.000000,..."): the inverse of
// writing them with "%d,%d,..." or "%lf,%lf,...". Numbers are read as strtol
// and strtod read them in the "C" locale, so the process locale plays no part.

#include <cstdint>
#include <span>
#include <string_view>

namespace tarn::internal {

// Reads exactly out.size() whole numbers separated by single commas; blanks
// may surround each number. False, with out untouched, when the text holds
// fewer or more numbers, anything else, or a number outside 32 bits.
bool ScanIntList(std::wstring_view text, std::span<std::int32_t> out);

// The same for real numbers; infinities and NaN are refused.
bool ScanRealList(std::wstring_view text, std::span<double> out);

}  // namespace tarn::internal
