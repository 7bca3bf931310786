// The checks before a job is handed over, on a RIP folder of sample printers,
// print modes and media: a valid job passes, and each broken parameter gives
// one message that names it.

#include "tarn/queue/job_check.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/text.h"
#include "tarn/media/print_media.h"
#include "tarn/queue/queue_edit.h"

namespace tarn {
namespace {

namespace fs = std::filesystem;

const fs::path kExamples = fs::path(TARN_TEST_DATA_DIR).parent_path().parent_path() / "examples" / "rip";

// A proof sheet of 297 x 420 mm with 5 mm margins: 813.54 x 1162.20 pt printable.
constexpr double kA3Width = 841.88976377952747;
constexpr double kA3Height = 1190.5511811023623;
constexpr double kMargin = 14.173228346456694;

class JobCheck : public testing::Test {
 protected:
  void SetUp() override {
    saved_rip_ = GetTarnRipFolder();
    fs::copy(kExamples / "System", rip_.path() / "System", fs::copy_options::recursive);
    SetTarnRipSystemRoot(rip_.wide().c_str());

    CPrintMedia proof;
    proof.SetName(L"Proof_A3");
    proof.SetType(CPrintMedia::MEDIA_SHEET);
    proof.SetSize(kA3Width, kA3Height);
    proof.SetMargins(kMargin, kMargin, kMargin, kMargin);
    const std::wstring media = rip_.wide() + L"System\\pmodes\\Hexa6\\Media\\";
    ASSERT_TRUE(CreateFolders(media));
    std::wstring error;
    ASSERT_TRUE(proof.WriteFile(media, &error)) << ToUtf8(error);

    Write("Hexa6/Broken.pmx", "<PMH version=\"8\">\n<PRINTER>Hexa 6</PRINTER>\n<DRIVER>Hexa6\n");
    Write("Hexa6/Media list.pmx", "<XMEDIA><Name>x</Name></XMEDIA>");
    Write("Hexa6/Layered.pmx",
          "<Tarn version=\"1.0\"><Printer>Hexa 6</Printer><Driver>Hexa6</Driver>"
          "<Layer><Name>Colour</Name></Layer></Tarn>");
    Write("Hexa6/Empty layers.pmx",
          "<Tarn version=\"1.0\"><Printer>Hexa 6</Printer><Driver>Hexa6</Driver></Tarn>");
    Write("Aurora64/Layered.pmx",
          "<Tarn version=\"1.0\"><Printer>Aurora 64</Printer><Driver>Aurora64</Driver><Layer/></Tarn>");
  }
  void TearDown() override { SetTarnRipSystemRoot(saved_rip_.c_str()); }

  void Write(const std::string& relative, const std::string& text) {
    test::WriteBytes(rip_.path() / "System" / "pmodes" / relative, text);
  }

  static CQueueEdit ValidJob() {
    CQueueEdit job;
    job.SetJobName(L"Spring poster");
    job.SetPrinter(L"Hexa6");
    job.SetPrintModePath(L"Hexa6\\Coated Paper 600.pmx");
    job.SetMediaName(L"Proof_A3");
    job.SetPageSize(kA3Width - 2 * kMargin, kA3Height - 2 * kMargin);
    return job;
  }

  test::TempFolder rip_;
  std::wstring saved_rip_;
};

TEST_F(JobCheck, AValidJobPasses) {
  std::vector<JobCheckProblem> problems;
  EXPECT_TRUE(CheckJob(ValidJob(), &problems));
  EXPECT_TRUE(problems.empty()) << ToUtf8(problems.front().message);

  // Other valid forms: a layered print mode, a page size of the printer
  // definition found through the media list, no media at all, a print mode
  // path given in full, in another case, with forward slashes.
  const std::vector<std::function<void(CQueueEdit&)>> variants = {
      [](CQueueEdit& job) { job.SetPrintModePath(L"Hexa6\\Layered.pmx"); },
      [](CQueueEdit& job) {
        job.SetMediaName(L"A2");
        job.SetPageSize(1000.0, 1500.0);
      },
      [](CQueueEdit& job) { job.SetMediaName(L""); },
      [this](CQueueEdit& job) {
        job.SetPrintModePath(rip_.wide() + L"system/PMODES/hexa6/coated paper 600.PMX");
      },
      [](CQueueEdit& job) { job.SetPrinter(L"HEXA6"); },
  };
  for (size_t i = 0; i < variants.size(); ++i) {
    CQueueEdit job = ValidJob();
    variants[i](job);
    problems.clear();
    EXPECT_TRUE(CheckJob(job, &problems))
        << "variant " << i << ": " << problems.front().parameter << ": " << ToUtf8(problems.front().message);
  }
}

TEST_F(JobCheck, EachBrokenParameterIsNamedOnce) {
  struct Case {
    const char* what;
    std::function<void(CQueueEdit&)> change;
    const char* parameter;
    std::wstring message;  // a part of the message
  };
  const std::vector<Case> cases = {
      {"no copies", [](CQueueEdit& job) { job.SetCopies(0); }, "Copies", L"must be at least 1, not 0"},
      {"no print mode", [](CQueueEdit& job) { job.SetPrintModePath(L""); }, "PrintMode",
       L"no print mode is chosen"},
      {"missing print mode", [](CQueueEdit& job) { job.SetPrintModePath(L"Hexa6\\Gone.pmx"); }, "PrintMode",
       L"no such file: "},
      {"print mode not XML", [](CQueueEdit& job) { job.SetPrintModePath(L"Hexa6\\Broken.pmx"); }, "PrintMode",
       L"Broken.pmx: XML error at line "},
      {"not a print mode", [](CQueueEdit& job) { job.SetPrintModePath(L"Hexa6\\Media list.pmx"); },
       "PrintMode", L"not a print mode (the root element is 'XMEDIA')"},
      {"a print mode folder", [](CQueueEdit& job) { job.SetPrintModePath(L"Hexa6"); }, "PrintMode",
       L"Hexa6: "},
      {"layered, no layers", [](CQueueEdit& job) { job.SetPrintModePath(L"Hexa6\\Empty layers.pmx"); },
       "PrintMode", L"the layered print mode has no layers"},
      {"another printer's print mode",
       [](CQueueEdit& job) { job.SetPrintModePath(L"Aurora64\\Gloss Vinyl 720.pmx"); }, "PrintMode",
       L"print mode 'Gloss Vinyl 720.pmx' is made for printer 'Aurora64', not for the queue's printer "
       L"'Hexa6'"},
      {"another printer's layered print mode",
       [](CQueueEdit& job) { job.SetPrintModePath(L"Aurora64\\Layered.pmx"); }, "PrintMode",
       L"is made for printer 'Aurora64'"},
      {"no printer", [](CQueueEdit& job) { job.SetPrinter(L""); }, "Printer", L"the queue names no printer"},
      {"unknown printer", [](CQueueEdit& job) { job.SetPrinter(L"Nimbus9"); }, "Printer",
       L"no printer definition 'Nimbus9' in "},
      {"unknown media", [](CQueueEdit& job) { job.SetMediaName(L"Proof_A4"); }, "PageSize.Media",
       L"printer 'Hexa6' has no media 'Proof_A4'"},
      {"page wider than the margins allow",
       [](CQueueEdit& job) { job.SetPageSize(kA3Width - 2 * kMargin + 0.01, 100.0); }, "PageSize.Width",
       L"the page is 813.55 pt wide, media 'Proof_A3' prints at most 813.54 pt"},
      {"page too high", [](CQueueEdit& job) { job.SetPageSize(100.0, kA3Height); }, "PageSize.Height",
       L"the page is 1190.55 pt high, media 'Proof_A3' prints at most 1162.20 pt"},
      {"landscape page", [](CQueueEdit& job) { job.SetPageSize(1000.0, 700.0); }, "PageSize.Width",
       L"(it fits turned by 90 degrees)"},
      {"page of no width", [](CQueueEdit& job) { job.SetPageSize(0.0, 100.0); }, "PageSize.Width",
       L"must be more than 0 points, not 0"},
      {"page height not a number", [](CQueueEdit& job) { job.SetPageSize(100.0, std::nan("")); },
       "PageSize.Height", L"must be more than 0 points, not nan"},
  };
  for (const Case& c : cases) {
    CQueueEdit job = ValidJob();
    c.change(job);
    std::vector<JobCheckProblem> problems;
    EXPECT_FALSE(CheckJob(job, &problems)) << c.what;
    ASSERT_EQ(problems.size(), 1u) << c.what << ": " << problems.back().parameter << ": "
                                   << ToUtf8(problems.back().message);
    EXPECT_EQ(problems[0].parameter, c.parameter) << c.what;
    EXPECT_NE(problems[0].message.find(c.message), std::wstring::npos)
        << c.what << ": " << ToUtf8(problems[0].message);
    EXPECT_FALSE(CheckJob(job)) << c.what;
  }
}

TEST_F(JobCheck, EveryFailureIsListedInTheOrderOfTheChecks) {
  CQueueEdit job = ValidJob();
  job.SetCopies(-1);
  job.SetPrintModePath(L"Aurora64\\Backlit Film 1440.pmx");
  job.SetPageSize(2000.0, 2000.0);
  std::vector<JobCheckProblem> problems;
  EXPECT_FALSE(CheckJob(job, &problems));
  std::vector<std::string> parameters;
  for (const JobCheckProblem& problem : problems) {
    parameters.push_back(problem.parameter);
  }
  EXPECT_EQ(parameters,
            (std::vector<std::string>{"Copies", "PrintMode", "PageSize.Width", "PageSize.Height"}));

  // Without the printer neither the print mode's printer nor the media can be judged.
  job.SetPrinter(L"Nimbus9");
  problems.clear();
  EXPECT_FALSE(CheckJob(job, &problems));
  parameters.clear();
  for (const JobCheckProblem& problem : problems) {
    parameters.push_back(problem.parameter);
  }
  EXPECT_EQ(parameters, (std::vector<std::string>{"Copies", "Printer"}));
}

}  // namespace
}  // namespace tarn
