#pragma once

// CIE 1994 with its weights spelled out, so the public graphic-arts form and
// the variants other tools use (textile weights, a symmetric chroma) are one
// computation.

#include "tarn/colour/it8_chart.h"

namespace tarn::internal {

// kL, K1 and K2 as in CIE 116; with symmetricChroma the chroma weights use the
// geometric mean of the two chromas instead of the reference's chroma.
double DeltaE94Weighted(const CLabColor& reference, const CLabColor& sample, double kL, double K1, double K2,
                        bool symmetricChroma);

}  // namespace tarn::internal
