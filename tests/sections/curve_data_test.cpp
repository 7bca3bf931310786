#include "tarn/sections/curve_data.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>

#include "support/test_support.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

constexpr const char* kDeclaration = "<?xml version=\"1.0\"?>\n";
constexpr const char* kDefaultDensityData =
    "0.0000,0.0500,0.1000,0.2000,0.3000,0.4000,0.5000,0.6000,0.7000,0.8000,0.9000,0.9500,1.0000";

std::string Written(const CPMCurveData& curve, unsigned version = 0) {
  pugi::xml_document document;
  pugi::xml_node root = document;
  curve.WriteXML(root, true, version);
  return xml::SaveDocumentToString(document);
}

// Reads the first element of text into curve.
bool ReadInto(CPMCurveData& curve, const std::string& text) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text.c_str()));
  return curve.ReadXML(document.first_child());
}

// A curve with the points of a DATA_FLEXIBLE text, read in the given mode.
CPMCurveData Flexible(const std::string& points, bool density = true) {
  CPMCurveData curve(density, 0);
  ReadInto(curve, std::string("<CURVEDATA type=\"") + (density ? "1" : "0") + "\"><DATA_FLEXIBLE>" + points +
                      "</DATA_FLEXIBLE></CURVEDATA>");
  return curve;
}

CPMCurveData RoundTrip(const CPMCurveData& curve) {
  CPMCurveData copy(curve.IsDensityMode(), curve.GetDrawColor());
  EXPECT_TRUE(ReadInto(copy, Written(curve)));
  return copy;
}

std::wstring Prefix(const CPMCurveData& curve, bool inverted = false) {
  formatstringT buffer;
  if (inverted) {
    curve.GetPDFPrefixInverted(buffer);
  } else {
    curve.GetPDFPrefix(buffer);
  }
  return buffer.str();
}

TEST(CurveDataTest, DefaultElementsAreWrittenExactly) {
  CPMCurveData density(true, 0xFF);
  density.SetName(L"Cyan");
  EXPECT_EQ(Written(density), std::string(kDeclaration) +
                                  "<CURVEDATA name=\"Cyan\" type=\"1\" keep0=\"0\">\n"
                                  "\t<DATA>" +
                                  kDefaultDensityData +
                                  "</DATA>\n"
                                  "</CURVEDATA>\n");

  CPMCurveData level(false, 0);
  level.SetKeepZero(true);
  EXPECT_EQ(Written(level, 1), std::string(kDeclaration) +
                                   "<CURVEDATA2 name=\"\" type=\"0\" keep0=\"1\">\n"
                                   "\t<DATA>0.0000,1.0000,255.0000,0.2000,0.3000,0.4000,0.5000,0.6000,0.7000,"
                                   "0.8000,0.9000,0.9500,1.0000</DATA>\n"
                                   "</CURVEDATA2>\n");
}

TEST(CurveDataTest, MergeRuleChangesNearPointsAndAddsOthers) {
  CPMCurveData curve;
  curve.SetValue(0.205, 0.25);  // within 0.01 of the 0.2 point
  EXPECT_EQ(curve.GetPointCount(), 13u);
  EXPECT_EQ(curve.GetValue(0.2), 0.25);

  // Far enough from 0.2 not to depend on how 0.21 - 0.2 rounds in binary.
  curve.SetValue(0.23, 0.3);
  curve.SetValue(0.42, 0.5);
  ASSERT_EQ(curve.GetPointCount(), 15u);
  const auto& points = curve.GetValues();
  for (size_t i = 1; i < points.size(); ++i) {
    EXPECT_LT(points[i - 1].first, points[i].first);
  }
  EXPECT_NE(Written(curve).find("<DATA_FLEXIBLE>0.0000, 0.0000;0.0500, 0.0500;0.1000, 0.1000;0.2000, "
                                "0.2500;0.2300, 0.3000;"),
            std::string::npos);

  // SetValueStraight neither merges nor sorts; out-of-range indexes are ignored.
  curve.SetValueStraight(0, 0.9);
  curve.SetValueStraight(-1, 0.9);
  curve.SetValueStraight(15, 0.9);
  EXPECT_EQ(curve.GetValues()[0].second, 0.9);
  EXPECT_EQ(curve.GetPointCount(), 15u);
  EXPECT_EQ(curve.GetValue(0.21), -1.0);  // lookups are exact

  CPMCurveData near;
  near.SetValueStraight(6, 0.5 + 1e-9);
  EXPECT_FALSE(near.HasSameCurve(CPMCurveData()));  // no tolerance
}

TEST(CurveDataTest, IdentityCurvesEvaluateToTheirInput) {
  const CPMCurveData density;
  const CPMCurveData level(false, 0);
  for (int v = 0; v <= 255; ++v) {
    EXPECT_NEAR(density.GetCurveValue(v, false), v, 1e-9) << v;
    EXPECT_NEAR(level.GetCurveValue(v, false), v, 1e-9) << v;
  }
  EXPECT_NEAR(density.GetCurveValue(0.25, true), 0.25, 1e-12);
  EXPECT_NEAR(level.GetCurveValue(0.75, true), 0.75, 1e-12);
  EXPECT_NEAR(density.GetCurveArea(), 32258.0, 1e-6);
  EXPECT_NEAR(level.GetCurveArea(), 32258.0, 1e-6);
  EXPECT_NEAR(density.GetCurveDeviation(), (65025.0 - 32258.0) / 32512.5, 1e-12);
}

TEST(CurveDataTest, ShapedCurvesEvaluate) {
  // Level: low 51, gamma 2, high 204.
  CPMCurveData level(false, 0);
  level.SetValueStraight(0, 51);
  level.SetValueStraight(1, 2);
  level.SetValueStraight(2, 204);
  const double mid = 255.0 * std::sqrt((153.0 * (100.0 / 255.0) + 51.0) / 255.0);
  EXPECT_NEAR(level.GetCurveValue(100, false), mid, 1e-9);
  // The inverted form evaluates tone 255 - 255 v and turns the result back into a fraction.
  EXPECT_NEAR(level.GetCurveValue(1.0 - 100.0 / 255.0, true), (255.0 - mid) / 255.0, 1e-12);
  // Levels beyond the tone range are clamped.
  level.SetValueStraight(2, 400);
  EXPECT_EQ(level.GetCurveValue(255, false), 255.0);

  // Density: halving output density lightens every tone; segments are linear in density.
  CPMCurveData density;
  density.MakeLinear(0.5);
  EXPECT_NEAR(density.GetCurveValue(0, false), 127.5, 1e-9);
  EXPECT_NEAR(density.GetCurveValue(255, false), 255.0, 1e-9);
  EXPECT_NEAR(density.GetCurveValue(127.5, false), 191.25, 1e-9);
}

TEST(CurveDataTest, EvaluationOutsideTheCurveThrows) {
  // Points only up to density 0.5: tones darker than 127.5 are not covered.
  const CPMCurveData half = Flexible("0, 0;0.5, 0.5;");
  EXPECT_NEAR(half.GetCurveValue(200, false), 200, 1e-9);
  EXPECT_THROW(half.GetCurveValue(0, false), std::out_of_range);
  EXPECT_THROW(half.GetCurveDeviation(), std::out_of_range);
  EXPECT_THROW(Flexible("0.5, 0.5;").GetCurveValue(255, false), std::out_of_range);
  EXPECT_THROW(Flexible("0, 0;1, 1;", false).GetCurveValue(10, false), std::out_of_range);
  // Equal neighbouring x values are not guarded: the result is not finite.
  EXPECT_FALSE(std::isfinite(Flexible("0.5, 0.2;0.5, 0.8;1, 1;").GetCurveValue(255, false)));
}

TEST(CurveDataTest, SwitchingModes) {
  CPMCurveData level(false, 0x123456);
  level.SetName(L"Gone");
  level.SetExtraData(7);
  level.SetKeepZero(true);
  level.SetDensityMode(true);
  EXPECT_TRUE(level.IsDensityMode());
  EXPECT_EQ(level.GetValues(), GetDefaultCurve());
  EXPECT_EQ(level.GetName(), L"");
  EXPECT_EQ(level.GetExtraData(), 0u);
  EXPECT_FALSE(level.GetKeepZero());
  EXPECT_EQ(level.GetDrawColor(), 0x123456u);

  // A shaped level curve is sampled: the point at density d holds the level
  // curve's output density at tone 255 (1 - d).
  CPMCurveData shaped(false, 0);
  shaped.SetValueStraight(1, 2.0);
  CPMCurveData sampled(shaped);
  sampled.SetDensityMode(true);
  ASSERT_EQ(sampled.GetPointCount(), 13u);
  for (const auto& [d, y] : sampled.GetValues()) {
    const double tone = 255.0 * (1.0 - d);
    EXPECT_NEAR(y, 1.0 - shaped.GetCurveValue(tone, false) / 255.0, 1e-12) << d;
  }

  CPMCurveData density;
  density.SetValue(0.42, 0.1);
  density.SetDensityMode(true);  // no change of mode: nothing happens
  EXPECT_EQ(density.GetPointCount(), 14u);
  density.SetDensityMode(false);
  EXPECT_EQ(Prefix(density), L"0.0000, 0.0000, 0.5000, 1.0000, 1.0000, 1.0000");
}

TEST(CurveDataTest, PostScriptPrefixes) {
  EXPECT_EQ(Prefix(CPMCurveData(false, 0)), L"0.0000, 0.0000, 0.5000, 1.0000, 1.0000, 1.0000");
  EXPECT_EQ(Prefix(CPMCurveData(false, 0), true), L"0.0000, 1.0000, 0.5000, 0.0000, 1.0000, 0.0000");
  const CPMCurveData two = Flexible("0, 0;1, 1;");
  EXPECT_EQ(Prefix(two), L"0.0000, 0.0000, 1.0000, 1.0000,");
  EXPECT_EQ(Prefix(two, true), L"0.0000, 1.0000, 1.0000, 0.0000,");

  // The gamma is inverted unscaled; missing level points count as -1.
  CPMCurveData level(false, 0);
  level.SetValueStraight(1, 0.5);
  EXPECT_EQ(Prefix(level, true), L"0.0000, 1.0000, 0.5000, 0.5000, 1.0000, 0.0000");
  EXPECT_EQ(Prefix(Flexible("0, 51;", false)), L"0.0000, 0.2000, 0.5000, -1.0000, 1.0000, -0.0039");

  // Text already in the buffer is never touched.
  formatstringT buffer(L"[ ");
  two.GetPDFPrefix(buffer);
  EXPECT_EQ(buffer.str(), L"[ 0.0000, 0.0000, 1.0000, 1.0000,");
}

TEST(CurveDataTest, RoundTripsKeepEveryPersistedField) {
  CPMCurveData flexible(true, 0);
  flexible.SetName(L"Ränder & <Kanten>");
  flexible.SetKeepZero(true);
  flexible.SetValue(0.42, 0.3125);
  flexible.SetValue(0.97, 0.9);
  EXPECT_EQ(RoundTrip(flexible), flexible);

  CPMCurveData level(false, 0);
  level.SetValueStraight(0, 12);
  level.SetValueStraight(1, 1.8);
  level.SetValueStraight(2, 240);
  EXPECT_EQ(RoundTrip(level), level);

  // A level curve read by a density-mode object becomes level by its "type".
  CPMCurveData reader;
  EXPECT_TRUE(ReadInto(reader, Written(level, 1)));
  EXPECT_EQ(reader, level);
}

TEST(CurveDataTest, FlexibleDataReplacesPointsAsWritten) {
  struct Case {
    const char* text;
    CurvePoints expected;
  };
  const Case cases[] = {
      // unsorted and near-equal points stay as they are
      {"0.5, 0.4;0.1, 0.2;0.105, 0.3;", {{0.5, 0.4}, {0.1, 0.2}, {0.105, 0.3}}},
      // no final semicolon, empty tokens and line breaks between pairs
      {"\n\t0, 0;;\n\t1, 1\n", {{0, 0}, {1, 1}}},
      // a field that cannot be read stays 0
      {"0.3 , 0.4;0.6;x, 0.5;", {{0.3, 0}, {0.6, 0}, {0, 0}}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Flexible(c.text).GetValues(), c.expected) << c.text;
  }
}

TEST(CurveDataTest, MalformedDataLeavesTheDefaults) {
  const char* texts[] = {
      "0.0000,0.0500,0.1000,0.2000,0.3000,0.4000,0.5000,0.6000,0.7000,0.8000,0.9000,0.9500",  // 12 values
      "0,0,0,0,0,0,0,0,0,0,0,0,0,0",                                                          // 14 values
      "0,0,0,0,0,0,0,0,0,0,0,,0",      // 12 commas, 12 numbers
      "0,0,0,0,0,0,0,0,0,0,0,0,x",     // not a number
      "0,0,0,0,0,0,0.5x,0,0,0,0,0,0",  // junk after a number
      "",                              // nothing
  };
  for (const char* text : texts) {
    CPMCurveData curve(true, 0);
    ReadInto(curve, std::string("<CURVEDATA type=\"1\"><DATA>") + text + "</DATA></CURVEDATA>");
    EXPECT_EQ(curve.GetValues(), GetDefaultCurve()) << text;
    CPMCurveData level(false, 0);
    ReadInto(level, std::string("<CURVEDATA type=\"0\"><DATA>") + text + "</DATA></CURVEDATA>");
    EXPECT_EQ(level, CPMCurveData(false, 0)) << text;
  }
  // An empty DATA_FLEXIBLE keeps the points too: an empty curve cannot be evaluated.
  EXPECT_EQ(Flexible(" ; ").GetValues(), GetDefaultCurve());
}

TEST(CurveDataTest, ReadingStartsFromDefaultsAndChecksTheElement) {
  CPMCurveData curve;
  curve.SetValue(0.42, 0.1);
  curve.SetKeepZero(true);
  curve.SetName(L"old");
  EXPECT_FALSE(ReadInto(curve, "<curvedata name=\"x\"><DATA>1,1,1,1,1,1,1,1,1,1,1,1,1</DATA></curvedata>"));
  EXPECT_EQ(curve.GetValues(), GetDefaultCurve());
  EXPECT_FALSE(curve.GetKeepZero());
  EXPECT_EQ(curve.GetName(), L"old");  // defaults keep the name
  EXPECT_FALSE(curve.ReadXML(pugi::xml_node()));

  // DATA in density mode merges onto the default x positions; later elements win.
  EXPECT_TRUE(ReadInto(curve,
                       "<CURVEDATA name=\"n\" keep0=\"1\" other=\"x\"><DATA>1,1,1,1,1,1,1,1,1,1,1,1,1</DATA>"
                       "<DATA>0,0,0,0,0,0,0,0,0,0,0,0,0.5</DATA></CURVEDATA>"));
  EXPECT_EQ(curve.GetName(), L"n");
  EXPECT_TRUE(curve.GetKeepZero());
  EXPECT_EQ(curve.GetPointCount(), 13u);
  EXPECT_EQ(curve.GetValue(1.0), 0.5);
  EXPECT_EQ(curve.GetValue(0.5), 0.0);
}

// --- CCurveData ----------------------------------------------------------------

TEST(ListCurveDataTest, DefaultsAreTranslatedAndWrittenExactly) {
  SetTranslator([](const std::wstring& text) { return text == L"(*v*)Linear" ? L"Linéaire" : text; });
  const CCurveData curve;
  SetTranslator({});
  pugi::xml_document document;
  pugi::xml_node root = document;
  curve.WriteXML(root);
  EXPECT_EQ(xml::SaveDocumentToString(document), std::string(kDeclaration) +
                                                     "<CurveData>\n"
                                                     "\t<Name>Linéaire</Name>\n"
                                                     "\t<DATA>" +
                                                     kDefaultDensityData +
                                                     "</DATA>\n"
                                                     "\t<Selected>0</Selected>\n"
                                                     "</CurveData>\n");
}

TEST(ListCurveDataTest, ReadingMergesPoints) {
  CCurveData curve;
  pugi::xml_document document;
  document.load_string(
      "<CurveData><Name></Name><DATA_FLEXIBLE>0.5, 0.4;0.42, 0.3;0.205, 0.1;</DATA_FLEXIBLE>"
      "<Selected>1</Selected></CurveData>");
  EXPECT_TRUE(curve.ReadXML(document.first_child()));
  EXPECT_EQ(curve.GetName(), L"(*v*)Linear");  // an empty name keeps the default
  EXPECT_TRUE(curve.IsSelected());
  // Merged into the defaults: sorted, near-equal x values collapse.
  const auto& points = curve.GetValues();
  ASSERT_EQ(points.size(), 14u);
  EXPECT_EQ(points[3], CurvePoint(0.2, 0.1));
  EXPECT_EQ(points[6], CurvePoint(0.42, 0.3));
  EXPECT_EQ(points[7], CurvePoint(0.5, 0.4));
  EXPECT_FALSE(curve.ReadXML(document.child("CURVEDATA")));
  EXPECT_FALSE(curve.IsSelected());
}

}  // namespace
}  // namespace tarn
