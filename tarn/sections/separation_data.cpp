#include "tarn/sections/separation_data.h"

#include <algorithm>

#include "tarn/foundation/tags.h"
#include "tarn/foundation/xml.h"

namespace tarn {

namespace {

constexpr const char* kTagSeparation = tags::kSeparation;
constexpr const char* kTagPrintMode = tags::kPrintModeRoot;
constexpr const char* kAttrName = tags::kName;
constexpr const char* kAttrIdentifier = "identifier";
constexpr const char* kTagEnable = tags::kOverrideEnable;
constexpr const char* kTagPlane = "PLANE";
constexpr const char* kAttrChannels = "channels";
constexpr const char* kTagCurve = tags::kCurveData;

}  // namespace

void CPMSeparationData::SetDefaults() {
  enable_ = false;
  color_mode_.clear();
  reserved_ = 0;
  ClearPlanes();
}

void CPMSeparationData::ClearPlanes() {
  planes_.clear();
  cursor_.reset();
}

bool CPMSeparationData::AddPlane(const std::wstring& name, std::unique_ptr<ChannelQueue>&& channels) {
  if (name.empty() || planes_.contains(name)) {
    return false;
  }
  planes_.emplace(name, channels ? std::move(*channels) : ChannelQueue());
  channels.reset();
  return true;
}

bool CPMSeparationData::AddLinearPlane(const std::wstring& name) {
  if (name.empty() || planes_.contains(name)) {
    return false;
  }
  CPMCurveData curve(true, 0);
  curve.SetName(name);
  curve.MakeLinear(1.0);
  ChannelQueue channels;
  channels.push_back(std::move(curve));
  planes_.emplace(name, std::move(channels));
  return true;
}

CPMSeparationData::ChannelQueue* CPMSeparationData::GetPlane(const std::wstring& name) {
  const auto found = planes_.find(name);
  return found == planes_.end() ? nullptr : &found->second;
}

const CPMSeparationData::ChannelQueue* CPMSeparationData::GetPlane(const std::wstring& name) const {
  const auto found = planes_.find(name);
  return found == planes_.end() ? nullptr : &found->second;
}

unsigned CPMSeparationData::GetPlaneChannelCount(const std::wstring& name) const {
  const ChannelQueue* channels = GetPlane(name);
  return channels ? static_cast<unsigned>(channels->size()) : 0;
}

CPMSeparationData::ChannelQueue* CPMSeparationData::GetFirstPlane(std::wstring& name) {
  cursor_.reset();
  return GetNextPlane(name);
}

CPMSeparationData::ChannelQueue* CPMSeparationData::GetNextPlane(std::wstring& name) {
  const auto next = cursor_ ? planes_.upper_bound(*cursor_) : planes_.begin();
  if (next == planes_.end()) {
    cursor_.reset();
    return nullptr;
  }
  cursor_ = next->first;
  name = next->first;
  return &next->second;
}

CPMCurveData* CPMSeparationData::GetChannel(const std::wstring& planeName, unsigned index) {
  ChannelQueue* channels = GetPlane(planeName);
  if (channels == nullptr || index >= channels->size()) {
    return nullptr;
  }
  return &(*channels)[index];
}

CPMCurveData* CPMSeparationData::GetChannel(ChannelQueue* channels, const std::wstring& channelName) {
  if (channels == nullptr) {
    return nullptr;
  }
  const auto found = std::find_if(channels->begin(), channels->end(),
                                  [&](const CPMCurveData& curve) { return curve.GetName() == channelName; });
  return found == channels->end() ? nullptr : &*found;
}

CPMCurveData* CPMSeparationData::GetChannel(const std::wstring& planeName, const std::wstring& channelName) {
  ChannelQueue* channels = GetPlane(planeName);
  return channels ? GetChannel(channels, channelName) : nullptr;
}

CPMCurveData* CPMSeparationData::GetChannel(const std::wstring& channelName) {
  for (auto& [name, channels] : planes_) {
    if (CPMCurveData* curve = GetChannel(&channels, channelName)) {
      return curve;
    }
  }
  return nullptr;
}

std::vector<std::wstring> CPMSeparationData::GetMainInks() const {
  std::vector<std::wstring> inks;
  inks.reserve(planes_.size());
  for (const auto& [name, channels] : planes_) {
    inks.push_back(name);
  }
  return inks;
}

std::vector<std::wstring> CPMSeparationData::GetSepInks() const {
  std::vector<std::wstring> inks;
  for (const auto& [plane, channels] : planes_) {
    for (const auto& curve : channels) {
      const std::wstring& name = curve.GetName();
      if (name != plane && std::find(inks.begin(), inks.end(), name) == inks.end()) {
        inks.push_back(name);
      }
    }
  }
  return inks;
}

void CPMSeparationData::SetForInkLimiting(const InkList& inks) {
  for (auto& entry : planes_) {
    const std::wstring& plane = entry.first;
    const bool listed =
        std::any_of(inks.begin(), inks.end(), [&](const auto& ink) { return ink.first == plane; });
    if (!listed) {
      continue;
    }
    for (auto& curve : entry.second) {
      curve.MakeLinear(curve.GetName() == plane ? 1.0 : 0.0);
    }
  }
}

bool CPMSeparationData::ReadXML(const pugi::xml_node& node, bool keep) {
  if (!keep) {
    SetDefaults();
  }
  pugi::xml_node element = node;
  if (xml::IsNamed(element, kTagPrintMode)) {
    element = element.first_child();
  }
  if (!xml::IsNamed(element, kTagSeparation)) {
    return false;
  }
  if (std::wstring name = xml::ReadAttribute(element, kAttrName); !name.empty()) {
    color_mode_ = std::move(name);
  }
  if (std::wstring identifier = xml::ReadAttribute(element, kAttrIdentifier); !identifier.empty()) {
    identifier_ = std::move(identifier);
  }
  enable_ = xml::ReadBool(element.child(kTagEnable));
  for (const auto& plane : element.children(kTagPlane)) {
    std::wstring name = xml::ReadAttribute(plane, kAttrName);
    if (name.empty()) {
      continue;
    }
    ChannelQueue channels;
    for (const auto& curve_node : plane.children(kTagCurve)) {
      CPMCurveData curve(true, 0);
      curve.ReadXML(curve_node);
      channels.push_back(std::move(curve));
    }
    planes_.insert_or_assign(std::move(name), std::move(channels));
  }
  return true;
}

void CPMSeparationData::WriteXML(pugi::xml_node& parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kTagSeparation);
  xml::SetAttribute(node, kAttrName, color_mode_);
  if (!identifier_.empty()) {
    xml::SetAttribute(node, kAttrIdentifier, identifier_);
  }
  xml::AppendBool(node, kTagEnable, enable_);
  for (const auto& [name, channels] : planes_) {
    pugi::xml_node plane = xml::AppendElement(node, kTagPlane);
    xml::SetAttribute(plane, kAttrName, name);
    xml::SetAttributeInt(plane, kAttrChannels, static_cast<long long>(channels.size()));
    for (const auto& curve : channels) {
      curve.WriteXML(plane, true, 0);
    }
  }
}

bool CPMSeparationData::operator==(const CPMSeparationData& other) const {
  return reserved_ == other.reserved_ && enable_ == other.enable_ && resolution_ == other.resolution_ &&
         color_mode_ == other.color_mode_ && identifier_ == other.identifier_ && planes_ == other.planes_;
}

}  // namespace tarn
