#include "tarn/media/print_media.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

bool ReadInto(CPrintMedia& media, const std::string& text) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text.c_str()));
  return media.ReadXML(document.first_child());
}

// A template in which every slot setting and every quick-set value differs
// from its default and from the others, so a swapped pair shows.
CPrintMedia FullTemplate() {
  CPrintMedia media;
  media.SetType(CPrintMedia::MEDIA_TEMPLATE);
  media.SetName(L"Labels_3x2 \u00e9t\u00e9");
  media.SetVersion(L"7");
  media.SetCopyright(L"Kestrel <Labels> & Co");
  media.SetSize(612.5, 792.25);
  media.SetMargins(1.5, 2.5, 3.5, 4.5);
  media.SetSpacing(0.1, 0.2);
  media.SetPS(L"<< /PageSize [612.5 792.25] >> setpagedevice");
  media.SetTemplateBase(L"Base\\Labels.qmd");
  media.SetBookTemplate(true);
  media.SetCreepContent(true);
  media.SetPaperSizeCode(-3);
  CQTAData quickSet;
  quickSet.SetSpacing(9.25, 8.125);
  quickSet.SetOffset(18.5, 36.75);
  quickSet.SetNumber(3, 2);
  quickSet.SetSlotSize(180.0625, 252.03125);
  quickSet.SetFillOrder(4);
  media.SetQuickSet(quickSet);
  for (int i = 0; i < 2; ++i) {
    _SlotData slot;
    slot.x = 18.5 + i;
    slot.y = 36.25;
    slot.width = 180.125;
    slot.height = 252.5;
    int value = 1 + i * 100;
    for (int* field : {&slot.item, &slot.scaling, &slot.rotate, &slot.anchor, &slot.scalingVector,
                       &slot.rotateVector, &slot.mirrorVector, &slot.pattern, &slot.doFixedGraphics,
                       &slot.fixedGraphics, &slot.scalingGraphics, &slot.rotateGraphics, &slot.anchorGraphics,
                       &slot.arrangeGraphics, &slot.creepAmountX, &slot.creepAmountY}) {
      *field = ++value;
    }
    slot.creepAmountY = -value;
    slot.mirror = 1;
    slot.doCustomPattern = i;
    media.GetSlots().Add(slot);
  }
  return media;
}

TEST(PrintMedia, TemplateRoundTripsWithTheSameBytes) {
  const CPrintMedia media = FullTemplate();
  const std::string first = test::Written(media);
  CPrintMedia read;
  ASSERT_TRUE(ReadInto(read, first));
  EXPECT_EQ(read, media);
  EXPECT_EQ(test::Written(read), first);

  test::DecimalCommaLocale comma;
  if (!comma.active()) {
    GTEST_SKIP() << "no decimal-comma locale on this machine";
  }
  EXPECT_EQ(test::Written(media), first);
  CPrintMedia readUnderComma;
  ASSERT_TRUE(ReadInto(readUnderComma, first));
  EXPECT_EQ(readUnderComma, media);
}

TEST(PrintMedia, TemplateLayout) {
  CQTAData quickSet;
  quickSet.SetNumber(1, 1);
  quickSet.SetOffset(9, 9);
  quickSet.SetSlotSize(100.5, 50.25);
  std::unique_ptr<CPrintMedia> media = quickSet.GenerateTemplate(0);
  ASSERT_TRUE(media);
  media->SetName(L"One");
  media->SetCopyright(L"c");
  media->GetSlots().Get(0)->mirror = 2;  // not 1: written as 0
  media->GetSlots().Get(0)->creepAmountX = -7;
  EXPECT_EQ(
      test::Written(*media),
      "<?xml version=\"1.0\"?>\n"
      "<XMEDIA>\n"
      "\t<Name>One</Name>\n"
      "\t<Version></Version>\n"
      "\t<Copyright>c</Copyright>\n"
      "\t<Type>2</Type>\n"
      "\t<Width>118.5</Width>\n"
      "\t<Height>68.25</Height>\n"
      "\t<LMargin>0</LMargin>\n"
      "\t<RMargin>0</RMargin>\n"
      "\t<TMargin>0</TMargin>\n"
      "\t<BMargin>0</BMargin>\n"
      "\t<XSpacing>0</XSpacing>\n"
      "\t<YSpacing>0</YSpacing>\n"
      "\t<Locked>0</Locked>\n"
      "\t<TEMPLATE_BASE></TEMPLATE_BASE>\n"
      "\t<TEMPLATE_QUICKSET>\n"
      "\t\t<HSpace>0</HSpace>\n"
      "\t\t<VSpace>0</VSpace>\n"
      "\t\t<HOffset>9</HOffset>\n"
      "\t\t<VOffset>9</VOffset>\n"
      "\t\t<HNumber>1</HNumber>\n"
      "\t\t<VNumber>1</VNumber>\n"
      "\t\t<SlotWidth>100.5</SlotWidth>\n"
      "\t\t<SlotHeight>50.25</SlotHeight>\n"
      "\t\t<FillOrder>0</FillOrder>\n"
      "\t</TEMPLATE_QUICKSET>\n"
      "\t<SLOTS>\n"
      "\t\t<SLOT item=\"1\" scaling=\"2\" rotate_enum=\"0\" anchor=\"4\" Mirror=\"0\" "
      "DoCustomPattern=\"0\" Scaling_Vector=\"0\" Rotate_Vector=\"0\" Mirror_Vector=\"0\" Pattern=\"0\" "
      "DoFixedGraphics=\"0\" FixedGraphics=\"0\" scaling_Graphics=\"0\" rotate_Graphics=\"0\" "
      "anchor_Graphics=\"0\" arrange_Graphics=\"0\" CreepAmount_X=\"-7\" "
      "CreepAmount_Y=\"0\">9.000,9.000,100.500,50.250</SLOT>\n"
      "\t</SLOTS>\n"
      "\t<BookTemplate>0</BookTemplate>\n"
      "\t<CreepContent>0</CreepContent>\n"
      "</XMEDIA>\n");
}

// Which of the conditional elements each kind of media writes.
TEST(PrintMedia, ConditionalElements) {
  const auto tags = [](const CPrintMedia& media) {
    pugi::xml_document document;
    media.WriteXML(document);
    std::string names;
    for (const pugi::xml_node& child : document.first_child().children()) {
      const std::string name = child.name();
      if (name == "PS" || name == "PSImageableArea" || name == "PSDimension" || name == "TEMPLATE_BASE" ||
          name == "TEMPLATE_QUICKSET" || name == "SLOTS" || name == "BookTemplate" ||
          name == "CreepContent" || name == "PaperSizeName") {
        names += (names.empty() ? "" : " ") + name;
      }
    }
    return names;
  };
  const auto withTexts = [](std::int32_t type, bool locked) {
    CPrintMedia media;
    media.SetType(type);
    media.SetLocked(locked);
    media.SetPS(L"ps");
    media.SetPSImageableArea(L"0 0 10 10");
    media.SetPSDimension(L"10 10");
    return media;
  };
  EXPECT_EQ(tags(withTexts(CPrintMedia::MEDIA_SHEET, true)), "PS PSImageableArea PSDimension");
  EXPECT_EQ(tags(withTexts(CPrintMedia::MEDIA_ROLL, false)), "");
  EXPECT_EQ(tags(withTexts(CPrintMedia::MEDIA_TEMPLATE, false)),
            "PS TEMPLATE_BASE SLOTS BookTemplate CreepContent");

  CPrintMedia sheet;
  sheet.SetType(CPrintMedia::MEDIA_SHEET);
  sheet.SetQuickSet(CQTAData());  // in use, but only templates carry it
  sheet.SetPaperSizeCode(9);
  EXPECT_EQ(tags(sheet), "PaperSizeName");

  CPrintMedia page;
  page.CreateDefaultTemplate();
  EXPECT_EQ(tags(page), "TEMPLATE_BASE SLOTS BookTemplate CreepContent");
  page.SetQuickSet(CQTAData());
  EXPECT_EQ(tags(page), "TEMPLATE_BASE TEMPLATE_QUICKSET SLOTS BookTemplate CreepContent");
}

TEST(PrintMedia, ReadingLocksMediaWithPageSetUpExceptTemplates) {
  const auto read = [](const char* type, const char* locked, const char* ps) {
    CPrintMedia media;
    ReadInto(media, std::string("<XMEDIA><PS>") + ps + "</PS><Locked>" + locked + "</Locked><Type>" + type +
                        "</Type></XMEDIA>");
    return media.IsLocked();
  };
  EXPECT_TRUE(read("1", "0", "x"));  // a sheet with a page set-up is its maker's
  EXPECT_TRUE(read("3", "0", "x"));
  EXPECT_FALSE(read("2", "0", "x"));  // a template keeps it unlocked
  EXPECT_FALSE(read("1", "0", ""));
  EXPECT_TRUE(read("2", "1", ""));
}

TEST(PrintMedia, ReadingStartsFromDefaultsAndSkipsWhatItDoesNotKnow) {
  CPrintMedia media = FullTemplate();
  ASSERT_TRUE(ReadInto(media,
                       "<XMEDIA><Width>10</Width><Unknown><Name>x</Name></Unknown><Width>20</Width>"
                       "<SLOTS><SLOT item=\"3\">1,2</SLOT><Other/></SLOTS><TEMPLATE_QUICKSET/></XMEDIA>"));
  EXPECT_EQ(media.GetWidth(), 20.0);  // the later value wins
  EXPECT_EQ(media.GetName(), L"");
  EXPECT_EQ(media.GetCopyright(), CPrintMedia::kDefaultCopyright);
  EXPECT_TRUE(media.IsQuickSetInUse());
  EXPECT_EQ(media.GetQuickSet(), CQTAData());
  ASSERT_EQ(media.SlotCount(), 1);
  EXPECT_EQ(media.GetSlots().Get(0)->item, 3);
  EXPECT_EQ(media.GetSlots().Get(0)->width, 0.0);  // a rectangle that is not four numbers stays 0

  EXPECT_FALSE(ReadInto(media, "<xmedia/>"));
}

TEST(PrintMedia, ValidityRoundsToAThousandthOfAPoint) {
  const struct {
    const char* what;
    std::int32_t type;
    const wchar_t* name;
    double width, height;
    bool valid;
  } cases[] = {
      {"sheet", CPrintMedia::MEDIA_SHEET, L"S", 100, 100, true},
      {"no name", CPrintMedia::MEDIA_SHEET, L"", 100, 100, false},
      {"width rounds to 0", CPrintMedia::MEDIA_SHEET, L"S", 0.0004, 100, false},
      {"width rounds up", CPrintMedia::MEDIA_SHEET, L"S", 0.0005, 100, true},
      {"sheet height rounds to 0", CPrintMedia::MEDIA_SHEET, L"S", 100, 0.0004, false},
      {"negative sheet height", CPrintMedia::MEDIA_SHEET, L"S", 100, -1, true},
      {"template of no height", CPrintMedia::MEDIA_TEMPLATE, L"T", 100, 0, true},
      {"roll of no height", CPrintMedia::MEDIA_ROLL, L"R", 100, 0, true},
  };
  for (const auto& c : cases) {
    CPrintMedia media;
    media.SetType(c.type);
    media.SetName(c.name);
    media.SetSize(c.width, c.height);
    EXPECT_EQ(media.IsDataValid(), c.valid) << c.what;
  }
  CPrintMedia roll;
  roll.CreateDefaultRoll(72.0 * 64);
  roll.SetSize(100, 5);
  EXPECT_TRUE(roll.IsDataValid());
  EXPECT_EQ(roll.GetHeight(), 129600.0);
  roll.SetName(L"");
  roll.SetSize(100, 5);
  EXPECT_FALSE(roll.IsDataValid());
  EXPECT_EQ(roll.GetHeight(), 5.0);  // no side effect when invalid

  CPrintMedia margins;
  EXPECT_FALSE(margins.HasMargins());
  margins.SetBMargin(0.0004);
  EXPECT_FALSE(margins.HasMargins());
  margins.SetBMargin(-0.0006);
  EXPECT_TRUE(margins.HasMargins());
}

TEST(PrintMedia, DefaultMedia) {
  CPrintMedia sheet;
  sheet.CreateDefaultSheet();
  EXPECT_EQ(sheet.GetName(), L"Default_Sheet");
  EXPECT_TRUE(sheet.IsSheet());
  EXPECT_EQ(sheet.GetHeight(), 129600.0);  // 1800 inches: meant
  ASSERT_EQ(sheet.SlotCount(), 1);
  EXPECT_EQ(sheet.GetSlots().Get(0)->width, 595.275590551181);
  EXPECT_EQ(sheet.GetSlots().Get(0)->height, 129600.0);

  CPrintMedia page;
  page.CreateDefaultTemplate();
  EXPECT_TRUE(page.IsDefaultTemplate());
  EXPECT_EQ(page.GetHeight(), 841.8897637795275);
  page.SetName(L"Default_Template_2");
  EXPECT_TRUE(page.IsDefaultTemplate());
  page.SetName(L"Default_Templates");
  EXPECT_FALSE(page.IsDefaultTemplate());
  EXPECT_FALSE(page.MakeDefaultMedia(7));
}

// Items of a 3 x 2 grid, row by row, for each fill order.
TEST(QuickSet, FillOrdersNumberTheSlots) {
  CQTAData quickSet;
  quickSet.SetNumber(3, 2);
  quickSet.SetOffset(10, 20);
  quickSet.SetSpacing(5, 6);
  quickSet.SetSlotSize(100, 50);
  const struct {
    int fillOrder;
    std::vector<int> items;
  } cases[] = {
      {0, {1, 2, 3, 4, 5, 6}}, {1, {1, 3, 5, 2, 4, 6}}, {2, {1, 1, 1, 1, 1, 1}},
      {3, {1, 1, 1, 2, 2, 2}}, {4, {1, 2, 3, 1, 2, 3}}, {-1, {1, 2, 3, 4, 5, 6}},
  };
  for (const auto& c : cases) {
    std::unique_ptr<CPrintMedia> media = quickSet.GenerateTemplate(c.fillOrder);
    ASSERT_TRUE(media);
    std::vector<int> items;
    for (const auto& slot : media->GetSlots()) {
      items.push_back(slot->item);
    }
    EXPECT_EQ(items, c.items) << "fill order " << c.fillOrder;
    EXPECT_TRUE(media->IsTemplate());
    EXPECT_TRUE(media->IsQuickSetInUse());
    EXPECT_EQ(media->GetQuickSet(), quickSet);
  }

  std::unique_ptr<CPrintMedia> media = quickSet.GenerateTemplate(0);
  const _SlotData& last = *media->GetSlots().Get(5);
  EXPECT_EQ(last.x, 10 + 2 * 105);
  EXPECT_EQ(last.y, 20 + 56);
  EXPECT_EQ(last.width, 100);
  EXPECT_EQ(last.height, 50);
  EXPECT_EQ(last.scaling, 2);
  EXPECT_EQ(last.anchor, 4);
  EXPECT_EQ(media->GetWidth(), 2 * 10 + 3 * 100 + 2 * 5);
  EXPECT_EQ(media->GetHeight(), 2 * 20 + 2 * 50 + 6);
}

TEST(QuickSet, GridsWithoutSlotsGiveNoTemplate) {
  const struct {
    const char* what;
    int across, down;
    double width, height;
  } cases[] = {
      {"none across", 0, 2, 10, 10},
      {"both negative", -2, -3, 10, 10},
      {"slot width rounds to 0", 2, 2, 0.0004, 10},
      {"slot height rounds to 0", 2, 2, 10, -0.0004},
      {"more slots than allowed", 1 << 10, 1 << 10, 10, 10},
  };
  for (const auto& c : cases) {
    CQTAData quickSet;
    quickSet.SetNumber(c.across, c.down);
    quickSet.SetSlotSize(c.width, c.height);
    EXPECT_EQ(quickSet.GenerateTemplate(0), nullptr) << c.what;
  }
}

TEST(PrintMediaFile, WritesAndReadsBack) {
  test::TempFolder folder;
  CPrintMedia media = FullTemplate();
  media.SetName(L"Labels");
  std::wstring error;
  // No separator after the folder: the file still goes inside it.
  const std::wstring folderPath = FromUtf8(folder.path().string());
  ASSERT_TRUE(media.WriteFile(folderPath, &error)) << ToUtf8(error);
  EXPECT_TRUE(std::filesystem::is_regular_file(folder.path() / "Labels.qmd"));
  EXPECT_EQ(media.GetFullPath(), folderPath + L"\\Labels.qmd");

  CPrintMedia read;
  ASSERT_TRUE(read.LoadDef(folder.wide(), L"Labels", &error)) << ToUtf8(error);
  EXPECT_EQ(read, media);
  const std::string bytes = test::ReadBytes(folder.path() / "Labels.qmd");
  ASSERT_TRUE(read.WriteFile(folder.wide()));
  EXPECT_EQ(test::ReadBytes(folder.path() / "Labels.qmd"), bytes);
}

TEST(PrintMediaFile, NeverWritesOutsideItsFolder) {
  test::TempFolder folder;
  std::filesystem::create_directory(folder.path() / "Media");
  const std::wstring media_folder = folder.wide() + L"Media\\";
  for (const wchar_t* name :
       {L"..\\escape", L"../escape", L"sub/escape", L"C:escape", L"a.b", L"", L"tab\tname"}) {
    CPrintMedia media;
    media.SetName(name);
    std::wstring error;
    EXPECT_FALSE(media.WriteFile(media_folder, &error)) << ToUtf8(name);
    EXPECT_FALSE(error.empty());
  }
  CPrintMedia media;
  media.SetName(L"fine");
  EXPECT_FALSE(media.WriteFile(L""));
  EXPECT_EQ(std::distance(std::filesystem::recursive_directory_iterator(folder.path()),
                          std::filesystem::recursive_directory_iterator()),
            1);
}

TEST(PrintMediaFile, ReadFailuresSayWhy) {
  test::TempFolder folder;
  test::WriteBytes(folder.path() / "wrong.qmd", "<?xml version=\"1.0\"?>\n<PMH/>\n");
  test::WriteBytes(folder.path() / "broken.qmd", "<XMEDIA><Name>x</Nam></XMEDIA>");
  CPrintMedia media = FullTemplate();
  std::wstring error;
  EXPECT_FALSE(media.ReadFile(folder.File("wrong.qmd"), &error));
  EXPECT_NE(error.find(L"XMEDIA"), std::wstring::npos);
  EXPECT_EQ(media, CPrintMedia());
  EXPECT_FALSE(media.ReadFile(folder.File("broken.qmd"), &error));
  error.clear();
  EXPECT_FALSE(media.ReadFile(folder.File("missing.qmd"), &error));
  EXPECT_FALSE(error.empty());
}

}  // namespace
}  // namespace tarn
