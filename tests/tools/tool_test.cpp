// The tarn command-line tool as a user meets it: what it prints, and one clear
// line on stderr with a failing exit status for anything it cannot read.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/version.h"

namespace tarn {
namespace {

namespace fs = std::filesystem;

const fs::path kExamples = fs::path(TARN_TEST_DATA_DIR).parent_path().parent_path() / "examples" / "rip";

using test::ToolRun;

ToolRun Tool(const std::vector<std::string>& args) {
  return test::RunTool(TARN_TOOL_PATH, args);
}

class ToolTest : public testing::Test {
 protected:
  void SetUp() override {
    if (std::string(TARN_TOOL_PATH).empty()) {
      GTEST_SKIP() << "the tool is not built";
    }
  }
};

TEST_F(ToolTest, VersionNamesBothVersions) {
  const ToolRun run = Tool({"--version"});
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.out.find("10.9.259"), std::string::npos);
  EXPECT_NE(run.out.find(TARN_VERSION_STRING), std::string::npos);
  EXPECT_EQ(Tool({"--help"}).status, 0);
  EXPECT_EQ(Tool({"frobnicate"}).status, 2);
  EXPECT_EQ(Tool({"info"}).status, 2);
}

TEST_F(ToolTest, ListsAndDescribesTheSampleRipFolder) {
  const ToolRun list = Tool({"list", kExamples.string()});
  ASSERT_EQ(list.status, 0) << list.err;
  EXPECT_NE(list.out.find("Hexa6\\Coated Paper 600.pmx\n"), std::string::npos) << list.out;
  EXPECT_NE(list.out.find("Lumen40\\Birch Plywood.pmx\n"), std::string::npos) << list.out;

  const ToolRun info = Tool({"info", (kExamples / "System/pmodes/Hexa6/Coated Paper 600.pmx").string()});
  ASSERT_EQ(info.status, 0) << info.err;
  for (const char* expected :
       {"  printer              Hexa 6\n", "  media category       Paper\n",
        "  separations          off, colour mode CMYKOG, 6 planes: Black, Cyan, Green, "
        "Magenta, Orange, Yellow\n",
        "  fence points         on, colour mode CMYKOG\n"}) {
    EXPECT_NE(info.out.find(expected), std::string::npos) << expected << "\nin\n" << info.out;
  }
  EXPECT_TRUE(info.err.empty()) << info.err;
}

TEST_F(ToolTest, BadInputGivesOneLineAndAFailingStatus) {
  const std::vector<std::vector<std::string>> cases = {
      {"info", (fs::path(TARN_TEST_DATA_DIR) / "invalid/empty.pmx").string()},
      {"info", (fs::path(TARN_TEST_DATA_DIR) / "invalid/not_xml.pmx").string()},
      {"info", (fs::path(TARN_TEST_DATA_DIR) / "invalid/truncated.pmx").string()},
      {"info", (fs::path(TARN_TEST_DATA_DIR) / "invalid/lowercase_root.pmx").string()},
      {"info", (fs::path(TARN_TEST_DATA_DIR) / "invalid/binary_archive.pmx").string()},
      {"info", (fs::path(TARN_TEST_DATA_DIR) / "invalid/missing.pmx").string()},
      {"info", TARN_TEST_DATA_DIR},
      {"list", (fs::path(TARN_TEST_DATA_DIR) / "no such folder").string()},
      {"list", TARN_TEST_DATA_DIR},
      {"curves", (fs::path(TARN_TEST_DATA_DIR) / "invalid/truncated.pmx").string(), "-o", "/dev/null"},
  };
  for (const std::vector<std::string>& args : cases) {
    const ToolRun run = Tool(args);
    EXPECT_EQ(run.status, 1) << args[1];
    EXPECT_TRUE(run.out.empty()) << args[1];
    ASSERT_FALSE(run.err.empty()) << args[1];
    EXPECT_EQ(run.err.rfind("tarn: ", 0), 0u) << run.err;
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << "one line: " << run.err;
  }
}

}  // namespace
}  // namespace tarn
