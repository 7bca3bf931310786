#pragma once

// What the library's SVG pictures (curve plots, chart plots, media layouts)
// share: the root element and the way they write coordinates.
//
//   <svg xmlns="http://www.w3.org/2000/svg" width="600.00" height="400.00"
//        viewBox="0 0 600.00 400.00" font-family="sans-serif" font-size="12">

#include <pugixml.hpp>

#include <string>
#include <string_view>

namespace tarn::internal {

// A coordinate as the pictures write it: two decimals, whatever the locale.
std::string SvgNumber(double value);

// Appends the <svg> root with the given width, height and viewBox texts and a
// sans-serif font; font_size is left out when empty.
pugi::xml_node AppendSvgRoot(pugi::xml_document& document, std::string_view width, std::string_view height,
                             std::string_view view_box, std::string_view font_size);

// The common case: a picture of width x height user units, origin top left,
// in a 12-unit font.
pugi::xml_node AppendSvgRoot(pugi::xml_document& document, double width, double height);

}  // namespace tarn::internal
