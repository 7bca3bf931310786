// The sample printer definitions shipped in examples/rip load and say what the
// sample print modes rely on, and tarn info summarises a definition.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/test_support.h"
#include "tarn/foundation/text.h"
#include "tarn/printer/printer_data.h"

namespace tarn {
namespace {

const std::filesystem::path kSamples =
    std::filesystem::path(TARN_TEST_DATA_DIR) / ".." / ".." / "examples" / "rip" / "System" / "printers";

CPrinterData Sample(const char* name) {
  CPrinterData printer;
  EXPECT_TRUE(printer.LoadFile(FromUtf8((kSamples / name).string()))) << name;
  return printer;
}

TEST(SamplePrinters, EveryDefaultNamesSomethingTheDefinitionHolds) {
  for (const char* name : {"Aurora64.pdx", "Hexa6.pdx", "Lumen40.pdx"}) {
    const CPrinterData printer = Sample(name);
    EXPECT_NE(printer.GetResolution(printer.GetDpiDefault()), nullptr) << name;
    EXPECT_NE(printer.GetColorModel(printer.GetColorDefault()), nullptr) << name;
    EXPECT_NE(printer.GetPages().Get(printer.GetDefaultPageSize().c_str()), nullptr) << name;
  }
}

TEST(SamplePrinters, EachShowsItsKindOfPrinter) {
  const CPrinterData aurora = Sample("Aurora64.pdx");
  EXPECT_TRUE(aurora.IsLayerDevice());
  const CColorDef* eight = aurora.GetColorModel(L"CMYKLcLmWV");
  ASSERT_NE(eight, nullptr);
  EXPECT_EQ(eight->GetPlanes().size(), 8u);
  EXPECT_FALSE(eight->FindPlane(L"White")->color);
  EXPECT_FALSE(eight->FindPlane(L"Varnish")->color);
  EXPECT_EQ(aurora.GetDataMonitor(), L"External");

  const CPrinterData hexa = Sample("Hexa6.pdx");
  EXPECT_EQ(hexa.GetColorModel(L"CMYKOG")->GetPlanes(),
            (std::vector<std::wstring>{L"Cyan", L"Magenta", L"Yellow", L"Black", L"Orange", L"Green"}));
  EXPECT_EQ(hexa.GetResolutions().size(), 3u);
  ASSERT_NE(hexa.GetResolution(L"600 x 600")->GetFencePoints(), nullptr);
  EXPECT_EQ(hexa.GetDotProfiles().size(), 3u);

  const CPrinterData lumen = Sample("Lumen40.pdx");
  EXPECT_TRUE(lumen.IsLaserDevice());
  EXPECT_TRUE(lumen.IsCostingLaser());
  EXPECT_EQ(lumen.GetAbortCommand(), "\x1b\x41");
}

TEST(SamplePrinters, InfoCommandSummarisesADefinition) {
  const std::string tool = TARN_TOOL_PATH;
  if (tool.empty()) {
    GTEST_SKIP() << "the tool is not built";
  }
  test::TempFolder temp;
  const std::string out = (temp.path() / "info.txt").string();
  const std::string pdx = (kSamples / "Hexa6.pdx").string();
  ASSERT_EQ(std::system(("\"" + tool + "\" info \"" + pdx + "\" > \"" + out + "\"").c_str()), 0);
  const std::string text = test::ReadBytes(out);
  for (const char* expected :
       {"  long name            Hexa 6\n", "resolutions (3)\n",
        "  600 x 600            600 x 600 dpi, 2 bits, dot sizes S,M,L, fence points (3 profiles)\n",
        "  CMYKOG               Six colour (orange, green): Cyan, Magenta, Yellow, Black, "
        "Orange, Green\n",
        "  A2                   16.54 x 23.39 in (printable 16.29 x 23.14)\n"}) {
    EXPECT_NE(text.find(expected), std::string::npos) << expected;
  }
  const std::string bad =
      (std::filesystem::path(TARN_TEST_DATA_DIR) / "invalid" / "printer_no_printer.pdx").string();
  EXPECT_NE(std::system(("\"" + tool + "\" info \"" + bad + "\" 2>/dev/null").c_str()), 0);
}

}  // namespace
}  // namespace tarn
