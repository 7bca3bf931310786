// Every GetFirst…/GetNext… walk of the records shares one cursor: these cases
// hold each record to the same end rule and copy rule.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "tarn/sections/halftone_data.h"
#include "tarn/sections/laser_data.h"
#include "tarn/sections/printer_options_data.h"
#include "tarn/sections/separation_data.h"
#include "tarn/sections/transfer_data.h"
#include "tarn/tarn.h"

namespace tarn {
namespace {

// A move that silently falls back to a copy is slow and may throw; a record
// whose move is noexcept moves for real.
template <class... T>
constexpr bool kAllMoveNoexcept = (... && (std::is_nothrow_move_constructible_v<T> &&
                                           std::is_nothrow_move_assignable_v<T>));
static_assert(kAllMoveNoexcept<CPrintModeData, CPrinterData, CPrinterBase, CResolutionDef, CColorDef,
                               CCustomDef, CPageSizeDef, CDotProfileDef, CSpotDef, CButtonDef, CColorMap,
                               COptionMap, CPMCurveData, CPMTransferData, CPMSeparationData, CPMHalftoneData,
                               CPMPrinterOptionsData, CPMLaserData, CVectorPenList, CPMFencePointData,
                               CPMICCProfileData, CPMMaxInkData, CPMImageAdjustData, CXRegistry>);

TEST(CursorTest, IndexWalkStaysAtItsEndUntilRestarted) {
  Cursor<std::size_t> cursor;
  EXPECT_FALSE(cursor.NextIndex(3)) << "a walk never started is at its end";
  std::vector<std::size_t> seen;
  for (auto i = cursor.FirstIndex(3); i; i = cursor.NextIndex(3)) {
    seen.push_back(*i);
  }
  EXPECT_EQ(seen, (std::vector<std::size_t>{0, 1, 2}));
  EXPECT_FALSE(cursor.NextIndex(5)) << "growing the sequence must not revive a finished walk";
  EXPECT_EQ(cursor.FirstIndex(5), 0u);
}

TEST(CursorTest, MapWalkSurvivesEditsAndIsNotCopied) {
  std::map<int, char> map = {{1, 'a'}, {3, 'c'}, {5, 'e'}};
  Cursor<int> cursor;
  EXPECT_EQ(cursor.First(map)->first, 1);
  map.erase(3);  // the entry after the cursor goes away
  map.erase(1);  // and so does the one it stands on
  map.emplace(2, 'b');
  EXPECT_EQ(cursor.Next(map)->first, 2);

  Cursor<int> copy(cursor);
  EXPECT_EQ(cursor.Next(map)->first, 5);
  EXPECT_EQ(cursor.Next(map), map.end());
  EXPECT_EQ(copy.Next(map)->first, 5) << "a copy walks on by itself";
}

TEST(RecordCursorsTest, PrinterOptionsLeaveOutValuesAtTheEnd) {
  CPMPrinterOptionsData options;
  options.AddOption(L"B", L"2");
  options.AddOption(L"A", L"1");
  std::wstring name;
  std::wstring value;
  ASSERT_TRUE(options.GetFirstOption(name, value));
  EXPECT_EQ(name, L"A");
  ASSERT_TRUE(options.GetNextOption(name, value));
  EXPECT_EQ(value, L"2");
  EXPECT_FALSE(options.GetNextOption(name, value));
  EXPECT_FALSE(options.GetNextOption(name, value));
  EXPECT_EQ(name, L"B");
  EXPECT_EQ(value, L"2");

  CPMPrinterOptionsData copy;
  ASSERT_TRUE(options.GetFirstOption(name, value));
  copy = options;
  options.RemoveOption(L"B");
  EXPECT_FALSE(options.GetNextOption(name, value));
  ASSERT_TRUE(copy.GetNextOption(name, value)) << "an assigned record walks on by itself";
  EXPECT_EQ(name, L"B");
}

TEST(RecordCursorsTest, SeparationPlanesStopAtTheEndAndKeepTheName) {
  CPMSeparationData separations;
  separations.AddPlane(L"Cyan", std::make_unique<CPMSeparationData::ChannelQueue>(1));
  separations.AddPlane(L"Black", std::make_unique<CPMSeparationData::ChannelQueue>(2));
  std::wstring name;
  ASSERT_NE(separations.GetFirstPlane(name), nullptr);
  EXPECT_EQ(name, L"Black");
  ASSERT_NE(separations.GetNextPlane(name), nullptr);
  EXPECT_EQ(separations.GetNextPlane(name), nullptr);
  EXPECT_EQ(separations.GetNextPlane(name), nullptr) << "the walk must not start over by itself";
  EXPECT_EQ(name, L"Cyan");
}

TEST(RecordCursorsTest, TransferHalftoneAndPenWalksStopAtTheEnd) {
  CPMTransferData transfers;
  unsigned curves = 0;
  for (CPMCurveData* curve = transfers.GetFirstCurve(); curve != nullptr; curve = transfers.GetNextCurve()) {
    ++curves;
  }
  EXPECT_GT(curves, 0u);
  EXPECT_EQ(transfers.GetNextCurve(), nullptr);

  CPMHalftoneData halftones;
  std::wstring key = L"untouched";
  size_t screens = 0;
  for (auto* screen = halftones.GetFirstHalftone(&key); screen != nullptr;
       screen = halftones.GetNextHalftone(&key)) {
    ++screens;
  }
  EXPECT_EQ(screens, halftones.GetHalftoneCount());
  const std::wstring last = key;
  EXPECT_EQ(halftones.GetNextHalftone(&key), nullptr);
  EXPECT_EQ(key, last);

  CVectorPenList pens;
  pens.AddColor(CColor::FromName(L"red"));
  pens.AddColor(CColor::FromName(L"blue"));
  ASSERT_NE(pens.GetFirstPen(), nullptr);
  CVectorPenList copy(pens);
  ASSERT_NE(pens.GetNextPen(), nullptr);
  EXPECT_EQ(pens.GetNextPen(), nullptr);
  pens.AddColor(CColor::FromName(L"green"));
  EXPECT_EQ(pens.GetNextPen(), nullptr);
  EXPECT_EQ(copy.GetNextPen(), copy.GetPen(1)) << "a copy walks on by itself";
}

}  // namespace
}  // namespace tarn
