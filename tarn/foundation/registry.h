#pragma once

// CXRegistry: the configuration store, an XML-backed tree of keys holding typed
// values, addressed by slash-separated paths ("Halftone/Cyan/Frequency").
//
//   <XREG version="1">
//   	<KEY name="Halftone">
//   		<KEY name="Cyan">
//   			<VALUE name="Frequency" type="real">120</VALUE>
//   			<VALUE name="Shape" type="string">Round</VALUE>
//   		</KEY>
//   	</KEY>
//   </XREG>
//
// Key and value names compare ignoring case, as the Windows registry does. A
// value has one of four types; reading or overwriting it as another type fails
// with "[XRegistry] Attempting to access or set a value that is of the wrong
// data type: <key>". A file node that does not fit the layout fails the load
// with "[XRegistry] Registry has invalid syntax around node: <node>"; that
// includes numbers that do not fit (an integer beyond 64 bits, a real beyond
// a double). Both go to the message handler (platform.h), as do the reasons
// a file cannot be loaded or saved. Every string value round-trips exactly,
// white space alone and control characters included. The layout is in
// docs/formats/registry.md.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tarn/foundation/export.h"

namespace pugi {
class xml_node;
}

namespace tarn {

class TARN_API CXRegistry {
 public:
  enum class ValueType { kString, kInteger, kReal, kBoolean };

  CXRegistry();
  ~CXRegistry();
  CXRegistry(const CXRegistry& other);
  CXRegistry& operator=(const CXRegistry& other);
  CXRegistry(CXRegistry&& other) noexcept;
  CXRegistry& operator=(CXRegistry&& other) noexcept;

  // Empties the store.
  void Clear();

  // Replaces the contents with the file's. False (contents unchanged), with a
  // message, when the file cannot be read, is not an "XREG" document, or holds
  // a malformed node.
  bool Load(const std::wstring& path);
  bool LoadFromString(const std::string& utf8);
  // Writes the store atomically; false, old file untouched, with a message
  // naming the file and the reason, when it cannot.
  bool Save(const std::wstring& path) const;
  std::string SaveToString() const;

  // Typed access by "Key/Sub/Value". A getter returns false, leaving value
  // alone, when the value is absent or of another type (the latter also
  // reports the wrong-type message). A setter creates missing keys and returns
  // false when the value exists with another type or the path is empty; and,
  // with a message, when the path has more than kMaxNestingDepth - 1 parts
  // (limits.h), a name holds a control character or an invalid code unit, or
  // a real is not finite.
  bool GetString(const std::wstring& path, std::wstring& value) const;
  bool GetInteger(const std::wstring& path, std::int64_t& value) const;
  bool GetReal(const std::wstring& path, double& value) const;
  bool GetBoolean(const std::wstring& path, bool& value) const;
  bool SetString(const std::wstring& path, const std::wstring& value);
  bool SetInteger(const std::wstring& path, std::int64_t value);
  bool SetReal(const std::wstring& path, double value);
  bool SetBoolean(const std::wstring& path, bool value);

  // True when a value or a key exists at path.
  bool HasValue(const std::wstring& path) const;
  bool HasKey(const std::wstring& path) const;
  // The type of the value at path; false when there is none.
  bool GetValueType(const std::wstring& path, ValueType& type) const;
  // Removes a value, or a key with everything under it; false when absent.
  bool Remove(const std::wstring& path);

  // Names of the sub-keys and of the values of a key, in insertion order. The
  // empty path is the root.
  std::vector<std::wstring> GetKeyNames(const std::wstring& path) const;
  std::vector<std::wstring> GetValueNames(const std::wstring& path) const;

  // The tree itself; defined in the source file.
  struct Key;

 private:
  bool LoadText(const std::string& utf8, const std::wstring& source);

  std::unique_ptr<Key> root_;
};

}  // namespace tarn
