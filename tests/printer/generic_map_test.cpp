// Named definition maps: ordering, reading, ownership and the extra lookups of
// the page, colour and option maps.

#include <gtest/gtest.h>

#include <cmath>
#include <list>
#include <string>
#include <vector>

#include "tarn/foundation/xml.h"
#include "tarn/printer/printer_data.h"

namespace tarn {
namespace {

pugi::xml_node Parse(pugi::xml_document& document, const char* text) {
  EXPECT_TRUE(document.load_string(text));
  return document.first_child();
}

std::vector<std::wstring> Keys(const CSpotMap& map) {
  std::vector<std::wstring> keys;
  for (const auto& entry : map) {
    keys.push_back(entry.first);
  }
  return keys;
}

std::unique_ptr<CSpotDef> Spot(const wchar_t* name) {
  auto spot = std::make_unique<CSpotDef>();
  spot->SetName(name);
  return spot;
}

TEST(GenericMapTest, KeysSortIgnoringCaseWithEmptyKeysLast) {
  const less_CString_Key less;
  EXPECT_TRUE(less(L"alpha", L"Beta"));
  EXPECT_FALSE(less(L"Beta", L"alpha"));
  EXPECT_FALSE(less(L"abc", L"ABC"));
  EXPECT_FALSE(less(L"ABC", L"abc"));
  EXPECT_TRUE(less(L"zzz", L""));
  EXPECT_FALSE(less(L"", L"zzz"));
  EXPECT_FALSE(less(L"", L""));
}

TEST(GenericMapTest, ReadXMLSectionReplacesContentsAndLastSameNamedChildWins) {
  pugi::xml_document document;
  const pugi::xml_node printer = Parse(document,
                                       "<PRINTER>"
                                       "<SPOT><NAME>round</NAME><SHAPE>1</SHAPE></SPOT>"
                                       "<SPOT><SHAPE>7</SHAPE></SPOT>"  // nameless: skipped
                                       "<spot><NAME>Lower</NAME></spot>"
                                       "<RES><RESLABEL>Other</RESLABEL></RES>"
                                       "<SPOT><NAME>Ellipse</NAME></SPOT>"
                                       "<SPOT><NAME>ROUND</NAME><SHAPE>2</SHAPE></SPOT>"
                                       "</PRINTER>");
  CSpotMap map;
  map.Add(L"Stale", Spot(L"Stale"));
  map.ReadXMLSection(printer);

  EXPECT_EQ(Keys(map), (std::vector<std::wstring>{L"Ellipse", L"ROUND"}));
  ASSERT_NE(map.Get(L"round"), nullptr);
  EXPECT_EQ(map.Get(L"round")->GetShape(), 2);
  EXPECT_EQ(map.Get(L"Stale"), nullptr);

  map.ReadXMLSection(pugi::xml_node());
  EXPECT_TRUE(map.empty());
}

TEST(GenericMapTest, AddXMLObjectComparesTheTagExactly) {
  pugi::xml_document document;
  const pugi::xml_node parent =
      Parse(document, "<P><spot><NAME>a</NAME></spot><SPOT><NAME>b</NAME></SPOT></P>");
  CSpotMap map;
  map.AddXMLObject(parent.first_child());
  EXPECT_TRUE(map.empty());
  map.AddXMLObject(parent.last_child());
  EXPECT_NE(map.Get(L"B"), nullptr);
}

TEST(GenericMapTest, AddReplacesAndRefusesWhatItCannotKey) {
  CSpotMap map;
  CSpotDef* first = new CSpotDef();
  first->SetName(L"Dot");
  map.Add(L"Dot", first);
  map.Add(L"Dot", first);  // the same object again must not free it
  EXPECT_EQ(map.Get(L"dot"), first);

  map.Add(L"DOT", Spot(L"Second"));
  ASSERT_EQ(map.size(), 1u);
  EXPECT_EQ(map.Get(L"Dot")->GetName(), L"Second");

  map.Add(L"Other", static_cast<CSpotDef*>(nullptr));
  map.Add(L"", Spot(L"x"));
  map.Add(static_cast<const wchar_t*>(nullptr), Spot(L"x"));
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(map.Get(nullptr), nullptr);
  EXPECT_EQ(map.Get(L""), nullptr);

  map.Remove(L"missing");
  map.Remove(L"dOT");
  EXPECT_TRUE(map.empty());

  auto it = map.begin();
  EXPECT_EQ(map.Current(it), nullptr);
}

TEST(GenericMapTest, RefusedAddLeavesTheObjectWithTheCaller) {
  CSpotMap map;
  // A refused raw pointer is still the caller's to use and free; freeing it
  // here would be a double free if the map had already deleted it.
  auto* kept = new CSpotDef();
  kept->SetName(L"Kept");
  map.Add(L"", kept);
  map.Add(static_cast<const wchar_t*>(nullptr), kept);
  EXPECT_EQ(kept->GetName(), L"Kept");
  delete kept;

  std::unique_ptr<CSpotDef> owned = Spot(L"Owned");
  map.Add(L"", std::move(owned));
  ASSERT_NE(owned, nullptr);
  EXPECT_EQ(owned->GetName(), L"Owned");
  map.Add(L"Owned", std::move(owned));
  EXPECT_EQ(owned, nullptr);
  EXPECT_EQ(map.size(), 1u);
}

TEST(GenericMapTest, CopiesAreDeepAndAssignmentMerges) {
  CSpotMap source;
  source.Add(L"A", Spot(L"A"));
  source.Add(L"B", Spot(L"B"));

  CSpotMap copy(source);
  ASSERT_EQ(copy.size(), 2u);
  EXPECT_NE(copy.Get(L"A"), source.Get(L"A"));
  copy.Get(L"A")->SetName(L"changed");
  EXPECT_EQ(source.Get(L"A")->GetName(), L"A");

  CSpotMap target;
  target.Add(L"b", Spot(L"target's own"));
  target.Add(L"C", Spot(L"C"));
  target = source;
  EXPECT_EQ(Keys(target), (std::vector<std::wstring>{L"A", L"b", L"C"}));
  EXPECT_EQ(target.Get(L"B")->GetName(), L"target's own");
  EXPECT_EQ(target.GetSection(), L"SPOT");
}

class PageMapTest : public ::testing::Test {
 protected:
  void SetUp() override {
    pugi::xml_document document;
    const pugi::xml_node printer = Parse(document,
                                         "<PRINTER>"
                                         "<PAGESIZE><PAGENAME>Small</PAGENAME><PAGEPS>small</PAGEPS>"
                                         "<PAGEWIDTH>8</PAGEWIDTH><PAGEDEPTH>10</PAGEDEPTH>"
                                         "<LEFTMARG>0.25</LEFTMARG><RIGHTMARG>0.25</RIGHTMARG>"
                                         "<TOPMARG>0.5</TOPMARG><BOTMARG>0.5</BOTMARG></PAGESIZE>"
                                         "<PAGESIZE><PAGENAME>Wide</PAGENAME><PAGEPS>WideSheet</PAGEPS>"
                                         "<PAGEWIDTH>20</PAGEWIDTH><PAGEDEPTH>5</PAGEDEPTH></PAGESIZE>"
                                         "</PRINTER>");
    pages.ReadXMLSection(printer);
  }
  CPageMap pages;
};

TEST_F(PageMapTest, ExactSizesAndStrictlyLargerSizesAreSupported) {
  EXPECT_TRUE(pages.IsPageSupported(8.5, 11.0));     // Small with its margins
  EXPECT_TRUE(pages.IsPageSupported(8.5004, 11.0));  // equal to a thousandth
  EXPECT_TRUE(pages.IsPageSupported(9.0, 12.0));     // larger than Small both ways
  EXPECT_FALSE(pages.IsPageSupported(8.5, 12.0));    // equal width, larger height
  EXPECT_FALSE(pages.IsPageSupported(9.0, 11.0));
  EXPECT_TRUE(pages.IsPageSupported(21.0, 6.0));  // larger than Wide only
  EXPECT_FALSE(pages.IsPageSupported(1e300, std::nan("")));
  EXPECT_FALSE(CPageMap().IsPageSupported(100.0, 100.0));
}

TEST_F(PageMapTest, LooksUpByPostScriptNameAndListsNames) {
  ASSERT_NE(pages.Get(L"widesheet", true), nullptr);
  EXPECT_EQ(pages.Get(L"widesheet", true)->GetName(), L"Wide");
  EXPECT_EQ(pages.Get(L"widesheet", false), nullptr);
  EXPECT_EQ(pages.Get(L"wide", true), nullptr);

  std::list<std::wstring> names{L"kept"};
  pages.GetStringList(names);
  EXPECT_EQ(names, (std::list<std::wstring>{L"kept", L"Small", L"Wide"}));
}

TEST(ColorMapTest, LooksUpBySecondName) {
  pugi::xml_document document;
  const pugi::xml_node printer =
      Parse(document,
            "<PRINTER><NCOLOR2><NAME>CMYK</NAME><DISPLAYNAME>Four colour</DISPLAYNAME></NCOLOR2>"
            "<NCOLOR2><NAME>Hexa</NAME><DISPLAYNAME>Six colour</DISPLAYNAME></NCOLOR2></PRINTER>");
  CColorMap colors;
  colors.ReadXMLSection(printer);
  ASSERT_NE(colors.Get(L"SIX COLOUR", true), nullptr);
  EXPECT_EQ(colors.Get(L"SIX COLOUR", true)->GetName(), L"Hexa");
  EXPECT_EQ(colors.Get(L"Six colour", false), nullptr);
  EXPECT_EQ(colors.Get(L"hexa", false)->GetDisplayName(), L"Six colour");
}

TEST(OptionMapTest, FindsOptionsByNameOrKeywordIncludingNestedOnes) {
  pugi::xml_document document;
  const pugi::xml_node printer = Parse(document,
                                       "<PRINTER>"
                                       "<CUSTOM><NAME>Direction</NAME><PROC>Dir</PROC>"
                                       "<CUSTOM><NAME>Delay</NAME><PROC>SweepDelay</PROC></CUSTOM></CUSTOM>"
                                       "<CUSTOM><NAME>Heater</NAME><PROC>Heat</PROC></CUSTOM>"
                                       "</PRINTER>");
  COptionMap options;
  options.ReadXMLSection(printer);
  ASSERT_NE(options.Get(L"Heat", false), nullptr);
  EXPECT_EQ(options.Get(L"Heat", false)->GetName(), L"Heater");
  EXPECT_EQ(options.Get(L"Heat", true), nullptr);
  EXPECT_EQ(options.Get(L"heater", true), nullptr);  // the walk compares exactly
  ASSERT_NE(options.Get(L"SweepDelay", false), nullptr);
  EXPECT_EQ(options.Get(L"SweepDelay", false)->GetName(), L"Delay");
  EXPECT_EQ(options.Get(L"Delay", true)->GetProc(), L"SweepDelay");
  EXPECT_EQ(options.Get(L"heater")->GetProc(), L"Heat");  // keyed lookup ignores case
}

}  // namespace
}  // namespace tarn
