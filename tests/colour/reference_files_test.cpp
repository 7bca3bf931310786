// The chart files a colour-management package ships (Debian's argyll-ref,
// installed by scripts/install-deps): every one is read, written back, read
// again and compared, and what Little CMS reads from the same file must agree
// with what we read.

#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/colour/it8_chart.h"
#include "tarn/foundation/text.h"

namespace tarn {
namespace {

namespace fs = std::filesystem;

fs::path ReferenceFolder() {
  const char* folder = std::getenv("TARN_CHART_REFERENCE_DIR");
  return folder != nullptr ? fs::path(folder) : fs::path("/usr/share/color/argyll/ref");
}

// The CGATS text files of the folder, told apart from profiles and chart
// layouts by their content, not their extension.
std::vector<fs::path> ChartFiles() {
  std::vector<fs::path> files;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(ReferenceFolder(), error)) {
    if (!entry.is_regular_file()) {
      continue;
    }
    const std::string bytes = test::ReadBytes(entry.path());
    if (bytes.find('\0') == std::string::npos && bytes.find("BEGIN_DATA_FORMAT") != std::string::npos) {
      files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

void SilenceLcms(cmsContext, cmsUInt32Number, const char*) {}

// Compares one table with what Little CMS read: the fields, and every cell,
// as numbers where the cell is one (Little CMS rewrites numbers as "%.10g").
void ExpectSameAsLcms(const CIT8Table& table, cmsHANDLE lcms, const std::string& where) {
  char** names = nullptr;
  const int count = cmsIT8EnumDataFormat(lcms, &names);
  ASSERT_EQ(static_cast<std::size_t>(count), table.GetFieldCount()) << where;
  for (int f = 0; f < count; ++f) {
    EXPECT_EQ(FromUtf8(names[f]), table.GetFields()[static_cast<std::size_t>(f)]) << where;
  }
  const auto rows = static_cast<std::size_t>(cmsIT8GetPropertyDbl(lcms, "NUMBER_OF_SETS"));
  ASSERT_EQ(rows, table.GetRowCount()) << where;
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t field = 0; field < table.GetFieldCount(); ++field) {
      const char* theirs = cmsIT8GetDataRowCol(lcms, static_cast<int>(row), static_cast<int>(field));
      ASSERT_NE(theirs, nullptr) << where;
      double ours = 0.0;
      if (table.GetCellReal(row, field, ours)) {
        const double value = std::strtod(theirs, nullptr);
        EXPECT_NEAR(ours, value, 1e-9 * std::max(1.0, std::fabs(value))) << where << " row " << row;
      } else {
        EXPECT_EQ(table.GetCell(row, field), FromUtf8(theirs)) << where << " row " << row;
      }
    }
  }
}

TEST(ReferenceCharts, EveryShippedChartRoundTripsAndAgreesWithLittleCms) {
  const std::vector<fs::path> files = ChartFiles();
  ASSERT_FALSE(files.empty()) << "no chart files in " << ReferenceFolder()
                              << " (scripts/install-deps installs Debian's argyll-ref)";
  cmsSetLogErrorHandler(SilenceLcms);
  std::size_t lcms_read = 0;
  std::size_t tables = 0;
  for (const fs::path& file : files) {
    const std::string name = file.filename().string();
    CIT8Chart chart;
    CIT8Issue error;
    ASSERT_TRUE(chart.LoadFile(FromUtf8(file.string()), &error)) << name << ": " << ToUtf8(error.Describe());
    ASSERT_GT(chart.GetTableCount(), 0u) << name;
    tables += chart.GetTableCount();

    std::string written;
    std::wstring write_error;
    ASSERT_TRUE(chart.WriteText(written, &write_error)) << name << ": " << ToUtf8(write_error);
    CIT8Chart again;
    ASSERT_TRUE(again.ReadText(written, &error)) << name << ": " << ToUtf8(error.Describe());
    EXPECT_EQ(again, chart) << name;
    EXPECT_TRUE(again.GetWarnings().empty()) << name << ": the writer states the counts it has";

    // Little CMS refuses files whose NUMBER_OF_FIELDS disagrees with the field
    // list; those are compared through our rewritten text instead.
    cmsHANDLE lcms = cmsIT8LoadFromFile(nullptr, file.string().c_str());
    if (lcms == nullptr) {
      EXPECT_FALSE(chart.GetWarnings().empty())
          << name << ": Little CMS refused a file we found nothing wrong with";
      lcms = cmsIT8LoadFromMem(nullptr, written.data(), static_cast<cmsUInt32Number>(written.size()));
    } else {
      ++lcms_read;
    }
    ASSERT_NE(lcms, nullptr) << name << ": Little CMS cannot read what we wrote";
    ASSERT_EQ(cmsIT8TableCount(lcms), chart.GetTableCount()) << name;
    for (std::size_t t = 0; t < chart.GetTableCount(); ++t) {
      ASSERT_GE(cmsIT8SetTable(lcms, static_cast<cmsUInt32Number>(t)), 0) << name;
      ExpectSameAsLcms(*chart.GetTable(t), lcms, name + " table " + std::to_string(t));
    }
    cmsIT8Free(lcms);
  }
  cmsSetLogErrorHandler(nullptr);
  RecordProperty("files", static_cast<int>(files.size()));
  RecordProperty("tables", static_cast<int>(tables));
  RecordProperty("read_by_lcms", static_cast<int>(lcms_read));
}

}  // namespace
}  // namespace tarn
