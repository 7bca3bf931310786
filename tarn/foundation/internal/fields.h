#pragma once

// Field tables: a record describes each flat field once, in write order, and
// the one table drives reading, writing, defaults and equality.
//
//   struct CPMImageAdjustData::Fields {
//     static const internal::FieldTable<CPMImageAdjustData>& Table() {
//       using F = internal::Field<CPMImageAdjustData>;
//       static const internal::FieldTable<CPMImageAdjustData> table(
//           CPMImageAdjustData::kElementName,
//           {F::Int("SAMPLING", &CPMImageAdjustData::sampling_),
//            F::Int("BLUR", &CPMImageAdjustData::blur_),
//            F::Int("SATURATION", &CPMImageAdjustData::saturation_)});
//       return table;
//     }
//   };
//
// What does not fit a row (packed number lists, collections, values derived
// from other members, deliberate oddities) is a Custom row: a tag with a
// hand-written reader and/or writer, kept in its place in the write order.
// Children the table does not know go to the table's OnUnknown hook, or are
// skipped.
//
// Tables are built once (a function-local static) and never change; the tag
// lookup is built with them, so reading a child costs one hash of its name.
// See docs/records.md.

#include <pugixml.hpp>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::internal {

// Where a field lives relative to the record's element.
enum class Place : std::uint8_t {
  kChild,       // <TAG>value</TAG>
  kAttribute,   // <RECORD tag="value">
  kGroupChild,  // <GROUP><TAG>value</TAG></GROUP>
};

// How the value is coded in the file.
enum class Codec : std::uint8_t {
  kText,    // wide text as UTF-8
  kCData,   // wide text in a CDATA section
  kBool,    // "1"/"0"; read as pugixml reads booleans
  kInt,     // 32-bit signed
  kUInt,    // 32-bit unsigned
  kInt16,   // 16-bit signed
  kInt64,   // 64-bit signed
  kReal,    // "%.17g" or the row's printf format; read as strtod in the "C" locale
  kCustom,  // hand-written reader and writer
};

// When a field is written.
enum class Write : std::uint8_t { kAlways, kIfTrue, kIfNotEmpty, kNever };

// When a field found in the file changes the record. For an attribute,
// kAlways means an absent attribute reads as empty/zero/false.
enum class Read : std::uint8_t { kAlways, kIfPresent, kIfPresentNotEmpty, kNever };

// Whether the reader starts from the defaults or keeps the current values.
enum class Start : std::uint8_t { kDefaults, kCurrent };

// Per-read state handed to hand-written readers, so that a recursive reader
// can pass on what it needs (such as how deep it is) without a global.
struct ReadContext {};

// Text form of a number or flag, through the locale-free codec; shared by
// writers and by tools that show or edit a field as text.
std::string EncodeBool(bool value);
std::string EncodeWhole(long long value);
std::string EncodeUnsigned(unsigned long long value);
std::string EncodeReal(double value, const char* format);

// The tag lookup of a table: open addressing over the names, built once.
class TagIndex {
 public:
  static constexpr std::uint16_t kNone = 0xffff;

  void Add(std::string_view name, std::uint16_t value);
  // The value stored for name, or kNone.
  std::uint16_t Find(const char* name) const;

 private:
  struct Slot {
    std::string_view name;
    std::uint16_t value = kNone;
  };
  static std::uint32_t Hash(std::string_view name);
  void Grow();
  std::vector<Slot> slots_;
  size_t used_ = 0;
};

template <class R>
struct Field {
  using ReadHook = void (*)(R&, const pugi::xml_node&, ReadContext&);
  using WriteHook = void (*)(const R&, pugi::xml_node&);

  const char* name = nullptr;   // tag or attribute name
  const char* group = nullptr;  // the enclosing element of a kGroupChild
  Place place = Place::kChild;
  Codec codec = Codec::kText;
  Write write = Write::kAlways;
  Read read = Read::kAlways;
  bool compared = true;          // takes part in equality
  const char* format = nullptr;  // printf format of a real; null for "%.17g"
  union Member {
    std::wstring R::*text;
    bool R::*flag;
    std::int32_t R::*i32;
    std::uint32_t R::*u32;
    std::int16_t R::*i16;
    std::int64_t R::*i64;
    double R::*real;
  } member{};
  ReadHook read_hook = nullptr;
  WriteHook write_hook = nullptr;

  // --- row builders ---------------------------------------------------------
  static Field Text(const char* tag, std::wstring R::*m) {
    Field f = Make(tag, Codec::kText);
    f.member.text = m;
    return f;
  }
  static Field CData(const char* tag, std::wstring R::*m) {
    Field f = Make(tag, Codec::kCData);
    f.member.text = m;
    return f;
  }
  static Field Bool(const char* tag, bool R::*m) {
    Field f = Make(tag, Codec::kBool);
    f.member.flag = m;
    return f;
  }
  static Field Int(const char* tag, std::int32_t R::*m) {
    Field f = Make(tag, Codec::kInt);
    f.member.i32 = m;
    return f;
  }
  static Field UInt(const char* tag, std::uint32_t R::*m) {
    Field f = Make(tag, Codec::kUInt);
    f.member.u32 = m;
    return f;
  }
  static Field Int16(const char* tag, std::int16_t R::*m) {
    Field f = Make(tag, Codec::kInt16);
    f.member.i16 = m;
    return f;
  }
  static Field Int64(const char* tag, std::int64_t R::*m) {
    Field f = Make(tag, Codec::kInt64);
    f.member.i64 = m;
    return f;
  }
  static Field Real(const char* tag, double R::*m, const char* format = nullptr) {
    Field f = Make(tag, Codec::kReal);
    f.member.real = m;
    f.format = format;
    return f;
  }
  // A hand-written row: read_hook runs for each child named tag, write_hook
  // at this place in the write order. Either may be null.
  static Field Custom(const char* tag, ReadHook read_hook, WriteHook write_hook) {
    Field f = Make(tag, Codec::kCustom);
    f.read_hook = read_hook;
    f.write_hook = write_hook;
    f.compared = false;
    return f;
  }
  // Something written at this place that no reader takes back (a constant,
  // an attribute the record derives): a hand-written writer with no tag.
  static Field Writer(WriteHook write_hook) { return Custom(nullptr, nullptr, write_hook); }

  // --- modifiers, chained on a builder -------------------------------------
  Field Attribute() const {
    Field f = *this;
    f.place = Place::kAttribute;
    return f;
  }
  Field In(const char* group_tag) const {
    Field f = *this;
    f.place = Place::kGroupChild;
    f.group = group_tag;
    return f;
  }
  Field Writes(Write when) const {
    Field f = *this;
    f.write = when;
    return f;
  }
  Field Reads(Read when) const {
    Field f = *this;
    f.read = when;
    return f;
  }
  Field NotCompared() const {
    Field f = *this;
    f.compared = false;
    return f;
  }

 private:
  static Field Make(const char* tag, Codec codec) {
    Field f;
    f.name = tag;
    f.codec = codec;
    return f;
  }
};

template <class R>
class FieldTable {
 public:
  using Row = Field<R>;
  // Hook for children the table does not name; they are skipped without one.
  using UnknownHook = void (*)(R&, const pugi::xml_node&, ReadContext&);

  // element: the record's element name, checked by Read (null: not checked).
  FieldTable(const char* element, std::initializer_list<Row> rows, UnknownHook on_unknown = nullptr)
      : element_(element), rows_(rows), on_unknown_(on_unknown) {
    for (size_t i = 0; i < rows_.size(); ++i) {
      const Row& row = rows_[i];
      if (row.name == nullptr) {
        continue;  // a Writer
      }
      if (row.place == Place::kChild) {
        children_.Add(row.name, static_cast<std::uint16_t>(i));
      } else if (row.place == Place::kGroupChild) {
        size_t g = 0;
        while (g < groups_.size() && std::string_view(groups_[g].name) != row.group) {
          ++g;
        }
        if (g == groups_.size()) {
          groups_.push_back(Group{row.group, {}});
          children_.Add(row.group, static_cast<std::uint16_t>(kGroupBit | g));
        }
        groups_[g].index.Add(row.name, static_cast<std::uint16_t>(i));
      } else {
        attributes_.push_back(static_cast<std::uint16_t>(i));
      }
    }
  }

  const char* element() const { return element_; }
  const std::vector<Row>& rows() const { return rows_; }

  // The one reader: checks the element name (nothing changes when it is not
  // the record's: false), starts from the defaults (the record's SetDefaults)
  // or keeps the current values, reads the attributes, then hands each child
  // element to its row, its group, the unknown hook, or skips it.
  bool Read(R& record, const pugi::xml_node& node, Start start, ReadContext& context) const {
    if (element_ != nullptr &&
        !(node.type() == pugi::node_element && std::string_view(node.name()) == element_)) {
      return false;
    }
    if constexpr (requires { record.SetDefaults(); }) {
      if (start == Start::kDefaults) {
        record.SetDefaults();
      }
    }
    for (const std::uint16_t i : attributes_) {
      const Row& row = rows_[i];
      const pugi::xml_attribute attribute = node.attribute(row.name);
      if (!attribute && row.read != Read::kAlways) {
        continue;
      }
      ReadValue(record, row, attribute.value());
    }
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
      if (child.type() != pugi::node_element) {
        continue;
      }
      const std::uint16_t found = children_.Find(child.name());
      if (found == TagIndex::kNone) {
        if (on_unknown_ != nullptr) {
          on_unknown_(record, child, context);
        }
      } else if ((found & kGroupBit) != 0) {
        const Group& group = groups_[found & ~kGroupBit];
        for (pugi::xml_node item = child.first_child(); item; item = item.next_sibling()) {
          if (item.type() != pugi::node_element) {
            continue;
          }
          const std::uint16_t member = group.index.Find(item.name());
          if (member != TagIndex::kNone) {
            ReadChild(record, rows_[member], item, context);
          }
        }
      } else {
        ReadChild(record, rows_[found], child, context);
      }
    }
    return true;
  }

  bool Read(R& record, const pugi::xml_node& node, Start start = Start::kDefaults) const {
    ReadContext context;
    return Read(record, node, start, context);
  }

  // Writes every row in order into node (the record's element), opening a
  // group element where a run of grouped rows starts.
  void Write(const R& record, pugi::xml_node node) const {
    pugi::xml_node group;
    const char* open_group = nullptr;
    for (const Row& row : rows_) {
      if (row.codec == Codec::kCustom) {
        open_group = nullptr;
        if (row.write_hook != nullptr) {
          row.write_hook(record, node);
        }
        continue;
      }
      if (!ShouldWrite(record, row)) {
        continue;
      }
      if (row.place == Place::kAttribute) {
        node.append_attribute(row.name).set_value(Encode(record, row).c_str());
        continue;
      }
      pugi::xml_node parent = node;
      if (row.place == Place::kGroupChild) {
        if (open_group == nullptr || std::string_view(open_group) != row.group) {
          group = node.append_child(row.group);
          open_group = row.group;
        }
        parent = group;
      } else {
        open_group = nullptr;
      }
      pugi::xml_node element = parent.append_child(row.name);
      if (row.codec == Codec::kCData) {
        element.append_child(pugi::node_cdata).set_value(Encode(record, row).c_str());
      } else {
        element.text().set(Encode(record, row).c_str());
      }
    }
  }

  // Copies every row's value from one record to another. Defaults live in the
  // member initialisers; a SetDefaults that must keep members outside the
  // table copies the rows from a default-constructed record with this.
  void Assign(const R& from, R& to) const {
    for (const Row& row : rows_) {
      switch (row.codec) {
        case Codec::kText:
        case Codec::kCData:
          to.*row.member.text = from.*row.member.text;
          break;
        case Codec::kBool:
          to.*row.member.flag = from.*row.member.flag;
          break;
        case Codec::kInt:
          to.*row.member.i32 = from.*row.member.i32;
          break;
        case Codec::kUInt:
          to.*row.member.u32 = from.*row.member.u32;
          break;
        case Codec::kInt16:
          to.*row.member.i16 = from.*row.member.i16;
          break;
        case Codec::kInt64:
          to.*row.member.i64 = from.*row.member.i64;
          break;
        case Codec::kReal:
          to.*row.member.real = from.*row.member.real;
          break;
        case Codec::kCustom:
          break;
      }
    }
  }

  // The compared rows are equal.
  bool Equal(const R& a, const R& b) const {
    for (const Row& row : rows_) {
      if (row.compared && row.codec != Codec::kCustom && !SameValue(a, b, row)) {
        return false;
      }
    }
    return true;
  }

  // --- introspection ----------------------------------------------------------
  // The row's value as the file would hold it (UTF-8); empty for Custom rows.
  std::string GetText(const R& record, size_t row) const {
    return rows_[row].codec == Codec::kCustom ? std::string() : Encode(record, rows_[row]);
  }
  // Sets the row's value from text as the reader would read it. False for Custom rows.
  bool SetText(R& record, size_t row, const char* utf8) const {
    if (rows_[row].codec == Codec::kCustom) {
      return false;
    }
    ReadValue(record, rows_[row], utf8);
    return true;
  }

 private:
  static constexpr std::uint16_t kGroupBit = 0x8000;
  struct Group {
    const char* name;
    TagIndex index;
  };

  static bool ShouldWrite(const R& record, const Row& row) {
    switch (row.write) {
      case Write::kAlways:
        return true;
      case Write::kNever:
        return false;
      case Write::kIfTrue:
        return row.codec == Codec::kBool && record.*row.member.flag;
      case Write::kIfNotEmpty:
        return (row.codec == Codec::kText || row.codec == Codec::kCData) &&
               !(record.*row.member.text).empty();
    }
    return true;
  }

  static std::string Encode(const R& record, const Row& row);
  static void ReadValue(R& record, const Row& row, const char* utf8);

  void ReadChild(R& record, const Row& row, const pugi::xml_node& child, ReadContext& context) const {
    if (row.codec == Codec::kCustom) {
      if (row.read_hook != nullptr) {
        row.read_hook(record, child, context);
      }
      return;
    }
    if (row.read == Read::kNever) {
      return;
    }
    const pugi::xml_node first = child.first_child();
    const bool text = row.codec == Codec::kText || row.codec == Codec::kCData;
    if (text && first && first.next_sibling()) {
      // Several text or CDATA parts (a CDATA value split at "]]>"): join them.
      std::string joined;
      for (pugi::xml_node part = first; part; part = part.next_sibling()) {
        if (part.type() == pugi::node_pcdata || part.type() == pugi::node_cdata) {
          joined += part.value();
        }
      }
      if (!(joined.empty() && row.read == Read::kIfPresentNotEmpty)) {
        ReadValue(record, row, joined.c_str());
      }
      return;
    }
    // Numbers and flags read the first text part, as pugixml's own conversions do.
    const char* value = child.text().get();
    if (*value == '\0' && row.read == Read::kIfPresentNotEmpty) {
      return;
    }
    ReadValue(record, row, value);
  }

  static bool SameValue(const R& a, const R& b, const Row& row) {
    switch (row.codec) {
      case Codec::kText:
      case Codec::kCData:
        return a.*row.member.text == b.*row.member.text;
      case Codec::kBool:
        return a.*row.member.flag == b.*row.member.flag;
      case Codec::kInt:
        return a.*row.member.i32 == b.*row.member.i32;
      case Codec::kUInt:
        return a.*row.member.u32 == b.*row.member.u32;
      case Codec::kInt16:
        return a.*row.member.i16 == b.*row.member.i16;
      case Codec::kInt64:
        return a.*row.member.i64 == b.*row.member.i64;
      case Codec::kReal:
        return a.*row.member.real == b.*row.member.real;
      case Codec::kCustom:
        return true;
    }
    return true;
  }

  const char* element_;
  std::vector<Row> rows_;
  UnknownHook on_unknown_;
  TagIndex children_;
  std::vector<Group> groups_;
  std::vector<std::uint16_t> attributes_;
};

// Text decoding shared by every table (defined in fields.cpp).
void DecodeText(std::wstring& out, const char* utf8);
bool DecodeBool(const char* utf8);
long long DecodeWhole(const char* utf8);    // 64-bit range
long long DecodeWhole32(const char* utf8);  // 32-bit range
long long DecodeWhole16(const char* utf8);  // 16-bit range
unsigned long long DecodeUnsigned(const char* utf8);
double DecodeReal(const char* utf8);
std::string EncodeText(const std::wstring& value);

template <class R>
std::string FieldTable<R>::Encode(const R& record, const Row& row) {
  switch (row.codec) {
    case Codec::kText:
    case Codec::kCData:
      return EncodeText(record.*row.member.text);
    case Codec::kBool:
      return EncodeBool(record.*row.member.flag);
    case Codec::kInt:
      return EncodeWhole(record.*row.member.i32);
    case Codec::kUInt:
      return EncodeUnsigned(record.*row.member.u32);
    case Codec::kInt16:
      return EncodeWhole(record.*row.member.i16);
    case Codec::kInt64:
      return EncodeWhole(record.*row.member.i64);
    case Codec::kReal:
      return EncodeReal(record.*row.member.real, row.format);
    case Codec::kCustom:
      break;
  }
  return {};
}

template <class R>
void FieldTable<R>::ReadValue(R& record, const Row& row, const char* utf8) {
  switch (row.codec) {
    case Codec::kText:
    case Codec::kCData:
      DecodeText(record.*row.member.text, utf8);
      break;
    case Codec::kBool:
      record.*row.member.flag = DecodeBool(utf8);
      break;
    case Codec::kInt:
      record.*row.member.i32 = static_cast<std::int32_t>(DecodeWhole32(utf8));
      break;
    case Codec::kUInt:
      record.*row.member.u32 = static_cast<std::uint32_t>(DecodeUnsigned(utf8));
      break;
    case Codec::kInt16:
      record.*row.member.i16 = static_cast<std::int16_t>(DecodeWhole16(utf8));
      break;
    case Codec::kInt64:
      record.*row.member.i64 = static_cast<std::int64_t>(DecodeWhole(utf8));
      break;
    case Codec::kReal:
      record.*row.member.real = DecodeReal(utf8);
      break;
    case Codec::kCustom:
      break;
  }
}

}  // namespace tarn::internal
