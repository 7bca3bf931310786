// The queue edit record in its two files: the XML form and the job parameter
// file, each read back into an equal record whatever the values hold and
// whatever the process locale is.

#include "tarn/queue/queue_edit.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>

#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/registry.h"
#include "tarn/foundation/text.h"

namespace tarn {
namespace {

constexpr double kA2Width = 1190.5511811023623;
constexpr double kA2Height = 1683.7795275590552;

CQueueEdit SampleJob() {
  CQueueEdit job;
  job.SetJobName(L"Spring poster");
  job.SetSourceFile(L"D:\\jobs\\spring.pdf");
  job.SetPrinter(L"Hexa6");
  job.SetCopies(2);
  job.SetJobSize(1000.25, 0.1);
  job.SetPageSize(kA2Width, kA2Height);
  job.SetMediaName(L"A2");
  job.SetPrintModePath(L"Hexa6\\Coated Paper 600.pmx");
  job.SetQueuePath(L"C:\\Kestrel\\queue");
  job.SetRipFolder(L"C:\\Kestrel\\queue\\rip\\");
  job.SetPrintModesFolder(L"C:\\Kestrel\\queue\\rip\\System\\pmodes\\");
  return job;
}

// Every text field holding what a line-based or markup-based file finds hard.
CQueueEdit AwkwardJob() {
  CQueueEdit job = SampleJob();
  job.SetJobName(std::wstring(L"two\nlines\r\nand a NUL \0 here", 27));
  job.SetSourceFile(L" D:\\Jobs\\100% <Grün> & \"€\" \U0001F5A8.pdf ");
  job.SetMediaName(L"a=b=c\t");
  job.SetPrintModePath(L"#not a comment");
  job.SetQueuePath(L"%41 stays %41");
  return job;
}

struct Refusal {
  const char* text;
  const char* reason;  // how the error begins
};

// Each text is refused, the error begins with the reason, and the record
// that read it is left as it was.
void ExpectRefused(bool (CQueueEdit::*read)(std::string_view, std::wstring*),
                   std::initializer_list<Refusal> refusals) {
  const CQueueEdit before = SampleJob();
  for (const Refusal& refusal : refusals) {
    CQueueEdit job = before;
    std::wstring error;
    EXPECT_FALSE((job.*read)(refusal.text, &error)) << refusal.text;
    EXPECT_EQ(ToUtf8(error).rfind(refusal.reason, 0), 0u) << ToUtf8(error);
    EXPECT_EQ(job, before) << refusal.text;
  }
}

TEST(QueueEditXml, WritesTheDocumentedLayout) {
  EXPECT_EQ(SampleJob().SaveToString(),
            "<?xml version=\"1.0\"?>\n"
            "<QueueEdit version=\"1\">\n"
            "\t<JobName>Spring poster</JobName>\n"
            "\t<SourceFile>D:\\jobs\\spring.pdf</SourceFile>\n"
            "\t<Printer>Hexa6</Printer>\n"
            "\t<Copies>2</Copies>\n"
            "\t<JobSize>\n"
            "\t\t<Width>1000.25</Width>\n"
            "\t\t<Height>0.10000000000000001</Height>\n"
            "\t</JobSize>\n"
            "\t<PageSize>\n"
            "\t\t<Width>1190.5511811023623</Width>\n"
            "\t\t<Height>1683.7795275590552</Height>\n"
            "\t\t<Media>A2</Media>\n"
            "\t</PageSize>\n"
            "\t<PrintMode>Hexa6\\Coated Paper 600.pmx</PrintMode>\n"
            "\t<Paths>\n"
            "\t\t<Queue>C:\\Kestrel\\queue</Queue>\n"
            "\t\t<Rip>C:\\Kestrel\\queue\\rip\\</Rip>\n"
            "\t\t<PrintModes>C:\\Kestrel\\queue\\rip\\System\\pmodes\\</PrintModes>\n"
            "\t</Paths>\n"
            "</QueueEdit>\n");
}

TEST(QueueEditXml, RoundTripsThroughAFile) {
  test::TempFolder folder;
  const std::wstring path = folder.File("job.xml");
  CQueueEdit job = SampleJob();
  job.SetSourceFile(L"D:\\Jobs\\100% <Grün> & \"€\" \U0001F5A8.pdf");
  job.SetMediaName(L"  ");
  std::wstring error;
  ASSERT_TRUE(job.Save(path, &error)) << ToUtf8(error);
  CQueueEdit read;
  ASSERT_TRUE(read.Load(path, &error)) << ToUtf8(error);
  EXPECT_EQ(read, job);
  EXPECT_EQ(read.SaveToString(), test::ReadBytes(folder.path() / "job.xml"));
}

TEST(QueueEditXml, ReaderStartsFromDefaultsAndSkipsWhatItDoesNotKnow) {
  CQueueEdit read = SampleJob();
  ASSERT_TRUE(read.LoadFromString(
      "<QueueEdit version=\"7\"><Future><Copies>9</Copies></Future><JobName>a</JobName>"
      "<PageSize><Media>Roll</Media><Bleed>3</Bleed></PageSize><JobName>b</JobName></QueueEdit>"));
  CQueueEdit expected;
  expected.SetJobName(L"b");
  expected.SetMediaName(L"Roll");
  EXPECT_EQ(read, expected);
}

TEST(QueueEditXml, RefusesWhatIsNotARecordAndSaysWhy) {
  ExpectRefused(
      &CQueueEdit::LoadFromString,
      {
          {"<queueedit/>", "the root element is 'queueedit', not 'QueueEdit'"},
          {"<?xml version=\"1.0\"?>\n<QueueEdit>\n<JobName>x</Job>\n</QueueEdit>", "XML error at line 3: "},
          {"", "XML error at line 1: "},
      });
  const CQueueEdit before = SampleJob();
  test::TempFolder folder;
  CQueueEdit read;
  std::wstring error;
  EXPECT_FALSE(read.Load(folder.File("missing.xml"), &error));
  EXPECT_FALSE(error.empty());
  EXPECT_FALSE(before.Save(folder.File("no/such/folder/job.xml"), &error));
  EXPECT_FALSE(error.empty());
}

TEST(QueueEditParameters, WritesOneAsciiLineAParameter) {
  EXPECT_EQ(SampleJob().WriteParameters(),
            "# tarn job parameters 1\n"
            "JobName=Spring poster\n"
            "SourceFile=D:\\jobs\\spring.pdf\n"
            "Printer=Hexa6\n"
            "Copies=2\n"
            "JobSize.Width=1000.25\n"
            "JobSize.Height=0.10000000000000001\n"
            "PageSize.Width=1190.5511811023623\n"
            "PageSize.Height=1683.7795275590552\n"
            "PageSize.Media=A2\n"
            "PrintMode=Hexa6\\Coated Paper 600.pmx\n"
            "Paths.Queue=C:\\Kestrel\\queue\n"
            "Paths.Rip=C:\\Kestrel\\queue\\rip\\\n"
            "Paths.PrintModes=C:\\Kestrel\\queue\\rip\\System\\pmodes\\\n");

  const std::string text = AwkwardJob().WriteParameters();
  for (const char c : text) {
    EXPECT_TRUE(c == '\n' || (c >= 0x20 && c < 0x7f)) << static_cast<int>(static_cast<unsigned char>(c));
  }
  EXPECT_NE(text.find("\nJobName=two%0Alines%0D%0Aand a NUL %00 here\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\nSourceFile=%20D:\\Jobs\\100%25 <Gr%C3%BCn> & \"%E2%82%AC\" %F0%9F%96%A8.pdf%20\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("\nPageSize.Media=a=b=c%09\n"), std::string::npos) << text;
}

TEST(QueueEditParameters, RoundTripsEveryValueThroughAFile) {
  test::TempFolder folder;
  const std::wstring path = folder.File("job.txt");
  const CQueueEdit job = AwkwardJob();
  std::wstring error;
  ASSERT_TRUE(job.SaveParameterFile(path, &error)) << ToUtf8(error);
  CQueueEdit read;
  ASSERT_TRUE(read.LoadParameterFile(path, &error)) << ToUtf8(error);
  EXPECT_EQ(read, job);
  EXPECT_EQ(read.GetJobName().size(), 27u);
}

TEST(QueueEditParameters, ReaderIsLenientWhereItCanBe) {
  CQueueEdit read = SampleJob();
  ASSERT_TRUE(
      read.ReadParameters("# written by hand\r\n"
                          "\r\n"
                          "Copies=3\r\n"
                          "Bleed=3\r\n"
                          "JobName=first\r\n"
                          "JobName=second\r\n"
                          "PageSize.Width=  12.5\r\n"
                          "PrintMode="));
  CQueueEdit expected;
  expected.SetCopies(3);
  expected.SetJobName(L"second");
  expected.SetPageSize(12.5, 0.0);
  EXPECT_EQ(read, expected);
}

TEST(QueueEditParameters, RefusesBrokenLinesAndNamesThem) {
  ExpectRefused(&CQueueEdit::ReadParameters,
                {
                    {"JobName=a\nno equals sign\n", "line 2: expected key=value"},
                    {"=value\n", "line 1: expected key=value"},
                    {"# c\nJobName=100%\n", "line 2: a % must be followed by two hex digits"},
                    {"JobName=%4\n", "line 1: a % must be followed by two hex digits"},
                    {"JobName=%G1\n", "line 1: a % must be followed by two hex digits"},
                });
}

TEST(QueueEditLocale, NumbersKeepTheirPointUnderADecimalComma) {
  test::DecimalCommaLocale locale;
  if (!locale.active()) {
    GTEST_SKIP() << "no de_DE locale on this machine";
  }
  CQueueEdit job = SampleJob();
  job.SetJobSize(0.5, 1e-7);
  const std::string xml = job.SaveToString();
  const std::string parameters = job.WriteParameters();
  EXPECT_NE(xml.find("<Width>0.5</Width>"), std::string::npos) << xml;
  EXPECT_NE(parameters.find("JobSize.Width=0.5\n"), std::string::npos) << parameters;
  EXPECT_NE(parameters.find("PageSize.Width=1190.5511811023623\n"), std::string::npos) << parameters;
  CQueueEdit from_xml;
  CQueueEdit from_parameters;
  ASSERT_TRUE(from_xml.LoadFromString(xml));
  ASSERT_TRUE(from_parameters.ReadParameters(parameters));
  EXPECT_EQ(from_xml, job);
  EXPECT_EQ(from_parameters, job);
}

// The process paths are shared by the whole test program: put them back.
class QueueEditPaths : public testing::Test {
 protected:
  void SetUp() override {
    saved_queue_ = GetQModulePath();
    saved_rip_ = GetTarnRipFolder();
    saved_registry_ = GetTarnRegistryBase();
  }
  void TearDown() override {
    SetQModulePath(saved_queue_.c_str());
    SetTarnRipSystemRoot(saved_rip_.c_str());
    SetTarnRegistryBase(saved_registry_);
  }

 private:
  std::wstring saved_queue_;
  std::wstring saved_rip_;
  CXRegistry* saved_registry_ = nullptr;
};

TEST_F(QueueEditPaths, SetupTakesTheProcessPathsAndTheQueuesPrinter) {
  SetTarnPathsFromQPath(L"C:\\Kestrel\\queue");
  CXRegistry registry;
  ASSERT_TRUE(registry.SetString(L"Queue/Printer", L"Aurora64"));
  SetTarnRegistryBase(&registry);
  CQueueEdit job;
  job.SetJobName(L"kept");
  job.Setup();
  EXPECT_EQ(job.GetQueuePath(), L"C:\\Kestrel\\queue");
  EXPECT_EQ(job.GetRipFolder(), L"C:\\Kestrel\\queue\\rip\\");
  EXPECT_EQ(job.GetPrintModesFolder(), L"C:\\Kestrel\\queue\\rip\\System\\pmodes\\");
  EXPECT_EQ(job.GetPrinter(), L"Aurora64");
  EXPECT_EQ(job.GetJobName(), L"kept");

  // A value of another type leaves the printer alone, and the store says why.
  CXRegistry other;
  ASSERT_TRUE(other.SetInteger(L"Queue/Printer", 4));
  SetTarnRegistryBase(&other);
  test::MessageCapture messages;
  job.Setup();
  EXPECT_EQ(job.GetPrinter(), L"Aurora64");
  EXPECT_EQ(messages.messages().size(), 1u);
}

TEST_F(QueueEditPaths, PrintModePathIsRelativeToThePrintModesFolderWherePossible) {
  SetTarnRipSystemRoot(L"C:\\Kestrel\\rip\\");
  CQueueEdit job;
  job.SetPrintModePath(L"c:/kestrel/RIP/system/PMODES/Hexa6/Coated Paper 600.pmx");
  EXPECT_EQ(job.GetPrintModePath(), L"Hexa6/Coated Paper 600.pmx");
  EXPECT_EQ(job.GetPrintModeFullPath(), L"C:\\Kestrel\\rip\\System\\pmodes\\Hexa6/Coated Paper 600.pmx");

  for (const wchar_t* outside : {L"D:\\modes\\Coated.pmx", L"C:\\Kestrel\\rip\\System\\pmodes2\\x.pmx",
                                 L"C:\\Kestrel\\rip\\System\\pmodes\\"}) {
    job.SetPrintModePath(outside);
    EXPECT_EQ(job.GetPrintModePath(), outside);
    EXPECT_EQ(job.GetPrintModeFullPath(), outside);
  }

  // The record's own folder, once set up, is the one that counts.
  job.SetPrintModesFolder(L"E:\\queue2\\rip\\System\\pmodes");
  job.SetPrintModePath(L"E:\\queue2\\rip\\System\\pmodes\\Hexa6\\Matte.pmx");
  EXPECT_EQ(job.GetPrintModePath(), L"Hexa6\\Matte.pmx");

  // Without a RIP folder nothing is made relative.
  SetTarnRipSystemRoot(L"");
  CQueueEdit bare;
  bare.SetPrintModePath(L"System\\pmodes\\Hexa6\\Matte.pmx");
  EXPECT_EQ(bare.GetPrintModePath(), L"System\\pmodes\\Hexa6\\Matte.pmx");
}

}  // namespace
}  // namespace tarn
