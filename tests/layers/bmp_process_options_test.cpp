#include "tarn/layers/bmp_process_options.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/test_support.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

CWhiteMask Mask(const std::wstring& display, int strength, int light, int dark, int white, int last) {
  CWhiteMask mask;
  mask.SetDisplay(display);
  mask.SetStrength(strength);
  mask.SetLightStrength(light);
  mask.SetDarkStrength(dark);
  mask.SetWhiteStrength(white);
  mask.SetLastPointStrength(last);
  return mask;
}

bool SameMask(const CWhiteMask& a, const CWhiteMask& b) {
  return a == b && a.GetDisplay() == b.GetDisplay();
}

// Every field away from its default; reals that "%.17g" writes exactly back.
CBmpProcessOptions EveryFieldChanged() {
  CBmpProcessOptions options;
  options.SetUsePrimer(true);
  options.SetPrimerMaxInk(87.5);
  options.SetPrimerBleed(3);
  options.SetPrimerPlane(L"Primer \u00e9");
  options.SetInvertAlpha(true);
  options.SetPrimeOpaque(true);
  options.SetUseKnockMeBlack(true);
  options.SetKnockMeBlack(55);
  options.SetUseKnockMeWhite(true);
  options.SetKnockMeWhite(12);
  options.SetCleanBlack(200);
  options.SetColorBoost(1.1);
  options.SetColorBoostBlend(0.3);
  options.SetFlatten(false);
  options.SetWhiteUsage(WHITE_USAGE_COVERAGE);
  options.SetWhiteMask(Mask(L"Medium", 60, 40, 80, 100, 90));
  options.SetWhiteMask2(CWhiteMask(CWhiteMask::GetPresets()[1]));
  options.SetWhiteMaxInk(92.25);
  options.SetChokeWhite(-2);
  options.SetWhiteOpaque(true);
  options.GetWhiteCurve().SetName(L"Soft white");
  options.GetWhiteCurve().SetValue(0.5, 0.375);
  options.GetWhiteCurve().SetSelected(true);
  options.SetUseClear(true);
  options.SetClearMaxInk(0.1);
  options.SetClearBleed(7);
  options.SetClearOpaque(true);
  return options;
}

CBmpProcessOptions ReadBack(const std::string& text, CBmpProcessOptions options = CBmpProcessOptions()) {
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(text.c_str())) << text;
  EXPECT_TRUE(options.ReadXML(document.first_child()));
  return options;
}

// --- white masks --------------------------------------------------------------

TEST(WhiteMask, PresetsAndTheNarrowComparison) {
  const auto presets = CWhiteMask::GetPresets();
  ASSERT_EQ(presets.size(), 2u);
  EXPECT_TRUE(SameMask(CWhiteMask(), Mask(L"Strong", -1, -1, -1, -1, 100)));
  EXPECT_TRUE(SameMask(CWhiteMask(), CWhiteMask(presets[0])));
  EXPECT_TRUE(CWhiteMask().IsStrongMask());
  EXPECT_FALSE(CWhiteMask().IsManualCurve());

  const CWhiteMask manual(presets[1]);
  EXPECT_TRUE(SameMask(manual, Mask(L"Manual Curve...", -2, -2, -2, -2, 100)));
  const CWhiteMask renamed = Mask(L"My curve", -2, -2, -2, -2, 100);
  EXPECT_TRUE(manual == renamed);  // display names take no part
  EXPECT_TRUE(renamed.IsManualCurve());
  EXPECT_FALSE(renamed.IsStrongMask());

  // Only the first strength decides the kind; the others still count for equality.
  EXPECT_TRUE(Mask(L"", -1, 10, 10, 10, 10).IsStrongMask());
  EXPECT_FALSE(Mask(L"", 1, 2, 3, 4, 5) == Mask(L"", 1, 2, 3, 4, 9));
}

TEST(WhiteMaskXml, ReadsOverTheCurrentValues) {
  CWhiteMask mask = Mask(L"Medium", 60, 40, 80, 100, 90);
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string(
      "<WhiteMask><Display></Display><Strength>-2</Strength><DarkStrength/><Other>1</Other></WhiteMask>"));
  EXPECT_TRUE(mask.ReadXML(document.first_child()));
  EXPECT_TRUE(SameMask(mask, Mask(L"Medium", -2, 40, 80, 100, 90)));
}

// --- options ------------------------------------------------------------------

TEST(BmpProcessOptions, OnlyRealProcessingCountsAsProcessing) {
  const CBmpProcessOptions fresh;
  EXPECT_TRUE(fresh.ShouldFlattened());
  EXPECT_EQ(fresh.GetCleanBlack(), 255);
  EXPECT_EQ(fresh.GetPrimerPlane(), L"Promoter");
  EXPECT_FALSE(fresh.HasAnyProcessing());

  using Change = std::function<void(CBmpProcessOptions&)>;
  const std::vector<std::pair<const char*, Change>> notProcessing = {
      {"prime opaque", [](CBmpProcessOptions& o) { o.SetPrimeOpaque(true); }},
      {"invert alpha", [](CBmpProcessOptions& o) { o.SetInvertAlpha(true); }},
      {"no flatten", [](CBmpProcessOptions& o) { o.SetFlatten(false); }},
      {"clean black", [](CBmpProcessOptions& o) { o.SetCleanBlack(0); }},
      {"boost of 1.0", [](CBmpProcessOptions& o) { o.SetColorBoost(1.0); }},
      {"boost below 1", [](CBmpProcessOptions& o) { o.SetColorBoost(0.8); }},
      {"white usage 4", [](CBmpProcessOptions& o) { o.SetWhiteUsage(4); }},
      {"white opaque", [](CBmpProcessOptions& o) { o.SetWhiteOpaque(true); }},
      {"clear opaque", [](CBmpProcessOptions& o) { o.SetClearOpaque(true); }},
      {"knock-out values", [](CBmpProcessOptions& o) { o.SetKnockMeWhite(50); }},
  };
  for (const auto& [what, change] : notProcessing) {
    CBmpProcessOptions options;
    change(options);
    EXPECT_FALSE(options.HasAnyProcessing()) << what;
  }
  const std::vector<std::pair<const char*, Change>> processing = {
      {"primer", [](CBmpProcessOptions& o) { o.SetUsePrimer(true); }},
      {"knock out black", [](CBmpProcessOptions& o) { o.SetUseKnockMeBlack(true); }},
      {"knock out white", [](CBmpProcessOptions& o) { o.SetUseKnockMeWhite(true); }},
      {"boost of 1.01", [](CBmpProcessOptions& o) { o.SetColorBoost(1.01); }},
      {"underbase", [](CBmpProcessOptions& o) { o.SetWhiteUsage(WHITE_USAGE_UNDERBASE); }},
      {"highlight", [](CBmpProcessOptions& o) { o.SetWhiteUsage(WHITE_USAGE_HIGHLIGHT); }},
      {"coverage", [](CBmpProcessOptions& o) { o.SetWhiteUsage(WHITE_USAGE_COVERAGE); }},
      {"clear", [](CBmpProcessOptions& o) { o.SetUseClear(true); }},
  };
  for (const auto& [what, change] : processing) {
    CBmpProcessOptions options;
    change(options);
    EXPECT_TRUE(options.HasAnyProcessing()) << what;
  }
}

TEST(BmpProcessOptions, EachWhiteUsageAnswersOneQuestion) {
  CBmpProcessOptions options;
  for (int usage = 0; usage <= 4; ++usage) {
    options.SetWhiteUsage(usage);
    EXPECT_EQ(options.HasUnderbase(), usage == 1) << usage;
    EXPECT_EQ(options.HasHighlight(), usage == 2) << usage;
    EXPECT_EQ(options.HasCoverage(), usage == 3) << usage;
  }
}

TEST(BmpProcessOptions, SetToDefaultKeepsTheMasks) {
  CBmpProcessOptions options = EveryFieldChanged();
  options.SetToDefault();
  EXPECT_TRUE(SameMask(options.GetWhiteMask(), Mask(L"Medium", 60, 40, 80, 100, 90)));
  EXPECT_TRUE(options.GetWhiteMask2().IsManualCurve());

  CBmpProcessOptions expected;
  expected.SetWhiteMask(options.GetWhiteMask());
  expected.SetWhiteMask2(options.GetWhiteMask2());
  EXPECT_TRUE(options == expected);
  EXPECT_EQ(options.GetWhiteCurve().GetValues(), CCurveData().GetValues());
  EXPECT_EQ(options.GetPrimerPlane(), L"Promoter");
}

TEST(BmpProcessOptions, EqualityNoticesAnEditedWhiteCurve) {
  CBmpProcessOptions a;
  CBmpProcessOptions b;
  b.GetWhiteCurve().SetValue(0.5, 0.25);
  EXPECT_FALSE(a == b);
  b = a;
  b.GetWhiteMask2().SetDisplay(L"Renamed");  // masks compare by strengths
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(EveryFieldChanged() == CBmpProcessOptions());
}

TEST(BmpProcessOptionsXml, WritesTheElementsInTheirOrder) {
  const std::string text = test::Written(CBmpProcessOptions());
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string(text.c_str()));
  std::vector<std::string> names;
  for (const pugi::xml_node& child : document.first_child().children()) {
    names.push_back(child.name());
  }
  EXPECT_EQ(names,
            (std::vector<std::string>{
                "UsePrimer",   "PrimerMaxInk",    "PrimerBleed",     "PrimerPlane",     "InvertAlpha",
                "PrimeOpaque", "UseKnockMeBlack", "KnockMeBlack",    "UseKnockMeWhite", "KnockMeWhite",
                "CleanBlack",  "ColorBoost",      "ColorBoostBlend", "Flatten",         "WhiteUsage",
                "WhiteMask",   "WhiteMask",       "WhiteMaxInk",     "ChokeWhite",      "WhiteOpaque",
                "CurveData",   "UseClear",        "ClearMaxInk",     "ClearBleed",      "ClearOpaque"}));
  EXPECT_NE(text.find("<PrimerMaxInk>100</PrimerMaxInk>"), std::string::npos);
  EXPECT_NE(text.find("<ColorBoost>1</ColorBoost>"), std::string::npos);
}

TEST(BmpProcessOptionsXml, EveryFieldSurvivesAndWritesTheSameBytesAgain) {
  const CBmpProcessOptions options = EveryFieldChanged();
  const std::string first = test::Written(options);
  const CBmpProcessOptions back = ReadBack(first);
  EXPECT_TRUE(back == options);
  EXPECT_TRUE(SameMask(back.GetWhiteMask(), options.GetWhiteMask()));
  EXPECT_TRUE(SameMask(back.GetWhiteMask2(), options.GetWhiteMask2()));
  EXPECT_EQ(test::Written(back), first);

  test::DecimalCommaLocale locale;
  if (!locale.active()) {
    GTEST_SKIP() << "no decimal-comma locale on this machine";
  }
  EXPECT_EQ(test::Written(options), first);
  EXPECT_TRUE(ReadBack(first) == options);
}

TEST(BmpProcessOptionsXml, MasksAreReadInDocumentOrder) {
  const CBmpProcessOptions one = ReadBack(
      "<BitmapProcessingOptions><WhiteMask><Strength>5</Strength></WhiteMask></BitmapProcessingOptions>");
  EXPECT_EQ(one.GetWhiteMask().GetStrength(), 5);
  EXPECT_TRUE(SameMask(one.GetWhiteMask2(), CWhiteMask()));

  const CBmpProcessOptions three = ReadBack(
      "<BitmapProcessingOptions><WhiteMask><Strength>5</Strength></WhiteMask><UseClear>1</UseClear>"
      "<WhiteMask><Strength>6</Strength></WhiteMask><WhiteMask><Strength>7</Strength></WhiteMask>"
      "</BitmapProcessingOptions>");
  EXPECT_EQ(three.GetWhiteMask().GetStrength(), 5);
  EXPECT_EQ(three.GetWhiteMask2().GetStrength(), 6);
  EXPECT_TRUE(three.GetUseClear());
}

TEST(BmpProcessOptionsXml, AbsentAndEmptyElementsKeepTheCurrentValues) {
  const CBmpProcessOptions changed = EveryFieldChanged();
  const CBmpProcessOptions back = ReadBack(
      "<BitmapProcessingOptions><UsePrimer/><PrimerMaxInk></PrimerMaxInk><PrimerPlane/>"
      "<KnockMeBlack>12</KnockMeBlack><ColorBoost>1.5</ColorBoost></BitmapProcessingOptions>",
      changed);
  CBmpProcessOptions expected = changed;
  expected.SetKnockMeBlack(12);
  expected.SetColorBoost(1.5);
  EXPECT_TRUE(back == expected);
}

}  // namespace
}  // namespace tarn
