#pragma once

// Helpers shared by the layer records: their readers change a field only when
// its element is present and holds a value, and two of them hold plane lists.

#include <pugixml.hpp>

#include <utility>
#include <vector>

#include "tarn/layers/plane_options.h"

namespace tarn::internal {

// True when node has text that is not empty: an empty element leaves its field as it was.
inline bool HasValue(const pugi::xml_node& node) {
  const char* text = node.text().get();
  return text != nullptr && *text != '\0';
}

// Appends the plane read from a "PlaneOptions" element to planes.
inline void AppendPlane(std::vector<PlaneOptions>& planes, const pugi::xml_node& node) {
  PlaneOptions plane;
  plane.ReadXML(node);
  planes.push_back(std::move(plane));
}

// Appends one "PlaneOptions" element per plane to parent, in order.
inline void WritePlanes(const std::vector<PlaneOptions>& planes, pugi::xml_node parent) {
  for (const PlaneOptions& plane : planes) {
    plane.WriteXML(parent);
  }
}

}  // namespace tarn::internal
