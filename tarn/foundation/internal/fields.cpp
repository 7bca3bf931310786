#include "tarn/foundation/internal/fields.h"

#include <climits>
#include <cstring>

#include "tarn/foundation/format.h"
#include "tarn/foundation/text.h"

namespace tarn::internal {

namespace {

bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Whole numbers are read exactly as pugixml's as_int/as_uint/as_llong read
// them (decimal or "0x" hexadecimal, clamped to the type's range), so a table
// reads what the hand-written readers read before it.
template <typename U>
U ParseClamped(const char* s, U min_magnitude, U max_value) {
  U result = 0;
  while (IsSpace(*s)) {
    ++s;
  }
  const bool negative = *s == '-';
  s += (*s == '+' || *s == '-') ? 1 : 0;
  bool overflow = false;
  if (s[0] == '0' && (s[1] | ' ') == 'x') {
    s += 2;
    while (*s == '0') {
      ++s;
    }
    const char* start = s;
    for (;; ++s) {
      if (static_cast<unsigned>(*s - '0') < 10) {
        result = static_cast<U>(result * 16 + static_cast<U>(*s - '0'));
      } else if (static_cast<unsigned>((*s | ' ') - 'a') < 6) {
        result = static_cast<U>(result * 16 + static_cast<U>((*s | ' ') - 'a' + 10));
      } else {
        break;
      }
    }
    overflow = static_cast<size_t>(s - start) > sizeof(U) * 2;
  } else {
    while (*s == '0') {
      ++s;
    }
    const char* start = s;
    for (; static_cast<unsigned>(*s - '0') < 10; ++s) {
      result = static_cast<U>(result * 10 + static_cast<U>(*s - '0'));
    }
    const size_t digits = static_cast<size_t>(s - start);
    const size_t max_digits = sizeof(U) == 8 ? 20 : sizeof(U) == 4 ? 10 : 5;
    const char max_lead = sizeof(U) == 8 ? '1' : sizeof(U) == 4 ? '4' : '6';
    const unsigned high_bit = sizeof(U) * 8 - 1;
    overflow =
        digits >= max_digits &&
        !(digits == max_digits && (*start < max_lead || (*start == max_lead && (result >> high_bit) != 0)));
  }
  if (negative) {
    return (overflow || result > min_magnitude) ? static_cast<U>(0 - min_magnitude)
                                                : static_cast<U>(0 - result);
  }
  return (overflow || result > max_value) ? max_value : result;
}

}  // namespace

std::string EncodeBool(bool value) {
  return value ? "1" : "0";
}

std::string EncodeWhole(long long value) {
  return Format("%lld", value);
}

std::string EncodeUnsigned(unsigned long long value) {
  return Format("%llu", value);
}

std::string EncodeReal(double value, const char* format) {
  return format == nullptr ? FormatReal(value) : Format(format, value);
}

std::string EncodeText(const std::wstring& value) {
  return ToUtf8(value);
}

void DecodeText(std::wstring& out, const char* utf8) {
  out = FromUtf8(utf8);
}

bool DecodeBool(const char* utf8) {
  const char first = *utf8;
  return first == '1' || first == 't' || first == 'T' || first == 'y' || first == 'Y';
}

long long DecodeWhole(const char* utf8) {
  return static_cast<long long>(ParseClamped<unsigned long long>(
      utf8, 0ULL - static_cast<unsigned long long>(LLONG_MIN), static_cast<unsigned long long>(LLONG_MAX)));
}

long long DecodeWhole32(const char* utf8) {
  return static_cast<std::int32_t>(
      ParseClamped<unsigned>(utf8, 0U - static_cast<unsigned>(INT_MIN), static_cast<unsigned>(INT_MAX)));
}

long long DecodeWhole16(const char* utf8) {
  return static_cast<std::int16_t>(ParseClamped<unsigned short>(utf8, 32768, 32767));
}

unsigned long long DecodeUnsigned(const char* utf8) {
  return ParseClamped<unsigned>(utf8, 0U, UINT_MAX);
}

double DecodeReal(const char* utf8) {
  return ToReal(std::string_view(utf8));
}

// --- TagIndex ----------------------------------------------------------------

std::uint32_t TagIndex::Hash(std::string_view name) {
  std::uint32_t hash = 2166136261U;  // FNV-1a
  for (const char c : name) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  }
  return hash;
}

void TagIndex::Grow() {
  std::vector<Slot> old = std::move(slots_);
  slots_.assign(old.empty() ? 16 : old.size() * 2, Slot{});
  used_ = 0;
  for (const Slot& slot : old) {
    if (slot.value != kNone) {
      Add(slot.name, slot.value);
    }
  }
}

void TagIndex::Add(std::string_view name, std::uint16_t value) {
  // At most half full, so that a miss ends soon.
  if ((used_ + 1) * 2 > slots_.size()) {
    Grow();
  }
  const size_t mask = slots_.size() - 1;
  for (size_t at = Hash(name) & mask;; at = (at + 1) & mask) {
    if (slots_[at].value == kNone) {
      slots_[at] = Slot{name, value};
      ++used_;
      return;
    }
    if (slots_[at].name == name) {
      return;  // the first row of a name wins
    }
  }
}

std::uint16_t TagIndex::Find(const char* name) const {
  if (slots_.empty()) {
    return kNone;
  }
  std::uint32_t hash = 2166136261U;
  const char* end = name;
  for (; *end != '\0'; ++end) {
    hash = (hash ^ static_cast<unsigned char>(*end)) * 16777619U;
  }
  const std::string_view key(name, static_cast<size_t>(end - name));
  const size_t mask = slots_.size() - 1;
  for (size_t at = hash & mask;; at = (at + 1) & mask) {
    const Slot& slot = slots_[at];
    if (slot.value == kNone) {
      return kNone;
    }
    if (slot.name == key) {
      return slot.value;
    }
  }
}

}  // namespace tarn::internal
