#pragma once

// Colour differences between Lab values, and the comparison of two measured
// charts patch by patch, as colour engineers judge a print against its
// reference.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/colour/it8_chart.h"
#include "tarn/foundation/export.h"

namespace tarn {

enum class DeltaEMethod { kCIE76, kCIE94, kCIEDE2000 };

// CIE 1976: the distance in Lab.
TARN_API double DeltaE76(const CLabColor& a, const CLabColor& b);
// CIE 1994 with the graphic-arts weights (kL 1, K1 0.045, K2 0.015). Not
// symmetric: the chroma weights come from the reference, as the standard has it.
TARN_API double DeltaE94(const CLabColor& reference, const CLabColor& sample);
// CIEDE2000 with kL = kC = kH = 1.
TARN_API double DeltaE2000(const CLabColor& a, const CLabColor& b);
// The difference by the given method; reference first.
TARN_API double DeltaE(DeltaEMethod method, const CLabColor& reference, const CLabColor& sample);

// "dE76", "dE94", "dE00".
TARN_API const wchar_t* DeltaEMethodName(DeltaEMethod method);
// Reads a method name: the names above, or "76", "94", "2000", "00", ignoring
// case. False, method untouched, for anything else.
TARN_API bool DeltaEMethodFromName(std::wstring_view name, DeltaEMethod& method);

// How the patches of two charts are paired.
enum class PatchMatch {
  kAuto,    // by SAMPLE_ID when both charts have it, else by SAMPLE_NAME, else by row
  kById,    // by SAMPLE_ID
  kByName,  // by SAMPLE_NAME
};

struct TARN_API CCompareOptions {
  DeltaEMethod method = DeltaEMethod::kCIEDE2000;
  PatchMatch match = PatchMatch::kAuto;
  // The white under which XYZ values become Lab.
  CXYZColor white = kWhiteD50;
};

// One pair of patches.
struct TARN_API CPatchDifference {
  std::wstring key;  // the id, name or row number (from 1) they were paired by
  std::size_t reference_row = 0;
  std::size_t sample_row = 0;
  CLabColor reference;
  CLabColor sample;
  double delta_e = 0.0;
};

struct TARN_API CChartComparison {
  DeltaEMethod method = DeltaEMethod::kCIEDE2000;
  // The field the patches were paired by; empty when paired by row.
  std::wstring key_field;
  // The paired patches in the reference's row order.
  std::vector<CPatchDifference> patches;
  // Keys of the patches that found no partner (or whose Lab cannot be read).
  std::vector<std::wstring> unmatched_reference;
  std::vector<std::wstring> unmatched_sample;
  double mean = 0.0;
  double maximum = 0.0;
  // Linear interpolation between the two nearest ranks, as spreadsheets do.
  double percentile95 = 0.0;

  // The count largest differences, largest first; equal ones in row order.
  std::vector<CPatchDifference> Worst(std::size_t count) const;
};

// Compares the measurement tables (Lab or XYZ) of two charts. False, with the
// reason in error, when either has no Lab or XYZ values, the chosen key field
// is missing, or no patch pairs up.
TARN_API bool CompareCharts(const CIT8Chart& reference, const CIT8Chart& sample, CChartComparison& result,
                            const CCompareOptions& options = CCompareOptions(),
                            std::wstring* error = nullptr);

}  // namespace tarn
