#include "tarn/foundation/format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "tarn/foundation/text.h"

namespace tarn {

long long FormatArg::AsSigned() const {
  switch (kind_) {
    case Kind::kSigned:
      return signed_;
    case Kind::kUnsigned:
      return static_cast<long long>(unsigned_);
    case Kind::kReal:
      if (!std::isfinite(real_) || std::fabs(real_) >= 9.2e18) {
        return 0;
      }
      return static_cast<long long>(real_);
    default:
      return 0;
  }
}

unsigned long long FormatArg::AsUnsigned() const {
  unsigned long long value = 0;
  switch (kind_) {
    case Kind::kSigned:
      value = static_cast<unsigned long long>(signed_);
      break;
    case Kind::kUnsigned:
      value = unsigned_;
      break;
    case Kind::kReal:
      value = static_cast<unsigned long long>(AsSigned());
      break;
    default:
      return 0;
  }
  if (bytes_ > 0 && bytes_ < 8) {
    value &= (1ULL << (8 * bytes_)) - 1;
  }
  return value;
}

double FormatArg::AsReal() const {
  switch (kind_) {
    case Kind::kSigned:
      return static_cast<double>(signed_);
    case Kind::kUnsigned:
      return static_cast<double>(unsigned_);
    case Kind::kReal:
      return real_;
    default:
      return 0.0;
  }
}

namespace {

struct Directive {
  bool left = false;
  bool plus = false;
  bool space = false;
  bool zero = false;
  bool alt = false;
  int width = 0;
  int precision = -1;
  char conversion = 0;
};

// Pads body (already holding sign and prefix at its start: sign_len chars) to
// the directive's width, inserting zeros after the sign when asked.
std::string Pad(std::string body, size_t sign_len, const Directive& directive, bool zero_allowed) {
  const size_t width = static_cast<size_t>(std::max(directive.width, 0));
  if (body.size() >= width) {
    return body;
  }
  const size_t fill = width - body.size();
  if (directive.left) {
    body.append(fill, ' ');
  } else if (directive.zero && zero_allowed) {
    body.insert(sign_len, fill, '0');
  } else {
    body.insert(0, fill, ' ');
  }
  return body;
}

std::string SignOf(bool negative, const Directive& directive) {
  if (negative) {
    return "-";
  }
  if (directive.plus) {
    return "+";
  }
  if (directive.space) {
    return " ";
  }
  return "";
}

std::string FormatInteger(const FormatArg& arg, const Directive& directive) {
  const char c = directive.conversion;
  bool negative = false;
  unsigned long long magnitude = 0;
  if (c == 'd' || c == 'i') {
    long long v = arg.AsSigned();
    if (arg.kind() == FormatArg::Kind::kUnsigned) {
      v = static_cast<long long>(arg.AsUnsigned());
    }
    negative = v < 0;
    magnitude = negative ? 0ULL - static_cast<unsigned long long>(v) : static_cast<unsigned long long>(v);
  } else {
    magnitude = arg.AsUnsigned();
  }
  const int base = (c == 'x' || c == 'X') ? 16 : (c == 'o' ? 8 : 10);
  char buffer[72];
  auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, magnitude, base);
  std::string digits(buffer, end);
  if (c == 'X') {
    std::transform(digits.begin(), digits.end(), digits.begin(),
                   [](char ch) { return (ch >= 'a' && ch <= 'f') ? static_cast<char>(ch - 32) : ch; });
  }
  if (directive.precision >= 0) {
    if (directive.precision == 0 && magnitude == 0) {
      digits.clear();
    }
    if (digits.size() < static_cast<size_t>(directive.precision)) {
      digits.insert(0, static_cast<size_t>(directive.precision) - digits.size(), '0');
    }
  }
  std::string prefix = (c == 'd' || c == 'i') ? SignOf(negative, directive) : "";
  if (directive.alt && magnitude != 0) {
    if (c == 'x') {
      prefix += "0x";
    } else if (c == 'X') {
      prefix += "0X";
    } else if (c == 'o' && (digits.empty() || digits[0] != '0')) {
      digits.insert(0, 1, '0');
    }
  }
  const size_t sign_len = prefix.size();
  return Pad(prefix + digits, sign_len, directive, directive.precision < 0);
}

std::string FormatFloating(double value, const Directive& directive) {
  const char c = directive.conversion;
  const bool upper = (c == 'F' || c == 'E' || c == 'G' || c == 'A');
  const bool negative = std::signbit(value);
  const double magnitude = std::fabs(value);
  std::string body;
  if (std::isnan(value) || std::isinf(value)) {
    body = std::isnan(value) ? "nan" : "inf";
    if (upper) {
      std::transform(body.begin(), body.end(), body.begin(),
                     [](char ch) { return static_cast<char>(ch - 32); });
    }
    const std::string sign = SignOf(negative, directive);
    return Pad(sign + body, sign.size(), directive, false);
  }
  std::chars_format format = std::chars_format::fixed;
  int precision = directive.precision < 0 ? 6 : directive.precision;
  switch (c) {
    case 'e':
    case 'E':
      format = std::chars_format::scientific;
      break;
    case 'g':
    case 'G':
      format = std::chars_format::general;
      if (precision == 0) {
        precision = 1;
      }
      break;
    case 'a':
    case 'A':
      format = std::chars_format::hex;
      break;
    default:
      break;
  }
  // Large enough for any fixed double with a generous precision; beyond that
  // printf pads with zeros, and so do we.
  const int capped = std::min(precision, 400);
  std::string buffer(1100, '\0');
  std::to_chars_result result{};
  if ((c == 'a' || c == 'A') && directive.precision < 0) {
    result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, format);
  } else {
    result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, format, capped);
  }
  body.assign(buffer.data(), result.ptr);
  if (precision > capped && format == std::chars_format::fixed) {
    body.append(static_cast<size_t>(precision - capped), '0');
  }
  if (c == 'a' || c == 'A') {
    body.insert(0, "0x");
  }
  if ((c == 'g' || c == 'G') && directive.alt && body.find('.') == std::string::npos) {
    body += '.';
  } else if (directive.alt && precision == 0 && body.find('.') == std::string::npos) {
    const size_t exponent = body.find_first_of("ep");
    body.insert(exponent == std::string::npos ? body.size() : exponent, ".");
  }
  if (upper) {
    std::transform(body.begin(), body.end(), body.begin(),
                   [](char ch) { return (ch >= 'a' && ch <= 'z') ? static_cast<char>(ch - 32) : ch; });
  }
  const std::string sign = SignOf(negative, directive);
  return Pad(sign + body, sign.size(), directive, true);
}

template <typename Char>
std::basic_string<Char> Widen(const std::string& ascii) {
  return std::basic_string<Char>(ascii.begin(), ascii.end());
}

template <typename Char>
void AppendText(std::basic_string<Char>& out, const FormatArg& arg, const Directive& directive) {
  std::basic_string<Char> text;
  if constexpr (std::is_same_v<Char, char>) {
    text = arg.kind() == FormatArg::Kind::kWide ? ToUtf8(arg.wide()) : std::string(arg.narrow());
  } else {
    text = arg.kind() == FormatArg::Kind::kNarrow ? FromUtf8(arg.narrow()) : std::wstring(arg.wide());
  }
  if (directive.precision >= 0 && text.size() > static_cast<size_t>(directive.precision)) {
    text.resize(static_cast<size_t>(directive.precision));
  }
  const size_t width = static_cast<size_t>(std::max(directive.width, 0));
  if (text.size() < width) {
    text.insert(directive.left ? text.size() : 0, width - text.size(), static_cast<Char>(' '));
  }
  out += text;
}

template <typename Char>
void AppendFormatT(std::basic_string<Char>& out, std::basic_string_view<Char> format,
                   std::span<const FormatArg> args) {
  size_t next_arg = 0;
  auto take = [&]() -> const FormatArg* { return next_arg < args.size() ? &args[next_arg++] : nullptr; };
  size_t i = 0;
  const size_t n = format.size();
  while (i < n) {
    const Char ch = format[i];
    if (ch != static_cast<Char>('%')) {
      const size_t next = format.find(static_cast<Char>('%'), i);
      const size_t stop = next == std::basic_string_view<Char>::npos ? n : next;
      out.append(format.substr(i, stop - i));
      i = stop;
      continue;
    }
    const size_t start = i++;
    Directive directive;
    for (; i < n; ++i) {
      const Char f = format[i];
      if (f == '-') {
        directive.left = true;
      } else if (f == '+') {
        directive.plus = true;
      } else if (f == ' ') {
        directive.space = true;
      } else if (f == '0') {
        directive.zero = true;
      } else if (f == '#') {
        directive.alt = true;
      } else {
        break;
      }
    }
    if (i < n && format[i] == '*') {
      const FormatArg* a = take();
      const long long w = a ? a->AsSigned() : 0;
      if (w < 0) {
        directive.left = true;
      }
      directive.width = static_cast<int>(std::min<long long>(w < 0 ? -w : w, 4096));
      ++i;
    } else {
      while (i < n && format[i] >= '0' && format[i] <= '9') {
        directive.width = std::min(directive.width * 10 + static_cast<int>(format[i] - '0'), 4096);
        ++i;
      }
    }
    if (i < n && format[i] == '.') {
      ++i;
      directive.precision = 0;
      if (i < n && format[i] == '*') {
        const FormatArg* a = take();
        const long long p = a ? a->AsSigned() : 0;
        directive.precision = p < 0 ? -1 : static_cast<int>(std::min<long long>(p, 4096));
        ++i;
      } else {
        while (i < n && format[i] >= '0' && format[i] <= '9') {
          directive.precision = std::min(directive.precision * 10 + static_cast<int>(format[i] - '0'), 4096);
          ++i;
        }
      }
    }
    // Length modifiers carry no information here: the argument knows its type.
    while (i < n) {
      const Char m = format[i];
      if (m == 'h' || m == 'l' || m == 'L' || m == 'z' || m == 'j' || m == 't' || m == 'q') {
        ++i;
      } else if (m == 'I' && i + 2 < n && format[i + 1] == '6' && format[i + 2] == '4') {
        i += 3;
      } else {
        break;
      }
    }
    if (i >= n) {
      out.append(format.substr(start));
      break;
    }
    const Char conv = format[i++];
    directive.conversion = static_cast<char>(conv);
    switch (conv) {
      case '%':
        out += static_cast<Char>('%');
        break;
      case 'd':
      case 'i':
      case 'u':
      case 'o':
      case 'x':
      case 'X':
        if (const FormatArg* a = take()) {
          out += Widen<Char>(FormatInteger(*a, directive));
        }
        break;
      case 'f':
      case 'F':
      case 'e':
      case 'E':
      case 'g':
      case 'G':
      case 'a':
      case 'A':
        if (const FormatArg* a = take()) {
          out += Widen<Char>(FormatFloating(a->AsReal(), directive));
        }
        break;
      case 'c':
        if (const FormatArg* a = take()) {
          const std::wstring one(1, static_cast<wchar_t>(a->AsSigned()));
          AppendText(out, FormatArg(one), directive);
        }
        break;
      case 's':
      case 'S':
        if (const FormatArg* a = take()) {
          AppendText(out, *a, directive);
        }
        break;
      default:
        out.append(format.substr(start, i - start));
        break;
    }
  }
}

bool IsSpace(int c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool IsDigit(int c, bool hex) {
  return (c >= '0' && c <= '9') || (hex && ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')));
}

// When from_chars reports a value out of range, strtod gives +-HUGE_VAL for an
// overflow and 0 for an underflow; tell them apart by the decimal exponent.
bool Overflows(std::string_view digits, bool hex) {
  long long exponent = 0;
  bool seen_nonzero = false;
  bool after_point = false;
  size_t i = 0;
  for (; i < digits.size(); ++i) {
    const char c = digits[i];
    if (c == '.') {
      after_point = true;
    } else if (IsDigit(c, hex)) {
      if (!seen_nonzero) {
        if (c != '0') {
          seen_nonzero = true;
          if (!after_point) {
            ++exponent;
          }
        } else if (after_point) {
          --exponent;
        }
      } else if (!after_point) {
        ++exponent;
      }
    } else {
      break;
    }
  }
  if (i < digits.size()) {
    long long e = 0;
    std::from_chars(digits.data() + i + 1, digits.data() + digits.size(), e);
    if (i + 1 < digits.size() && digits[i + 1] == '+') {
      std::from_chars(digits.data() + i + 2, digits.data() + digits.size(), e);
    }
    exponent += hex ? e / 4 : e;
  }
  return exponent > 0;
}

// Skips the leading white space and sign that strtod and strtol accept;
// returns where the digits start.
size_t SkipSpaceAndSign(std::string_view text, bool& negative) {
  size_t i = 0;
  while (i < text.size() && IsSpace(static_cast<unsigned char>(text[i]))) {
    ++i;
  }
  negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    negative = text[i] == '-';
    ++i;
  }
  return i;
}

size_t ParseRealAscii(std::string_view text, double& value) {
  value = 0.0;
  bool negative = false;
  const size_t body = SkipSpaceAndSign(text, negative);
  if (body >= text.size() || text[body] == '+' || text[body] == '-') {
    return 0;
  }
  bool hex = false;
  size_t digits_at = body;
  if (text.size() - body > 2 && text[body] == '0' && (text[body + 1] == 'x' || text[body + 1] == 'X') &&
      (IsDigit(static_cast<unsigned char>(text[body + 2]), true) ||
       (text[body + 2] == '.' && text.size() - body > 3 &&
        IsDigit(static_cast<unsigned char>(text[body + 3]), true)))) {
    hex = true;
    digits_at = body + 2;
  }
  double parsed = 0.0;
  const char* first = text.data() + digits_at;
  const char* last = text.data() + text.size();
  const auto [ptr, ec] =
      std::from_chars(first, last, parsed, hex ? std::chars_format::hex : std::chars_format::general);
  if (ptr == first) {
    return 0;  // no digits after the sign
  }
  if (ec == std::errc::result_out_of_range) {
    parsed = Overflows(std::string_view(first, static_cast<size_t>(ptr - first)), hex)
                 ? std::numeric_limits<double>::infinity()
                 : 0.0;
  }
  value = negative ? -parsed : parsed;
  return static_cast<size_t>(ptr - text.data());
}

size_t ParseIntAscii(std::string_view text, long long& value, bool* out_of_range = nullptr) {
  value = 0;
  bool negative = false;
  size_t i = SkipSpaceAndSign(text, negative);
  const size_t start = i;
  unsigned long long magnitude = 0;
  bool overflow = false;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9') {
    const unsigned digit = static_cast<unsigned>(text[i] - '0');
    if (magnitude > (std::numeric_limits<unsigned long long>::max() - digit) / 10) {
      overflow = true;
    } else {
      magnitude = magnitude * 10 + digit;
    }
    ++i;
  }
  if (i == start) {
    return 0;
  }
  constexpr unsigned long long kMaxPositive = std::numeric_limits<long long>::max();
  if (out_of_range) {
    *out_of_range = overflow || magnitude > kMaxPositive + (negative ? 1 : 0);
  }
  if (negative) {
    value = (overflow || magnitude > kMaxPositive + 1) ? std::numeric_limits<long long>::min()
                                                       : static_cast<long long>(0ULL - magnitude);
  } else {
    value = (overflow || magnitude > kMaxPositive) ? std::numeric_limits<long long>::max()
                                                   : static_cast<long long>(magnitude);
  }
  return i;
}

// Numbers are ASCII: a wide text is narrowed over its leading white space and
// the one token that may hold a number (digits, letters of "inf", "nan" and
// hex, signs, points, parentheses of "nan(...)"). Stopping there keeps a
// reader that walks a long list number by number linear.
std::string NarrowAscii(std::wstring_view text) {
  size_t end = 0;
  while (end < text.size() && text[end] < 0x80 && IsSpace(static_cast<int>(text[end]))) {
    ++end;
  }
  while (end < text.size()) {
    const wchar_t c = text[end];
    const bool part = (c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') ||
                      c == L'+' || c == L'-' || c == L'.' || c == L'(' || c == L')' || c == L'_';
    if (!part) {
      break;
    }
    ++end;
  }
  std::string out(end, '\0');
  for (size_t i = 0; i < end; ++i) {
    out[i] = static_cast<char>(text[i]);
  }
  return out;
}

}  // namespace

void AppendFormatV(std::string& out, std::string_view format, std::span<const FormatArg> args) {
  AppendFormatT<char>(out, format, args);
}

void AppendFormatV(std::wstring& out, std::wstring_view format, std::span<const FormatArg> args) {
  AppendFormatT<wchar_t>(out, format, args);
}

std::string FormatReal(double value) {
  return Format("%.17g", value);
}

size_t ParseRealPrefix(std::string_view text, double& value) {
  return ParseRealAscii(text, value);
}

size_t ParseRealPrefix(std::wstring_view text, double& value) {
  return ParseRealAscii(NarrowAscii(text), value);
}

size_t ParseIntPrefix(std::string_view text, long long& value) {
  return ParseIntAscii(text, value);
}

size_t ParseIntPrefix(std::wstring_view text, long long& value) {
  return ParseIntAscii(NarrowAscii(text), value);
}

double ToReal(std::string_view text) {
  double value = 0.0;
  ParseRealPrefix(text, value);
  return std::isfinite(value) ? value : 0.0;
}

double ToReal(std::wstring_view text) {
  double value = 0.0;
  ParseRealPrefix(text, value);
  return std::isfinite(value) ? value : 0.0;
}

bool ParseWholeInteger(std::string_view text, long long& value) {
  long long parsed = 0;
  bool out_of_range = false;
  const size_t used = ParseIntAscii(text, parsed, &out_of_range);
  if (used == 0 || used != text.size() || out_of_range) {
    return false;
  }
  value = parsed;
  return true;
}

bool ParseWholeReal(std::string_view text, double& value) {
  double parsed = 0.0;
  const size_t used = ParseRealPrefix(text, parsed);
  if (used == 0 || used != text.size() || !std::isfinite(parsed)) {
    return false;
  }
  value = parsed;
  return true;
}

}  // namespace tarn
