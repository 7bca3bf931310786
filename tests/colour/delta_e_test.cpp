#include "tarn/colour/delta_e.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <cmath>
#include <random>
#include <string>

#include "tarn/colour/internal/delta_e94.h"
#include "tarn/foundation/text.h"

namespace tarn {
namespace {

// The CIEDE2000 test data of G. Sharma, W. Wu and E. N. Dalal, "The CIEDE2000
// color-difference formula: implementation notes, supplementary test data,
// and mathematical observations", Color Research & Application 30(1), 2005,
// Table 1: 34 pairs chosen to reach every branch of the formula (hue wrapping
// at 0/360 degrees, the blue rotation term, neutral colours).
struct SharmaPair {
  CLabColor first;
  CLabColor second;
  double delta_e;
};
constexpr SharmaPair kSharma[] = {
    {{50.0000, 2.6772, -79.7751}, {50.0000, 0.0000, -82.7485}, 2.0425},
    {{50.0000, 3.1571, -77.2803}, {50.0000, 0.0000, -82.7485}, 2.8615},
    {{50.0000, 2.8361, -74.0200}, {50.0000, 0.0000, -82.7485}, 3.4412},
    {{50.0000, -1.3802, -84.2814}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, -1.1848, -84.8006}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, -0.9009, -85.5211}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, 0.0000, 0.0000}, {50.0000, -1.0000, 2.0000}, 2.3669},
    {{50.0000, -1.0000, 2.0000}, {50.0000, 0.0000, 0.0000}, 2.3669},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0009}, 7.1792},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0010}, 7.1792},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0011}, 7.2195},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0012}, 7.2195},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0009, -2.4900}, 4.8045},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0010, -2.4900}, 4.8045},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0011, -2.4900}, 4.7461},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 0.0000, -2.5000}, 4.3065},
    {{50.0000, 2.5000, 0.0000}, {73.0000, 25.0000, -18.0000}, 27.1492},
    {{50.0000, 2.5000, 0.0000}, {61.0000, -5.0000, 29.0000}, 22.8977},
    {{50.0000, 2.5000, 0.0000}, {56.0000, -27.0000, -3.0000}, 31.9030},
    {{50.0000, 2.5000, 0.0000}, {58.0000, 24.0000, 15.0000}, 19.4535},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.1736, 0.5854}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.2972, 0.0000}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 1.8634, 0.5757}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.2592, 0.3350}, 1.0000},
    {{60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}, 1.2644},
    {{63.0109, -31.0961, -5.8663}, {62.8187, -29.7946, -4.0864}, 1.2630},
    {{61.2901, 3.7196, -5.3901}, {61.4292, 2.2480, -4.9620}, 1.8731},
    {{35.0831, -44.1164, 3.7933}, {35.0232, -40.0716, 1.5901}, 1.8645},
    {{22.7233, 20.0904, -46.6940}, {23.0331, 14.9730, -42.5619}, 2.0373},
    {{36.4612, 47.8580, 18.3852}, {36.2715, 50.5065, 21.2231}, 1.4146},
    {{90.8027, -2.0831, 1.4410}, {91.1528, -1.6435, 0.0447}, 1.4441},
    {{90.9257, -0.5406, -0.9208}, {88.6381, -0.8985, -0.7239}, 1.5381},
    {{6.7747, -0.2908, -2.4247}, {5.8714, -0.0985, -2.2286}, 0.6377},
    {{2.0776, 0.0795, -1.1350}, {0.9033, -0.0636, -0.5514}, 0.9082},
};

TEST(DeltaE, Ciede2000MatchesThePublishedPairs) {
  for (const SharmaPair& pair : kSharma) {
    // The table is rounded to four decimals.
    EXPECT_NEAR(DeltaE2000(pair.first, pair.second), pair.delta_e, 0.5e-4) << pair.delta_e;
    EXPECT_NEAR(DeltaE2000(pair.second, pair.first), pair.delta_e, 0.5e-4) << pair.delta_e;
  }
}

TEST(DeltaE, AgreesWithLittleCmsOnRandomPairs) {
  std::mt19937 random(20050101);
  std::uniform_real_distribution<double> lightness(0.0, 100.0);
  std::uniform_real_distribution<double> axis(-128.0, 127.0);
  for (int i = 0; i < 5000; ++i) {
    const CLabColor a{lightness(random), axis(random), axis(random)};
    // Half the pairs close together, where colour differences matter most.
    const CLabColor b = i % 2 == 0 ? CLabColor{lightness(random), axis(random), axis(random)}
                                   : CLabColor{a.L + axis(random) / 40.0, a.a + axis(random) / 40.0,
                                               a.b + axis(random) / 40.0};
    const cmsCIELab x{a.L, a.a, a.b};
    const cmsCIELab y{b.L, b.a, b.b};
    EXPECT_NEAR(DeltaE76(a, b), cmsDeltaE(&x, &y), 1e-9);
    EXPECT_NEAR(DeltaE2000(a, b), cmsCIE2000DeltaE(&x, &y, 1, 1, 1), 1e-9);
    // Little CMS's CIE94 is the textile variant with a symmetric chroma; the
    // same computation with those weights must give its numbers.
    EXPECT_NEAR(internal::DeltaE94Weighted(a, b, 1.0, 0.048, 0.014, true), cmsCIE94DeltaE(&x, &y), 1e-9);
  }
}

TEST(DeltaE, Cie94UsesTheGraphicArtsWeightsOfTheReference) {
  // Reference chroma 40: SC = 1 + 0.045 * 40 = 2.8, SH = 1 + 0.015 * 40 = 1.6;
  // dC = 40 - sqrt(1000), dH^2 = 200 - dC^2.
  const CLabColor reference{50.0, 40.0, 0.0};
  const CLabColor sample{50.0, 30.0, 10.0};
  const double dC = 40.0 - std::sqrt(1000.0);
  const double expected = std::sqrt(dC * dC / (2.8 * 2.8) + (200.0 - dC * dC) / (1.6 * 1.6));
  EXPECT_NEAR(DeltaE94(reference, sample), expected, 1e-12);
  EXPECT_NE(DeltaE94(sample, reference), DeltaE94(reference, sample));
  // Lightness is not weighted.
  EXPECT_DOUBLE_EQ(DeltaE94({50.0, 0.0, 0.0}, {53.0, 0.0, 0.0}), 3.0);
  EXPECT_EQ(DeltaE(DeltaEMethod::kCIE94, reference, sample), DeltaE94(reference, sample));
}

TEST(DeltaE, MethodNamesTranslateBothWays) {
  for (const DeltaEMethod method : {DeltaEMethod::kCIE76, DeltaEMethod::kCIE94, DeltaEMethod::kCIEDE2000}) {
    DeltaEMethod read = DeltaEMethod::kCIE76;
    EXPECT_TRUE(DeltaEMethodFromName(DeltaEMethodName(method), read));
    EXPECT_EQ(read, method);
  }
  DeltaEMethod method = DeltaEMethod::kCIE76;
  EXPECT_TRUE(DeltaEMethodFromName(L"2000", method));
  EXPECT_EQ(method, DeltaEMethod::kCIEDE2000);
  EXPECT_FALSE(DeltaEMethodFromName(L"CMC", method));
  EXPECT_EQ(method, DeltaEMethod::kCIEDE2000);
}

// --- chart comparison ------------------------------------------------------

CIT8Chart Chart(const std::string& fields, const std::vector<std::string>& rows) {
  std::string text = "CGATS.17\nBEGIN_DATA_FORMAT\n" + fields + "\nEND_DATA_FORMAT\nBEGIN_DATA\n";
  for (const std::string& row : rows) {
    text += row + "\n";
  }
  text += "END_DATA\n";
  CIT8Chart chart;
  CIT8Issue error;
  EXPECT_TRUE(chart.ReadText(text, &error)) << ToUtf8(error.Describe());
  return chart;
}

TEST(CompareCharts, StatisticsOfPatchesPairedById) {
  // Twenty patches whose lightness differs by 1 to 20; the sample lists them
  // backwards and has one the reference lacks.
  std::vector<std::string> reference_rows;
  std::vector<std::string> sample_rows{"X9 50 0 0"};
  for (int i = 1; i <= 20; ++i) {
    reference_rows.push_back("P" + std::to_string(i) + " 40 10 -10");
  }
  for (int i = 20; i >= 1; --i) {
    sample_rows.push_back("P" + std::to_string(i) + " " + std::to_string(40 + i) + " 10 -10");
  }
  reference_rows.push_back("P21 40 0 0");
  const CIT8Chart reference = Chart("SAMPLE_ID LAB_L LAB_A LAB_B", reference_rows);
  const CIT8Chart sample = Chart("SAMPLE_ID LAB_L LAB_A LAB_B", sample_rows);

  CChartComparison result;
  std::wstring error;
  ASSERT_TRUE(CompareCharts(reference, sample, result, {DeltaEMethod::kCIE76}, &error)) << ToUtf8(error);
  ASSERT_EQ(result.patches.size(), 20u);
  EXPECT_EQ(result.key_field, L"SAMPLE_ID");
  EXPECT_EQ(result.patches[0].key, L"P1");
  EXPECT_EQ(result.patches[0].sample_row, 20u);
  EXPECT_DOUBLE_EQ(result.mean, 10.5);
  EXPECT_DOUBLE_EQ(result.maximum, 20.0);
  // Rank 0.95 * 19 = 18.05 between 19 and 20.
  EXPECT_NEAR(result.percentile95, 19.05, 1e-12);
  EXPECT_EQ(result.unmatched_reference, std::vector<std::wstring>{L"P21"});
  EXPECT_EQ(result.unmatched_sample, std::vector<std::wstring>{L"X9"});
  const std::vector<CPatchDifference> worst = result.Worst(3);
  ASSERT_EQ(worst.size(), 3u);
  EXPECT_EQ(worst[0].key, L"P20");
  EXPECT_EQ(worst[2].key, L"P18");
  EXPECT_EQ(result.Worst(100).size(), 20u);
}

TEST(CompareCharts, PairsByNameOrRowAndReadsXyz) {
  const CIT8Chart reference = Chart("SAMPLE_NAME LAB_L LAB_A LAB_B", {"White 100 0 0", "Grey 50 0 0"});
  const CIT8Chart by_name =
      Chart("SAMPLE_NAME XYZ_X XYZ_Y XYZ_Z", {"Grey 17.7 18.4 15.2", "White 96.42 100 82.49"});
  CChartComparison result;
  ASSERT_TRUE(CompareCharts(reference, by_name, result));
  ASSERT_EQ(result.patches.size(), 2u);
  EXPECT_NEAR(result.patches[0].delta_e, 0.0, 1e-9);  // D50 white is L 100
  EXPECT_NEAR(result.patches[1].sample.L, 50.0, 0.05);

  const CIT8Chart by_row = Chart("LAB_L LAB_A LAB_B", {"100 0 0", "51 0 0"});
  ASSERT_TRUE(CompareCharts(reference, by_row, result, {DeltaEMethod::kCIE76}));
  EXPECT_EQ(result.patches[1].key, L"2");
  EXPECT_EQ(result.key_field, L"");
  EXPECT_DOUBLE_EQ(result.maximum, 1.0);
}

TEST(CompareCharts, RefusesWhatCannotBeCompared) {
  const CIT8Chart lab = Chart("SAMPLE_ID LAB_L LAB_A LAB_B", {"A1 50 0 0"});
  const CIT8Chart other_ids = Chart("SAMPLE_ID LAB_L LAB_A LAB_B", {"B1 50 0 0"});
  const CIT8Chart device = Chart("SAMPLE_ID CMYK_C CMYK_M CMYK_Y CMYK_K", {"A1 0 0 0 100"});
  const CIT8Chart named = Chart("SAMPLE_NAME LAB_L LAB_A LAB_B", {"A1 50 0 0"});
  const struct {
    const CIT8Chart& reference;
    const CIT8Chart& sample;
    PatchMatch match;
    const wchar_t* message;
  } cases[] = {
      {device, lab, PatchMatch::kAuto, L"the reference chart has no Lab or XYZ values"},
      {lab, device, PatchMatch::kAuto, L"the compared chart has no Lab or XYZ values"},
      {lab, other_ids, PatchMatch::kAuto, L"no patch of the two charts pairs up by SAMPLE_ID"},
      {lab, named, PatchMatch::kById, L"both charts need a SAMPLE_ID field to match patches by id"},
      {lab, named, PatchMatch::kByName, L"both charts need a SAMPLE_NAME field to match patches by name"},
  };
  for (const auto& c : cases) {
    CChartComparison result;
    std::wstring error;
    CCompareOptions options;
    options.match = c.match;
    EXPECT_FALSE(CompareCharts(c.reference, c.sample, result, options, &error));
    EXPECT_EQ(error, c.message);
  }
}

}  // namespace
}  // namespace tarn
