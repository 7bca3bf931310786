// The print mode record and its file: layout, loading with its repairs,
// saving that never loses data, and the messages the user sees.

#include "tarn/printmode/print_mode_data.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

namespace fs = std::filesystem;

constexpr wchar_t kUnsupportedText[] =
    L"This version of print mode is no longer supported.  Please update your printer package to the latest "
    L"version.";

std::wstring Wide(const fs::path& path) {
  return FromUtf8(path.string());
}

CPrintModeData HeaderSample() {
  CPrintModeData mode;
  mode.SetName(L"Gloss Vinyl.pmx");
  mode.SetPrinterX(L"Aurora 64");
  mode.SetDriver(L"Aurora64");
  mode.SetInvert(true);
  mode.SetInkSet(L"CMYK");
  mode.SetManufacturer(L"Kestrel <Inks> & Co");
  mode.SetMediaCategory(L"Vinyl");
  mode.SetMediaDescription(L"Gl\u00e4nzend");
  mode.SetCreationDate(L"2026-11-22");
  mode.SetRipVersion(L"10.9");
  mode.SetFinish(true);
  return mode;
}

TEST(PrintModeFile, HeaderIsWrittenInItsFixedLayout) {
  const std::string text = test::Written(HeaderSample());
  const std::string header =
      "<?xml version=\"1.0\"?>\n"
      "<PMH version=\"8\">\n"
      "\t<COPYRIGHT>Copyright (c) 2026 The tarn authors. All rights reserved.</COPYRIGHT>\n"
      "\t<QUEUEVERSION>10.9.259</QUEUEVERSION>\n"
      "\t<PRINTER>Aurora 64</PRINTER>\n"
      "\t<DRIVER>Aurora64</DRIVER>\n"
      "\t<INVERT>1</INVERT>\n"
      "\t<MIRROR>0</MIRROR>\n"
      "\t<METADATA>\n"
      "\t\t<INKSET>CMYK</INKSET>\n"
      "\t\t<MANUFACTURER>Kestrel &lt;Inks&gt; &amp; Co</MANUFACTURER>\n"
      "\t\t<MEDIA_CATEGORY>Vinyl</MEDIA_CATEGORY>\n"
      "\t\t<MEDIA_DESCRIPTION>Gl\xc3\xa4nzend</MEDIA_DESCRIPTION>\n"
      "\t\t<CREATION_DATE>2026-11-22</CREATION_DATE>\n"
      "\t\t<RIP_VERSION>10.9</RIP_VERSION>\n"
      "\t\t<MEDIA_NAME>Gloss Vinyl.pmx</MEDIA_NAME>\n"
      "\t\t<UNDERBASE>0</UNDERBASE>\n"
      "\t\t<FINISH>1</FINISH>\n"
      "\t\t<WINDOWSUNDERBASE>0</WINDOWSUNDERBASE>\n"
      "\t</METADATA>\n";
  EXPECT_EQ(text.substr(0, header.size()), header);
  EXPECT_EQ(text.find("EMAILADDRESS"), std::string::npos);  // read, never written
}

TEST(PrintModeFile, ReadsOlderFilesAndSavesThemAsCurrent) {
  test::TempFolder temp;
  fs::copy_file(test::DataFile("valid/older_header.pmx"), temp.path() / "Gloss Vinyl.pmx");
  const CPrintModeData mode(temp.File("Gloss Vinyl.pmx"));
  ASSERT_TRUE(mode.IsDiskBased());
  ASSERT_TRUE(mode.IsLoaded());
  EXPECT_EQ(mode.GetVersion(), L"7");
  EXPECT_EQ(mode.GetEmailAddress(), L"colour@example.com");
  EXPECT_TRUE(mode.GetInvert());
  EXPECT_TRUE(mode.GetMirror());  // a repeated element: the later value wins
  EXPECT_EQ(mode.GetMediaDescription(), L"Gloss & matte");
  EXPECT_TRUE(mode.GetFinish());             // "yes" is true to pugixml's reading
  EXPECT_FALSE(mode.GetWindowsUnderbase());  // anything else is false
  EXPECT_TRUE(mode.IsRipVersionPresent());
  EXPECT_NE(mode.GetFileTime(), 0);

  CPrintModeData copy = mode;
  ASSERT_TRUE(copy.SavePrintMode(nullptr, false));
  const std::string saved = test::ReadBytes(temp.path() / "Gloss Vinyl.pmx");
  EXPECT_NE(saved.find("<PMH version=\"8\">"), std::string::npos);
  EXPECT_NE(saved.find("<QUEUEVERSION>10.9.259</QUEUEVERSION>"), std::string::npos);
  EXPECT_EQ(saved.find("FUTURE_SETTING"), std::string::npos);
  EXPECT_EQ(copy.GetVersion(), L"8");  // the save reloads what it wrote
}

TEST(PrintModeFile, SaveAndReloadKeepsTheHeader) {
  test::TempFolder temp;
  CPrintModeData mode = HeaderSample();
  mode.SetMirror(true);
  mode.SetUnderbase(true);
  mode.SetWindowsUnderbase(true);
  mode.SetEmailAddress(L"lost@example.com");
  mode.SetRotateAngle(90);
  ASSERT_TRUE(mode.SavePrintMode(temp.wide().c_str(), false));

  const CPrintModeData reloaded(temp.File("Gloss Vinyl.pmx"));
  ASSERT_TRUE(reloaded.IsLoaded());
  EXPECT_EQ(reloaded.GetPrinterX(), L"Aurora 64");
  EXPECT_EQ(reloaded.GetDriver(), L"Aurora64");
  EXPECT_EQ(reloaded.GetManufacturer(), L"Kestrel <Inks> & Co");
  EXPECT_EQ(reloaded.GetMediaDescription(), L"Gl\u00e4nzend");
  EXPECT_EQ(reloaded.GetName(), L"Gloss Vinyl.pmx");
  EXPECT_TRUE(reloaded.GetInvert() && reloaded.GetMirror());
  EXPECT_TRUE(reloaded.GetUnderbase() && reloaded.GetFinish() && reloaded.GetWindowsUnderbase());
  EXPECT_EQ(reloaded.GetEmailAddress(), L"");  // never written
  EXPECT_EQ(reloaded.GetRotateAngle(), 0);     // kept in memory only
  EXPECT_EQ(test::Written(reloaded), test::Written(CPrintModeData(temp.File("Gloss Vinyl.pmx"))));
}

TEST(PrintModeFile, BadFilesAreRefusedWithTheUnsupportedMessage) {
  const char* files[] = {"invalid/empty.pmx",          "invalid/not_xml.pmx",    "invalid/truncated.pmx",
                         "invalid/lowercase_root.pmx", "invalid/wrong_root.pmx", "invalid/binary_archive.pmx",
                         "invalid/does_not_exist.pmx"};
  for (const char* file : files) {
    const fs::path path = test::DataFile(file);
    const std::string before = fs::exists(path) ? test::ReadBytes(path) : "";
    test::MessageCapture capture;
    CPrintModeData mode;
    mode.SetPrinterX(L"set before");
    EXPECT_FALSE(mode.LoadPrintMode(nullptr, nullptr, Wide(path).c_str(), true)) << file;
    ASSERT_EQ(capture.messages().size(), 1u) << file;
    EXPECT_EQ(capture.messages()[0].text, kUnsupportedText);
    EXPECT_EQ(capture.messages()[0].caption, L"Unsupported print mode");
    EXPECT_EQ(mode.GetPrinterX(), L"set before") << file;
    EXPECT_EQ(mode.GetInkSet(), L"") << file;
    EXPECT_EQ(mode.GetTrailerText(), L"KestrelA4") << file;
    if (fs::exists(path)) {
      EXPECT_EQ(test::ReadBytes(path), before) << file;
    }
  }
}

TEST(PrintModeFile, BoundToABadFileTheRecordIsNotLoaded) {
  test::MessageCapture capture;
  const CPrintModeData mode(Wide(test::DataFile("invalid/truncated.pmx")));
  EXPECT_TRUE(mode.IsDiskBased());
  EXPECT_FALSE(mode.IsLoaded());
  EXPECT_EQ(mode.GetFileTime(), 0);
  EXPECT_EQ(mode.GetName(), L"truncated.pmx");

  const CPrintModeData missing(Wide(test::DataFile("invalid/does_not_exist.pmx")));
  EXPECT_FALSE(missing.IsDiskBased());
  EXPECT_TRUE(missing.IsLoaded());  // nothing to load is no failure
  EXPECT_EQ(capture.messages().size(), 1u);
}

TEST(PrintModeFile, LoadFillsPrinterAndDriverOnlyWhenTheFileHasNone) {
  test::TempFolder temp;
  test::WriteBytes(temp.path() / "a.pmx", "<PMH version=\"8\"><DRIVER>FromFile</DRIVER></PMH>");
  CPrintModeData mode;
  ASSERT_TRUE(mode.LoadPrintMode(L"Given Printer", L"Given Driver", temp.File("a.pmx").c_str(), true));
  EXPECT_EQ(mode.GetPrinterX(), L"Given Printer");
  EXPECT_EQ(mode.GetDriver(), L"FromFile");
  EXPECT_FALSE(mode.IsRipVersionPresent());
  CPrintModeData nothing;
  EXPECT_FALSE(nothing.LoadPrintMode(nullptr, nullptr, nullptr, true));
}

TEST(PrintModeFile, FolderNamesSetTheRoleFlags) {
  test::TempFolder temp;
  const fs::path folder = temp.path() / "Aurora64" / "White PRIMING and Finish" / "Windows Underbase";
  fs::create_directories(folder);
  CPrintModeData plain = HeaderSample();
  plain.SetFinish(false);
  ASSERT_TRUE(plain.SavePrintMode(Wide(folder).c_str(), false));
  const CPrintModeData mode(Wide(folder / "Gloss Vinyl.pmx"));
  EXPECT_TRUE(mode.GetUnderbase());  // the file says 0; the folder wins
  EXPECT_TRUE(mode.GetFinish());
  EXPECT_TRUE(mode.GetWindowsUnderbase());
  EXPECT_NE(test::ReadBytes(folder / "Gloss Vinyl.pmx").find("<UNDERBASE>0</UNDERBASE>"), std::string::npos);
}

TEST(PrintModeSave, RefusesWhatWouldWriteElsewhereOrNowhere) {
  test::TempFolder temp;
  fs::create_directories(temp.path() / "inner");
  struct Case {
    const wchar_t* name;
    const char* folder;
    bool message;
  };
  const Case cases[] = {
      {L"..\\escape.pmx", "inner", true},
      {L"../escape.pmx", "inner", true},
      {L"sub\\mode.pmx", "inner", true},
      {L"..", "inner", true},
      {L"", "inner", true},
      {L"mode.pmx", "missing", true},
      {L"C:mode.pmx", "inner", true},
  };
  for (const Case& c : cases) {
    test::MessageCapture capture;
    CPrintModeData mode = HeaderSample();
    mode.SetName(c.name);
    EXPECT_FALSE(mode.SavePrintMode(Wide(temp.path() / c.folder).c_str(), false)) << ToUtf8(c.name);
    EXPECT_EQ(capture.messages().size(), c.message ? 1u : 0u) << ToUtf8(c.name);
    if (!capture.empty()) {
      EXPECT_EQ(capture.messages()[0].caption, L"Error");
      EXPECT_FALSE(capture.messages()[0].text.empty());
    }
  }
  EXPECT_TRUE(fs::is_empty(temp.path() / "inner"));
  EXPECT_EQ(std::distance(fs::directory_iterator(temp.path()), fs::directory_iterator()), 1);

  CPrintModeData unbound = HeaderSample();
  EXPECT_FALSE(unbound.SavePrintMode(nullptr, false));  // no folder at all
  EXPECT_FALSE(unbound.SavePrintMode(nullptr, true));
  EXPECT_FALSE(fs::exists(temp.path() / "Gloss Vinyl.pmx"));
}

TEST(PrintModeSave, ClearsReadOnlyAndReplacesTheFile) {
  test::TempFolder temp;
  CPrintModeData mode = HeaderSample();
  ASSERT_TRUE(mode.SavePrintMode(temp.wide().c_str(), false));
  const fs::path path = temp.path() / "Gloss Vinyl.pmx";
  fs::permissions(path, fs::perms::owner_read | fs::perms::group_read);
  mode.SetInkSet(L"CMYKLcLm");
  ASSERT_TRUE(mode.SavePrintMode(nullptr, false));  // the folder of its own path
  EXPECT_NE(test::ReadBytes(path).find("CMYKLcLm"), std::string::npos);
  EXPECT_TRUE((fs::status(path).permissions() & fs::perms::owner_write) != fs::perms::none);
  EXPECT_EQ(std::distance(fs::directory_iterator(temp.path()), fs::directory_iterator()), 1);
}

TEST(PrintModeSave, ForwardSlashesInTheFolderAreAccepted) {
  test::TempFolder temp;
  CPrintModeData mode = HeaderSample();
  const std::wstring folder = Wide(temp.path()) + L"/";
  ASSERT_TRUE(mode.SavePrintMode(folder.c_str(), false));
  EXPECT_TRUE(mode.IsDiskBased());
  EXPECT_TRUE(fs::exists(temp.path() / "Gloss Vinyl.pmx"));
}

TEST(PrintModeState, IsModifiedKeepsItsInvertedSense) {
  CPrintModeData unbound;
  EXPECT_TRUE(unbound.IsModified());

  test::TempFolder temp;
  CPrintModeData mode = HeaderSample();
  ASSERT_TRUE(mode.SavePrintMode(temp.wide().c_str(), false));
  EXPECT_TRUE(mode.IsModified());  // unchanged reports true
  mode.SetMirror(true);
  EXPECT_FALSE(mode.IsModified());  // changed reports false
  fs::remove(temp.path() / "Gloss Vinyl.pmx");
  EXPECT_TRUE(mode.IsModified());
}

TEST(PrintModeState, RelativePathAndMetadata) {
  const std::wstring rip = GetTarnRipFolder();
  SetTarnRipSystemRoot(L"C:\\Kestrel\\rip\\");
  CPrintModeData mode;
  mode.SetFullPath(L"C:\\Kestrel\\rip\\System\\pmodes\\Aurora64\\Gloss.pmx");
  EXPECT_EQ(mode.GetRelativePath(), L"Aurora64\\Gloss.pmx");
  mode.SetFullPath(L"c:\\kestrel\\RIP\\system\\PMODES\\Aurora64\\Gloss.pmx");
  EXPECT_EQ(mode.GetRelativePath(), L"Aurora64\\Gloss.pmx");
  mode.SetFullPath(L"D:\\elsewhere\\Gloss.pmx");
  EXPECT_EQ(mode.GetRelativePath(), L"");
  SetTarnRipSystemRoot(rip.c_str());

  CPrintModeData meta = HeaderSample();
  EXPECT_TRUE(meta.ValidateMetaData());
  meta.SetMediaCategory(L"");
  EXPECT_FALSE(meta.ValidateMetaData());
}

TEST(PrintModeState, HeaderAndMetadataTakeNoPartInComparison) {
  CPrintModeData a = HeaderSample();
  CPrintModeData b;
  EXPECT_FALSE(a == b);  // invert differs
  b.SetInvert(true);
  EXPECT_TRUE(a == b);
  b.SetRotateAngle(180);
  EXPECT_TRUE(a != b);
}

TEST(PrintModeLocale, DecimalCommaWritesTheSameBytes) {
  const std::string in_c = test::Written(HeaderSample());
  test::DecimalCommaLocale locale;
  if (!locale.active()) {
    GTEST_SKIP() << "no decimal-comma locale on this machine";
  }
  EXPECT_EQ(test::Written(HeaderSample()), in_c);
}

}  // namespace
}  // namespace tarn
