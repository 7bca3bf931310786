#include "tarn/foundation/registry.h"

#include <pugixml.hpp>

#include <algorithm>
#include <variant>

#include "tarn/foundation/format.h"
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
constexpr wchar_t kCaption[] = L"XRegistry";

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
bool ReadKey(const pugi::xml_node& element, CXRegistry::Key& key, const std::wstring& where);

}  // namespace

namespace {

bool ParseData(CXRegistry::ValueType type, const std::string& text, CXRegistry::Key::Data& data) {
  switch (type) {
    case CXRegistry::ValueType::kString:
      data = FromUtf8(text);
      return true;
    case CXRegistry::ValueType::kInteger: {
      long long value = 0;
      const size_t used = ParseIntPrefix(std::string_view(text), value);
      if (used == 0 || used != text.size()) {
        return false;
      }
      data = static_cast<std::int64_t>(value);
      return true;
    }
    case CXRegistry::ValueType::kReal: {
      double value = 0;
      const size_t used = ParseRealPrefix(std::string_view(text), value);
      if (used == 0 || used != text.size()) {
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

bool ReadKey(const pugi::xml_node& element, CXRegistry::Key& key, const std::wstring& where) {
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
    if (xml::IsNamed(child, kKeyTag) && !name.empty()) {
      if (!ReadKey(child, *key.AddKey(name), here)) {
        return false;
      }
      continue;
    }
    CXRegistry::ValueType type{};
    CXRegistry::Key::Data data;
    if (!xml::IsNamed(child, kValueTag) || name.empty() || key.FindValue(name) ||
        !TypeOfName(child.attribute(kTypeAttribute).value(), type) ||
        !ParseData(type, child.text().get(), data)) {
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
            xml::SetText(child, data);
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

bool CXRegistry::LoadFromString(const std::string& utf8) {
  pugi::xml_document document;
  if (!xml::LoadDocumentFromBuffer(document, utf8, kRootTag)) {
    return false;
  }
  auto fresh = std::make_unique<Key>();
  if (!ReadKey(document.first_child(), *fresh, L"")) {
    return false;
  }
  root_ = std::move(fresh);
  return true;
}

bool CXRegistry::Load(const std::wstring& path) {
  std::string data;
  return ReadWholeFile(path, data) && LoadFromString(data);
}

std::string CXRegistry::SaveToString() const {
  pugi::xml_document document;
  pugi::xml_node root = document.append_child(kRootTag);
  root.append_attribute(kVersionAttribute).set_value(1);
  WriteKey(root, *root_);
  return xml::SaveDocumentToString(document);
}

bool CXRegistry::Save(const std::wstring& path) const {
  return WriteFileAtomically(path, SaveToString());
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
