#pragma once

// Reading helpers shared by the layer records, whose readers change a field
// only when its element is present and holds a value.

#include <pugixml.hpp>

namespace tarn::internal {

// True when node has text that is not empty: an empty element leaves its field as it was.
inline bool HasValue(const pugi::xml_node& node) {
  const char* text = node.text().get();
  return text != nullptr && *text != '\0';
}

}  // namespace tarn::internal
