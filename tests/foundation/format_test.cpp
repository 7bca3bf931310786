// The locale-free formatter and parser against the C library, which serves as
// the oracle while the process is in the "C" locale.

#include "tarn/foundation/format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "support/test_support.h"
#include "tarn/foundation/format_string.h"

namespace tarn {
namespace {

std::string Printf(const char* format, double value) {
  char buffer[512];
  std::snprintf(buffer, sizeof buffer, format, value);
  return buffer;
}

std::string Printf(const char* format, long long value) {
  char buffer[512];
  std::snprintf(buffer, sizeof buffer, format, value);
  return buffer;
}

const double kReals[] = {0.0,    -0.0,    0.5,   1.25,   -1.25,     0.00005, 0.00015,   1.0 / 3.0,
                         2.5e-7, 123.456, 255.0, -255.5, 1e15,      1e21,    9.9999995, 0.99995,
                         1e-300, 1e300,   0.1,   0.7,    65025.0,   32258.0, 1e-5,      123456789.0,
                         5e-324, 0.125,   2.675, 1.005,  -0.000001, 0.45,    1e-10,     3.14159265358979};

TEST(FormatReals, MatchTheCLibraryForEveryFormatTheFilesUse) {
  const char* formats[] = {"%f",   "%lf",    "%0.04f",   "%.4f",  "%.8f",  "%.17g",   "%g",   "%e",
                           "%.0f", "%10.3f", "%-10.2f|", "%+.2f", "% .3f", "%010.4f", "%.3e", "%G"};
  for (const char* format : formats) {
    for (const double value : kReals) {
      EXPECT_EQ(Format(format, value), Printf(format, value)) << format << " of " << value;
    }
  }
}

TEST(FormatReals, SpecialValues) {
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(Format("%f", inf), Printf("%f", inf));
  EXPECT_EQ(Format("%f", -inf), Printf("%f", -inf));
  EXPECT_EQ(Format("%.17g", std::nan("")), Printf("%.17g", std::nan("")));
  EXPECT_EQ(Format("%8.2F", inf), Printf("%8.2F", inf));
}

TEST(FormatIntegers, MatchTheCLibrary) {
  const long long values[] = {0, 1, -1, 7, 10, 255, 259, -259, 65535, 2147483647LL, -2147483648LL};
  const char* formats[] = {"%d", "%5d", "%-5d|", "%05d", "%+d", "% d", "%.3d", "%lld", "%i"};
  for (const char* format : formats) {
    for (const long long value : values) {
      EXPECT_EQ(Format(format, value), Printf(format, value)) << format << " of " << value;
    }
  }
}

TEST(FormatIntegers, HexKeepsTheWidthOfTheArgument) {
  EXPECT_EQ(Format("%2.2x", 10), "0a");
  EXPECT_EQ(Format("%2.2x", 255), "ff");
  EXPECT_EQ(Format("%2.2X", 171), "AB");
  EXPECT_EQ(Format("%x", -1), "ffffffff");  // an int, as printf sees it
  EXPECT_EQ(Format("%x", static_cast<short>(-1)), "ffff");
  EXPECT_EQ(Format("%#x", 255), "0xff");
  EXPECT_EQ(Format("%o", 8), "10");
  EXPECT_EQ(Format("%u", -1), "4294967295");
}

TEST(FormatText, MixesArgumentsAndKeepsOddFormats) {
  EXPECT_EQ(Format("%d.%d.%d", 10, 9, 259), "10.9.259");
  EXPECT_EQ(Format(L"%s: %d%%", L"ink", 300), L"ink: 300%");
  EXPECT_EQ(Format("%s and %ls", std::wstring(L"grün"), "blau"), "grün and blau");
  EXPECT_EQ(Format(L"%-6s|%6s|", L"ab", std::string("cd")), L"ab    |    cd|");
  EXPECT_EQ(Format("%.2s", "abcdef"), "ab");
  EXPECT_EQ(Format("%c%c", 'o', L'k'), "ok");
  EXPECT_EQ(Format("%*d|%-*d|", 4, 7, 3, 1), "   7|1  |");
  // A missing argument writes nothing; an unknown conversion stays as written.
  EXPECT_EQ(Format("%d and %d", 1), "1 and ");
  EXPECT_EQ(Format("50%"), "50%");
  EXPECT_EQ(Format("%y", 1), "%y");
}

TEST(FormatString, AppendsAndRemovesTheLastSeparator) {
  formatstringT buffer;
  buffer.AppendFormat(L"%0.04f, %0.04f, ", 0.0, 0.0).AppendFormat(L"%0.04f, %0.04f, ", 1.0, 1.0);
  ASSERT_TRUE(buffer.RemoveLastOf(L", "));
  EXPECT_EQ(buffer.str(), L"0.0000, 0.0000, 1.0000, 1.0000,");
  formatstringT empty;
  EXPECT_FALSE(empty.RemoveLastOf(L","));
}

TEST(ParseReal, ReadsWhatStrtodReads) {
  const char* texts[] = {"0",
                         "0.5",
                         " 1.25",
                         "-3",
                         "+4.5",
                         "1e3",
                         "1E-3",
                         ".5",
                         "5.",
                         "0x1p3",
                         "0X1.8p1",
                         "inf",
                         "-Infinity",
                         "12abc",
                         "1,5",
                         "  \t7",
                         "1e",
                         "1e+",
                         "0x",
                         "1e400",
                         "-1e400",
                         "1e-400",
                         "4.9e-324",
                         "007",
                         "0.000000000000000000000000000000000000000000000000000000000001"};
  for (const char* text : texts) {
    char* end = nullptr;
    const double expected = std::strtod(text, &end);
    double value = -99;
    const size_t used = ParseRealPrefix(std::string_view(text), value);
    EXPECT_EQ(used, static_cast<size_t>(end - text)) << text;
    EXPECT_EQ(value, expected) << text;
  }
}

TEST(ParseReal, RefusesWhatIsNoNumber) {
  for (const char* text : {"", "abc", "-", "+", ".", "--1", "+-1", " ", "e5", "nanx"}) {
    double value = -99;
    char* end = nullptr;
    std::strtod(text, &end);
    EXPECT_EQ(ParseRealPrefix(std::string_view(text), value), static_cast<size_t>(end - text)) << text;
  }
  double value = -99;
  EXPECT_EQ(ParseRealPrefix(std::string_view("abc"), value), 0u);
  EXPECT_EQ(value, 0.0);
  EXPECT_EQ(ToReal(std::wstring_view(L"2.5 mm")), 2.5);
  EXPECT_EQ(ToReal(std::wstring_view(L"\u00e92")), 0.0);
}

TEST(ParseInt, ReadsWhatStrtolReads) {
  for (const char* text :
       {"0", "42", " -17", "+8", "12.5", "abc", "", "99999999999999999999", "-99999999999999999999"}) {
    char* end = nullptr;
    const long long expected = std::strtoll(text, &end, 10);
    long long value = -99;
    EXPECT_EQ(ParseIntPrefix(std::string_view(text), value), static_cast<size_t>(end - text)) << text;
    EXPECT_EQ(value, expected) << text;
  }
}

TEST(FormatUnderDecimalComma, WritesAndReadsTheSameBytes) {
  const std::string written_in_c = Format("%0.04f|%lf|%.17g|%.8f|%e", 1.25, 0.5, 0.1, 2.0 / 3.0, 12345.678);
  double read_in_c = 0;
  ParseRealPrefix(std::string_view("0.5"), read_in_c);

  test::DecimalCommaLocale locale;
  if (!locale.active()) {
    GTEST_SKIP() << "no decimal-comma locale on this machine";
  }
  ASSERT_EQ(Printf("%.2f", 1.25), "1,25") << "the locale switch did not take";
  EXPECT_EQ(Format("%0.04f|%lf|%.17g|%.8f|%e", 1.25, 0.5, 0.1, 2.0 / 3.0, 12345.678), written_in_c);
  double read_here = 0;
  ParseRealPrefix(std::string_view("0.5"), read_here);
  EXPECT_EQ(read_here, read_in_c);
  EXPECT_EQ(FormatReal(1.25), "1.25");
}

}  // namespace
}  // namespace tarn
