#include "tarn/foundation/registry.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <variant>

#include "tarn/foundation/format.h"
#include "tarn/foundation/limits.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {

namespace {

constexpr char kRootTag[] = "XREG";
constexpr char kKeyTag[] = "KEY";
constexpr char kValueTag[] = "VALUE";
constexpr char kNameAttribute[] = "name";
constexpr char kTypeAttribute[] = "type";
constexpr char kVersionAttribute[] = "version";
constexpr char kEncodingAttribute[] = "encoding";
constexpr char kEscapedEncoding[] = "escaped";
constexpr wchar_t kCaption[] = L"XRegistry";

// The root element takes one level of a file's nesting, so a key path may
// have one component fewer than the library's nesting limit.
constexpr size_t kMaxPathParts = kMaxNestingDepth - 1;

// One table for the type names, used by the reader and the writer.
struct TypeName {
  CXRegistry::ValueType type;
  const char* name;
};
constexpr TypeName kTypeNames[] = {
    {CXRegistry::ValueType::kString, "string"},
    {CXRegistry::ValueType::kInteger, "integer"},
    {CXRegistry::ValueType::kReal, "real"},
    {CXRegistry::ValueType::kBoolean, "boolean"},
};

const char* NameOfType(CXRegistry::ValueType type) {
  for (const TypeName& entry : kTypeNames) {
    if (entry.type == type) {
      return entry.name;
    }
  }
  return "string";
}

bool TypeOfName(const char* name, CXRegistry::ValueType& type) {
  for (const TypeName& entry : kTypeNames) {
    if (std::string_view(entry.name) == name) {
      type = entry.type;
      return true;
    }
  }
  return false;
}

void ReportSyntax(const std::wstring& where) {
  ShowMessage(Format(L"[XRegistry] Registry has invalid syntax around node: %s", where), kCaption);
}

void ReportWrongType(const std::wstring& path) {
  ShowMessage(
      Format(L"[XRegistry] Attempting to access or set a value that is of the wrong data type: %s", path),
      kCaption);
}

void ReportUnkeepable(const std::wstring& what, const std::wstring& path) {
  ShowMessage(Format(L"[XRegistry] %s: %s", what, path), kCaption);
}

// A character the XML of a file can carry as it stands.
bool IsPlainChar(wchar_t c) {
  const auto code = static_cast<std::uint32_t>(c);
  return (code >= 0x20 || c == L'\t' || c == L'\n') && !(code >= 0xD800 && code <= 0xDFFF) &&
         code != 0xFFFE && code != 0xFFFF && code <= 0x10FFFF;
}

// Names are attributes, whose white space the parser turns into blanks, so
// they hold no control characters at all.
bool IsKeepableName(std::wstring_view name) {
  return std::all_of(name.begin(), name.end(),
                     [](wchar_t c) { return c != L'\t' && c != L'\n' && IsPlainChar(c); });
}

// A string value goes into the file as it stands unless the parser would
// not give it back: white space alone is dropped as indentation, a carriage
// return becomes a line feed, and control characters, NUL and lone
// surrogates cannot be in XML at all. Such values are written escaped.
bool NeedsEscaping(std::wstring_view text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), [](wchar_t c) {
        return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r';
      })) {
    return true;
  }
  return !std::all_of(text.begin(), text.end(), IsPlainChar);
}

// Escaped form: "\\" for a backslash, "\u{hex}" for white space, control
// characters and code units XML cannot hold; everything else as it stands.
std::wstring Escape(std::wstring_view text) {
  std::wstring out;
  for (const wchar_t c : text) {
    if (c == L'\\') {
      out += L"\\\\";
    } else if (c <= L' ' || c == 0x7F || !IsPlainChar(c)) {
      out += Format(L"\\u{%x}", static_cast<std::uint32_t>(c));
    } else {
      out += c;
    }
  }
  return out;
}

bool Unescape(std::wstring_view text, std::wstring& out) {
  out.clear();
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != L'\\') {
      out += text[i];
      continue;
    }
    if (i + 1 < text.size() && text[i + 1] == L'\\') {
      out += L'\\';
      ++i;
      continue;
    }
    if (i + 3 >= text.size() || text[i + 1] != L'u' || text[i + 2] != L'{') {
      return false;
    }
    std::uint32_t code = 0;
    size_t j = i + 3;
    for (; j < text.size() && text[j] != L'}'; ++j) {
      const wchar_t c = text[j];
      const int digit = (c >= L'0' && c <= L'9')   ? c - L'0'
                        : (c >= L'a' && c <= L'f') ? c - L'a' + 10
                        : (c >= L'A' && c <= L'F') ? c - L'A' + 10
                                                   : -1;
      if (digit < 0 || j - (i + 3) >= 8) {
        return false;
      }
      code = code * 16 + static_cast<std::uint32_t>(digit);
    }
    if (j == i + 3 || j >= text.size()) {
      return false;
    }
    out += static_cast<wchar_t>(code);
    i = j;
  }
  return true;
}

std::vector<std::wstring> SplitKeyPath(const std::wstring& path) {
  std::vector<std::wstring> parts;
  size_t pos = 0;
  while (pos <= path.size()) {
    size_t slash = path.find_first_of(L"/\\", pos);
    if (slash == std::wstring::npos) {
      slash = path.size();
    }
    if (slash > pos) {
      parts.emplace_back(path.substr(pos, slash - pos));
    }
    pos = slash + 1;
  }
  return parts;
}

}  // namespace

struct CXRegistry::Key {
  using Data = std::variant<std::wstring, std::int64_t, double, bool>;
  struct Value {
    std::wstring name;
    Data data;
  };

  std::vector<std::pair<std::wstring, std::unique_ptr<Key>>> keys;
  std::vector<Value> values;

  Key() = default;
  Key(const Key& other) : values(other.values) {
    keys.reserve(other.keys.size());
    for (const auto& [name, key] : other.keys) {
      keys.emplace_back(name, std::make_unique<Key>(*key));
    }
  }

  Key* FindKey(std::wstring_view name) const {
    for (const auto& [key_name, key] : keys) {
      if (EqualsNoCase(key_name, name)) {
        return key.get();
      }
    }
    return nullptr;
  }
  Key* AddKey(const std::wstring& name) {
    if (Key* existing = FindKey(name)) {
      return existing;
    }
    keys.emplace_back(name, std::make_unique<Key>());
    return keys.back().second.get();
  }
  const Value* FindValue(std::wstring_view name) const {
    for (const Value& value : values) {
      if (EqualsNoCase(value.name, name)) {
        return &value;
      }
    }
    return nullptr;
  }
  Value* FindValue(std::wstring_view name) {
    return const_cast<Value*>(static_cast<const Key*>(this)->FindValue(name));
  }

  static ValueType TypeOf(const Data& data) { return static_cast<ValueType>(data.index()); }
};

CXRegistry::CXRegistry() : root_(std::make_unique<Key>()) {}
CXRegistry::~CXRegistry() = default;
CXRegistry::CXRegistry(const CXRegistry& other) : root_(std::make_unique<Key>(*other.root_)) {}
CXRegistry& CXRegistry::operator=(const CXRegistry& other) {
  if (this != &other) {
    root_ = std::make_unique<Key>(*other.root_);
  }
  return *this;
}
CXRegistry::CXRegistry(CXRegistry&& other) noexcept : root_(std::make_unique<Key>()) {
  root_.swap(other.root_);
}
CXRegistry& CXRegistry::operator=(CXRegistry&& other) noexcept {
  root_.swap(other.root_);
  return *this;
}

void CXRegistry::Clear() {
  root_ = std::make_unique<Key>();
}

namespace {

// Reads the children of element into key; false (after reporting) at the
// first node that does not fit the layout.
bool ReadKey(const pugi::xml_node& element, CXRegistry::Key& key, const std::wstring& where, size_t depth);

}  // namespace

namespace {

bool ParseData(CXRegistry::ValueType type, const std::string& text, bool escaped,
               CXRegistry::Key::Data& data) {
  if (escaped && type != CXRegistry::ValueType::kString) {
    return false;
  }
  switch (type) {
    case CXRegistry::ValueType::kString: {
      std::wstring value = FromUtf8(text);
      if (escaped && !Unescape(std::wstring(value), value)) {
        return false;
      }
      data = std::move(value);
      return true;
    }
    // Numbers that do not fit are refused, never clamped or made infinite.
    case CXRegistry::ValueType::kInteger: {
      long long value = 0;
      if (!ParseWholeInteger(text, value)) {
        return false;
      }
      data = static_cast<std::int64_t>(value);
      return true;
    }
    case CXRegistry::ValueType::kReal: {
      double value = 0;
      if (!ParseWholeReal(text, value)) {
        return false;
      }
      data = value;
      return true;
    }
    case CXRegistry::ValueType::kBoolean:
      if (text == "1" || text == "0") {
        data = text == "1";
        return true;
      }
      return false;
  }
  return false;
}

bool ReadKey(const pugi::xml_node& element, CXRegistry::Key& key, const std::wstring& where, size_t depth) {
  for (const pugi::xml_node& child : element.children()) {
    if (child.type() != pugi::node_element) {
      continue;
    }
    const std::wstring name = FromUtf8(child.attribute(kNameAttribute).value());
    std::wstring here = where;
    if (!here.empty()) {
      here += L'/';
    }
    here += name;
    // The load refuses deeper documents already; the check keeps this
    // recursion bounded whatever its caller.
    if (xml::IsNamed(child, kKeyTag) && !name.empty() && IsKeepableName(name) && depth < kMaxPathParts) {
      if (!ReadKey(child, *key.AddKey(name), here, depth + 1)) {
        return false;
      }
      continue;
    }
    CXRegistry::ValueType type{};
    CXRegistry::Key::Data data;
    const pugi::xml_attribute encoding = child.attribute(kEncodingAttribute);
    const bool escaped = std::string_view(encoding.value()) == kEscapedEncoding;
    if (!xml::IsNamed(child, kValueTag) || name.empty() || !IsKeepableName(name) || key.FindValue(name) ||
        (encoding && !escaped) || !TypeOfName(child.attribute(kTypeAttribute).value(), type) ||
        !ParseData(type, child.text().get(), escaped, data)) {
      ReportSyntax(name.empty() ? (where.empty() ? L"" : where + L"/") + FromUtf8(child.name()) : here);
      return false;
    }
    key.values.push_back({name, std::move(data)});
  }
  return true;
}

void WriteKey(pugi::xml_node element, const CXRegistry::Key& key) {
  for (const auto& [name, sub] : key.keys) {
    pugi::xml_node child = xml::AppendElement(element, kKeyTag);
    xml::SetAttribute(child, kNameAttribute, name);
    WriteKey(child, *sub);
  }
  for (const CXRegistry::Key::Value& value : key.values) {
    pugi::xml_node child = xml::AppendElement(element, kValueTag);
    xml::SetAttribute(child, kNameAttribute, value.name);
    child.append_attribute(kTypeAttribute).set_value(NameOfType(CXRegistry::Key::TypeOf(value.data)));
    std::visit(
        [&](const auto& data) {
          using T = std::decay_t<decltype(data)>;
          if constexpr (std::is_same_v<T, std::wstring>) {
            if (NeedsEscaping(data)) {
              child.append_attribute(kEncodingAttribute).set_value(kEscapedEncoding);
              xml::SetText(child, Escape(data));
            } else {
              xml::SetText(child, data);
            }
          } else if constexpr (std::is_same_v<T, bool>) {
            child.text().set(data ? "1" : "0");
          } else if constexpr (std::is_same_v<T, double>) {
            child.text().set(FormatReal(data).c_str());
          } else {
            child.text().set(static_cast<long long>(data));
          }
        },
        value.data);
  }
}

}  // namespace

namespace {

void ReportLoadFailure(const std::wstring& source, const std::wstring& reason) {
  ShowMessage(Format(L"[XRegistry] Cannot load %s: %s", source, reason), kCaption);
}

}  // namespace

bool CXRegistry::LoadFromString(const std::string& utf8) {
  return LoadText(utf8, L"the configuration store");
}

bool CXRegistry::LoadText(const std::string& utf8, const std::wstring& source) {
  pugi::xml_document document;
  std::wstring reason;
  if (!xml::LoadDocumentFromBuffer(document, utf8, kRootTag, &reason)) {
    ReportLoadFailure(source, reason);
    return false;
  }
  auto fresh = std::make_unique<Key>();
  if (!ReadKey(document.first_child(), *fresh, L"", 0)) {
    return false;
  }
  root_ = std::move(fresh);
  return true;
}

bool CXRegistry::Load(const std::wstring& path) {
  std::string data;
  std::wstring reason;
  if (!ReadWholeFile(path, data, &reason)) {
    ReportLoadFailure(path, reason);
    return false;
  }
  return LoadText(data, path);
}

std::string CXRegistry::SaveToString() const {
  pugi::xml_document document;
  pugi::xml_node root = document.append_child(kRootTag);
  root.append_attribute(kVersionAttribute).set_value(1);
  WriteKey(root, *root_);
  return xml::SaveDocumentToString(document);
}

bool CXRegistry::Save(const std::wstring& path) const {
  std::wstring reason;
  if (!WriteFileAtomically(path, SaveToString(), &reason)) {
    ShowMessage(Format(L"[XRegistry] Cannot save %s: %s", path, reason), kCaption);
    return false;
  }
  return true;
}

namespace {

// Finds the key that holds the last component of path; null when a key on
// the way is missing (and create is false) or the path is empty.
CXRegistry::Key* WalkTo(CXRegistry::Key& root, const std::vector<std::wstring>& parts, bool create) {
  if (parts.empty()) {
    return nullptr;
  }
  CXRegistry::Key* key = &root;
  for (size_t i = 0; i + 1 < parts.size(); ++i) {
    CXRegistry::Key* next = create ? key->AddKey(parts[i]) : key->FindKey(parts[i]);
    if (!next) {
      return nullptr;
    }
    key = next;
  }
  return key;
}

template <typename T>
bool GetTyped(CXRegistry::Key& root, const std::wstring& path, T& out) {
  const std::vector<std::wstring> parts = SplitKeyPath(path);
  const CXRegistry::Key* key = WalkTo(root, parts, false);
  const CXRegistry::Key::Value* value = key ? key->FindValue(parts.back()) : nullptr;
  if (!value) {
    return false;
  }
  if (const T* data = std::get_if<T>(&value->data)) {
    out = *data;
    return true;
  }
  ReportWrongType(path);
  return false;
}

template <typename T>
bool SetTyped(CXRegistry::Key& root, const std::wstring& path, const T& in) {
  const std::vector<std::wstring> parts = SplitKeyPath(path);
  // Refused before any key is made, so a failed set leaves the store as it was.
  if (parts.size() > kMaxPathParts) {
    ReportUnkeepable(Format(L"Key path nested more than %zu levels deep", kMaxPathParts), path);
    return false;
  }
  if (!std::all_of(parts.begin(), parts.end(), IsKeepableName)) {
    ReportUnkeepable(L"A key or value name holds a control character or an invalid code unit", path);
    return false;
  }
  if constexpr (std::is_same_v<T, double>) {
    if (!std::isfinite(in)) {
      ReportUnkeepable(L"A real value must be a finite number", path);
      return false;
    }
  }
  CXRegistry::Key* key = WalkTo(root, parts, true);
  if (!key) {
    return false;
  }
  if (CXRegistry::Key::Value* value = key->FindValue(parts.back())) {
    if (!std::holds_alternative<T>(value->data)) {
      ReportWrongType(path);
      return false;
    }
    value->data = in;
    return true;
  }
  key->values.push_back({parts.back(), in});
  return true;
}

}  // namespace

bool CXRegistry::GetString(const std::wstring& path, std::wstring& value) const {
  return GetTyped(*root_, path, value);
}
bool CXRegistry::GetInteger(const std::wstring& path, std::int64_t& value) const {
  return GetTyped(*root_, path, value);
}
bool CXRegistry::GetReal(const std::wstring& path, double& value) const {
  return GetTyped(*root_, path, value);
}
bool CXRegistry::GetBoolean(const std::wstring& path, bool& value) const {
  return GetTyped(*root_, path, value);
}
bool CXRegistry::SetString(const std::wstring& path, const std::wstring& value) {
  return SetTyped(*root_, path, value);
}
bool CXRegistry::SetInteger(const std::wstring& path, std::int64_t value) {
  return SetTyped(*root_, path, value);
}
bool CXRegistry::SetReal(const std::wstring& path, double value) {
  return SetTyped(*root_, path, value);
}
bool CXRegistry::SetBoolean(const std::wstring& path, bool value) {
  return SetTyped(*root_, path, value);
}

bool CXRegistry::HasValue(const std::wstring& path) const {
  ValueType type{};
  return GetValueType(path, type);
}

bool CXRegistry::HasKey(const std::wstring& path) const {
  const std::vector<std::wstring> parts = SplitKeyPath(path);
  if (parts.empty()) {
    return true;
  }
  const Key* key = WalkTo(*root_, parts, false);
  return key && key->FindKey(parts.back());
}

bool CXRegistry::GetValueType(const std::wstring& path, ValueType& type) const {
  const std::vector<std::wstring> parts = SplitKeyPath(path);
  const Key* key = WalkTo(*root_, parts, false);
  const Key::Value* value = key ? key->FindValue(parts.back()) : nullptr;
  if (!value) {
    return false;
  }
  type = Key::TypeOf(value->data);
  return true;
}

bool CXRegistry::Remove(const std::wstring& path) {
  const std::vector<std::wstring> parts = SplitKeyPath(path);
  Key* key = WalkTo(*root_, parts, false);
  if (!key) {
    return false;
  }
  const auto value = std::find_if(key->values.begin(), key->values.end(),
                                  [&](const Key::Value& v) { return EqualsNoCase(v.name, parts.back()); });
  if (value != key->values.end()) {
    key->values.erase(value);
    return true;
  }
  const auto sub = std::find_if(key->keys.begin(), key->keys.end(),
                                [&](const auto& entry) { return EqualsNoCase(entry.first, parts.back()); });
  if (sub != key->keys.end()) {
    key->keys.erase(sub);
    return true;
  }
  return false;
}

std::vector<std::wstring> CXRegistry::GetKeyNames(const std::wstring& path) const {
  std::vector<std::wstring> names;
  const std::vector<std::wstring> parts = SplitKeyPath(path);
  const Key* key = parts.empty() ? root_.get() : WalkTo(*root_, parts, false);
  key = (key && !parts.empty()) ? key->FindKey(parts.back()) : key;
  if (key) {
    for (const auto& entry : key->keys) {
      names.push_back(entry.first);
    }
  }
  return names;
}

std::vector<std::wstring> CXRegistry::GetValueNames(const std::wstring& path) const {
  std::vector<std::wstring> names;
  const std::vector<std::wstring> parts = SplitKeyPath(path);
  const Key* key = parts.empty() ? root_.get() : WalkTo(*root_, parts, false);
  key = (key && !parts.empty()) ? key->FindKey(parts.back()) : key;
  if (key) {
    for (const auto& value : key->values) {
      names.push_back(value.name);
    }
  }
  return names;
}

}  // namespace tarn
