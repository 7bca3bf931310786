#include "tarn/media/print_media_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/text.h"
#include "tarn/printer/printer_data.h"

namespace tarn {
namespace {

std::unique_ptr<CPrintMedia> Sheet(const wchar_t* name, double width = 100, double height = 200) {
  auto media = std::make_unique<CPrintMedia>();
  media->SetType(CPrintMedia::MEDIA_SHEET);
  media->SetName(name);
  media->SetSize(width, height);
  return media;
}

// The names of the list, in list order.
std::vector<std::wstring> Names(const CPrintMediaList& list) {
  std::vector<std::wstring> names;
  for (const auto& media : list) {
    names.push_back(media->GetName());
  }
  return names;
}

TEST(MediaList, NameMatching) {
  CPrintMediaList list;
  list.AddMedia(Sheet(L"Gloss_Vinyl"));
  list.AddMedia(Sheet(L"Matt_"));
  list.AddMedia(Sheet(L"Matt"));
  list.AddMedia(Sheet(L"Two Words"));
  const struct {
    const wchar_t* name;
    const wchar_t* found;  // null: nothing
  } cases[] = {
      {L"Gloss Vinyl", L"Gloss_Vinyl"},  // a space asks for an underscore
      {L"Gloss_Vinyl", L"Gloss_Vinyl"},
      {L"gloss_vinyl", nullptr},  // case counts
      {L"Gloss", nullptr},
      {L"Matt", L"Matt_"},  // a trailing underscore matches, and the first match wins
      {L"Matt_", L"Matt_"},
      {L"Two Words", nullptr},  // a stored space is never matched: the request's became "_"
      {L"", nullptr},
      {nullptr, nullptr},
  };
  for (const auto& c : cases) {
    const CPrintMedia* media = list.GetMedia(c.name);
    EXPECT_EQ(media ? media->GetName() : std::wstring(L"(none)"), c.found ? c.found : L"(none)")
        << ToUtf8(c.name ? c.name : L"(null)");
  }
}

TEST(MediaList, SizeMatchingWithWildcards) {
  CPrintMediaList list;
  EXPECT_EQ(list.GetMedia(100.0, 200.0), nullptr);
  list.AddMedia(Sheet(L"Wide", 1000, 841.89));
  list.AddMedia(Sheet(L"A4", 595.2756, 841.8898));
  list.AddMedia(Sheet(L"Small", 100, 200));
  EXPECT_EQ(list.GetMedia(-1, 841.89)->GetName(), L"Wide");
  EXPECT_EQ(list.GetMedia(595.2755, -1)->GetName(), L"A4");  // equal at a thousandth
  EXPECT_EQ(list.GetMedia(595.27559, 841.8897)->GetName(), L"A4");
  EXPECT_EQ(list.GetMedia(595.277, -1), nullptr);
  EXPECT_EQ(list.GetMedia(-1, -1), nullptr);
  EXPECT_EQ(list.GetMedia(100, 200.0004)->GetName(), L"Small");
}

TEST(MediaList, NameValidityTestsInItsOwnOrder) {
  CPrintMediaList empty;
  EXPECT_EQ(empty.IsNameValid(L"a:b", nullptr), CML_NAME_OK);  // no character test on an empty list
  EXPECT_EQ(empty.IsNameValid(L"", nullptr), CML_NAME_EMPTY);
  EXPECT_EQ(empty.IsNameValid(nullptr, nullptr), CML_NAME_EMPTY);

  CPrintMediaList list;
  CPrintMedia* first = list.AddMedia(Sheet(L"a:b"));
  CPrintMedia* second = list.AddMedia(Sheet(L"Plain"));
  EXPECT_EQ(list.IsNameValid(L"a:b", nullptr), CML_NAME_DUPLICATE);  // the duplicate is found first
  EXPECT_EQ(list.IsNameValid(L"a:b", first), CML_NAME_BAD_CHAR);
  EXPECT_EQ(list.IsNameValid(L"x:y", nullptr), CML_NAME_BAD_CHAR);
  EXPECT_EQ(list.IsNameValid(L"Plain", second), CML_NAME_OK);
  EXPECT_EQ(list.IsNameValid(L"Plain", first), CML_NAME_DUPLICATE);
  EXPECT_EQ(list.IsNameValid(L"Plain_", nullptr), CML_NAME_OK);  // only the list's names gain a "_"
  // A duplicate behind a first media of another name is not reached: the
  // character test at the first media decides.
  list.AddMedia(Sheet(L"c.d"));
  EXPECT_EQ(list.IsNameValid(L"c.d", nullptr), CML_NAME_BAD_CHAR);
  for (const wchar_t c : std::wstring(L"/\\:*?\"<>|.{}[]")) {
    EXPECT_EQ(list.IsNameValid((std::wstring(L"x") + c).c_str(), nullptr), CML_NAME_BAD_CHAR) << char(c);
  }
  for (const wchar_t* name : {L"x y", L"x(1)", L"x-1", L"x#", L"x,1", L"\u00e9"}) {
    EXPECT_EQ(list.IsNameValid(name, nullptr), CML_NAME_OK) << ToUtf8(name);
  }
}

TEST(MediaList, UniqueNames) {
  CPrintMediaList list;
  list.AddMedia(Sheet(L"Gloss"));
  list.AddMedia(Sheet(L"Gloss_2_"));
  CPrintMedia media = *Sheet(L"Gloss");
  EXPECT_EQ(list.GetUniqueMediaName(media), L"Gloss_3");  // "Gloss_2" is taken by "Gloss_2_"
  EXPECT_EQ(media.GetName(), L"Gloss_3");
  media.SetName(L" Satin 1.5 mm: {x} ");
  EXPECT_EQ(list.GetUniqueMediaName(media), L"Satin_1_5_mm___x_");
  media.SetName(L"");
  EXPECT_EQ(list.GetUniqueMediaName(media), L"Media");
}

TEST(MediaList, SanitizesPaperNames) {
  const struct {
    const wchar_t* in;
    const wchar_t* out;
  } cases[] = {
      {L"A4", L"A4"},
      {L"A3 (297 x 420 mm)", L"A3"},
      {L"Letter 8.5 x 11 in", L"Letter 8.5 x 11"},
      {L"Env. Monarch", L"Env"},
      {L"Tabloid Extra", L"Tabloid"},
      {L"Custom Size 1", L"Custom Size 1"},
      {L"Envelope #10", L"Envelope"},
      {L".hidden x", L".hidden"},        // a full stop first is not an abbreviation
      {L"(Custom) paper", L"(Custom)"},  // nor does a "(" first end the name
      {L"Photo 4\"x6\"", L"Photo 4"},
      {L"", L""},
  };
  CPrintMediaList list;
  for (const auto& c : cases) {
    std::wstring name = c.in;
    list.SanitizeGDISheetName(name);
    EXPECT_EQ(name, c.out) << ToUtf8(c.in);
  }
}

TEST(MediaList, DefaultsAreMadeWhenMissing) {
  CPrinterData printer;
  ASSERT_TRUE(printer.LoadFromString(
      "<PRINTERLIST><PRINTER><DEFAULTPAGE><ROLLWIDTH>64</ROLLWIDTH></DEFAULTPAGE></PRINTER></PRINTERLIST>"));
  CPrintMediaList list;
  list.SetMediaPath(L"/nonexistent/media");
  ASSERT_TRUE(list.Initialize(&printer, nullptr, nullptr));
  EXPECT_EQ(Names(list), (std::vector<std::wstring>{L"Default_Roll", L"Default_Sheet", L"Default_Template"}));
  EXPECT_EQ(list.GetDefaultRoll()->GetWidth(), 64 * 72.0);
  EXPECT_EQ(list.GetDefaultRoll()->GetHeight(), 129600.0);
  EXPECT_TRUE(list.HasRollMedia() && list.HasSheetMedia() && list.HasTemplateMedia());

  // A template named with a suffix is the default template; nothing new is made.
  list.clear();
  auto page = std::make_unique<CPrintMedia>();
  page->CreateDefaultTemplate();
  page->SetName(L"Default_Template_A3");
  CPrintMedia* stored = list.AddMedia(std::move(page));
  EXPECT_EQ(list.AddMedia(stored), stored);  // held already: not owned twice
  EXPECT_EQ(list.GetDefaultTemplate(), stored);
  EXPECT_EQ(list.size(), 1u);
  EXPECT_FALSE(list.HasRollMedia());
}

// A RIP folder made for the test: a printer definition with page sizes, media
// files of every sort, and an installed printer the host answers for.
class MediaFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    SetTarnRipSystemRoot(rip_.wide().c_str());
    std::filesystem::create_directories(rip_.path() / "System" / "printers");
    media_ = rip_.path() / "System" / "pmodes" / "Proofer" / "Media";
    std::filesystem::create_directories(media_);
    test::WriteBytes(
        rip_.path() / "System" / "printers" / "Proofer.pdx",
        "<?xml version=\"1.0\"?><PRINTERLIST><PRINTER>"
        "<DEFAULTPAGE><ROLLWIDTH>44</ROLLWIDTH></DEFAULTPAGE>"
        "<GDIORIGINALNAME>Office Laser</GDIORIGINALNAME>"
        "<GDINONPRINTABLE_X>0.25</GDINONPRINTABLE_X><GDINONPRINTABLE_Y>0.5</GDINONPRINTABLE_Y>"
        "<PAGESIZE><PAGENAME>A4</PAGENAME><PAGEWIDTH>8</PAGEWIDTH><PAGEDEPTH>11</PAGEDEPTH></PAGESIZE>"
        "<PAGESIZE><PAGENAME>Letter 8.5x11</PAGENAME><PAGEWIDTH>8</PAGEWIDTH>"
        "<PAGEDEPTH>10.5</PAGEDEPTH><LEFTMARG>0.25</LEFTMARG><RIGHTMARG>0.25</RIGHTMARG>"
        "<TOPMARG>0.25</TOPMARG><BOTMARG>0.25</BOTMARG></PAGESIZE>"
        "</PRINTER></PRINTERLIST>");
    ASSERT_TRUE(printer_.LoadPrinter(L"Proofer"));

    // A file of a page's name wins over the printer's page.
    CPrintMedia a4 = *Sheet(L"A4", 500, 800);
    ASSERT_TRUE(a4.WriteFile(FromUtf8(media_.string())));
    CPrintMedia roll;
    roll.CreateDefaultRoll(300);
    roll.SetName(L"Gloss_Vinyl");
    ASSERT_TRUE(roll.WriteFile(FromUtf8(media_.string())));
    test::WriteBytes(media_ / "Broken.qmd", "<XMEDIA><Name>Broken</Name>");
    test::WriteBytes(media_ / "Nameless.qmd",
                     "<XMEDIA><Type>1</Type><Width>10</Width><Height>10</Height></XMEDIA>");
    test::WriteBytes(media_ / "Twin.qmd", "<XMEDIA><Name>Gloss Vinyl</Name></XMEDIA>");
    broken_ = test::ReadBytes(media_ / "Broken.qmd");

    SetPrinterPaperQuery([](const std::wstring& printer, PrinterPaper& paper) {
      if (printer != L"Office Laser") {
        return false;
      }
      paper.code = 7;
      paper.width = 1842;  // tenths of a millimetre
      paper.length = 2667;
      paper.name = L"Executive 7.25 x 10.5 in";
      return true;
    });
  }
  void TearDown() override { SetPrinterPaperQuery({}); }

  std::wstring MediaFolderPath() const { return FromUtf8(media_.string()) + L"\\"; }

  test::TempFolder rip_;
  std::filesystem::path media_;
  CPrinterData printer_;
  std::string broken_;
};

TEST_F(MediaFolder, ListComesFromFilesPrinterPagesInstalledPrinterAndDefaults) {
  test::MessageCapture messages;
  std::vector<std::pair<int, int>> steps;
  int loaded = 0;
  struct Progress {
    std::vector<std::pair<int, int>>* steps;
    int* loaded;
  } context{&steps, &loaded};
  CPrintMediaList list;
  ASSERT_TRUE(list.Initialize(
      &printer_,
      [](int done, int total, void* context, void* media) {
        auto* progress = static_cast<Progress*>(context);
        progress->steps->emplace_back(done, total);
        *progress->loaded += media != nullptr;
      },
      &context));
  EXPECT_EQ(list.GetMediaPath(), GetPrintModesFolder() + L"Proofer\\Media\\");
  EXPECT_EQ(Names(list), (std::vector<std::wstring>{L"A4", L"Gloss_Vinyl", L"Nameless", L"Letter_8_5x11",
                                                    L"Executive_7_25_x_10_5", L"Default_Roll",
                                                    L"Default_Sheet", L"Default_Template"}));
  // Five files, then the printer's pages, the installed printer and the defaults.
  EXPECT_EQ(steps, (std::vector<std::pair<int, int>>{
                       {0, 8}, {1, 8}, {2, 8}, {3, 8}, {4, 8}, {5, 8}, {6, 8}, {7, 8}, {8, 8}}));
  EXPECT_EQ(loaded, 3);
  ASSERT_EQ(messages.messages().size(), 2u);  // the broken file and the second "Gloss Vinyl"
  EXPECT_NE(messages.messages()[0].text.find(L"Broken.qmd"), std::wstring::npos);
  EXPECT_NE(messages.messages()[1].text.find(L"Twin.qmd"), std::wstring::npos);
  EXPECT_EQ(test::ReadBytes(media_ / "Broken.qmd"), broken_);

  EXPECT_EQ(list.GetMedia(L"A4")->GetWidth(), 500.0);
  const CPrintMedia& letter = *list.GetMedia(L"Letter_8_5x11");
  EXPECT_TRUE(letter.IsSheet());
  EXPECT_EQ(letter.GetWidth(), 8.5 * 72);
  EXPECT_EQ(letter.GetHeight(), 11 * 72);
  EXPECT_EQ(letter.GetLMargin(), 18.0);
  const CPrintMedia& paper = *list.GetMedia(L"Executive_7_25_x_10_5");
  EXPECT_EQ(paper.GetWidth(), 1842 / 254.0 * 72);
  EXPECT_EQ(paper.GetHeight(), 10.5 * 72);
  EXPECT_EQ(paper.GetPaperSizeCode(), 7);
  EXPECT_EQ(paper.GetLMargin(), 18.0);
  EXPECT_EQ(paper.GetTMargin(), 36.0);
  EXPECT_EQ(list.GetDefaultRoll()->GetWidth(), 44 * 72.0);

  // Without a paper query the installed printer gives nothing.
  SetPrinterPaperQuery({});
  messages.clear();
  ASSERT_TRUE(list.Initialize(&printer_, nullptr, nullptr));
  EXPECT_EQ(list.GetMedia(L"Executive_7_25_x_10_5"), nullptr);
  EXPECT_EQ(list.size(), 7u);
}

TEST_F(MediaFolder, ChangesAreWrittenOneFileEachAndOnlyInsideTheFolder) {
  test::MessageCapture messages;
  CPrintMediaList list;
  ASSERT_TRUE(list.Initialize(&printer_, nullptr, nullptr));
  messages.clear();
  std::wstring name = L"Satin Photo";
  CPrintMedia* satin = list.AddCustomMedia(CPrintMedia::MEDIA_TEMPLATE, name, 300, 400);
  ASSERT_NE(satin, nullptr);
  EXPECT_EQ(name, L"Satin_Photo");
  EXPECT_EQ(satin->SlotCount(), 0);

  // A rename moves the file; a removal deletes it.
  CPrintMedia renamed = *list.GetMedia(L"Gloss_Vinyl");
  renamed.SetName(L"Gloss_Vinyl_Outdoor");
  ASSERT_TRUE(list.UpdateMedia(renamed, L"Gloss_Vinyl"));
  ASSERT_TRUE(list.RemoveMedia(L"Nameless"));
  // Names that would leave the folder or clash are refused before anything is written.
  CPrintMedia escape = *Sheet(L"..\\..\\escape");
  EXPECT_FALSE(list.UpdateMedia(escape, L"A4"));
  CPrintMedia clash = *Sheet(L"A4");
  EXPECT_FALSE(list.UpdateMedia(clash, L"Satin_Photo"));
  list.AddMedia(*Sheet(L"bad.name"));

  EXPECT_FALSE(list.WriteMediaToDisk());  // "bad.name" is reported and not written
  ASSERT_EQ(messages.messages().size(), 1u);
  EXPECT_NE(messages.messages()[0].text.find(L"bad.name"), std::wstring::npos);
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(rip_.path())) {
    if (entry.is_regular_file()) {
      files.push_back(std::filesystem::relative(entry.path(), rip_.path()).string());
    }
  }
  std::sort(files.begin(), files.end());
  EXPECT_EQ(files, (std::vector<std::string>{
                       "System/pmodes/Proofer/Media/A4.qmd", "System/pmodes/Proofer/Media/Broken.qmd",
                       "System/pmodes/Proofer/Media/Gloss_Vinyl_Outdoor.qmd",
                       "System/pmodes/Proofer/Media/Satin_Photo.qmd", "System/pmodes/Proofer/Media/Twin.qmd",
                       "System/printers/Proofer.pdx"}));

  // What was written reads back as the list holds it, and nothing is pending.
  CPrintMediaList again;
  ASSERT_TRUE(again.Initialize(&printer_, nullptr, nullptr));
  ASSERT_NE(again.GetMedia(L"Satin_Photo"), nullptr);
  EXPECT_EQ(*again.GetMedia(L"Satin_Photo"), *list.GetMedia(L"Satin_Photo"));
  ASSERT_TRUE(list.RemoveMedia(L"bad.name"));
  messages.clear();
  EXPECT_TRUE(list.WriteMediaToDisk());
  EXPECT_TRUE(messages.empty());
}

TEST_F(MediaFolder, CopyingKeepsAMakersLock) {
  test::MessageCapture messages;
  CPrintMediaList list;
  ASSERT_TRUE(list.Initialize(&printer_, nullptr, nullptr));
  CPrintMedia* a4 = list.GetMedia(L"A4");
  a4->SetLocked(true);
  a4->SetPS(L"a4 setup");
  CPrintMedia edited = *a4;
  edited.SetLocked(false);
  edited.SetPS(L"");
  edited.SetSize(510, 810);
  const size_t before = list.size();
  CPrintMedia* stored = list.AddMedia_CopyLockedValue(edited);
  EXPECT_EQ(list.size(), before);
  EXPECT_EQ(list.GetMedia(L"A4"), stored);
  EXPECT_TRUE(stored->IsLocked());
  EXPECT_EQ(stored->GetPS(), L"a4 setup");
  EXPECT_EQ(stored->GetWidth(), 510.0);
  ASSERT_TRUE(list.WriteMediaToDisk());
  CPrintMedia read;
  ASSERT_TRUE(read.ReadFile(FromUtf8((media_ / "A4.qmd").string())));
  EXPECT_TRUE(read.IsLocked());
  EXPECT_EQ(read.GetWidth(), 510.0);
}

}  // namespace
}  // namespace tarn
