#pragma once

// A picture of where a chart's patches lie in the a*b* plane, each drawn in
// its own colour, for a quick look at a measured print's gamut:
//
//   <?xml version="1.0"?>
//   <svg xmlns="http://www.w3.org/2000/svg" width="640" height="640" viewBox="0 0 640 640" ...>
//   	<rect class="background" .../>
//   	<line class="axis" .../> ...              the a* and b* axes through 0
//   	<text class="label" ...>+a*</text> ...
//   	<circle cx="401.20" cy="212.75" r="5" fill="#D2232A"><title>A01 L 37.99 a 13.56
//   b 14.06</title></circle>
//   	...
//   </svg>

#include <string>

#include "tarn/colour/it8_chart.h"
#include "tarn/foundation/export.h"

namespace tarn {

// The sRGB colour ("#RRGGBB") that shows a Lab colour (D50, relative
// colorimetric, clipped to the sRGB gamut).
TARN_API std::string LabToHexColor(const CLabColor& lab);

// An SVG picture (UTF-8 text) of the a*b* positions of the patches of the
// chart's measurement table, lighter patches drawn over darker ones. The scale
// runs to +-128, or further when a patch lies beyond. Empty when the chart has
// no Lab or XYZ values (white states the white of XYZ values).
TARN_API std::string PlotChartSVG(const CIT8Chart& chart, const CXYZColor& white = kWhiteD50);

}  // namespace tarn
