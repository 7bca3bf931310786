#include "tarn/sections/transfer_data.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

#include <string>
#include <vector>

#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

CPMTransferData RoundTrip(const CPMTransferData& transfers) {
  pugi::xml_document document;
  pugi::xml_node root = document;
  transfers.WriteXML(root);
  CPMTransferData copy;
  EXPECT_TRUE(copy.ReadXML(document.first_child()));
  return copy;
}

bool ReadInto(CPMTransferData& transfers, const char* text) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text));
  return transfers.ReadXML(document.first_child());
}

std::string DefaultCurveElement(const char* tag, const char* name) {
  return std::string("\t<") + tag + " name=\"" + name +
         "\" type=\"1\" keep0=\"0\">\n"
         "\t\t<DATA>0.0000,0.0500,0.1000,0.2000,0.3000,0.4000,0.5000,0.6000,0.7000,0.8000,0.9000,0.9500,"
         "1.0000</DATA>\n\t</" +
         tag + ">\n";
}

TEST(TransferDataTest, DefaultSectionIsWrittenExactly) {
  std::string expected = "<?xml version=\"1.0\"?>\n<TCURVES type=\"1\" inripseps=\"0\">\n";
  for (const char* tag : {"CURVEDATA", "CURVEDATA2"}) {
    for (const char* name : {"Cyan", "Magenta", "Yellow", "Black", "Hex0", "Hex1"}) {
      expected += DefaultCurveElement(tag, name);
    }
  }
  expected += "</TCURVES>\n";
  EXPECT_EQ(test::Written(CPMTransferData()), expected);

  CPMTransferData all;
  all.SetUseAll(true);
  all.SetEnable(true);
  all.SetMode(3);
  EXPECT_EQ(test::Written(all),
            "<?xml version=\"1.0\"?>\n<TCURVES type=\"1\" inripseps=\"0\" all=\"1\">\n"
            "\t<OVR_ENABLE>1</OVR_ENABLE>\n" +
                DefaultCurveElement("CURVEDATA", "All") + DefaultCurveElement("CURVEDATA2", "All") +
                "</TCURVES>\n");
}

TEST(TransferDataTest, RoundTripKeepsBothSets) {
  CPMTransferData transfers;
  transfers.SetEnable(true);
  transfers.SetInRipSeps(true);
  CPMCurveData cyan;
  cyan.SetValue(0.42, 0.3125);
  cyan.SetKeepZero(true);
  transfers.SetCurve(1, cyan, 0);
  CPMCurveData level(false, 0);
  level.SetValueStraight(1, 1.5);
  transfers.SetCurve(6, level, 1);
  transfers.GetCurve(3, 1)->MakeLinear(0.25);

  const CPMTransferData copy = RoundTrip(transfers);
  EXPECT_EQ(copy, transfers);
  EXPECT_EQ(copy.GetCurve(3, 0)->GetName(), L"Yellow");
  EXPECT_FALSE(copy.GetCurve(6, 1)->IsDensityMode());
  EXPECT_TRUE(copy.GetCurve(1, 0)->GetKeepZero());
  EXPECT_EQ(copy.GetCurve(1, 0)->GetDrawColor(), 0xFFFF00u);

  // Mode 0 is written as "0" and read back; other modes are written as "1".
  transfers.SetMode(0);
  EXPECT_EQ(RoundTrip(transfers).GetMode(), 0u);
  transfers.SetMode(5);
  EXPECT_EQ(RoundTrip(transfers).GetMode(), 1u);
}

TEST(TransferDataTest, AllFormFillsEveryPlane) {
  CPMTransferData transfers;
  ASSERT_TRUE(ReadInto(transfers,
                       "<TCURVES type=\"1\" all=\"1\"><CURVEDATA name=\"whatever\">"
                       "<DATA_FLEXIBLE>0, 0;0.5, 0.25;1, 1;</DATA_FLEXIBLE></CURVEDATA></TCURVES>"));
  EXPECT_TRUE(transfers.GetUseAll());
  const wchar_t* names[] = {L"All", L"Cyan", L"Magenta", L"Yellow", L"Black", L"Hex0", L"Hex1"};
  for (unsigned plane = 0; plane < 7; ++plane) {
    const CPMCurveData* curve = transfers.GetCurve(plane, 0);
    EXPECT_EQ(curve->GetName(), names[plane]);
    EXPECT_EQ(curve->GetValue(0.5), 0.25);
    EXPECT_EQ(curve->GetDrawColor(), CPMTransferData::GetDrawColor(plane));
    EXPECT_EQ(transfers.GetCurve(plane, 1)->GetPointCount(), 13u);  // the second set keeps its defaults
  }
  // Written back, only plane 0 goes out, and reading it again gives the same section.
  EXPECT_EQ(RoundTrip(transfers), transfers);

  // "all" other than 1 is the per-plane form.
  ASSERT_TRUE(ReadInto(transfers,
                       "<TCURVES all=\"2\"><CURVEDATA name=\"Cyan\"><DATA_FLEXIBLE>0, 0;1, 0.5;"
                       "</DATA_FLEXIBLE></CURVEDATA></TCURVES>"));
  EXPECT_FALSE(transfers.GetUseAll());
  EXPECT_EQ(transfers.GetCurve(1, 0)->GetValue(1), 0.5);
  EXPECT_EQ(transfers.GetCurve(2, 0)->GetValue(1), 1.0);
}

TEST(TransferDataTest, CurvesFindTheirPlaneByName) {
  CPMTransferData transfers;
  ASSERT_TRUE(ReadInto(transfers,
                       "<TCURVES type=\"0\" inripseps=\"1\"><OVR_ENABLE>1</OVR_ENABLE><unknown/>"
                       "<CURVEDATA name=\"Orange\"><DATA_FLEXIBLE>0, 0;1, 0.1;</DATA_FLEXIBLE></CURVEDATA>"
                       "<CURVEDATA2 name=\"YELLOW\"><DATA_FLEXIBLE>0, 0;1, 0.2;</DATA_FLEXIBLE></CURVEDATA2>"
                       "<CURVEDATA2 name=\"hex1\"><DATA_FLEXIBLE>0, 0;1, 0.3;</DATA_FLEXIBLE></CURVEDATA2>"
                       "</TCURVES>"));
  EXPECT_TRUE(transfers.GetEnable());
  EXPECT_TRUE(transfers.GetInRipSeps());
  EXPECT_EQ(transfers.GetMode(), 0u);
  // Unknown names land on plane 0 and keep their own name.
  EXPECT_EQ(transfers.GetCurve(0, 0)->GetName(), L"Orange");
  EXPECT_EQ(transfers.GetCurve(0, 0)->GetValue(1), 0.1);
  EXPECT_EQ(transfers.GetCurve(0, 0)->GetDrawColor(), 0u);
  // Plane names are matched ignoring case.
  EXPECT_EQ(transfers.GetCurve(3, 1)->GetValue(1), 0.2);
  EXPECT_EQ(transfers.GetCurve(3, 1)->GetDrawColor(), 0x00FFFFu);
  EXPECT_EQ(transfers.GetCurve(6, 1)->GetValue(1), 0.3);
  EXPECT_EQ(transfers.GetCurve(3, 0)->GetValue(1), 1.0);
}

TEST(TransferDataTest, EveryReadStartsFromDefaults) {
  const char* text =
      "<TCURVES type=\"1\"><CURVEDATA name=\"Black\"><DATA_FLEXIBLE>0, 0;1, 0.5;</DATA_FLEXIBLE>"
      "</CURVEDATA></TCURVES>";
  CPMTransferData once;
  ASSERT_TRUE(ReadInto(once, text));
  CPMTransferData twice;
  twice.SetEnable(true);
  twice.SetMaxInk(250);
  twice.SetInputMode(3);
  twice.GetCurve(2, 1)->MakeLinear(0.1);
  ASSERT_TRUE(ReadInto(twice, text));
  ASSERT_TRUE(ReadInto(twice, text));
  EXPECT_EQ(twice, once);
  EXPECT_EQ(twice.GetMaxInk(), 400);  // archive-only fields are not in the element

  EXPECT_FALSE(ReadInto(twice, "<tcurves type=\"0\"/>"));
  EXPECT_EQ(twice, CPMTransferData());
  EXPECT_FALSE(twice.ReadXML(pugi::xml_node()));
}

TEST(TransferDataTest, SetCurveAndMakeLinear) {
  CPMTransferData transfers;
  const CPMTransferData untouched;
  CPMCurveData half;
  half.MakeLinear(0.5);
  half.SetDrawColor(0x123456);
  transfers.SetCurve(7, half, 0);
  transfers.SetCurve(99, half, 1);
  EXPECT_EQ(transfers, untouched);

  transfers.SetCurve(2, half, 1);
  EXPECT_TRUE(transfers.GetCurve(2, 1)->HasSameCurve(half));
  EXPECT_EQ(transfers.GetCurve(2, 1)->GetDrawColor(), 0xFF00FFu);
  EXPECT_FALSE(transfers.GetCurve(2, 0)->HasSameCurve(half));

  transfers.MakeLinear(L"Hex0", 2.0);
  transfers.MakeLinear(L"All", 2.0);
  transfers.MakeLinear(L"Cyan", 0.5);
  transfers.MakeLinear(L"yellow", 0.5);
  for (unsigned plane = 0; plane < 7; ++plane) {
    const bool halved = plane == 1 || plane == 3;
    EXPECT_EQ(transfers.GetCurve(plane, 0)->HasSameCurve(half), halved) << plane;
  }
  EXPECT_FALSE(transfers.GetCurve(1, 1)->HasSameCurve(half));  // the second set is untouched
}

TEST(TransferDataTest, VerifyFillsOnlyMissingPlanes) {
  CPMTransferData transfers;
  transfers.GetCurve(4, 0)->MakeLinear(0.5);
  transfers.VerifyCurves();
  EXPECT_EQ(transfers.GetCurve(4, 0)->GetValue(1), 0.5);
  transfers.ClearData();
  EXPECT_EQ(transfers.GetCurveCount(0), 0u);
  EXPECT_EQ(transfers.GetFirstCurve(), nullptr);
  transfers.VerifyCurves();
  EXPECT_EQ(transfers.GetCurveCount(1), 7u);
  EXPECT_EQ(transfers.GetCurve(1, 0)->GetName(), L"");
  EXPECT_EQ(transfers.GetCurve(1, 0)->GetDrawColor(), 0u);
}

TEST(TransferDataTest, IterationWalksTheFirstSetInPlaneOrder) {
  CPMTransferData transfers;
  std::vector<std::wstring> names;
  for (CPMCurveData* curve = transfers.GetFirstCurve(); curve; curve = transfers.GetNextCurve()) {
    names.push_back(curve->GetName());
  }
  EXPECT_EQ(names,
            (std::vector<std::wstring>{L"All", L"Cyan", L"Magenta", L"YELLOW", L"Black", L"Hex0", L"Hex1"}));
  // A copy taken mid-walk walks on by itself; replacing a curve does not break the walk.
  transfers.GetFirstCurve();
  CPMTransferData copy(transfers);
  transfers.SetCurve(1, CPMCurveData(), 0);
  EXPECT_EQ(transfers.GetNextCurve(), transfers.GetCurve(1, 0));
  EXPECT_EQ(copy.GetNextCurve(), copy.GetCurve(1, 0));
}

}  // namespace
}  // namespace tarn
