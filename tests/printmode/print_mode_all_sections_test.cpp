// Every section of a print mode at once, changed in every field the file
// keeps: one save and reload must give back the same record and, saved again,
// the same bytes, whatever the process locale.

#include <gtest/gtest.h>

#include <string>

#include "printmode/samples.h"
#include "support/test_support.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

CPrintModeData EverySection() {
  CPrintModeData mode;
  mode.SetName(L"Every Section.pmx");
  mode.SetPrinterX(L"Aurora 64");
  mode.SetDriver(L"NoSuchDriver");  // no definition: no laser data is written
  test::FillCurveSections(mode);
  test::FillScreenSections(mode);
  test::FillOptionSections(mode);
  // Loading clears the override flags; the original must match what comes back.
  mode.DisableAllOverrideFlags();
  return mode;
}

TEST(PrintModeAllSections, SaveAndReloadGiveTheSameRecordAndBytes) {
  test::TempFolder temp;
  CPrintModeData mode = EverySection();
  ASSERT_FALSE(mode == CPrintModeData());
  ASSERT_TRUE(mode.SavePrintMode(temp.wide().c_str(), false));
  const std::string first = test::ReadBytes(temp.path() / "Every Section.pmx");

  const CPrintModeData reloaded(temp.File("Every Section.pmx"));
  ASSERT_TRUE(reloaded.IsLoaded());
  EXPECT_TRUE(reloaded == EverySection());
  // The bytes cover what the comparison leaves out (names, identifiers,
  // metadata): a second save of the reloaded record writes the same file.
  CPrintModeData again = reloaded;
  ASSERT_TRUE(again.SavePrintMode(nullptr, false));
  EXPECT_EQ(test::ReadBytes(temp.path() / "Every Section.pmx"), first);
}

TEST(PrintModeAllSections, DecimalCommaLocaleWritesAndReadsTheSameBytes) {
  test::TempFolder temp;
  CPrintModeData mode = EverySection();
  ASSERT_TRUE(mode.SavePrintMode(temp.wide().c_str(), false));
  const std::string in_c = test::ReadBytes(temp.path() / "Every Section.pmx");

  test::DecimalCommaLocale locale;
  if (!locale.active()) {
    GTEST_SKIP() << "no decimal-comma locale on this machine";
  }
  const CPrintModeData reloaded(temp.File("Every Section.pmx"));
  EXPECT_TRUE(reloaded == EverySection());
  CPrintModeData again = reloaded;
  ASSERT_TRUE(again.SavePrintMode(nullptr, false));
  EXPECT_EQ(test::ReadBytes(temp.path() / "Every Section.pmx"), in_c);
}

}  // namespace
}  // namespace tarn
