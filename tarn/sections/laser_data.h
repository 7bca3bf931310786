#pragma once

// Laser settings of a print mode, for engravers and cutters: raster power,
// speed and split, vector resolution, rotary fixture, a power curve, and the
// vector pens that map a drawing colour to power, speed and pulse density.
//
// The section is kept as "LASERDATA" version 2 (reals as "%.17g"):
//
//   <LASERDATA version="2">
//   	<RPOWER>0.5</RPOWER>
//   	<RSPEED>50</RSPEED>
//   	<DPI>300</DPI>
//   	<RSTOTALWIDTH>10</RSTOTALWIDTH>
//   	<RSSPLITWIDTH>3</RSSPLITWIDTH>
//   	<RSSPLITPOWER>0.59999999999999998</RSSPLITPOWER>
//   	<USEVECTORSPEEDANDPOWER>1</USEVECTORSPEEDANDPOWER>
//   	<VRESOLUTION>1016</VRESOLUTION>
//   	<CURVEDATA name="" type="1" keep0="0">
//   		<DATA>0.0000,0.0500,...,1.0000</DATA>
//   	</CURVEDATA>
//   	<ROTARYFIXTURE>25.399999999999999</ROTARYFIXTURE>   (only with the fixture in use)
//   	<USEHOTWATCH>1</USEHOTWATCH>
//   	<VPEN enabled="1" power="0.5" speed="50" ppi="300" index="1">
//   		<VPCOLOR cspace="0"><![CDATA[255]]></VPCOLOR>
//   	</VPEN>
//   </LASERDATA>
//
// A colour's components are packed first component in the lowest byte: RGB
// r, g, b (0..255); CMYK c, m, y, k (percent, 0..100).

#include <pugixml.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "tarn/foundation/export.h"
#include "tarn/sections/curve_data.h"

namespace tarn {

// The colour that selects a vector pen.
class TARN_API CColor {
 public:
  enum Space : std::uint32_t { kRGB = 0, kCMYK = 1, kNamed = 2 };

  // RGB black, no name.
  CColor() = default;
  // A colour from its space, packed value and (for a named colour) name.
  CColor(std::uint32_t space, std::uint32_t value, const std::wstring& name = std::wstring())
      : cspace_(space), value_(value), cname_(name) {}
  // Colours from their components; each keeps its low 8 bits.
  static CColor FromRGB(int r, int g, int b);
  // c, m, y, k in percent.
  static CColor FromCMYK(int c, int m, int y, int k);
  static CColor FromName(const std::wstring& name) { return CColor(kNamed, 0, name); }

  // RGB black, no name.
  void SetDefaults() { *this = CColor(); }

  std::uint32_t GetColorSpace() const { return cspace_; }
  void SetColorSpace(std::uint32_t space) { cspace_ = space; }
  // The packed value.
  std::uint32_t GetFullColor() const { return value_; }
  void SetFullColor(std::uint32_t value) { value_ = value; }
  const std::wstring& GetName() const { return cname_; }
  void SetName(const std::wstring& name) { cname_ = name; }

  // One packed component each: byte 0 (R or C), 1 (G or M), 2 (B or Y), 3 (K).
  // Setters keep the low 8 bits of v.
  int GetR() const { return Component(0); }
  int GetG() const { return Component(1); }
  int GetB() const { return Component(2); }
  int GetC() const { return Component(0); }
  int GetM() const { return Component(1); }
  int GetY() const { return Component(2); }
  int GetK() const { return Component(3); }
  void SetR(int v) { SetComponent(0, v); }
  void SetG(int v) { SetComponent(1, v); }
  void SetB(int v) { SetComponent(2, v); }
  void SetC(int v) { SetComponent(0, v); }
  void SetM(int v) { SetComponent(1, v); }
  void SetY(int v) { SetComponent(2, v); }
  void SetK(int v) { SetComponent(3, v); }

  // A display colour, red in the lowest byte, then green, then blue. CMYK is
  // converted naively (each channel less black, clamped at 0); a named or
  // unknown colour space gives 0.
  std::uint32_t GetScreenColor() const;
  // "RGB: (r,g,b)", "CMYK: (c,m,y,k)", or the name of a named colour; empty for
  // an unknown colour space.
  std::wstring FormatColorName() const;

  // Appends "VPCOLOR" to parent.
  void WriteXML(pugi::xml_node parent) const;
  // Reads a "VPCOLOR" element after restoring the defaults. False, with the
  // defaults, when node is not "VPCOLOR".
  bool ReadXML(const pugi::xml_node& node);

  bool operator==(const CColor& other) const = default;

 private:
  int Component(int byte) const { return static_cast<int>((value_ >> (8 * byte)) & 0xFFu); }
  void SetComponent(int byte, int v);

  std::uint32_t cspace_ = kRGB;
  std::uint32_t value_ = 0;
  std::wstring cname_;
};

// One vector pen: the power, speed and pulse density used for one colour.
class TARN_API CLaserPen {
 public:
  // The index of a pen that is in no list.
  static constexpr std::uint32_t kNoIndex = std::numeric_limits<std::uint32_t>::max();

  // Enabled, power 0.5, speed 50, 300 pulses per inch, RGB black, no index.
  CLaserPen() = default;
  // A pen of the given settings, in no list yet.
  CLaserPen(bool enabled, double power, double speed, double ppi, const CColor& color)
      : enabled_(enabled), power_(power), speed_(speed), ppi_(ppi), color_(color) {}

  // Enabled, power 0.5, speed 50, 300 pulses per inch, RGB black, no index.
  void SetDefaults() { *this = CLaserPen(); }
  // Sets everything but the index.
  void SetData(bool enabled, double power, double speed, double ppi, const CColor& color);

  bool IsEnabled() const { return enabled_; }
  void SetEnabled(bool on) { enabled_ = on; }
  double GetPower() const { return power_; }
  void SetPower(double power) { power_ = power; }
  double GetSpeed() const { return speed_; }
  void SetSpeed(double speed) { speed_ = speed; }
  double GetPPI() const { return ppi_; }
  void SetPPI(double ppi) { ppi_ = ppi; }
  const CColor& GetColor() const { return color_; }
  void SetColor(const CColor& color) { color_ = color; }
  // Position in its list, 1 based; kNoIndex outside a list.
  std::uint32_t GetIndex() const { return index_; }
  void SetIndex(std::uint32_t index) { index_ = index; }

  // Appends "VPEN" with its "VPCOLOR" to parent.
  void WriteXML(pugi::xml_node parent) const;
  // Reads a "VPEN" element after restoring the defaults; absent attributes
  // keep their defaults. False, with the defaults, when node is not "VPEN".
  bool ReadXML(const pugi::xml_node& node);

  bool operator==(const CLaserPen& other) const = default;

 private:
  bool enabled_ = true;
  double power_ = 0.5;
  double speed_ = 50.0;
  double ppi_ = 300.0;
  CColor color_;
  std::uint32_t index_ = kNoIndex;
};

// The vector pens of a laser section; no two pens share a colour. Pens are
// numbered 1, 2, 3 ... in list order after every change.
class TARN_API CVectorPenList {
 public:
  // No pens. Copies are deep: each list owns its pens.
  CVectorPenList() = default;
  CVectorPenList(const CVectorPenList& other);
  CVectorPenList& operator=(const CVectorPenList& other);
  CVectorPenList(CVectorPenList&&) noexcept = default;
  CVectorPenList& operator=(CVectorPenList&&) noexcept = default;
  ~CVectorPenList() = default;

  // The number of pens.
  size_t Count() const { return pens_.size(); }

  // Appends a copy of pen. Refused (false, list unchanged) when a pen of the
  // same colour exists: the same name for a named colour, else the same packed
  // value.
  bool AddPen(const CLaserPen& pen);
  bool AddPen(bool enabled, double power, double speed, double ppi, const CColor& color);
  // Appends a default pen for color; refused as AddPen.
  bool AddColor(const CColor& color);
  // Inserts a copy of pen before position (at the end when position is past
  // it); refused as AddPen.
  bool InsertPen(size_t position, const CLaserPen& pen);

  // Delete the first pen of that packed value (named colours excepted) or of
  // that name; false when there is none.
  bool RemovePenByColor(std::uint32_t value);
  bool RemovePenByName(const std::wstring& name);
  void Clear() { pens_.clear(); }

  // The first pen of that packed value (named colours excepted) or that name;
  // null when there is none or the name is empty. Valid until the list changes.
  CLaserPen* GetPenByColor(std::uint32_t value);
  const CLaserPen* GetPenByColor(std::uint32_t value) const;
  CLaserPen* GetPenByName(const std::wstring& name);
  const CLaserPen* GetPenByName(const std::wstring& name) const;
  // The pen at a 0-based position; null past the end.
  CLaserPen* GetPen(size_t position) { return position < pens_.size() ? pens_[position].get() : nullptr; }
  const CLaserPen* GetPen(size_t position) const {
    return position < pens_.size() ? pens_[position].get() : nullptr;
  }

  // Iterate in list order; null at the end.
  CLaserPen* GetFirstPen();
  CLaserPen* GetNextPen();

  // Appends every pen's "VPEN" to parent, in order.
  void WriteXML(pugi::xml_node parent) const;
  // Adds a pen for every "VPEN" child of node, in order, as AddPen does (a
  // second pen of a colour is dropped). Malformed pens are skipped.
  void ReadXML(const pugi::xml_node& node);

  bool operator==(const CVectorPenList& other) const;

 private:
  bool IsTaken(const CColor& color) const;
  void ReorderPens();

  std::vector<std::unique_ptr<CLaserPen>> pens_;
  size_t position_ = 0;
};

// The laser section of a print mode.
class TARN_API CPMLaserData {
 public:
  // Element name of the section ("LASERDATA").
  static constexpr const char* kElementName = "LASERDATA";

  // The defaults (see SetDefaults).
  CPMLaserData() = default;

  // Vector resolution 1016, raster power 0.5 at speed 50 and 300 dpi, split
  // 3 of 10 at 0.6, rotary fixture of 25.4 not in use, hot watch and vector
  // speed and power on, no pens, the default power curve.
  void SetDefaults() { *this = CPMLaserData(); }

  // Reads a "LASERDATA" element after restoring the defaults; absent elements
  // keep their defaults. False, with the defaults, when node is not "LASERDATA".
  bool ReadXML(const pugi::xml_node& node);
  // Appends "LASERDATA" version 2 to parent.
  void WriteXML(pugi::xml_node parent) const;

  int GetVectorResolution() const { return vector_resolution_; }
  void SetVectorResolution(int dpi) { vector_resolution_ = dpi; }
  double GetRasterPower() const { return raster_power_; }
  void SetRasterPower(double power) { raster_power_ = power; }
  double GetRasterSpeed() const { return raster_speed_; }
  void SetRasterSpeed(double speed) { raster_speed_ = speed; }
  // Diameter of the work piece on the rotary fixture.
  double GetRotaryFixture() const { return rotary_fixture_; }
  void SetRotaryFixture(double diameter) { rotary_fixture_ = diameter; }
  int GetRasterTotalWidth() const { return raster_total_width_; }
  void SetRasterTotalWidth(int width) { raster_total_width_ = width; }
  int GetRasterSplitWidth() const { return raster_split_width_; }
  void SetRasterSplitWidth(int width) { raster_split_width_ = width; }
  double GetRasterSplitPower() const { return raster_split_power_; }
  void SetRasterSplitPower(double power) { raster_split_power_ = power; }
  int GetDPI() const { return dpi_; }
  void SetDPI(int dpi) { dpi_ = dpi; }
  // Whether raster content is engraved at all; a setting of the session, not
  // kept in the file.
  bool GetRasterEnabled() const { return raster_enabled_; }
  void SetRasterEnabled(bool on) { raster_enabled_ = on; }
  bool GetUseRotaryFixture() const { return use_rotary_fixture_; }
  void SetUseRotaryFixture(bool on) { use_rotary_fixture_ = on; }
  bool GetUseHotWatch() const { return use_hot_watch_; }
  void SetUseHotWatch(bool on) { use_hot_watch_ = on; }
  // Whether vector cutting runs before raster engraving; a setting of the
  // session, not kept in the file.
  bool GetVectorFirst() const { return vector_first_; }
  void SetVectorFirst(bool on) { vector_first_ = on; }
  bool GetUseVectorSpeedAndPower() const { return use_vector_speed_and_power_; }
  void SetUseVectorSpeedAndPower(bool on) { use_vector_speed_and_power_ = on; }

  CVectorPenList& GetPens() { return pens_; }
  const CVectorPenList& GetPens() const { return pens_; }
  CPMCurveData& GetPowerCurve() { return power_curve_; }
  const CPMCurveData& GetPowerCurve() const { return power_curve_; }

  // Every field equal; the power curve by its own comparison.
  bool operator==(const CPMLaserData& other) const;

 private:
  struct Fields;  // the field table, in the source file

  int vector_resolution_ = 1016;
  double raster_power_ = 0.5;
  double raster_speed_ = 50.0;
  double rotary_fixture_ = 25.4;
  int raster_total_width_ = 10;
  int raster_split_width_ = 3;
  double raster_split_power_ = 0.6;
  int dpi_ = 300;
  bool raster_enabled_ = true;
  bool use_rotary_fixture_ = false;
  bool use_hot_watch_ = true;
  bool vector_first_ = false;
  bool use_vector_speed_and_power_ = true;
  CVectorPenList pens_;
  CPMCurveData power_curve_;
};

}  // namespace tarn
