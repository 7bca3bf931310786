// The tarn command-line tool as a user meets it: what it prints, and one clear
// line on stderr with a failing exit status for anything it cannot read.

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>

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
  EXPECT_EQ(Tool({"postscript"}).status, 2);
  EXPECT_EQ(Tool({"postscript", "a.pmx", "b.pmx"}).status, 2);
}

TEST_F(ToolTest, ListsAndDescribesTheSampleRipFolder) {
  const ToolRun list = Tool({"list", kExamples.string()});
  ASSERT_EQ(list.status, 0) << list.err;
  EXPECT_NE(list.out.find("Hexa6/Coated Paper 600.pmx\n"), std::string::npos) << list.out;
  EXPECT_NE(list.out.find("Lumen40/Birch Plywood.pmx\n"), std::string::npos) << list.out;

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

TEST_F(ToolTest, PostscriptFindsThePrinterThroughTheRipFolder) {
  const fs::path sample = kExamples / "System/pmodes/Aurora64/Gloss Vinyl 720.pmx";
  const ToolRun run = Tool({"postscript", sample.string()});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(run.err.empty()) << run.err;
  EXPECT_EQ(run.out.rfind("\r\n% -- Printer Selection --\r\n", 0), 0u);
  // The colour model's planes come from examples/rip/System/printers/Aurora64.pdx.
  EXPECT_NE(run.out.find("/lightmagentaseparation <\r\n"), std::string::npos);
  EXPECT_TRUE(run.out.ends_with("% -- End Printer Options --\r\nKestrelA4"));

  test::TempFolder temp;
  ASSERT_EQ(Tool({"postscript", sample.string(), "-o", (temp.path() / "setup.ps").string()}).status, 0);
  EXPECT_EQ(test::ReadBytes(temp.path() / "setup.ps"), run.out);

  // Away from its RIP folder the print mode has no printer: a warning, and
  // the set-up without colour-model planes.
  test::WriteBytes(temp.path() / "Lonely.pmx", test::ReadBytes(sample));
  const ToolRun lonely = Tool({"postscript", (temp.path() / "Lonely.pmx").string()});
  EXPECT_EQ(lonely.status, 0);
  EXPECT_NE(lonely.err.find("warning: printer definition 'Aurora64' not found"), std::string::npos)
      << lonely.err;
  EXPECT_EQ(lonely.out.find("separation <"), std::string::npos);
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
      {"postscript", (fs::path(TARN_TEST_DATA_DIR) / "invalid/not_xml.pmx").string()},
      {"postscript", (fs::path(TARN_TEST_DATA_DIR) / "invalid/missing.pmx").string()},
      {"postscript", (kExamples / "System/pmodes/Hexa6/Coated Paper 600.pmx").string(), "-o",
       (fs::path(TARN_TEST_DATA_DIR) / "no such folder/out.ps").string()},
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

TEST_F(ToolTest, ShowsAndDrawsTheSampleMedia) {
  const ToolRun list = Tool({"media", kExamples.string(), "Hexa6"});
  ASSERT_EQ(list.status, 0) << list.err;
  for (const char* expected :
       {"Labels_3x2                       template   210.0 x 297.0 mm (8.27 x 11.69 in)         6\n",
        "Proof_A3_Plus                    sheet      329.0 x 483.0 mm (12.95 x 19.02 in)        0\n",
        "Default_Template                 template   210.0 x 297.0 mm (8.27 x 11.69 in)         1\n"}) {
    EXPECT_NE(list.out.find(expected), std::string::npos) << expected << "\nin\n" << list.out;
  }

  const fs::path labels = kExamples / "System/pmodes/Hexa6/Media/Labels_3x2.qmd";
  const ToolRun info = Tool({"info", labels.string()});
  ASSERT_EQ(info.status, 0) << info.err;
  EXPECT_NE(info.out.find("    2  image 3    at 75.0, 20.0 mm, 60.0 x 80.0 mm\n"), std::string::npos)
      << info.out;

  test::TempFolder temp;
  const fs::path svg = temp.path() / "labels.svg";
  const ToolRun draw = Tool({"media", labels.string(), "-o", svg.string()});
  ASSERT_EQ(draw.status, 0) << draw.err;
  EXPECT_NE(test::ReadBytes(svg).find("<title>slot 6, image 6"), std::string::npos);
}

TEST_F(ToolTest, MediaFailuresGiveOneLine) {
  test::TempFolder temp;
  test::WriteBytes(temp.path() / "wrong.qmd", "<PMH/>");
  const std::vector<std::vector<std::string>> cases = {
      {"media", (temp.path() / "wrong.qmd").string()},
      {"media", (temp.path() / "missing.qmd").string(), "-o", (temp.path() / "out.svg").string()},
      {"info", (temp.path() / "wrong.qmd").string()},
      {"media", kExamples.string(), "NoSuchPrinter"},
      {"media", (temp.path() / "no such folder").string(), "Hexa6"},
  };
  for (const std::vector<std::string>& args : cases) {
    const ToolRun run = Tool(args);
    EXPECT_EQ(run.status, 1) << args[1];
    EXPECT_TRUE(run.out.empty()) << args[1];
    EXPECT_EQ(run.err.rfind("tarn: ", 0), 0u) << run.err;
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << "one line: " << run.err;
  }
  EXPECT_EQ(Tool({"media", kExamples.string()}).status, 2);
}

// The one line says what is wrong, not merely that something is.
TEST_F(ToolTest, FailuresNameTheirCause) {
  test::TempFolder temp;
  ASSERT_EQ(::mkfifo((temp.path() / "pipe.pmx").c_str(), 0600), 0);
  test::WriteBytes(temp.path() / "deep.pmx", std::string(200, '<').replace(0, 5, "<PMH>"));
  struct Case {
    std::vector<std::string> args;
    const char* says;
  };
  const Case cases[] = {
      {{"info", test::DataFile("invalid/empty.pmx").string()}, ": empty file\n"},
      {{"info", test::DataFile("invalid/truncated.pmx").string()}, ": XML error at line "},
      {{"info", test::DataFile("invalid/lowercase_root.pmx").string()},
       "the root element is <pmh>, not <PMH>"},
      {{"info", TARN_TEST_DATA_DIR}, ": is a folder\n"},
      {{"info", (temp.path() / "pipe.pmx").string()}, ": not a regular file\n"},
      {{"curves", test::DataFile("invalid/empty.pmx").string()}, ": empty file\n"},
      {{"list", test::DataFile("invalid/empty.pmx").string()}, ": not a folder\n"},
      {{"info", test::DataFile("invalid/printer_truncated.pdx").string()}, "(XML error at line "},
  };
  for (const Case& c : cases) {
    const ToolRun run = Tool(c.args);
    EXPECT_EQ(run.status, 1) << c.args[1];
    EXPECT_NE(run.err.find(c.says), std::string::npos) << run.err;
  }
}

// Output that cannot be written is a failure with one line, not a silent success.
TEST_F(ToolTest, AFullDiskGivesOneLineOnStderr) {
  test::TempFolder temp;
  const std::string err = (temp.path() / "err").string();
  for (const std::string& args :
       {"info \"" + (kExamples / "System/pmodes/Hexa6/Coated Paper 600.pmx").string() + "\"",
        "list \"" + kExamples.string() + "\""}) {
    const std::string command =
        "\"" + std::string(TARN_TOOL_PATH) + "\" " + args + " >/dev/full 2>\"" + err + "\"";
    const int raw = std::system(command.c_str());
    EXPECT_EQ(WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, 1) << args;
    EXPECT_EQ(test::ReadBytes(err), "tarn: cannot write the output: no space left on the disk\n") << args;
  }
}

// On a terminal, control characters are shown, not obeyed. Texts inside files
// lose them as the file loads; file names keep them.
TEST_F(ToolTest, ControlCharactersAreEscapedOnATerminal) {
  if (std::system("script --version >/dev/null 2>&1") != 0) {
    GTEST_SKIP() << "script(1) is not installed";
  }
  test::TempFolder rip;
  fs::create_directories(rip.path() / "System/pmodes/Driver");
  test::WriteBytes(rip.path() / "System/pmodes/Driver/red\x1b[31m alert\x07.pmx", "<PMH/>");
  const std::string out = (rip.path() / "out").string();
  const std::string command = "script -qec '\"" + std::string(TARN_TOOL_PATH) + "\" list \"" +
                              rip.path().string() + "\"' /dev/null >\"" + out + "\" 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const std::string text = test::ReadBytes(out);
  EXPECT_NE(text.find("Driver/red\\x1b[31m alert\\x07.pmx"), std::string::npos) << text;
  EXPECT_EQ(text.find('\x1b'), std::string::npos);
  // Into a file or a pipe the name goes as it is.
  const ToolRun plain = Tool({"list", rip.path().string()});
  EXPECT_EQ(plain.out, "Driver/red\x1b[31m alert\x07.pmx\n");
}

TEST_F(ToolTest, ShowsAndChecksAJob) {
  test::TempFolder temp;
  test::WriteBytes(temp.path() / "job.xml",
                   "<QueueEdit version=\"1\"><JobName>Poster\nproof</JobName><Printer>Hexa6</Printer>"
                   "<PageSize><Width>1000</Width><Height>1500</Height><Media>A2</Media></PageSize>"
                   "<PrintMode>Hexa6\\Coated Paper 600.pmx</PrintMode></QueueEdit>");
  test::WriteBytes(temp.path() / "job.txt",
                   "# tarn job parameters 1\nPrinter=Aurora64\nPrintMode=Hexa6\\Coated Paper 600.pmx\n"
                   "PageSize.Width=100\nPageSize.Height=100\nCopies=0\n");

  const ToolRun shown = Tool({"job", (temp.path() / "job.xml").string()});
  ASSERT_EQ(shown.status, 0) << shown.err;
  EXPECT_EQ(shown.out.rfind("queue edit record\n", 0), 0u) << shown.out;
  EXPECT_NE(shown.out.find("  JobName              Poster%0Aproof\n"), std::string::npos) << shown.out;
  EXPECT_NE(shown.out.find("  PageSize.Media       A2\n"), std::string::npos) << shown.out;
  EXPECT_NE(shown.out.find("  SourceFile           -\n"), std::string::npos) << shown.out;
  const ToolRun parameters = Tool({"job", (temp.path() / "job.txt").string()});
  ASSERT_EQ(parameters.status, 0) << parameters.err;
  EXPECT_NE(parameters.out.find("job parameter file\n  JobName              -\n"), std::string::npos)
      << parameters.out;

  const ToolRun passed = Tool({"job", (temp.path() / "job.xml").string(), "--check", kExamples.string()});
  EXPECT_EQ(passed.status, 0) << passed.err;
  EXPECT_NE(passed.out.find("every check passed"), std::string::npos) << passed.out;
  const fs::path example = kExamples.parent_path() / "jobs" / "spring-poster.xml";
  const ToolRun sample = Tool({"job", example.string(), "--check", kExamples.string()});
  EXPECT_EQ(sample.status, 0) << sample.err;

  // Each failed check is one line of its own, naming the parameter.
  const ToolRun failed = Tool({"job", (temp.path() / "job.txt").string(), "--check", kExamples.string()});
  EXPECT_EQ(failed.status, 1);
  EXPECT_TRUE(failed.out.empty()) << failed.out;
  const std::string prefix = "tarn: " + (temp.path() / "job.txt").string() + ": ";
  EXPECT_EQ(failed.err,
            prefix + "Copies: must be at least 1, not 0\n" + prefix +
                "PrintMode: print mode 'Coated Paper 600.pmx' is made for printer 'Hexa6', not for the "
                "queue's printer 'Aurora64'\n");

  test::WriteBytes(temp.path() / "broken.txt", "JobName=50%\n");
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
           {"job", (temp.path() / "missing.xml").string()},
           {"job", (temp.path() / "broken.txt").string()},
           {"job", (temp.path() / "job.xml").string(), "--check", (temp.path() / "no rip").string()},
       }) {
    const ToolRun run = Tool(args);
    EXPECT_EQ(run.status, 1) << args[1];
    EXPECT_EQ(run.err.rfind("tarn: ", 0), 0u) << run.err;
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << "one line: " << run.err;
  }
  EXPECT_EQ(Tool({"job"}).status, 2);
  EXPECT_EQ(Tool({"job", (temp.path() / "job.xml").string(), "--check"}).status, 2);
}

}  // namespace
}  // namespace tarn
