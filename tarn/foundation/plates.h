#pragma once

#include <array>
#include <string_view>

namespace tarn::plates {

// The names of the planes that records, colour models and the PostScript
// set-up share. They are compared exactly unless a caller says otherwise.
inline constexpr std::wstring_view kCyan = L"Cyan";
inline constexpr std::wstring_view kMagenta = L"Magenta";
inline constexpr std::wstring_view kYellow = L"Yellow";
inline constexpr std::wstring_view kBlack = L"Black";
// A further process plane of grey-scale colour models.
inline constexpr std::wstring_view kGray = L"Gray";
// The screen of spot colours in a halftone set.
inline constexpr std::wstring_view kSpot = L"Spot";
// The two extra transfer-curve planes.
inline constexpr std::wstring_view kHex0 = L"Hex0";
inline constexpr std::wstring_view kHex1 = L"Hex1";

// The four process plates in their usual order.
inline constexpr std::array<std::wstring_view, 4> kProcess = {kCyan, kMagenta, kYellow, kBlack};

// True for a process plane: one of the four plates or Gray, compared exactly.
constexpr bool IsProcessPlane(std::wstring_view name) {
  return name == kCyan || name == kMagenta || name == kYellow || name == kBlack || name == kGray;
}

}  // namespace tarn::plates
