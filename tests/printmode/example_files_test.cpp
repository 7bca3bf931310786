// The sample RIP folder doubles as the library's whole-file expected output:
// its print modes were written by the library (scripts/make-examples), so
// loading and saving each must give the very same bytes. A layout change that
// is meant shows up here and is taken over by rerunning scripts/make-examples.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/text.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

namespace fs = std::filesystem;

const fs::path kRip = fs::path(TARN_TEST_DATA_DIR).parent_path().parent_path() / "examples" / "rip";

std::string Bytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Every file under the sample folder with that extension, so that a sample
// added later is covered without touching this test.
std::vector<fs::path> Samples(const std::string& extension) {
  std::vector<fs::path> found;
  for (const auto& entry : fs::recursive_directory_iterator(kRip)) {
    if (entry.is_regular_file() && entry.path().extension() == extension) {
      found.push_back(entry.path());
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

// The first line where two texts part, for a failure message a person can act on.
std::string FirstDifference(const std::string& expected, const std::string& actual) {
  const auto [e, a] = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  const auto line = 1 + std::count(expected.begin(), e, '\n');
  const auto lineEnd = [](auto from, auto end) { return std::string(from, std::find(from, end, '\n')); };
  const auto eStart = std::find(std::make_reverse_iterator(e), expected.rend(), '\n').base();
  const auto aStart = std::find(std::make_reverse_iterator(a), actual.rend(), '\n').base();
  return "line " + std::to_string(line) + ": expected \"" + lineEnd(eStart, expected.end()) + "\", wrote \"" +
         lineEnd(aStart, actual.end()) + "\"";
}

class ExampleFiles : public ::testing::Test {
 protected:
  // Saving decides on laser data from the printer definition in the RIP
  // folder, so the samples are saved with their own folder as the RIP.
  void SetUp() override {
    previous_ = GetTarnRipFolder();
    SetTarnRipSystemRoot(FromUtf8(kRip.string() + "/").c_str());
  }
  void TearDown() override { SetTarnRipSystemRoot(previous_.c_str()); }

 private:
  std::wstring previous_;
};

TEST_F(ExampleFiles, EveryPrintModeSavesToTheSameBytes) {
  const std::vector<fs::path> samples = Samples(".pmx");
  ASSERT_GE(samples.size(), 4u) << "the sample folder lost its print modes";
  for (const fs::path& sample : samples) {
    SCOPED_TRACE(sample.string());
    CPrintModeData mode;
    ASSERT_TRUE(mode.LoadPrintMode(nullptr, nullptr, FromUtf8(sample.string()).c_str(), true));
    test::TempFolder temp;
    ASSERT_TRUE(mode.SavePrintMode(temp.wide().c_str(), false));
    const fs::path written = temp.path() / sample.filename();
    ASSERT_TRUE(fs::exists(written)) << "saved under another name";
    const std::string expected = Bytes(sample);
    const std::string actual = Bytes(written);
    EXPECT_TRUE(expected == actual) << FirstDifference(expected, actual)
                                    << "; if the change is meant, rerun scripts/make-examples";
  }
}

// The printer definitions are read, never written, so their check is that
// each loads and that every print mode's printer is among them.
TEST_F(ExampleFiles, EveryPrintModeFindsItsPrinter) {
  const std::vector<fs::path> printers = Samples(".pdx");
  ASSERT_GE(printers.size(), 3u);
  for (const fs::path& path : printers) {
    CPrinterData printer;
    EXPECT_TRUE(printer.LoadFile(FromUtf8(path.string()))) << path;
  }
  for (const fs::path& sample : Samples(".pmx")) {
    CPrintModeData mode;
    ASSERT_TRUE(mode.LoadPrintMode(nullptr, nullptr, FromUtf8(sample.string()).c_str(), true)) << sample;
    const fs::path printer = kRip / "System" / "printers" / (ToUtf8(mode.GetDriver()) + ".pdx");
    EXPECT_TRUE(std::find(printers.begin(), printers.end(), printer) != printers.end()) << sample;
  }
}

}  // namespace
}  // namespace tarn
