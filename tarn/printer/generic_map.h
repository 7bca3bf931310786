#pragma once

// CGenericMap<T>: a name-keyed list of definitions read from the children of
// one XML element, such as the resolutions of a printer definition:
//
//   <PRINTER>
//   	<RES><RESLABEL>720 x 720</RESLABEL>...</RES>
//   	<RES><RESLABEL>1440 x 720</RESLABEL>...</RES>
//   </PRINTER>
//
// The map owns its definitions. Keys compare ignoring case, and an empty key
// sorts after every other one (less_CString_Key). A definition type T needs a
// copy constructor, GetName(), and either `bool ReadXML(pugi::xml_node&)` or a
// constructor from a node.

#include <pugixml.hpp>

#include <concepts>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include "tarn/foundation/export.h"
#include "tarn/foundation/text.h"

namespace tarn {

// The ordering of every definition map: empty keys are equal to each other and
// sort last; other keys compare ignoring case.
struct less_CString_Key {
  bool operator()(const std::wstring& a, const std::wstring& b) const {
    if (a.empty() || b.empty()) {
      return !a.empty() && b.empty();
    }
    return CompareNoCase(a, b) < 0;
  }
};

template <class T>
class TARN_API CGenericMap {
 public:
  using map_type = std::map<std::wstring, std::unique_ptr<T>, less_CString_Key>;
  using iterator = typename map_type::iterator;
  using const_iterator = typename map_type::const_iterator;

  // An empty map with no child tag; it reads nothing until given one.
  CGenericMap() = default;
  // An empty map whose entries are the children tagged section.
  explicit CGenericMap(const wchar_t* section)
      : m_section(section ? section : L""), m_tag(ToUtf8(m_section)) {}
  // Deep copy of every entry and of the tag.
  CGenericMap(const CGenericMap& other) : m_section(other.m_section), m_tag(other.m_tag) {
    for (const auto& [key, object] : other.m_map) {
      if (object) {
        m_map.emplace(key, std::make_unique<T>(*object));
      }
    }
  }
  // Takes the tag, then adds a copy of each source entry whose key is not here
  // yet. Entries already present keep their own object and entries only here
  // stay: callers rely on this merge, and clear() first when they want a copy.
  CGenericMap& operator=(const CGenericMap& other) {
    if (this == &other) {
      return *this;
    }
    m_section = other.m_section;
    m_tag = other.m_tag;
    for (const auto& [key, object] : other.m_map) {
      if (object && m_map.find(key) == m_map.end()) {
        m_map.emplace(key, std::make_unique<T>(*object));
      }
    }
    return *this;
  }
  virtual ~CGenericMap() { clear(); }

  // Replaces the contents with the children of parent tagged with the section
  // tag. Nameless children and children that fail to read are skipped; of
  // several children with one name (ignoring case) the last wins. A null
  // parent leaves the map empty.
  void ReadXMLSection(const pugi::xml_node& parent) {
    clear();
    if (!parent) {
      return;
    }
    for (pugi::xml_node child = parent.first_child(); child; child = child.next_sibling()) {
      if (child.type() == pugi::node_element && m_tag == child.name()) {
        AddXMLObject(child);
      }
    }
  }

  // Reads one definition from node and adds it under its name, replacing an
  // entry of that name; nothing happens unless node's tag is exactly the
  // section tag, or when the definition fails to read or has no name.
  void AddXMLObject(const pugi::xml_node& node) {
    if (!node || node.type() != pugi::node_element || m_tag != node.name()) {
      return;
    }
    std::unique_ptr<T> object = MakeFromXML(node);
    if (!object) {
      return;
    }
    std::wstring name = object->GetName();
    if (name.empty()) {
      return;
    }
    Remove(name.c_str());
    m_map.emplace(std::move(name), std::move(object));
  }

  // The definition stored under name (ignoring case); null for a null or empty
  // name or when there is none. The map keeps ownership.
  T* Get(const wchar_t* name) const {
    if (name == nullptr || *name == L'\0') {
      return nullptr;
    }
    auto found = m_map.find(name);
    return found == m_map.end() ? nullptr : found->second.get();
  }

  // Takes ownership of object and stores it under name, deleting an entry of
  // that name. A null or empty name or a null object does nothing at all: the
  // object stays the caller's, who may still use or free it.
  void Add(const wchar_t* name, T* object) {
    if (name == nullptr || *name == L'\0' || object == nullptr) {
      return;
    }
    if (object == Get(name)) {
      return;  // already held under this name; replacing it would delete it
    }
    Add(name, std::unique_ptr<T>(object));
  }
  // The same for an owning pointer, which is left with the caller when the
  // insert is refused.
  void Add(const wchar_t* name, std::unique_ptr<T>&& object) {
    if (name == nullptr || *name == L'\0' || !object) {
      return;
    }
    Remove(name);
    m_map.emplace(std::wstring(name), std::move(object));
  }

  // Deletes the entry stored under name (ignoring case); nothing when absent.
  void Remove(const wchar_t* name) {
    if (name == nullptr || *name == L'\0') {
      return;
    }
    auto found = m_map.find(name);
    if (found != m_map.end()) {
      m_map.erase(found);
    }
  }

  // Deletes every definition.
  void clear() { m_map.clear(); }

  // The definition at the iterator, or null at the end.
  T* Current(iterator& it) { return it == m_map.end() ? nullptr : it->second.get(); }
  const T* Current(const_iterator& it) const { return it == m_map.end() ? nullptr : it->second.get(); }

  iterator begin() { return m_map.begin(); }
  iterator end() { return m_map.end(); }
  const_iterator begin() const { return m_map.begin(); }
  const_iterator end() const { return m_map.end(); }
  size_t size() const { return m_map.size(); }
  bool empty() const { return m_map.empty(); }

  // The tag of the children that make up the list.
  const std::wstring& GetSection() const { return m_section; }

 protected:
  map_type m_map;
  std::wstring m_section;

 private:
  std::string m_tag;  // m_section as pugixml spells element names

  static std::unique_ptr<T> MakeFromXML(const pugi::xml_node& node) {
    pugi::xml_node child = node;
    if constexpr (requires(T & object) {
                    { object.ReadXML(child) } -> std::convertible_to<bool>;
                  }) {
      auto object = std::make_unique<T>();
      if (!object->ReadXML(child)) {
        return nullptr;
      }
      return object;
    } else {
      return std::make_unique<T>(child);
    }
  }
};

}  // namespace tarn
