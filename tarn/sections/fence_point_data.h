#pragma once

// Interface final: CTrizoneData, CDotSizeData, FenceProfile and
// CPMFencePointData keep these declarations; later work only adds to them.
//
// Fence points and trizone dot sizes: how the tone range of each ink is split
// between small, medium and large dots on printers with several dot sizes.
//
// The section is kept as "FENCEPOINTS". Its body is written only when it
// belongs to a colour mode and both maps hold something; the 8-bit halftone
// and ink-removal settings are always written:
//
//   <FENCEPOINTS enabled="1" used="2" profiles="1" TDHigh="170" TDLow="85" TDLimit="100" Offset="0">
//   	<COLORMODE>CMYK</COLORMODE>
//   	<FPPROFILE profile="0">
//   		<DATA>64,160,32,192</DATA>
//   	</FPPROFILE>
//   	<FPCOLORDATA profile="0">Cyan</FPCOLORDATA>
//   	<DOTSIZEDATA>
//   		<DOTSIZEDATA_PROFILE name="Small" size="7" usage="0.50000000" />
//   	</DOTSIZEDATA>
//   	<TriZone>
//   		<ScreenData VLD="">85,0,170,0,100,20,20</ScreenData>
//   		... nine in all, one per profile position
//   	</TriZone>
//   	<THRESHOLD_OFFSET>64</THRESHOLD_OFFSET>
//   	<USE_ALPHA>0</USE_ALPHA>
//   	<ADJUST_HOLES>1</ADJUST_HOLES>
//   	<INK_REMOVAL_ENABLED>0</INK_REMOVAL_ENABLED>
//   	<INK_REMOVAL_ANGLE>22</INK_REMOVAL_ANGLE>
//   	<INK_REMOVAL_FREQUENCY>20</INK_REMOVAL_FREQUENCY>
//   	<INK_REMOVAL_SHAPE>5</INK_REMOVAL_SHAPE>
//   </FENCEPOINTS>

#include <pugixml.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "tarn/foundation/export.h"

namespace tarn {

class CColorDef;
class CPrinterData;

// How one ink's tone range (levels 0..255) is shared between the dot sizes.
// The setters keep the levels ordered (small min <= small max <= medium max,
// small min <= medium min <= medium max): a value that would break the order is
// refused and the setter returns the value still in force.
class TARN_API CTrizoneData {
 public:
  // Element name of one record ("ScreenData").
  static constexpr const char* kElementName = "ScreenData";

  CTrizoneData() = default;

  // Puts every field to its default (85, 0, 20, 170, 0, 20, 100, no VLD).
  void SetDefaults() { *this = CTrizoneData(); }

  bool operator==(const CTrizoneData& other) const = default;

  int GetSmallMax() const { return small_max_; }
  int GetSmallMin() const { return small_min_; }
  int GetSMZone() const { return sm_zone_; }
  int GetMediumMax() const { return medium_max_; }
  int GetMediumMin() const { return medium_min_; }
  int GetMLZone() const { return ml_zone_; }
  int GetMaxCoverage() const { return max_coverage_; }
  const std::wstring& GetVLD() const { return vld_; }

  // Each clamps v to 0..255 and returns the value in force afterwards.
  // Refused when v > small max or v > medium min.
  int SetSmallMin(int v);
  // Refused when v > medium max or v < small min.
  int SetSmallMax(int v);
  // Refused when v > medium max or v < small min.
  int SetMediumMin(int v);
  // Refused when v < small max or v < medium min.
  int SetMediumMax(int v);
  // Stores min(v, medium max - small max).
  int SetSMZone(int v);
  // Stores min(v, the room left above medium max under the coverage limit).
  int SetMLZone(int v);
  // Total coverage limit in percent; clamped to 0..255.
  int SetMaxCoverage(int v);
  // The variable-dot setting's name.
  void SetVLD(const std::wstring& vld) { vld_ = vld; }

  // Dot-size presets: fill the levels, zones and coverage as a whole.
  void SetForSmallOnly();
  void SetForMediumOnly();
  void SetForLargeOnly();
  void SetForSmallMediumSMD2();
  void SetForMediumLargeMLD2();
  void SetForSmallMediumLargeM5();

  // Reads a "ScreenData" element: seven whole numbers "85,0,170,0,100,20,20"
  // and the "VLD" attribute. False, with the record unchanged, when the node is
  // not a "ScreenData" element or its text is not seven whole numbers.
  // The levels are taken as written; the ordering rules apply to edits only.
  bool ReadXML(const pugi::xml_node& node);
  // Appends a "ScreenData" element to parent.
  void WriteXML(pugi::xml_node parent) const;

 private:
  void SetLevels(int small_max, int small_min, int sm_zone, int medium_max, int medium_min, int ml_zone,
                 int max_coverage);

  int small_max_ = 85;
  int small_min_ = 0;
  int sm_zone_ = 20;
  int medium_max_ = 170;
  int medium_min_ = 0;
  int ml_zone_ = 20;
  int max_coverage_ = 100;
  std::wstring vld_;
};

// Four levels of one fence profile (defaults 64, 160, 32, 192).
using FenceProfile = std::array<std::int32_t, 4>;

// One dot size of the printer: its size and how much of it is used.
struct TARN_API CDotSizeData {
  std::int32_t size = 0;
  double usage = 0.0;

  bool operator==(const CDotSizeData& other) const = default;
};

class TARN_API CPMFencePointData {
 public:
  // Element name of the section ("FENCEPOINTS").
  static constexpr const char* kElementName = "FENCEPOINTS";
  // Number of profiles and of trizone records.
  static constexpr std::uint32_t kMaxProfiles = 9;
  // What GetNextPosition returns when no position is free.
  static constexpr std::uint32_t kNoPosition = 0xFFFFFFFFu;

  using ColorMap = std::map<std::wstring, std::uint32_t>;
  using DotSizeMap = std::map<std::wstring, CDotSizeData>;

  CPMFencePointData();

  bool operator==(const CPMFencePointData& other) const = default;

  // Puts the section to its defaults and empties both maps. The ink-removal
  // screen keeps its settings: only construction gives it its defaults.
  void SetDefaults();

  bool GetEnabled() const { return enabled_; }
  void SetEnabled(bool enabled) { enabled_ = enabled; }
  std::int32_t GetUsed() const { return used_; }
  void SetUsed(std::int32_t used) { used_ = used; }
  bool GetOffset() const { return offset_; }
  void SetOffset(bool offset) { offset_ = offset; }
  const std::wstring& GetColorMode() const { return color_mode_; }
  void SetColorMode(const std::wstring& mode) { color_mode_ = mode; }

  // Number of profiles in use; SetProfileCount clamps to 0..9.
  std::uint32_t GetProfileCount() const { return profile_count_; }
  void SetProfileCount(std::uint32_t count);
  // The profile at index 0..8; false (out untouched / nothing stored) beyond.
  bool GetProfile(std::uint32_t index, FenceProfile& out) const;
  bool SetProfile(std::uint32_t index, const FenceProfile& profile);

  // Ink name -> profile position.
  const ColorMap& GetColorMap() const { return colors_; }
  void SetColorPosition(const std::wstring& color, std::uint32_t position) { colors_[color] = position; }
  // False when the ink has no entry.
  bool GetColorPosition(const std::wstring& color, std::uint32_t& position) const;
  bool RemoveColor(const std::wstring& color) { return colors_.erase(color) != 0; }
  void ClearColors() { colors_.clear(); }
  // True when exactly one ink uses position.
  bool IsPositionUnique(std::uint32_t position) const;
  // The position after the run of consecutive positions that starts at the
  // first ink's; kNoPosition when the map is empty or the run reaches 9.
  std::uint32_t GetNextPosition() const;

  // Dot-size profile name -> dot size.
  const DotSizeMap& GetDotSizeMap() const { return dot_sizes_; }
  void SetDotSizeData(const std::wstring& name, const CDotSizeData& data) { dot_sizes_[name] = data; }
  // Null when there is no entry of that name.
  const CDotSizeData* GetDotSizeData(const std::wstring& name) const;
  bool RemoveDotSizeData(const std::wstring& name) { return dot_sizes_.erase(name) != 0; }
  void ClearDotSizeData() { dot_sizes_.clear(); }
  bool HasDotSizeData() const { return !dot_sizes_.empty(); }

  std::int32_t GetTDLow() const { return td_low_; }
  void SetTDLow(std::int32_t level) { td_low_ = level; }
  std::int32_t GetTDHigh() const { return td_high_; }
  void SetTDHigh(std::int32_t level) { td_high_ = level; }
  std::int32_t GetTDLimit() const { return td_limit_; }
  void SetTDLimit(std::int32_t limit) { td_limit_ = limit; }

  // 8-bit halftone settings.
  std::int32_t GetThresholdOffset() const { return threshold_offset_; }
  void SetThresholdOffset(std::int32_t offset) { threshold_offset_ = offset; }
  std::int32_t GetUseAlpha() const { return use_alpha_; }
  void SetUseAlpha(std::int32_t use) { use_alpha_ = use; }
  double GetAdjustHoles() const { return adjust_holes_; }
  void SetAdjustHoles(double adjust) { adjust_holes_ = adjust; }

  // Ink-removal screen; the shape indexes the halftone spot shape table.
  bool GetInkRemovalEnabled() const { return ink_removal_enabled_; }
  void SetInkRemovalEnabled(bool enabled) { ink_removal_enabled_ = enabled; }
  double GetInkRemovalAngle() const { return ink_removal_angle_; }
  void SetInkRemovalAngle(double angle) { ink_removal_angle_ = angle; }
  double GetInkRemovalFrequency() const { return ink_removal_frequency_; }
  void SetInkRemovalFrequency(double frequency) { ink_removal_frequency_ = frequency; }
  std::int32_t GetInkRemovalShape() const { return ink_removal_shape_; }
  // False, shape unchanged, for an index outside the shape table (0..22).
  bool SetInkRemovalShape(std::int32_t shape);

  // The trizone record of a profile position 0..8; null beyond.
  CTrizoneData* GetTrizone(std::uint32_t index);
  const CTrizoneData* GetTrizone(std::uint32_t index) const;

  // The dot-size presets of CTrizoneData, applied to the first trizone record.
  void SetForSmallDotsOnly() { trizones_[0].SetForSmallOnly(); }
  void SetForMediumDotsOnly() { trizones_[0].SetForMediumOnly(); }
  void SetForLargeDotsOnly() { trizones_[0].SetForLargeOnly(); }
  void SetForSmallMediumSMD2() { trizones_[0].SetForSmallMediumSMD2(); }
  void SetForMediumLargeMLD2() { trizones_[0].SetForMediumLargeMLD2(); }
  void SetForSmallMediumLargeM5() { trizones_[0].SetForSmallMediumLargeM5(); }

  // Reads a "FENCEPOINTS" element. With reset true the whole section, the
  // ink-removal screen included, first returns to its defaults, so what the
  // element lacks keeps its default; with reset false the element is read over
  // the current values. Malformed parts (a profile or trizone text that is not
  // its list of whole numbers, an index beyond 8, an unnamed entry, a shape
  // outside the table) are skipped. False only when node is not "FENCEPOINTS".
  bool ReadXML(const pugi::xml_node& node, bool reset = true);
  // Appends the "FENCEPOINTS" element to parent.
  void WriteXML(pugi::xml_node parent) const;

  // --- set-up from a printer definition (tarn/printer/fence_point_setup.cpp) ---
  // Replaces the dot size map with the printer's dot profiles that apply to
  // the resolution labelled resolution (those without a resolution apply to all).
  void UpdateDotSizeData(const CPrinterData& printer, const std::wstring& resolution);
  // Takes the fence profiles, profile count, trizone records and trizone
  // levels (TD low, high, limit) of source, a resolution's fence points.
  void ExchangeTrizoneData(const CPMFencePointData& source);
  // Drops the inks that are not planes of colors (left from an earlier colour
  // model or a colour link's composite planes); returns how many went.
  std::size_t ResetCLinkCompositePlanes(const CColorDef& colors);
  // Maps an ink to a profile position; false, nothing changed, for an empty
  // name or a position beyond 8.
  bool MapColorToData(const std::wstring& color, std::uint32_t position);
  // Gives every plane of colors a position: the plane's own profile when it
  // names one, else its index; planes beyond the ninth get none. Clears the
  // colour map first and raises the profile count to cover the positions used.
  void InitializeColors(const CColorDef& colors);

 private:
  void SetInkRemovalDefaults();

  bool enabled_ = false;
  std::int32_t used_ = 2;
  bool offset_ = false;
  std::wstring color_mode_;
  std::uint32_t profile_count_ = 0;
  std::array<FenceProfile, kMaxProfiles> profiles_{};
  ColorMap colors_;
  std::int32_t td_low_ = 85;
  std::int32_t td_high_ = 170;
  std::int32_t td_limit_ = 100;
  DotSizeMap dot_sizes_;
  std::int32_t threshold_offset_ = 64;
  std::int32_t use_alpha_ = 0;
  double adjust_holes_ = 1.0;
  bool ink_removal_enabled_ = false;
  double ink_removal_angle_ = 22.0;
  double ink_removal_frequency_ = 20.0;
  std::int32_t ink_removal_shape_ = 5;  // "Inverted Round"
  std::array<CTrizoneData, kMaxProfiles> trizones_{};
};

}  // namespace tarn
