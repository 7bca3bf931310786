// The platform layer: RIP-style paths on a case-sensitive disk, atomic
// replacement of files, wildcard listing, and the host's interfaces.

#include "tarn/foundation/platform.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>

#include "support/test_support.h"
#include "tarn/foundation/text.h"

namespace tarn {
namespace {

namespace fs = std::filesystem;

std::wstring Wide(const fs::path& path) {
  return FromUtf8(path.string());
}

TEST(NativePath, MatchesComponentsIgnoringCaseAsWindowsWould) {
  test::TempFolder temp;
  fs::create_directories(temp.path() / "System" / "pmodes" / "Aurora64");
  test::WriteBytes(temp.path() / "System" / "pmodes" / "Aurora64" / "Gloss.pmx", "x");
  const std::wstring root = Wide(temp.path());

  EXPECT_EQ(NativePath(root + L"\\system\\PMODES\\aurora64\\gloss.PMX"),
            (temp.path() / "System/pmodes/Aurora64/Gloss.pmx").string());
  EXPECT_TRUE(FileExists(root + L"\\SYSTEM\\pmodes\\"));
  EXPECT_TRUE(FolderExists(root + L"\\system\\pmodes"));
  // Past a component that does not exist at all, the rest stays as written.
  EXPECT_EQ(NativePath(root + L"\\system\\Missing\\File.pmx"),
            (temp.path() / "System/Missing/File.pmx").string());
  EXPECT_FALSE(FileExists(root + L"\\system\\Missing\\File.pmx"));
  EXPECT_FALSE(FileExists(L""));
}

TEST(NativePath, PrefersAnExactSpellingAndIsStableBetweenTwins) {
  test::TempFolder temp;
  fs::create_directories(temp.path() / "pmodes");
  fs::create_directories(temp.path() / "PModes");
  const std::wstring root = Wide(temp.path());
  EXPECT_EQ(NativePath(root + L"/PModes"), (temp.path() / "PModes").string());
  EXPECT_EQ(NativePath(root + L"/PMODES"), (temp.path() / "PModes").string());  // first in name order
}

TEST(WriteFileAtomically, ReplacesWholeFilesAndLeavesNoTemporary) {
  test::TempFolder temp;
  const std::wstring file = temp.File("mode.pmx");
  ASSERT_TRUE(WriteFileAtomically(file, "first"));
  ASSERT_TRUE(WriteFileAtomically(file, "second, longer"));
  EXPECT_EQ(test::ReadBytes(temp.path() / "mode.pmx"), "second, longer");
  EXPECT_EQ(std::distance(fs::directory_iterator(temp.path()), fs::directory_iterator()), 1);
}

TEST(WriteFileAtomically, FailureLeavesTheOldFileAndExplains) {
  test::TempFolder temp;
  test::WriteBytes(temp.path() / "keep.pmx", "old");
  std::wstring error;
  // The target is a folder: the rename must fail after the temporary exists.
  fs::create_directories(temp.path() / "folder.pmx");
  EXPECT_FALSE(WriteFileAtomically(temp.File("folder.pmx"), "new", &error));
  EXPECT_FALSE(error.empty());
  // A folder that does not exist.
  error.clear();
  EXPECT_FALSE(WriteFileAtomically(temp.File("nowhere/keep.pmx"), "new", &error));
  EXPECT_FALSE(error.empty());
  // A "folder" that is a file.
  EXPECT_FALSE(WriteFileAtomically(temp.File("keep.pmx/inner.pmx"), "new", &error));
  EXPECT_EQ(test::ReadBytes(temp.path() / "keep.pmx"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(temp.path()), fs::directory_iterator()), 2);
}

TEST(WriteFileAtomically, KeepsThePermissionsOfTheFileItReplaces) {
  test::TempFolder temp;
  const fs::path path = temp.path() / "shared.pmx";
  test::WriteBytes(path, "old");
  fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  ASSERT_TRUE(WriteFileAtomically(Wide(path), "new"));
  EXPECT_EQ(fs::status(path).permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST(Files, ReadOnlyStateAndTimes) {
  test::TempFolder temp;
  const fs::path path = temp.path() / "locked.pmx";
  test::WriteBytes(path, "data");
  fs::permissions(path, fs::perms::owner_read);
  ASSERT_TRUE(SetNormalAttributes(Wide(path)));
  EXPECT_TRUE((fs::status(path).permissions() & fs::perms::owner_write) != fs::perms::none);
  EXPECT_FALSE(SetNormalAttributes(temp.File("missing.pmx")));

  std::int64_t time = 0;
  EXPECT_TRUE(GetModificationTime(Wide(path), time));
  EXPECT_GT(time, 1600000000);
  EXPECT_FALSE(GetModificationTime(temp.File("missing.pmx"), time));

  std::string data;
  std::wstring error;
  EXPECT_FALSE(ReadWholeFile(temp.File("missing.pmx"), data, &error));
  EXPECT_FALSE(error.empty());
  EXPECT_FALSE(ReadWholeFile(Wide(temp.path()), data));  // a folder is no file
}

TEST(Files, RenameRemoveAndCreateFolders) {
  test::TempFolder temp;
  ASSERT_TRUE(CreateFolders(temp.wide() + L"a\\b\\c"));
  EXPECT_TRUE(fs::is_directory(temp.path() / "a/b/c"));
  test::WriteBytes(temp.path() / "a/one.pmx", "1");
  EXPECT_TRUE(RenameFile(temp.wide() + L"A\\one.pmx", temp.wide() + L"a\\two.pmx"));
  EXPECT_TRUE(fs::exists(temp.path() / "a/two.pmx"));
  EXPECT_TRUE(RemoveFile(temp.wide() + L"a\\TWO.pmx"));
  EXPECT_FALSE(RemoveFile(temp.wide() + L"a\\two.pmx"));
}

TEST(Wildcards, FollowWindowsRules) {
  struct Case {
    const wchar_t* name;
    const wchar_t* pattern;
    bool matches;
  };
  const Case cases[] = {
      {L"Gloss.pmx", L"*.pmx", true},
      {L"Gloss.PMX", L"*.pmx", true},
      {L"Gloss.pmx.bak", L"*.pmx", false},
      {L"README", L"*.*", true},
      {L"a.b.c", L"*.*", true},
      {L"README", L"READ*.*", true},
      {L"mode1.pmx", L"mode?.pmx", true},
      {L"mode10.pmx", L"mode?.pmx", false},
      {L"", L"*", true},
      {L"abc", L"a*c*", true},
      {L"abd", L"a*c", false},
      {L"x.qmd", L"*.pmx", false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MatchesWildcard(c.name, c.pattern), c.matches) << ToUtf8(c.name) << " ~ " << ToUtf8(c.pattern);
  }
}

TEST(Wildcards, FindFilesListsSortedEntriesOfAFolder) {
  test::TempFolder temp;
  fs::create_directories(temp.path() / "Driver");
  test::WriteBytes(temp.path() / "b.pmx", "");
  test::WriteBytes(temp.path() / "a.PMX", "");
  test::WriteBytes(temp.path() / "notes", "");
  const std::vector<FolderEntry> modes = FindFiles(temp.wide() + L"*.pmx");
  ASSERT_EQ(modes.size(), 2u);
  EXPECT_EQ(modes[0].name, L"a.PMX");
  EXPECT_EQ(modes[1].name, L"b.pmx");
  const std::vector<FolderEntry> all = FindFiles(temp.wide() + L"*.*");
  ASSERT_EQ(all.size(), 4u);
  EXPECT_TRUE(all[0].is_folder);
  EXPECT_TRUE(FindFiles(temp.wide() + L"missing\\*.*").empty());
}

TEST(HostInterfaces, MessagesGoToTheHandlerAndBackToStderr) {
  {
    test::MessageCapture capture;
    ShowMessage(L"text", L"caption");
    ASSERT_EQ(capture.messages().size(), 1u);
    EXPECT_EQ(capture.messages()[0].caption, L"caption");
  }
  testing::internal::CaptureStderr();
  ShowMessage(L"two\nlines", L"Error");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: two lines\n");
}

TEST(HostInterfaces, AHandlerCanBePutBackByWhoeverReplacedIt) {
  std::vector<std::wstring> host;
  EXPECT_FALSE(SetMessageHandler([&host](const std::wstring& text, const std::wstring&) {
    host.push_back(text);
  }));  // the default was in place
  {
    test::MessageCapture outer;
    {
      test::MessageCapture inner;
      ShowMessage(L"inner", L"c");
      EXPECT_EQ(inner.messages().size(), 1u);
    }
    ShowMessage(L"outer", L"c");  // the inner capture put the outer one back
    ASSERT_EQ(outer.messages().size(), 1u);
    EXPECT_EQ(outer.messages()[0].text, L"outer");
  }
  ShowMessage(L"host", L"c");  // and the outer one the host's
  EXPECT_EQ(host, std::vector<std::wstring>{L"host"});

  const MessageHandler replaced = SetMessageHandler({});
  ASSERT_TRUE(replaced);
  replaced(L"still callable", L"c");
  EXPECT_EQ(host.size(), 2u);
}

TEST(HostInterfaces, TranslatorAndPaperQuery) {
  EXPECT_EQ(XLT_TranslateCString(L"(*v*)Linear"), L"(*v*)Linear");
  SetTranslator([](const std::wstring& text) { return text == L"(*v*)Linear" ? L"Linéaire" : text; });
  std::wstring name = L"(*v*)Linear";
  XLT_TranslateString(name);
  EXPECT_EQ(name, L"Linéaire");
  SetTranslator({});
  EXPECT_EQ(XLT_TranslateCString(L"(*v*)Linear"), L"(*v*)Linear");

  PrinterPaper paper;
  EXPECT_FALSE(QueryPrinterPaper(L"Office", paper));
  SetPrinterPaperQuery([](const std::wstring&, PrinterPaper& out) {
    out = {9, 2100, 2970, L"A4"};
    return true;
  });
  EXPECT_TRUE(QueryPrinterPaper(L"Office", paper));
  EXPECT_EQ(paper.length, 2970);
  SetPrinterPaperQuery({});
}

}  // namespace
}  // namespace tarn
