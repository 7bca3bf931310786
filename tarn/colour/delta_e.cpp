#include "tarn/colour/delta_e.h"

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "tarn/colour/internal/delta_e94.h"
#include "tarn/foundation/text.h"

namespace tarn {
namespace {

cmsCIELab ToLcms(const CLabColor& lab) {
  return cmsCIELab{lab.L, lab.a, lab.b};
}

double Chroma(const CLabColor& lab) {
  return std::sqrt(lab.a * lab.a + lab.b * lab.b);
}

struct MethodName {
  DeltaEMethod method;
  const wchar_t* name;
  const wchar_t* aliases[2];
};

// One table for both directions of the translation.
constexpr MethodName kMethodNames[] = {
    {DeltaEMethod::kCIE76, L"dE76", {L"76", L"CIE76"}},
    {DeltaEMethod::kCIE94, L"dE94", {L"94", L"CIE94"}},
    {DeltaEMethod::kCIEDE2000, L"dE00", {L"2000", L"00"}},
};

}  // namespace

namespace internal {

double DeltaE94Weighted(const CLabColor& reference, const CLabColor& sample, double kL, double K1, double K2,
                        bool symmetricChroma) {
  const double c1 = Chroma(reference);
  const double c2 = Chroma(sample);
  const double dL = reference.L - sample.L;
  const double dC = c1 - c2;
  const double da = reference.a - sample.a;
  const double db = reference.b - sample.b;
  // dH squared from the other differences; rounding can make it slightly negative.
  const double dH2 = std::max(0.0, da * da + db * db - dC * dC);
  const double c = symmetricChroma ? std::sqrt(c1 * c2) : c1;
  const double sC = 1.0 + K1 * c;
  const double sH = 1.0 + K2 * c;
  const double l = dL / kL;
  const double cc = dC / sC;
  return std::sqrt(l * l + cc * cc + dH2 / (sH * sH));
}

}  // namespace internal

double DeltaE76(const CLabColor& a, const CLabColor& b) {
  const cmsCIELab x = ToLcms(a);
  const cmsCIELab y = ToLcms(b);
  return cmsDeltaE(&x, &y);
}

double DeltaE94(const CLabColor& reference, const CLabColor& sample) {
  // Little CMS's CIE94 weighs with the textile constants (0.048, 0.014) and a
  // symmetric chroma, which is not what print is judged by.
  return internal::DeltaE94Weighted(reference, sample, 1.0, 0.045, 0.015, false);
}

double DeltaE2000(const CLabColor& a, const CLabColor& b) {
  const cmsCIELab x = ToLcms(a);
  const cmsCIELab y = ToLcms(b);
  return cmsCIE2000DeltaE(&x, &y, 1.0, 1.0, 1.0);
}

double DeltaE(DeltaEMethod method, const CLabColor& reference, const CLabColor& sample) {
  switch (method) {
    case DeltaEMethod::kCIE76:
      return DeltaE76(reference, sample);
    case DeltaEMethod::kCIE94:
      return DeltaE94(reference, sample);
    case DeltaEMethod::kCIEDE2000:
      return DeltaE2000(reference, sample);
  }
  return 0.0;
}

const wchar_t* DeltaEMethodName(DeltaEMethod method) {
  for (const MethodName& entry : kMethodNames) {
    if (entry.method == method) {
      return entry.name;
    }
  }
  return L"";
}

bool DeltaEMethodFromName(std::wstring_view name, DeltaEMethod& method) {
  for (const MethodName& entry : kMethodNames) {
    if (EqualsNoCase(name, entry.name) || EqualsNoCase(name, entry.aliases[0]) ||
        EqualsNoCase(name, entry.aliases[1])) {
      method = entry.method;
      return true;
    }
  }
  return false;
}

std::vector<CPatchDifference> CChartComparison::Worst(std::size_t count) const {
  std::vector<CPatchDifference> worst = patches;
  std::stable_sort(worst.begin(), worst.end(), [](const CPatchDifference& x, const CPatchDifference& y) {
    return x.delta_e > y.delta_e;
  });
  if (worst.size() > count) {
    worst.resize(count);
  }
  return worst;
}

namespace {

bool Fail(std::wstring* error, std::wstring text) {
  if (error != nullptr) {
    *error = std::move(text);
  }
  return false;
}

// The key field both tables are matched by; empty for row numbers.
bool ChooseKey(const CIT8Table& reference, const CIT8Table& sample, PatchMatch match, std::wstring& field,
               std::wstring* error) {
  const auto both = [&](const wchar_t* name) {
    return reference.FindField(name) >= 0 && sample.FindField(name) >= 0;
  };
  switch (match) {
    case PatchMatch::kById:
      field = L"SAMPLE_ID";
      return both(L"SAMPLE_ID") || Fail(error, L"both charts need a SAMPLE_ID field to match patches by id");
    case PatchMatch::kByName:
      field = L"SAMPLE_NAME";
      return both(L"SAMPLE_NAME") ||
             Fail(error, L"both charts need a SAMPLE_NAME field to match patches by name");
    case PatchMatch::kAuto:
      break;
  }
  field = both(L"SAMPLE_ID") ? L"SAMPLE_ID" : both(L"SAMPLE_NAME") ? L"SAMPLE_NAME" : L"";
  return true;
}

std::wstring KeyOf(const CIT8Table& table, int field, std::size_t row) {
  return field >= 0 ? table.GetCell(row, static_cast<std::size_t>(field)) : std::to_wstring(row + 1);
}

}  // namespace

bool CompareCharts(const CIT8Chart& reference, const CIT8Chart& sample, CChartComparison& result,
                   const CCompareOptions& options, std::wstring* error) {
  result = CChartComparison();
  result.method = options.method;
  const CIT8Table* ref = reference.GetMeasurementTable();
  const CIT8Table* smp = sample.GetMeasurementTable();
  if (ref == nullptr || !ref->HasColorimetry()) {
    return Fail(error, L"the reference chart has no Lab or XYZ values");
  }
  if (smp == nullptr || !smp->HasColorimetry()) {
    return Fail(error, L"the compared chart has no Lab or XYZ values");
  }
  std::wstring key_field;
  if (!ChooseKey(*ref, *smp, options.match, key_field, error)) {
    return false;
  }
  result.key_field = key_field;
  const int ref_key = key_field.empty() ? -1 : ref->FindField(key_field);
  const int smp_key = key_field.empty() ? -1 : smp->FindField(key_field);

  // The first row of each key in the sample; later duplicates stay unmatched.
  std::unordered_map<std::wstring, std::size_t> sample_rows;
  sample_rows.reserve(smp->GetRowCount());
  std::vector<bool> used(smp->GetRowCount(), false);
  for (std::size_t row = 0; row < smp->GetRowCount(); ++row) {
    sample_rows.emplace(KeyOf(*smp, smp_key, row), row);
  }
  for (std::size_t row = 0; row < ref->GetRowCount(); ++row) {
    std::wstring key = KeyOf(*ref, ref_key, row);
    const auto found = sample_rows.find(key);
    CPatchDifference patch;
    if (found == sample_rows.end() || used[found->second] ||
        !ref->GetLab(row, patch.reference, options.white) ||
        !smp->GetLab(found->second, patch.sample, options.white)) {
      result.unmatched_reference.push_back(std::move(key));
      continue;
    }
    used[found->second] = true;
    patch.key = std::move(key);
    patch.reference_row = row;
    patch.sample_row = found->second;
    patch.delta_e = DeltaE(options.method, patch.reference, patch.sample);
    result.patches.push_back(std::move(patch));
  }
  for (std::size_t row = 0; row < smp->GetRowCount(); ++row) {
    if (!used[row]) {
      result.unmatched_sample.push_back(KeyOf(*smp, smp_key, row));
    }
  }
  if (result.patches.empty()) {
    return Fail(error, key_field.empty() ? L"no patch of the two charts pairs up"
                                         : L"no patch of the two charts pairs up by " + key_field);
  }

  std::vector<double> values;
  values.reserve(result.patches.size());
  double sum = 0.0;
  for (const CPatchDifference& patch : result.patches) {
    values.push_back(patch.delta_e);
    sum += patch.delta_e;
  }
  std::sort(values.begin(), values.end());
  result.mean = sum / static_cast<double>(values.size());
  result.maximum = values.back();
  const double rank = 0.95 * static_cast<double>(values.size() - 1);
  const auto low = static_cast<std::size_t>(std::floor(rank));
  const std::size_t high = std::min(low + 1, values.size() - 1);
  result.percentile95 = values[low] + (values[high] - values[low]) * (rank - static_cast<double>(low));
  return true;
}

}  // namespace tarn
