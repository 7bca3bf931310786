#pragma once

// Locale-free number formatting and parsing.
//
// Files must not depend on the process locale: printf, strtod and pugixml's
// real-number conversions all follow it (under de_DE they write "1,25" and read
// "0.5" as 0). Everything numeric that reaches a file or a PostScript text goes
// through the functions here, built on std::to_chars/std::from_chars, which
// reproduce the printf conversions of the "C" locale:
//
//   Format("%0.04f", 0.5)        -> "0.5000"
//   Format("%d.%d.%d", 10, 9, 259) -> "10.9.259"
//   Format("%2.2x", 10)          -> "0a"
//   Format("%.17g", 0.1)         -> "0.10000000000000001"
//
// Supported: flags "-+ 0#", width and precision (also "*"), the length
// modifiers h hh l ll L z j t q I64 (accepted and ignored: the argument's own
// type decides), and the conversions d i u o x X c s S f F e E g G a A %.
// A conversion whose argument is missing writes nothing; an unknown one is
// copied as it stands.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "tarn/foundation/export.h"

namespace tarn {

// One argument of Format. Built implicitly from numbers and texts; integers
// remember their width and signedness so that "%x" of -1 gives "ffffffff" as
// printf does for an int.
class TARN_API FormatArg {
 public:
  enum class Kind { kSigned, kUnsigned, kReal, kNarrow, kWide };

  template <typename T>
  requires(std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char> &&
           !std::is_same_v<T, wchar_t>) FormatArg(T value)  // NOLINT(google-explicit-constructor)
      : kind_(std::is_signed_v<T> ? Kind::kSigned : Kind::kUnsigned), bytes_(sizeof(T)) {
    if constexpr (std::is_signed_v<T>) {
      signed_ = value;
    } else {
      unsigned_ = value;
    }
  }
  FormatArg(bool value) : kind_(Kind::kSigned), bytes_(sizeof(int)), signed_(value ? 1 : 0) {}  // NOLINT
  FormatArg(char value) : kind_(Kind::kSigned), bytes_(sizeof(int)), signed_(value) {}          // NOLINT
  FormatArg(wchar_t value) : kind_(Kind::kSigned), bytes_(sizeof(int)), signed_(value) {}       // NOLINT
  FormatArg(double value) : kind_(Kind::kReal), real_(value) {}                                 // NOLINT
  FormatArg(float value) : kind_(Kind::kReal), real_(value) {}                                  // NOLINT
  FormatArg(const char* text) : kind_(Kind::kNarrow), narrow_(text ? text : "") {}              // NOLINT
  FormatArg(std::string_view text) : kind_(Kind::kNarrow), narrow_(text) {}                     // NOLINT
  FormatArg(const std::string& text) : kind_(Kind::kNarrow), narrow_(text) {}                   // NOLINT
  FormatArg(const wchar_t* text) : kind_(Kind::kWide), wide_(text ? text : L"") {}              // NOLINT
  FormatArg(std::wstring_view text) : kind_(Kind::kWide), wide_(text) {}                        // NOLINT
  FormatArg(const std::wstring& text) : kind_(Kind::kWide), wide_(text) {}                      // NOLINT

  Kind kind() const { return kind_; }
  int bytes() const { return bytes_; }
  long long AsSigned() const;
  unsigned long long AsUnsigned() const;  // truncated to the argument's width, as printf does
  double AsReal() const;
  std::string_view narrow() const { return narrow_; }
  std::wstring_view wide() const { return wide_; }

 private:
  Kind kind_;
  int bytes_ = 0;
  long long signed_ = 0;
  unsigned long long unsigned_ = 0;
  double real_ = 0.0;
  std::string_view narrow_;
  std::wstring_view wide_;
};

// Appends the formatted text to out; see the top of this file for what is supported.
TARN_API void AppendFormatV(std::string& out, std::string_view format, std::span<const FormatArg> args);
TARN_API void AppendFormatV(std::wstring& out, std::wstring_view format, std::span<const FormatArg> args);

// printf-style formatting in the "C" locale, whatever the process locale is.
template <typename... Args>
std::string Format(std::string_view format, const Args&... args) {
  std::string out;
  const FormatArg list[] = {FormatArg(args)..., FormatArg(0)};
  AppendFormatV(out, format, std::span<const FormatArg>(list, sizeof...(Args)));
  return out;
}

template <typename... Args>
std::wstring Format(std::wstring_view format, const Args&... args) {
  std::wstring out;
  const FormatArg list[] = {FormatArg(args)..., FormatArg(0)};
  AppendFormatV(out, format, std::span<const FormatArg>(list, sizeof...(Args)));
  return out;
}

// The text pugixml's floating-point setter writes in the "C" locale ("%.17g").
TARN_API std::string FormatReal(double value);

// Reads a real number at the start of text as strtod does in the "C" locale:
// leading white space, an optional sign, decimal or "0x" hexadecimal digits
// with an optional exponent, "inf", "infinity" and "nan". Returns the number
// of characters used, 0 when no number starts there (value is then 0).
// Out-of-range values give +-HUGE_VAL or 0, as strtod does.
TARN_API size_t ParseRealPrefix(std::string_view text, double& value);
TARN_API size_t ParseRealPrefix(std::wstring_view text, double& value);

// Reads a whole number at the start of text as strtol does with base 10:
// leading white space and an optional sign. Returns the characters used, 0
// when none (value is then 0). Out-of-range values are clamped.
TARN_API size_t ParseIntPrefix(std::string_view text, long long& value);
TARN_API size_t ParseIntPrefix(std::wstring_view text, long long& value);

// The value of the number at the start of text, 0 when there is none;
// trailing text is ignored, as atof/strtod ignore it. No infinity or NaN
// comes out: "inf", "nan" and numbers beyond the range of a double ("1e400")
// give 0, as text that is no number does, so a file cannot plant them in a
// record.
TARN_API double ToReal(std::string_view text);
TARN_API double ToReal(std::wstring_view text);

// Strict readers for stores that refuse what does not fit: the whole text
// (leading white space allowed) must be one number. ParseWholeInteger fails
// for a number outside 64 bits, ParseWholeReal for one that overflows a double
// and for "inf" and "nan". value is untouched on failure.
TARN_API bool ParseWholeInteger(std::string_view text, long long& value);
TARN_API bool ParseWholeReal(std::string_view text, double& value);

}  // namespace tarn
