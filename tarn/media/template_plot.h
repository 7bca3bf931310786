#pragma once

// Pictures of media layouts, for people who check a template by looking at it.
//
//   <?xml version="1.0"?>
//   <svg xmlns="http://www.w3.org/2000/svg" width="210.00mm" height="297.00mm"
//        viewBox="-5.95 -8.42 607.18 858.73" ...>
//   	<title>Labels_3x2: template, 210.0 x 297.0 mm, 6 slots</title>
//   	<rect class="sheet" x="0.00" y="0.00" width="595.28" height="841.89"/>
//   	<rect class="margins" .../>                 the imageable area, when there are margins
//   	<g class="slot"><title>slot 1, image 1, ...</title><rect .../><text ...>1</text></g>
//   	...
//   </svg>
//
// One unit of the picture is one point; the sheet's top left corner is the
// origin, x runs right and y down, as slot origins are given.

#include <string>

#include "tarn/foundation/export.h"

namespace tarn {

class CPrintMedia;

// An SVG picture (UTF-8 text) of the media to scale (its width and height are
// given in millimetres): the sheet, its imageable area when it has margins,
// and every slot with the number of the image it receives (its fill order).
// Slots reaching past the sheet widen the picture so they stay visible; sizes
// that are not finite numbers are drawn as 0. Equal media give equal bytes.
TARN_API std::string PlotMediaSVG(const CPrintMedia& media);

}  // namespace tarn
