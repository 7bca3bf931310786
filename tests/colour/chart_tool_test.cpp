// tarn chart and tarn deltae as a user meets them: what they print, the
// picture they draw, and one clear line with a failing status for bad input.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/colour/chart_plot.h"

namespace tarn {
namespace {

using test::ToolRun;

ToolRun Tool(const std::vector<std::string>& args) {
  return test::RunTool(TARN_TOOL_PATH, args);
}

constexpr const char* kReference =
    "CGATS.17\r\n"
    "DESCRIPTOR \"Press proof\"\r\n"
    "BEGIN_DATA_FORMAT\r\n"
    "SAMPLE_ID LAB_L LAB_A LAB_B\r\n"
    "END_DATA_FORMAT\r\n"
    "BEGIN_DATA\r\n"
    "W 95 0 2\r\n"
    "C 55 -37 -50\r\n"
    "M 48 74 -3\r\n"
    "K 16 0 0\r\n"
    "END_DATA\r\n";

class ChartToolTest : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string(TARN_TOOL_PATH).empty()) {
      GTEST_SKIP() << "the tool is not built";
    }
    test::WriteBytes(temp_.path() / "reference.txt", kReference);
    // The sample is measured in XYZ and lists its patches in another order.
    test::WriteBytes(temp_.path() / "sample.txt",
                     "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_ID XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\nBEGIN_DATA\n"
                     "K 2.1 2.2 1.9\nW 84 88 70\nEND_DATA\n");
  }
  std::string File(const std::string& name) const { return (temp_.path() / name).string(); }

  test::TempFolder temp_;
};

TEST_F(ChartToolTest, ChartSummarisesTablesFieldsAndLabRange) {
  const ToolRun run = Tool({"chart", File("reference.txt")});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "chart " + File("reference.txt") +
                         ": 1 table\n"
                         "table 1: CGATS.17, 4 patches, 4 fields\n"
                         "  descriptor: Press proof\n"
                         "  fields: SAMPLE_ID LAB_L LAB_A LAB_B\n"
                         "  Lab: L 16.00..95.00  a -37.00..74.00  b -50.00..2.00\n");
}

TEST_F(ChartToolTest, DeltaEPairsByIdAndListsTheWorst) {
  const ToolRun run = Tool({"deltae", File("reference.txt"), File("sample.txt"), "--method", "76"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_NE(
      run.out.find("2 patches paired by SAMPLE_ID, compared with dE76 (unpaired: 2 in the reference, 0 in "
                   "the sample)\n"),
      std::string::npos)
      << run.out;
  // White first: it is further off than black.
  const std::size_t white = run.out.find("\n  W ");
  const std::size_t black = run.out.find("\n  K ");
  ASSERT_NE(white, std::string::npos) << run.out;
  ASSERT_NE(black, std::string::npos) << run.out;
  EXPECT_LT(white, black);
}

TEST_F(ChartToolTest, PlotDrawsEveryPatchInItsOwnColour) {
  const ToolRun run = Tool({"chart", File("reference.txt"), "-o", File("plot.svg")});
  ASSERT_EQ(run.status, 0) << run.err;
  const std::string svg = test::ReadBytes(temp_.path() / "plot.svg");
  std::size_t circles = 0;
  for (std::size_t at = svg.find("<circle"); at != std::string::npos; at = svg.find("<circle", at + 1)) {
    ++circles;
  }
  EXPECT_EQ(circles, 4u);
  EXPECT_NE(svg.find("fill=\"" + LabToHexColor({48, 74, -3}) + "\""), std::string::npos);
  // Magenta is drawn right of the centre (a* > 0), cyan left and below.
  EXPECT_NE(svg.find("cx=\"481.88\" cy=\"326.56\""), std::string::npos) << svg;
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(svg.c_str()));
}

TEST_F(ChartToolTest, FailuresAreOneLine) {
  test::WriteBytes(temp_.path() / "comma.txt",
                   "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_ID LAB_L LAB_A LAB_B\nEND_DATA_FORMAT\nBEGIN_DATA\n"
                   "A 1,5 0 0\nEND_DATA\n");
  test::WriteBytes(temp_.path() / "device.txt",
                   "CGATS.17\nBEGIN_DATA_FORMAT\nSAMPLE_ID CMYK_C CMYK_M CMYK_Y CMYK_K\nEND_DATA_FORMAT\n"
                   "BEGIN_DATA\nA 0 0 0 100\nEND_DATA\n");
  const struct {
    std::vector<std::string> args;
    int status;
    std::string err;
  } cases[] = {
      {{"chart", File("comma.txt")},
       1,
       "tarn: " + File("comma.txt") +
           ": line 6: \"1,5\" is not a number (field LAB_L); numbers are written with a decimal point\n"},
      {{"chart", File("missing.txt")}, 1, "tarn: no such file: " + File("missing.txt") + "\n"},
      {{"chart", File("device.txt"), "-o", File("device.svg")},
       1,
       "tarn: " + File("device.txt") + ": the chart has no Lab or XYZ values to draw\n"},
      {{"deltae", File("reference.txt"), File("device.txt")},
       1,
       "tarn: " + File("reference.txt") + " and " + File("device.txt") +
           ": the compared chart has no Lab or XYZ values\n"},
      {{"deltae", File("reference.txt")},
       2,
       "usage: tarn deltae REFERENCE SAMPLE [--method 76|94|2000] [--match id|name]\n"},
      {{"deltae", File("reference.txt"), File("sample.txt"), "--method", "CMC"},
       2,
       "usage: tarn deltae REFERENCE SAMPLE [--method 76|94|2000] [--match id|name]\n"},
  };
  for (const auto& c : cases) {
    const ToolRun run = Tool(c.args);
    EXPECT_EQ(run.status, c.status) << c.err;
    EXPECT_EQ(run.err, c.err);
    EXPECT_TRUE(run.out.empty()) << run.out;
  }
}

}  // namespace
}  // namespace tarn
