// The PostScript set-up run by a real interpreter. Ghostscript runs the
// stub of what the RIP provides (tests/data/postscript/rip_stub.ps), then a
// print mode's whole set-up, then a check that prints every transfer and
// separation table element by element and calls every procedure the set-up
// defines. The tables must hold what the curves give for the tones 0..255.

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "printmode/samples.h"
#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/text.h"
#include "tarn/postscript/postscript_setup.h"
#include "tarn/printer/definitions.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

namespace fs = std::filesystem;

const fs::path kExampleModes =
    fs::path(TARN_TEST_DATA_DIR).parent_path().parent_path() / "examples" / "rip" / "System" / "pmodes";

struct GhostscriptRun {
  int status = -1;
  std::string output;  // standard output and error together
};

GhostscriptRun RunGhostscript(const test::TempFolder& folder, const std::string& setup,
                              const std::string& check) {
  test::WriteBytes(folder.path() / "setup.ps", setup);
  test::WriteBytes(folder.path() / "check.ps", check);
  const std::string command =
      "gs -dNODISPLAY -dBATCH -dNOPAUSE -dSAFER -q \"" + test::DataFile("postscript/rip_stub.ps").string() +
      "\" \"" + (folder.path() / "setup.ps").string() + "\" \"" + (folder.path() / "check.ps").string() +
      "\" >\"" + (folder.path() / "out").string() + "\" 2>&1";
  const int raw = std::system(command.c_str());
  GhostscriptRun run;
  run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  run.output = test::ReadBytes(folder.path() / "out");
  return run;
}

// What the interpreter printed for each "TABLE name" heading: the numbers below it.
std::map<std::string, std::vector<int>> ParseTables(const std::string& output) {
  std::map<std::string, std::vector<int>> tables;
  std::istringstream lines(output);
  std::string line;
  std::vector<int>* current = nullptr;
  while (std::getline(lines, line)) {
    if (line.starts_with("TABLE ")) {
      current = &tables[line.substr(6)];
    } else if (line == "END") {
      current = nullptr;
    } else if (current != nullptr) {
      current->push_back(std::stoi(line));
    }
  }
  return tables;
}

// A check script: print the named tables, then call every procedure.
std::string CheckScript(const std::vector<std::string>& tables, bool screens) {
  std::string check = "clear\n";
  for (const std::string& table : tables) {
    check += "(TABLE " + table + ") = userdict /" + table + " get { = } forall (END) =\n";
  }
  check +=
      "printer_desc /NColor get /TProcs get { 0.5 exch exec pop } forall\n"
      "printer_desc /NColor get /ClippingTProcs get { exch pop dup length 1 sub get 0.5 exch exec pop } "
      "forall\n";
  if (screens) {
    check += "(Cyan) PlateColor (No such plate) PlateColor\n";
  }
  check += "(DONE) =\n";
  return check;
}

// A level table's values as the curve gives them: rounded, gray starting at
// 0, and a last value of 254 or more raised to 255.
std::vector<int> ExpectedLevels(const CPMCurveData& curve, unsigned plane) {
  std::vector<int> values;
  for (int i = 0; i < 256; ++i) {
    double v = std::floor(curve.GetCurveValue(i, false) + 0.5);
    if ((i == 0 && plane == 4) || std::isnan(v)) {
      v = 0;
    }
    if (i == 255 && v >= 254) {
      v = 255;
    }
    values.push_back(static_cast<int>(std::clamp(v, 0.0, 255.0)));
  }
  return values;
}

std::vector<int> ExpectedSeparation(const CPMCurveData& curve) {
  std::vector<int> values;
  for (int i = 0; i < 256; ++i) {
    values.push_back(
        static_cast<int>(std::clamp(std::floor(curve.GetCurveValue(i, false) + 0.5), 0.0, 255.0)));
  }
  return values;
}

// Every table of the text holds 256 values: eight lines of 64 hex digits.
// The interpreter would quietly pad an odd digit count, so this is checked here.
void ExpectWellShapedTables(const std::wstring& text) {
  size_t at = 0;
  int tables = 0;
  while ((at = text.find(L" <\r\n", at)) != std::wstring::npos) {
    const size_t end = text.find(L"> def", at);
    ASSERT_NE(end, std::wstring::npos);
    const std::wstring body = text.substr(at + 4, end - at - 4);
    if (!body.empty()) {
      ASSERT_EQ(body.size(), 8u * 66u) << "table " << tables;
      for (size_t line = 0; line < 8; ++line) {
        const std::wstring digits = body.substr(line * 66, 64);
        EXPECT_EQ(digits.find_first_not_of(L"0123456789abcdef"), std::wstring::npos);
        EXPECT_EQ(body.substr(line * 66 + 64, 2), L"\r\n");
      }
    }
    ++tables;
    at = end;
  }
  EXPECT_GT(tables, 0);
}

class PostscriptInterpreterTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (std::system("gs --version >/dev/null 2>&1") != 0) {
      FAIL() << "Ghostscript (gs) is missing: run scripts/install-deps";
    }
    test::InstallTestPrinters(rip_.path());
    SetTarnRipSystemRoot(rip_.wide().c_str());
  }
  void TearDown() override { SetTarnRipSystemRoot(L""); }

  // A print mode of a test printer with linear separations for colorMode.
  static CPrintModeData Mode(const wchar_t* driver, const wchar_t* colorMode) {
    CPrintModeData mode;
    mode.SetDriver(driver);
    CPrinterData printer;
    EXPECT_TRUE(printer.LoadPrinter(driver));
    EXPECT_TRUE(mode.ResetSeparationData(colorMode, &printer));
    return mode;
  }

  // Runs the set-up of mode and checks its transfer and separation tables
  // against the curves.
  void RunAndCompare(CPrintModeData& mode, const std::string& label) {
    SCOPED_TRACE(label);
    CPrinterData printer;
    printer.LoadPrinter(mode.GetDriver());
    CPostscriptSetup setup(mode);
    setup.WritePostscriptSection(printer);
    ExpectWellShapedTables(setup.GetText());

    std::map<std::string, std::vector<int>> expected;
    const CPMTransferData& transfers = *mode.GetTransfers();
    const std::pair<const char*, unsigned> levels[] = {{"gray", 4}, {"red", 1},  {"green", 2},
                                                       {"blue", 3}, {"hex1", 5}, {"hex2", 6}};
    for (const auto& [name, plane] : levels) {
      expected[std::string(name) + "transfertable"] =
          ExpectedLevels(*transfers.GetCurve(transfers.GetUseAll() ? 0 : plane, 0), plane);
    }
    if (const CColorDef* model = mode.GetColorModel(printer)) {
      for (const std::wstring& plane : model->GetPlanes()) {
        const CPMSeparationData::ChannelQueue* channels = mode.GetSeparations()->GetPlane(plane);
        ASSERT_TRUE(channels != nullptr && !channels->empty()) << ToUtf8(plane);
        // The plane's own ink, else its first channel.
        const CPMCurveData* curve = &channels->front();
        for (const CPMCurveData& channel : *channels) {
          if (channel.GetName() == plane) {
            curve = &channel;
            break;
          }
        }
        expected[ToUtf8(CPostscriptSetup::SeparationTableName(plane)) + "separation"] =
            ExpectedSeparation(*curve);
      }
    }
    std::vector<std::string> names;
    for (const auto& entry : expected) {
      names.push_back(entry.first);
    }

    const GhostscriptRun run =
        RunGhostscript(rip_, setup.GetBytes(), CheckScript(names, mode.GetHalftones()->GetIsUsed()));
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(run.output.find("Error"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("DONE"), std::string::npos) << run.output;
    const auto tables = ParseTables(run.output);
    for (const auto& [name, values] : expected) {
      const auto found = tables.find(name);
      ASSERT_NE(found, tables.end()) << name;
      EXPECT_EQ(found->second, values) << name;
    }
  }

  test::TempFolder rip_;
};

TEST_F(PostscriptInterpreterTest, ADefaultPrintModeWithoutAPrinter) {
  CPrintModeData mode;
  RunAndCompare(mode, "default");
}

TEST_F(PostscriptInterpreterTest, DensityAndLevelCurves) {
  CPrintModeData mode = Mode(L"Hexa6", L"CMYKOG");
  mode.SetPrinterX(L"Hexa 6 (left)");
  CPMTransferData& transfers = *mode.GetTransfers();
  CPMCurveData level(false, 0);
  level.SetValueStraight(0, 10.0);   // low
  level.SetValueStraight(1, 1.8);    // gamma
  level.SetValueStraight(2, 240.0);  // high
  transfers.SetCurve(1, level, 0);
  CPMCurveData lifted;
  lifted.SetValue(0.42, 0.3125);
  lifted.SetValueStraight(0, 0.004);  // tone 255 gives 253.98: the last value becomes 255
  transfers.SetCurve(4, lifted, 0);
  CPMCurveData half;
  half.MakeLinear(0.5);
  transfers.SetCurve(2, half, 0);
  mode.GetSeparations()->GetChannel(L"Cyan", 0u)->MakeLinear(0.7);
  mode.GetSeparations()->GetChannel(L"Orange", 0u)->SetValue(0.5, 0.2);
  mode.GetHalftones()->SetIsUsed(true);
  mode.GetPrinterOptions()->SetOptionValue(L"Quality", L"Fine");
  RunAndCompare(mode, "curves");

  // One curve for every plane.
  transfers.SetUseAll(true);
  transfers.SetCurve(0, level, 0);
  RunAndCompare(mode, "one curve for all");
}

TEST_F(PostscriptInterpreterTest, TheSamplePrintModes) {
  int count = 0;
  for (const fs::directory_entry& folder : fs::directory_iterator(kExampleModes)) {
    for (const fs::directory_entry& file : fs::directory_iterator(folder.path())) {
      if (!file.is_regular_file() || file.path().extension() != ".pmx") {
        continue;  // a printer's Media folder sits beside its print modes
      }
      CPrintModeData mode;
      ASSERT_TRUE(mode.LoadXMLPrintMode(FromUtf8(file.path().string())));
      mode.GetHalftones()->SetIsUsed(true);
      RunAndCompare(mode, file.path().filename().string());
      ++count;
    }
  }
  EXPECT_GE(count, 3);
}

TEST_F(PostscriptInterpreterTest, HexachromeWithOptions) {
  CPrintModeData mode = Mode(L"Chroma6", L"Hexachrome");
  mode.GetSeparations()->GetChannel(L"Hex1", 0u)->MakeLinear(0.8);
  mode.GetPrinterOptions()->SetOptionValue(L"Resolution", L"600 x 600");
  mode.GetPrinterOptions()->SetOptionValue(L"Passes", L"8");
  mode.GetHalftones()->SetIsUsed(true);
  mode.GetHalftones()->SetUseAppHalftoning(true);
  RunAndCompare(mode, "hexachrome");
}

TEST_F(PostscriptInterpreterTest, PlaneNamesThatAreNotPostScriptNames) {
  CPrintModeData mode = Mode(L"Chroma6", L"CMYK+Spots");
  mode.SetPrinterX(L"Chroma (6) \\ spots");
  mode.GetSeparations()->GetChannel(L"Spot (1)", 0u)->MakeLinear(0.25);
  mode.GetHalftones()->SetIsUsed(true);
  mode.GetHalftones()->GetHalftoneOption(std::wstring(L"Spot"))->SetAngle(15.0);
  RunAndCompare(mode, "spot inks");
}

TEST_F(PostscriptInterpreterTest, InvertFlipsEveryTableOnce) {
  CPrintModeData mode;
  mode.SetInvert(true);
  mode.SetMirror(true);
  CPMCurveData half;
  half.MakeLinear(0.5);
  mode.GetTransfers()->SetCurve(1, half, 0);
  CPostscriptSetup setup(mode);
  setup.WritePostscriptSection();
  setup.WriteMirror();
  // Run twice: the guard keeps the second run from flipping back.
  setup.WriteInvert();
  setup.WriteInvert();
  const GhostscriptRun run =
      RunGhostscript(rip_, setup.GetBytes(),
                     "(TABLE red) = userdict /redtransfertable get { = } forall (END) =\n(DONE) =\n");
  ASSERT_EQ(run.status, 0) << run.output;
  std::vector<int> inverted;
  for (int v : ExpectedLevels(half, 1)) {
    inverted.push_back(255 - v);
  }
  EXPECT_EQ(ParseTables(run.output)["red"], inverted);
}

}  // namespace
}  // namespace tarn
