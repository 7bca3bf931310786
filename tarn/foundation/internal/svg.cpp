#include "tarn/foundation/internal/svg.h"

#include "tarn/foundation/format.h"

namespace tarn::internal {

std::string SvgNumber(double value) {
  return Format("%.2f", value);
}

pugi::xml_node AppendSvgRoot(pugi::xml_document& document, std::string_view width, std::string_view height,
                             std::string_view view_box, std::string_view font_size) {
  pugi::xml_node svg = document.append_child("svg");
  svg.append_attribute("xmlns") = "http://www.w3.org/2000/svg";
  svg.append_attribute("width") = std::string(width).c_str();
  svg.append_attribute("height") = std::string(height).c_str();
  svg.append_attribute("viewBox") = std::string(view_box).c_str();
  svg.append_attribute("font-family") = "sans-serif";
  if (!font_size.empty()) {
    svg.append_attribute("font-size") = std::string(font_size).c_str();
  }
  return svg;
}

pugi::xml_node AppendSvgRoot(pugi::xml_document& document, double width, double height) {
  const std::string w = SvgNumber(width);
  const std::string h = SvgNumber(height);
  return AppendSvgRoot(document, w, h, Format("0 0 %s %s", w, h), "12");
}

}  // namespace tarn::internal
