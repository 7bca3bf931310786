#pragma once

// Element and attribute names that several records share. A name used by one
// record only lives with that record.

namespace tarn::tags {

inline constexpr char kVersion[] = "version";
inline constexpr char kName[] = "name";
inline constexpr char kOverrideEnable[] = "OVR_ENABLE";
inline constexpr char kPrintModeRoot[] = "PMH";
inline constexpr char kTransferCurves[] = "TCURVES";
inline constexpr char kSeparation[] = "SEPARATION";
inline constexpr char kCurveData[] = "CURVEDATA";
inline constexpr char kCurveData2[] = "CURVEDATA2";

}  // namespace tarn::tags
