#pragma once

// Pictures of a print mode's curves, for people who tune them by eye.
//
//   <?xml version="1.0"?>
//   <svg xmlns="http://www.w3.org/2000/svg" width="1470" height="420" ...>
//   	<g class="panel" transform="translate(0,0)">
//   		<text class="title" ...>Transfer curves, set 1</text>
//   		<line class="grid" .../> ...          gridlines every 51 levels
//   		<path class="curve" stroke="#00FFFF" d="M60.00,340.00 L61.18,338.82
//   ..."><title>Cyan</title></path> 		<text class="legend" ...>Cyan</text> ...
//   	</g>
//   	... a panel for the second transfer set, one for the separations
//   </svg>

#include <string>

#include "tarn/foundation/export.h"

namespace tarn {

class CPrintModeData;

// An SVG picture (UTF-8 text) of the print mode's curves: one panel for each
// transfer curve set and one for the separation channels, input tone 0..255
// across, output tone 0..255 up. Each curve is one path in its draw colour
// (0x00BBGGRR; curves without a colour get one by ink name or from a fixed
// palette) and has a legend entry. Tones a curve cannot evaluate, or that
// evaluate to infinity or NaN, are left out of its path. The text depends on
// the print mode only, so equal print modes give byte-equal pictures.
TARN_API std::string PlotCurvesSVG(const CPrintModeData& mode);

}  // namespace tarn
