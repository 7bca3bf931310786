#pragma once

// Tone curves: CPMCurveData, the curve record of a print mode (transfer and
// separation curves), and CCurveData, a light named curve kept in curve lists.
//
// A CPMCurveData element, density mode, points on the default x positions:
//
//   <CURVEDATA name="Cyan" type="1" keep0="0">
//   	<DATA>0.0000,0.0500,0.1000,0.2000,0.3000,0.4000,0.5000,0.6000,0.7000,0.8000,0.9000,0.9500,1.0000</DATA>
//   </CURVEDATA>
//
// and with free points (each pair followed by ";"):
//
//   <CURVEDATA2 name="Cyan" type="1" keep0="0">
//   	<DATA_FLEXIBLE>0.0000, 0.0000;0.4200, 0.3000;1.0000, 1.0000;</DATA_FLEXIBLE>
//   </CURVEDATA2>
//
// A CCurveData element:
//
//   <CurveData>
//   	<Name>Linear</Name>
//   	<DATA>0.0000,0.0500,...,1.0000</DATA>
//   	<Selected>0</Selected>
//   </CurveData>
//
// Density mode: points are (input density, output density) in 0..1, where
// density = 1 - level/255, sorted by x. Level mode: point 0 is (0, low level),
// point 1 is (1, gamma), point 2 is (2, high level), levels in 0..255; ten more
// points follow that are carried but not evaluated.

#include <pugixml.hpp>

#include <string>
#include <utility>
#include <vector>

#include "tarn/foundation/export.h"
#include "tarn/foundation/format_string.h"

namespace tarn {

// One curve point (x, y) and a curve's points in order.
using CurvePoint = std::pair<double, double>;
using CurvePoints = std::vector<CurvePoint>;

// The x positions of the default density curve (13 values, 0 to 1).
TARN_API extern const double DENSITY_DEFAULTS[13];
// The x positions of the extended default density curve (29 values, 0 to 1).
TARN_API extern const double DENSITY_EXTDEFAULTS[29];
// The x positions of a level-mode curve: low, gamma and high first, then ten carried points.
TARN_API extern const double LEVELS_DEFAULTS[13];

// The identity curve on DENSITY_DEFAULTS: 13 points (d, d).
TARN_API CurvePoints GetDefaultCurve();
// The identity curve on DENSITY_EXTDEFAULTS: 29 points (d, d).
TARN_API CurvePoints GetDefaultExtendedCurve();

// The tone curve record of a print mode, in density or level mode.
class TARN_API CPMCurveData {
 public:
  // A density-mode identity curve, draw colour 0.
  CPMCurveData();
  // An identity curve in the given mode; drawColor is 0x00BBGGRR.
  CPMCurveData(bool densityMode, unsigned long drawColor);
  CPMCurveData(const CPMCurveData&) = default;
  CPMCurveData(CPMCurveData&&) noexcept = default;
  CPMCurveData& operator=(const CPMCurveData&) = default;
  CPMCurveData& operator=(CPMCurveData&&) noexcept = default;
  virtual ~CPMCurveData() = default;

  // The identity curve of the current mode; keep zero and extra data cleared.
  // Name, draw colour and mode are kept.
  void SetDefaults();

  // Reads a "CURVEDATA" or "CURVEDATA2" element after restoring the defaults
  // of the current mode. Returns false, with the curve defaulted, when node is
  // not such an element. Malformed point texts leave the defaulted points.
  bool ReadXML(const pugi::xml_node& node);
  // Appends "CURVEDATA" (version 0) or "CURVEDATA2" (any other version) to
  // parent. The flag is accepted for callers' sake and has no effect.
  void WriteXML(pugi::xml_node parent, bool flag, unsigned int version) const;

  void SetName(const std::wstring& name) { name_ = name; }
  const std::wstring& GetName() const { return name_; }
  // Colour in which editors draw the curve, 0x00BBGGRR.
  void SetDrawColor(unsigned long color) { draw_color_ = color; }
  unsigned long GetDrawColor() const { return draw_color_; }
  // A caller-defined word, carried along.
  void SetExtraData(unsigned long extra) { extra_ = extra; }
  unsigned long GetExtraData() const { return extra_; }
  // Whether the point (0, 0) is to be kept; carried, not interpreted here.
  void SetKeepZero(bool keep) { keep_zero_ = keep; }
  bool GetKeepZero() const { return keep_zero_; }
  bool IsDensityMode() const { return density_mode_; }
  // Switches mode. To level mode: the level identity. To density mode: the
  // level curve sampled onto 13 density points; the name, extra data and keep
  // zero are reset by the conversion (callers accept that), the draw colour stays.
  void SetDensityMode(bool on);

  const CurvePoints& GetValues() const { return points_; }
  std::vector<double> GetXAxis() const;
  size_t GetPointCount() const { return points_.size(); }

  // Sets y of the first point within 0.01 of x, or adds (x, y) and sorts.
  void SetValue(double x, double y);
  // Sets y of the point at index; out-of-range indexes do nothing.
  void SetValueStraight(int index, double y);
  // y of the first point whose x equals x exactly; -1.0 when there is none.
  double GetValue(double x) const;
  // Every point gets y := factor * x, in either mode.
  void MakeLinear(double factor);
  // Replaces the points by a copy of other's; null does nothing.
  void SetCurve(const CPMCurveData* other);

  // The curve applied to v. Not inverted: v is a tone 0..255 and so is the
  // result. Inverted: v is a fraction 0..1 and so is the result.
  // Throws std::out_of_range in density mode when the curve has fewer than two
  // points or no point reaches v's density, and in level mode when it has
  // fewer than three points. Equal neighbouring x values give inf or NaN.
  double GetCurveValue(double v, bool inverted) const;
  // The area under the curve over tones 0..254 (254 trapezoids); 32258 for the
  // identity. Throws as GetCurveValue does.
  double GetCurveArea() const;
  // (65025 - area) / 32512.5: how far the curve lies from the identity.
  // Throws as GetCurveValue does.
  double GetCurveDeviation() const;
  // True when both curves hold exactly the same points (no tolerance).
  bool HasSameCurve(const CPMCurveData& other) const;

  // Appends the curve's PostScript table text to buffer: level mode
  // "0.0000, low/255, 0.5000, gamma, 1.0000, high/255"; density mode every
  // "x, y, " pair with the final blank dropped, so the text ends in a comma.
  void GetPDFPrefix(formatstringT& buffer) const;
  // The same with inverted outputs: 1 - y (density), 1 - level/255 and 1 - gamma (level).
  void GetPDFPrefixInverted(formatstringT& buffer) const;

  // Equal when mode, name, keep zero and points are exactly equal: what the
  // file keeps. Draw colour and extra data are not compared.
  bool operator==(const CPMCurveData& other) const;

 private:
  double GetValueFromDensity(double v) const;
  double GetValueFromLevel(double v) const;
  double Evaluate(double v) const;
  void ParseXMLData(std::wstring_view text);
  void ParseXMLFlexibleData(std::wstring_view text);

  bool keep_zero_ = false;
  std::wstring name_;
  unsigned long draw_color_ = 0;
  bool density_mode_ = true;
  unsigned long extra_ = 0;
  CurvePoints points_;
};

// A named density curve with a selection flag, kept in curve lists.
class TARN_API CCurveData {
 public:
  // The identity curve named "(*v*)Linear" (translated), not selected.
  CCurveData();

  // The identity curve, the translated name "(*v*)Linear", not selected.
  void SetDefaults();

  void SetName(const std::wstring& name) { name_ = name; }
  const std::wstring& GetName() const { return name_; }
  void SetSelected(bool selected) { selected_ = selected; }
  bool IsSelected() const { return selected_; }
  // Sets y of the first point within 0.01 of x, or adds (x, y) and sorts.
  void SetValue(double x, double y);
  const CurvePoints& GetValues() const { return points_; }

  // Reads a "CurveData" element after restoring the defaults. Points of both
  // DATA forms are merged into the defaults point by point. Returns false, with
  // the curve defaulted, when node is not such an element.
  bool ReadXML(const pugi::xml_node& node);
  // Appends a "CurveData" element to parent.
  void WriteXML(pugi::xml_node parent) const;

  // Curves in lists are identified by name: both compare the names only (ordinal).
  bool operator==(const CCurveData& other) const { return name_ == other.name_; }
  bool operator<(const CCurveData& other) const { return name_ < other.name_; }

 private:
  void ParseXMLData(std::wstring_view text);
  void ParseXMLFlexibleData(std::wstring_view text);

  CurvePoints points_;
  std::wstring name_;
  bool selected_ = false;
};

}  // namespace tarn
