// The platform layer: RIP-style paths on a case-sensitive disk, atomic
// replacement of files, wildcard listing, and the host's interfaces.

#include "tarn/foundation/platform.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "support/test_support.h"
#include "tarn/foundation/limits.h"
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

TEST(WriteFileAtomically, SavesThroughALinkToTheFileItNames) {
  test::TempFolder temp;
  fs::create_directories(temp.path() / "real");
  test::WriteBytes(temp.path() / "real/mode.pmx", "old");
  fs::create_symlink("real/mode.pmx", temp.path() / "link.pmx");
  fs::create_symlink(temp.path() / "link.pmx", temp.path() / "chain.pmx");
  fs::create_symlink("real/new.pmx", temp.path() / "dangling.pmx");

  ASSERT_TRUE(WriteFileAtomically(temp.File("chain.pmx"), "new"));
  EXPECT_TRUE(fs::is_symlink(temp.path() / "link.pmx"));
  EXPECT_TRUE(fs::is_symlink(temp.path() / "chain.pmx"));
  EXPECT_EQ(test::ReadBytes(temp.path() / "real/mode.pmx"), "new");
  // A dangling link names the file to create.
  ASSERT_TRUE(WriteFileAtomically(temp.File("dangling.pmx"), "created"));
  EXPECT_TRUE(fs::is_symlink(temp.path() / "dangling.pmx"));
  EXPECT_EQ(test::ReadBytes(temp.path() / "real/new.pmx"), "created");
  // The temporaries went beside the real files and are gone.
  EXPECT_EQ(std::distance(fs::directory_iterator(temp.path() / "real"), fs::directory_iterator()), 2);

  fs::create_symlink("loop-b", temp.path() / "loop-a");
  fs::create_symlink("loop-a", temp.path() / "loop-b");
  std::wstring error;
  EXPECT_FALSE(WriteFileAtomically(temp.File("loop-a"), "x", &error));
  EXPECT_EQ(error, L"too many levels of symbolic links");
}

TEST(WriteFileAtomically, NewFilesFollowTheUmaskAndReplacedOnesKeepModeAndOwner) {
  test::TempFolder temp;
  const mode_t previous = ::umask(027);
  const bool saved = WriteFileAtomically(temp.File("new.pmx"), "x");
  ::umask(previous);
  ASSERT_TRUE(saved);
  EXPECT_EQ(fs::status(temp.path() / "new.pmx").permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

  const fs::path shared = temp.path() / "shared.pmx";
  test::WriteBytes(shared, "old");
  ::chmod(shared.c_str(), 0664);
  // Only root may give a file away; elsewhere the owner is ours anyway.
  const bool root = ::geteuid() == 0;
  if (root) {
    ASSERT_EQ(::chown(shared.c_str(), 4321, 4321), 0);
  }
  ASSERT_TRUE(WriteFileAtomically(Wide(shared), "new"));
  struct stat info {};
  ASSERT_EQ(::stat(shared.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0664u);
  if (root) {
    EXPECT_EQ(info.st_uid, 4321u);
    EXPECT_EQ(info.st_gid, 4321u);
  }
}

TEST(WriteFileAtomically, RemovesTemporariesAKilledSaveLeftBehind) {
  test::TempFolder temp;
  // What a save killed between writing and renaming leaves.
  test::WriteBytes(temp.path() / ".mode.pmx.tarn-save-dead", "half");
  test::WriteBytes(temp.path() / ".other.pmx.tarn-save-dead", "not ours");
  ASSERT_TRUE(WriteFileAtomically(temp.File("mode.pmx"), "whole"));
  EXPECT_FALSE(fs::exists(temp.path() / ".mode.pmx.tarn-save-dead"));
  EXPECT_TRUE(fs::exists(temp.path() / ".other.pmx.tarn-save-dead"));
  EXPECT_EQ(test::ReadBytes(temp.path() / "mode.pmx"), "whole");
}

TEST(WriteFileAtomically, RefusesToReplaceWhatIsNoRegularFile) {
  test::TempFolder temp;
  ASSERT_EQ(::mkfifo((temp.path() / "pipe.pmx").c_str(), 0600), 0);
  std::wstring error;
  EXPECT_FALSE(WriteFileAtomically(temp.File("pipe.pmx"), "x", &error));
  EXPECT_EQ(error, L"not a regular file");
  EXPECT_TRUE(fs::is_fifo(temp.path() / "pipe.pmx"));
}

TEST(ReadWholeFile, ReadsOnlyRegularFilesOfBoundedSize) {
  test::TempFolder temp;
  std::string data;
  std::wstring error;
  // Neither may block or fill memory: a FIFO nobody writes to, an endless device.
  ASSERT_EQ(::mkfifo((temp.path() / "pipe.pmx").c_str(), 0600), 0);
  EXPECT_FALSE(ReadWholeFile(temp.File("pipe.pmx"), data, &error));
  EXPECT_EQ(error, L"not a regular file");
  EXPECT_FALSE(ReadWholeFile(L"/dev/zero", data, &error));
  EXPECT_EQ(error, L"not a regular file");
  EXPECT_FALSE(ReadWholeFile(Wide(temp.path()), data, &error));
  EXPECT_EQ(error, L"is a folder");
  EXPECT_FALSE(ReadWholeFile(temp.File("missing.pmx"), data, &error));
  EXPECT_EQ(error, L"no such file or folder");

  // A sparse file just over the limit costs no disk and must be refused unread.
  const fs::path big = temp.path() / "big.pmx";
  test::WriteBytes(big, "");
  fs::resize_file(big, kMaxFileSize + 1);
  EXPECT_FALSE(ReadWholeFile(Wide(big), data, &error));
  EXPECT_NE(error.find(L"file too large"), std::wstring::npos);
  EXPECT_TRUE(data.empty());

  if (::geteuid() != 0) {  // root reads anything
    test::WriteBytes(temp.path() / "secret.pmx", "x");
    fs::permissions(temp.path() / "secret.pmx", fs::perms::none);
    EXPECT_FALSE(ReadWholeFile(temp.File("secret.pmx"), data, &error));
    EXPECT_EQ(error, L"permission denied");
  }
}

TEST(FindFilesBelow, VisitsEachRealFolderOnceThroughLinks) {
  test::TempFolder temp;
  fs::create_directories(temp.path() / "Aurora64/Matte");
  test::WriteBytes(temp.path() / "Aurora64/Gloss.pmx", "");
  test::WriteBytes(temp.path() / "Aurora64/Matte/Soft.PMX", "");
  test::WriteBytes(temp.path() / "Aurora64/notes.txt", "");
  // A loop back to the top and a second way into one folder.
  fs::create_directory_symlink("..", temp.path() / "Aurora64/Matte/up");
  fs::create_directory_symlink("Aurora64", temp.path() / "Zeta");
  test::MessageCapture capture;
  EXPECT_EQ(FindFilesBelow(temp.wide(), L"*.pmx"),
            (std::vector<std::wstring>{L"Aurora64\\Gloss.pmx", L"Aurora64\\Matte\\Soft.PMX"}));
  EXPECT_TRUE(capture.empty());
}

TEST(FindFilesBelow, StopsAtTheDepthLimitAndReportsWhatItCannotRead) {
  test::TempFolder temp;
  fs::path deep = temp.path();
  for (int level = 0; level <= kMaxFolderDepth + 1; ++level) {
    deep /= "d";
  }
  fs::create_directories(deep);
  test::WriteBytes(deep / "lost.pmx", "");
  test::WriteBytes(temp.path() / "top.pmx", "");
  test::MessageCapture capture;
  EXPECT_EQ(FindFilesBelow(temp.wide(), L"*.pmx"), std::vector<std::wstring>{L"top.pmx"});
  ASSERT_EQ(capture.messages().size(), 1u);
  EXPECT_NE(capture.messages()[0].text.find(L"nested too deeply"), std::wstring::npos);

  if (::geteuid() != 0) {
    capture.clear();
    fs::create_directories(temp.path() / "locked");
    fs::permissions(temp.path() / "locked", fs::perms::none);
    FindFilesBelow(temp.wide(), L"*.pmx");
    ASSERT_FALSE(capture.empty());
    EXPECT_NE(capture.messages().back().text.find(L"permission denied"), std::wstring::npos);
  }
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
