// tarn chart FILE [-o OUT.svg]: what a measurement chart holds, or a picture
// of its patches in the a*b* plane.
// tarn deltae REFERENCE SAMPLE [--method 76|94|2000] [--match id|name]: how far
// a measured chart is from its reference.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

#include "tarn/tarn.h"
#include "tools/commands.h"

namespace tarn::tool {

namespace {

// Loads a chart or says in one line why not.
bool LoadChart(const std::string& file, CIT8Chart& chart, std::string& problem) {
  const std::wstring path = FromUtf8(file);
  if (!FileExists(path)) {
    problem = "no such file: " + file;
    return false;
  }
  CIT8Issue error;
  if (!chart.LoadFile(path, &error)) {
    problem = file + ": " + ToUtf8(error.Describe());
    return false;
  }
  return true;
}

std::string Fields(const CIT8Table& table) {
  std::string out;
  for (const std::wstring& field : table.GetFields()) {
    out += (out.empty() ? "" : " ") + ToUtf8(field);
  }
  return out;
}

void ShowLabRange(const CIT8Table& table) {
  if (!table.HasColorimetry()) {
    return;
  }
  constexpr double kInf = std::numeric_limits<double>::infinity();
  CLabColor low{kInf, kInf, kInf};
  CLabColor high{-kInf, -kInf, -kInf};
  std::size_t count = 0;
  for (std::size_t row = 0; row < table.GetRowCount(); ++row) {
    CLabColor lab;
    if (!table.GetLab(row, lab)) {
      continue;
    }
    ++count;
    low = CLabColor{std::min(low.L, lab.L), std::min(low.a, lab.a), std::min(low.b, lab.b)};
    high = CLabColor{std::max(high.L, lab.L), std::max(high.a, lab.a), std::max(high.b, lab.b)};
  }
  if (count == 0) {
    return;
  }
  const bool from_xyz = table.FindField(L"LAB_L") < 0;
  std::printf("  Lab%s: L %s..%s  a %s..%s  b %s..%s\n", from_xyz ? " (from XYZ, D50)" : "",
              Format("%.2f", low.L).c_str(), Format("%.2f", high.L).c_str(), Format("%.2f", low.a).c_str(),
              Format("%.2f", high.a).c_str(), Format("%.2f", low.b).c_str(), Format("%.2f", high.b).c_str());
}

int ChartUsage() {
  std::fprintf(stderr, "usage: tarn chart FILE [-o OUT.svg]\n");
  return kExitUsage;
}

int DeltaEUsage() {
  std::fprintf(stderr, "usage: tarn deltae REFERENCE SAMPLE [--method 76|94|2000] [--match id|name]\n");
  return kExitUsage;
}

std::string Lab(const CLabColor& lab) {
  return Format("%6.2f %7.2f %7.2f", lab.L, lab.a, lab.b);
}

}  // namespace

int RunChart(const Arguments& args) {
  std::string input;
  std::string output;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "-o") {
      if (i + 1 == args.size() || !output.empty()) {
        return ChartUsage();
      }
      output = args[++i];
    } else if (input.empty()) {
      input = args[i];
    } else {
      return ChartUsage();
    }
  }
  if (input.empty()) {
    return ChartUsage();
  }
  CIT8Chart chart;
  std::string problem;
  if (!LoadChart(input, chart, problem)) {
    return Fail(problem);
  }
  if (!output.empty()) {
    const std::string svg = PlotChartSVG(chart);
    if (svg.empty()) {
      return Fail(input + ": the chart has no Lab or XYZ values to draw");
    }
    std::wstring error;
    if (!WriteFileAtomically(FromUtf8(output), svg, &error)) {
      return Fail("cannot write " + output + ": " + ToUtf8(error));
    }
    return kExitOk;
  }
  std::printf("chart %s: %zu table%s\n", input.c_str(), chart.GetTableCount(),
              chart.GetTableCount() == 1 ? "" : "s");
  for (std::size_t t = 0; t < chart.GetTableCount(); ++t) {
    const CIT8Table& table = *chart.GetTable(t);
    const std::string type = table.GetSheetType().empty() ? "(no sheet type)" : ToUtf8(table.GetSheetType());
    std::printf("table %zu: %s, %zu patch%s, %zu field%s\n", t + 1, type.c_str(), table.GetRowCount(),
                table.GetRowCount() == 1 ? "" : "es", table.GetFieldCount(),
                table.GetFieldCount() == 1 ? "" : "s");
    if (const std::wstring* descriptor = table.GetProperty(L"DESCRIPTOR")) {
      std::printf("  descriptor: %s\n", ToUtf8(*descriptor).c_str());
    }
    std::printf("  fields: %s\n", Fields(table).c_str());
    ShowLabRange(table);
  }
  for (const CIT8Issue& warning : chart.GetWarnings()) {
    std::printf("warning: %s\n", ToUtf8(warning.Describe()).c_str());
  }
  return kExitOk;
}

int RunDeltaE(const Arguments& args) {
  std::string files[2];
  std::size_t count = 0;
  CCompareOptions options;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--method" && i + 1 < args.size()) {
      if (!DeltaEMethodFromName(FromUtf8(args[++i]), options.method)) {
        return DeltaEUsage();
      }
    } else if (args[i] == "--match" && i + 1 < args.size()) {
      const std::string match = args[++i];
      if (match == "id") {
        options.match = PatchMatch::kById;
      } else if (match == "name") {
        options.match = PatchMatch::kByName;
      } else {
        return DeltaEUsage();
      }
    } else if (count < 2 && args[i].rfind("--", 0) != 0) {
      files[count++] = args[i];
    } else {
      return DeltaEUsage();
    }
  }
  if (count != 2) {
    return DeltaEUsage();
  }
  CIT8Chart charts[2];
  std::string problem;
  for (int i = 0; i < 2; ++i) {
    if (!LoadChart(files[i], charts[i], problem)) {
      return Fail(problem);
    }
  }
  CChartComparison result;
  std::wstring error;
  if (!CompareCharts(charts[0], charts[1], result, options, &error)) {
    return Fail(files[0] + " and " + files[1] + ": " + ToUtf8(error));
  }
  std::printf("reference %s, sample %s\n", files[0].c_str(), files[1].c_str());
  std::printf("%zu patches paired by %s, compared with %s", result.patches.size(),
              result.key_field.empty() ? "row" : ToUtf8(result.key_field).c_str(),
              ToUtf8(DeltaEMethodName(result.method)).c_str());
  if (!result.unmatched_reference.empty() || !result.unmatched_sample.empty()) {
    std::printf(" (unpaired: %zu in the reference, %zu in the sample)", result.unmatched_reference.size(),
                result.unmatched_sample.size());
  }
  std::printf("\nmean %s  95th percentile %s  max %s\n", Format("%.2f", result.mean).c_str(),
              Format("%.2f", result.percentile95).c_str(), Format("%.2f", result.maximum).c_str());
  std::printf("worst patches:\n  %-12s %6s   %-22s   %-22s\n", "patch", "dE", "reference L a b",
              "sample L a b");
  for (const CPatchDifference& patch : result.Worst(10)) {
    std::printf("  %-12s %6s   %s   %s\n", ToUtf8(patch.key).c_str(), Format("%.2f", patch.delta_e).c_str(),
                Lab(patch.reference).c_str(), Lab(patch.sample).c_str());
  }
  return kExitOk;
}

}  // namespace tarn::tool
