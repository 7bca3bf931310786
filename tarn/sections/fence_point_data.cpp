#include "tarn/sections/fence_point_data.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "tarn/foundation/format.h"
#include "tarn/foundation/tags.h"
#include "tarn/foundation/xml.h"
#include "tarn/sections/halftone_data.h"
#include "tarn/sections/internal/number_list.h"

namespace tarn {
namespace {

// Tags of the section, shared by its reader and writer.
namespace tag {
constexpr const char* kEnabled = "enabled";
constexpr const char* kUsed = "used";
constexpr const char* kProfiles = "profiles";
constexpr const char* kTDHigh = "TDHigh";
constexpr const char* kTDLow = "TDLow";
constexpr const char* kTDLimit = "TDLimit";
constexpr const char* kOffset = "Offset";
constexpr const char* kColorMode = "COLORMODE";
constexpr const char* kProfile = "FPPROFILE";
constexpr const char* kProfileIndex = "profile";
constexpr const char* kProfileData = "DATA";
constexpr const char* kColorData = "FPCOLORDATA";
constexpr const char* kDotSizeData = "DOTSIZEDATA";
constexpr const char* kDotSizeProfile = "DOTSIZEDATA_PROFILE";
constexpr const char* kDotSizeSize = "size";
constexpr const char* kDotSizeUsage = "usage";
constexpr const char* kTriZone = "TriZone";
constexpr const char* kThresholdOffset = "THRESHOLD_OFFSET";
constexpr const char* kUseAlpha = "USE_ALPHA";
constexpr const char* kAdjustHoles = "ADJUST_HOLES";
constexpr const char* kInkRemovalEnabled = "INK_REMOVAL_ENABLED";
constexpr const char* kInkRemovalAngle = "INK_REMOVAL_ANGLE";
constexpr const char* kInkRemovalFrequency = "INK_REMOVAL_FREQUENCY";
constexpr const char* kInkRemovalShape = "INK_REMOVAL_SHAPE";
constexpr const char* kVLD = "VLD";
}  // namespace tag

constexpr std::wstring_view kTrizoneFormat = L"%d,%d,%d,%d,%d,%d,%d";
constexpr std::wstring_view kProfileFormat = L"%d,%d,%d,%d";
constexpr std::string_view kUsageFormat = "%.8f";

constexpr FenceProfile kDefaultProfile = {64, 160, 32, 192};

int ClampLevel(int v) {
  return std::clamp(v, 0, 255);
}

}  // namespace

// --- CTrizoneData ----------------------------------------------------------

int CTrizoneData::SetSmallMin(int v) {
  v = ClampLevel(v);
  if (!(v > small_max_ || v > medium_min_)) {
    small_min_ = v;
  }
  return small_min_;
}

int CTrizoneData::SetSmallMax(int v) {
  v = ClampLevel(v);
  if (!(v > medium_max_ || v < small_min_)) {
    small_max_ = v;
  }
  return small_max_;
}

int CTrizoneData::SetMediumMin(int v) {
  v = ClampLevel(v);
  if (!(v > medium_max_ || v < small_min_)) {
    medium_min_ = v;
  }
  return medium_min_;
}

int CTrizoneData::SetMediumMax(int v) {
  v = ClampLevel(v);
  if (!(v < small_max_ || v < medium_min_)) {
    medium_max_ = v;
  }
  return medium_max_;
}

int CTrizoneData::SetSMZone(int v) {
  sm_zone_ = std::min(ClampLevel(v), medium_max_ - small_max_);
  return sm_zone_;
}

int CTrizoneData::SetMLZone(int v) {
  // The medium/large blend can only use the levels left between medium max and
  // the highest level the coverage limit allows.
  const double room = std::trunc(max_coverage_ / 100.0 * 255.0 - medium_max_);
  ml_zone_ = std::min(ClampLevel(v), static_cast<int>(std::max(room, 0.0)));
  return ml_zone_;
}

int CTrizoneData::SetMaxCoverage(int v) {
  max_coverage_ = ClampLevel(v);
  return max_coverage_;
}

void CTrizoneData::SetLevels(int small_max, int small_min, int sm_zone, int medium_max, int medium_min,
                             int ml_zone, int max_coverage) {
  small_max_ = small_max;
  small_min_ = small_min;
  sm_zone_ = sm_zone;
  medium_max_ = medium_max;
  medium_min_ = medium_min;
  ml_zone_ = ml_zone;
  max_coverage_ = max_coverage;
}

void CTrizoneData::SetForSmallOnly() {
  SetLevels(255, 255, 0, 255, 255, 0, 100);
}
void CTrizoneData::SetForMediumOnly() {
  SetLevels(0, 0, 0, 255, 255, 0, 100);
}
void CTrizoneData::SetForLargeOnly() {
  SetLevels(0, 0, 0, 0, 0, 0, 100);
}
void CTrizoneData::SetForSmallMediumSMD2() {
  SetLevels(87, 0, 60, 254, 254, 0, 100);
}
void CTrizoneData::SetForMediumLargeMLD2() {
  SetLevels(0, 0, 0, 87, 0, 60, 100);
}
void CTrizoneData::SetForSmallMediumLargeM5() {
  SetLevels(50, 0, 48, 100, 0, 50, 100);
}

bool CTrizoneData::ReadXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kElementName)) {
    return false;
  }
  // The two zones come last in the text, after the coverage.
  std::int32_t v[7] = {};
  if (!internal::ScanIntList(xml::ReadText(node), v)) {
    return false;
  }
  small_max_ = v[0];
  small_min_ = v[1];
  medium_max_ = v[2];
  medium_min_ = v[3];
  max_coverage_ = v[4];
  sm_zone_ = v[5];
  ml_zone_ = v[6];
  vld_ = xml::ReadAttribute(node, tag::kVLD);
  return true;
}

void CTrizoneData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kElementName);
  xml::SetText(node, Format(kTrizoneFormat, small_max_, small_min_, medium_max_, medium_min_, max_coverage_,
                            sm_zone_, ml_zone_));
  xml::SetAttribute(node, tag::kVLD, vld_);
}

// --- CPMFencePointData -----------------------------------------------------

CPMFencePointData::CPMFencePointData() {
  SetDefaults();
}

void CPMFencePointData::SetDefaults() {
  enabled_ = false;
  used_ = 2;
  offset_ = false;
  color_mode_.clear();
  profile_count_ = 0;
  profiles_.fill(kDefaultProfile);
  colors_.clear();
  td_low_ = 85;
  td_high_ = 170;
  td_limit_ = 100;
  ClearDotSizeData();
  threshold_offset_ = 64;
  use_alpha_ = 0;
  adjust_holes_ = 1.0;
  // The ink-removal screen is deliberately left alone: print modes rely on a
  // reset keeping the screen the user chose; only construction sets it.
  trizones_.fill(CTrizoneData());
}

void CPMFencePointData::SetInkRemovalDefaults() {
  ink_removal_enabled_ = false;
  ink_removal_angle_ = 22.0;
  ink_removal_frequency_ = 20.0;
  ink_removal_shape_ = 5;
}

void CPMFencePointData::SetProfileCount(std::uint32_t count) {
  profile_count_ = std::min(count, kMaxProfiles);
}

bool CPMFencePointData::GetProfile(std::uint32_t index, FenceProfile& out) const {
  if (index >= kMaxProfiles) {
    return false;
  }
  out = profiles_[index];
  return true;
}

bool CPMFencePointData::SetProfile(std::uint32_t index, const FenceProfile& profile) {
  if (index >= kMaxProfiles) {
    return false;
  }
  profiles_[index] = profile;
  return true;
}

bool CPMFencePointData::GetColorPosition(const std::wstring& color, std::uint32_t& position) const {
  const auto it = colors_.find(color);
  if (it == colors_.end()) {
    return false;
  }
  position = it->second;
  return true;
}

bool CPMFencePointData::IsPositionUnique(std::uint32_t position) const {
  return std::count_if(colors_.begin(), colors_.end(),
                       [position](const auto& entry) { return entry.second == position; }) == 1;
}

std::uint32_t CPMFencePointData::GetNextPosition() const {
  if (colors_.empty()) {
    return kNoPosition;
  }
  // Only a run of positions that follows the first ink's, in map order, is
  // skipped; the editor assigns positions in that order.
  auto it = colors_.begin();
  std::uint64_t candidate = std::uint64_t{it->second} + 1;
  for (++it; it != colors_.end(); ++it) {
    if (it->second == candidate) {
      ++candidate;
    }
  }
  return candidate < kMaxProfiles ? static_cast<std::uint32_t>(candidate) : kNoPosition;
}

const CDotSizeData* CPMFencePointData::GetDotSizeData(const std::wstring& name) const {
  const auto it = dot_sizes_.find(name);
  return it == dot_sizes_.end() ? nullptr : &it->second;
}

bool CPMFencePointData::SetInkRemovalShape(std::int32_t shape) {
  if (shape < 0 || shape >= CPMHalftoneOption::kShapeCount) {
    return false;
  }
  ink_removal_shape_ = shape;
  return true;
}

CTrizoneData* CPMFencePointData::GetTrizone(std::uint32_t index) {
  return index < kMaxProfiles ? &trizones_[index] : nullptr;
}

const CTrizoneData* CPMFencePointData::GetTrizone(std::uint32_t index) const {
  return index < kMaxProfiles ? &trizones_[index] : nullptr;
}

bool CPMFencePointData::ReadXML(const pugi::xml_node& node, bool reset) {
  if (!xml::IsNamed(node, kElementName)) {
    return false;
  }
  if (reset) {
    SetDefaults();
    SetInkRemovalDefaults();
  }

  // Attributes are present only with the body; an absent one keeps its value.
  if (node.attribute(tag::kEnabled)) {
    enabled_ = xml::ReadAttributeBool(node, tag::kEnabled);
  }
  if (node.attribute(tag::kUsed)) {
    used_ = xml::ReadAttributeInt(node, tag::kUsed);
  }
  if (node.attribute(tag::kProfiles)) {
    SetProfileCount(static_cast<std::uint32_t>(std::max(xml::ReadAttributeInt(node, tag::kProfiles), 0)));
  }
  if (node.attribute(tag::kTDHigh)) {
    td_high_ = xml::ReadAttributeInt(node, tag::kTDHigh);
  }
  if (node.attribute(tag::kTDLow)) {
    td_low_ = xml::ReadAttributeInt(node, tag::kTDLow);
  }
  if (node.attribute(tag::kTDLimit)) {
    td_limit_ = xml::ReadAttributeInt(node, tag::kTDLimit);
  }
  if (node.attribute(tag::kOffset)) {
    offset_ = xml::ReadAttributeBool(node, tag::kOffset);
  }

  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, tag::kColorMode)) {
      color_mode_ = xml::ReadText(child);
    } else if (xml::IsNamed(child, tag::kProfile)) {
      const int index = xml::ReadAttributeInt(child, tag::kProfileIndex);
      FenceProfile levels{};
      if (child.attribute(tag::kProfileIndex) && index >= 0 && index < static_cast<int>(kMaxProfiles) &&
          internal::ScanIntList(xml::ReadText(child.child(tag::kProfileData)), levels)) {
        profiles_[static_cast<size_t>(index)] = levels;
      }
    } else if (xml::IsNamed(child, tag::kColorData)) {
      const std::wstring color = xml::ReadText(child);
      if (!color.empty() && child.attribute(tag::kProfileIndex)) {
        colors_[color] = child.attribute(tag::kProfileIndex).as_uint();
      }
    } else if (xml::IsNamed(child, tag::kDotSizeData)) {
      for (const pugi::xml_node& entry : child.children()) {
        const std::wstring name = xml::ReadAttribute(entry, tags::kName);
        if (xml::IsNamed(entry, tag::kDotSizeProfile) && !name.empty()) {
          dot_sizes_[name] = CDotSizeData{xml::ReadAttributeInt(entry, tag::kDotSizeSize),
                                          xml::ReadAttributeReal(entry, tag::kDotSizeUsage)};
        }
      }
    } else if (xml::IsNamed(child, tag::kTriZone)) {
      // The n-th record belongs to profile position n, so a malformed one
      // still takes its place.
      size_t index = 0;
      for (const pugi::xml_node& entry : child.children()) {
        if (xml::IsNamed(entry, CTrizoneData::kElementName) && index < trizones_.size()) {
          trizones_[index++].ReadXML(entry);
        }
      }
    } else if (xml::IsNamed(child, tag::kThresholdOffset)) {
      threshold_offset_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kUseAlpha)) {
      use_alpha_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kAdjustHoles)) {
      adjust_holes_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, tag::kInkRemovalEnabled)) {
      ink_removal_enabled_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, tag::kInkRemovalAngle)) {
      ink_removal_angle_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, tag::kInkRemovalFrequency)) {
      ink_removal_frequency_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, tag::kInkRemovalShape)) {
      SetInkRemovalShape(xml::ReadInt(child));
    }
  }
  return true;
}

void CPMFencePointData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kElementName);

  // Without a colour mode and both maps the data belongs to no ink set, so
  // only the screen settings below are kept.
  if (!color_mode_.empty() && !colors_.empty() && !dot_sizes_.empty()) {
    xml::SetAttributeBool(node, tag::kEnabled, enabled_);
    xml::SetAttributeInt(node, tag::kUsed, used_);
    xml::SetAttributeInt(node, tag::kProfiles, profile_count_);
    xml::SetAttributeInt(node, tag::kTDHigh, td_high_);
    xml::SetAttributeInt(node, tag::kTDLow, td_low_);
    xml::SetAttributeInt(node, tag::kTDLimit, td_limit_);
    xml::SetAttributeBool(node, tag::kOffset, offset_);

    xml::AppendText(node, tag::kColorMode, color_mode_);
    for (std::uint32_t i = 0; i < profile_count_; ++i) {
      pugi::xml_node profile = xml::AppendElement(node, tag::kProfile);
      xml::SetAttributeInt(profile, tag::kProfileIndex, i);
      const FenceProfile& p = profiles_[i];
      xml::AppendText(profile, tag::kProfileData, Format(kProfileFormat, p[0], p[1], p[2], p[3]));
    }
    for (const auto& [color, position] : colors_) {
      pugi::xml_node entry = xml::AppendText(node, tag::kColorData, color);
      xml::SetAttributeInt(entry, tag::kProfileIndex, position);
    }
    pugi::xml_node dot_sizes = xml::AppendElement(node, tag::kDotSizeData);
    for (const auto& [name, data] : dot_sizes_) {
      pugi::xml_node entry = xml::AppendElement(dot_sizes, tag::kDotSizeProfile);
      xml::SetAttribute(entry, tags::kName, name);
      xml::SetAttributeInt(entry, tag::kDotSizeSize, data.size);
      xml::SetAttributeReal(entry, tag::kDotSizeUsage, data.usage, kUsageFormat);
    }
    pugi::xml_node trizones = xml::AppendElement(node, tag::kTriZone);
    for (const CTrizoneData& trizone : trizones_) {
      trizone.WriteXML(trizones);
    }
  }

  xml::AppendInt(node, tag::kThresholdOffset, threshold_offset_);
  xml::AppendInt(node, tag::kUseAlpha, use_alpha_);
  xml::AppendReal(node, tag::kAdjustHoles, adjust_holes_);
  xml::AppendBool(node, tag::kInkRemovalEnabled, ink_removal_enabled_);
  xml::AppendReal(node, tag::kInkRemovalAngle, ink_removal_angle_);
  xml::AppendReal(node, tag::kInkRemovalFrequency, ink_removal_frequency_);
  xml::AppendInt(node, tag::kInkRemovalShape, ink_removal_shape_);
}

void CPMFencePointData::ExchangeTrizoneData(const CPMFencePointData& source) {
  if (&source == this) {
    return;
  }
  profiles_ = source.profiles_;
  profile_count_ = source.profile_count_;
  trizones_ = source.trizones_;
  td_low_ = source.td_low_;
  td_high_ = source.td_high_;
  td_limit_ = source.td_limit_;
}

bool CPMFencePointData::MapColorToData(const std::wstring& color, std::uint32_t position) {
  if (color.empty() || position >= kMaxProfiles) {
    return false;
  }
  colors_[color] = position;
  return true;
}

}  // namespace tarn
