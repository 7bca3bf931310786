// Reader of a printer's resolution ("RES"); the layout is at the top of
// resolution_def.h and in docs/formats/printer-definition.md.

#include "tarn/printer/resolution_def.h"

#include <cstdint>

#include "tarn/foundation/format.h"
#include "tarn/foundation/xml.h"
#include "tarn/sections/fence_point_data.h"

namespace tarn {

namespace {

constexpr const char* kVisible = "visible";
constexpr const char* kLabel = "RESLABEL";
constexpr const char* kProcedure = "RESPROC";
constexpr const char* kBitsPerPixel = "BITSPERPIXEL";
constexpr const char* kResX = "RESX";
constexpr const char* kResY = "RESY";
constexpr const char* kVolumePerPixel = "VOLUMEPERPIXEL";
constexpr const char* kFencePoints = "FENCEPOINTS";
constexpr const char* kInkDensityRange = "INKDENSITY_RANGE";
constexpr const char* kInkDensityMin = "min";
constexpr const char* kInkDensityMax = "max";
constexpr const char* kValidDotSize = "VALIDDOTSIZE";

// Leading decimal digits of text as an int; 0 when there are none.
int LeadingInt(std::wstring_view text) {
  long long value = 0;
  ParseIntPrefix(text, value);
  if (value > INT32_MAX) {
    return INT32_MAX;
  }
  if (value < INT32_MIN) {
    return INT32_MIN;
  }
  return static_cast<int>(value);
}

}  // namespace

CResolutionDef::CResolutionDef() {
  SetDefaults();
}

CResolutionDef::CResolutionDef(const CResolutionDef& other) {
  CopyFrom(other);
}

CResolutionDef& CResolutionDef::operator=(const CResolutionDef& other) {
  if (this != &other) {
    CopyFrom(other);
  }
  return *this;
}

CResolutionDef::CResolutionDef(CResolutionDef&& other) noexcept = default;
CResolutionDef& CResolutionDef::operator=(CResolutionDef&& other) noexcept = default;
CResolutionDef::~CResolutionDef() = default;

void CResolutionDef::CopyFrom(const CResolutionDef& other) {
  m_label = other.m_label;
  m_procedure = other.m_procedure;
  m_bitsPerPixel = other.m_bitsPerPixel;
  m_resX = other.m_resX;
  m_resY = other.m_resY;
  m_visible = other.m_visible;
  m_volumePerPixel = other.m_volumePerPixel;
  m_screeningKind = other.m_screeningKind;
  m_secondFlag = other.m_secondFlag;
  m_inkDensityMin = other.m_inkDensityMin;
  m_inkDensityMax = other.m_inkDensityMax;
  m_validDotSize = other.m_validDotSize;
  SetFencePoints(other.m_fencePoints);
}

void CResolutionDef::SetDefaults() {
  m_label.clear();
  m_procedure.clear();
  m_volumePerPixel.clear();
  m_bitsPerPixel = 0;
  m_resX = 0;
  m_resY = 0;
  m_visible = true;
  // Only the reference goes; the record stays alive for whoever still holds it.
  DropFencePoints();
  m_screeningKind = 0;
  m_secondFlag = false;
  m_inkDensityMin = 0;
  m_inkDensityMax = 0;
  // m_validDotSize is kept on purpose: printer definitions rely on a re-read
  // resolution keeping it unless the element sets it again.
}

bool CResolutionDef::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!node) {
    return false;
  }
  const std::wstring visible = xml::ReadAttribute(node, kVisible);
  if (!visible.empty()) {
    m_visible = LeadingInt(visible) != 0;
  }
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kLabel)) {
      m_label = xml::ReadText(child);
    } else if (xml::IsNamed(child, kProcedure)) {
      m_procedure = xml::ReadText(child);
    } else if (xml::IsNamed(child, kBitsPerPixel)) {
      m_bitsPerPixel = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kResX)) {
      m_resX = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kResY)) {
      m_resY = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kVolumePerPixel)) {
      m_volumePerPixel = xml::ReadText(child);
    } else if (xml::IsNamed(child, kFencePoints)) {
      // A second "FENCEPOINTS" replaces the reference and keeps the first
      // record alive, as SetDefaults does.
      NewFencePoints()->ReadXML(child, false);
    } else if (xml::IsNamed(child, kInkDensityRange)) {
      // The first "min" and the first "max" count; a missing one changes nothing.
      if (pugi::xml_attribute min = child.attribute(kInkDensityMin)) {
        m_inkDensityMin = min.as_int();
      }
      if (pugi::xml_attribute max = child.attribute(kInkDensityMax)) {
        m_inkDensityMax = max.as_int();
      }
    } else if (xml::IsNamed(child, kValidDotSize)) {
      m_validDotSize = xml::ReadText(child);
    }
  }
  return true;
}

void CResolutionDef::SetFencePoints(const CPMFencePointData* fencePoints) {
  if (fencePoints == nullptr) {
    DropFencePoints();
    return;
  }
  auto record = std::make_unique<CPMFencePointData>(*fencePoints);
  m_fencePoints = record.get();
  m_fencePointRecords.push_back(std::move(record));
}

CPMFencePointData* CResolutionDef::NewFencePoints() {
  m_fencePointRecords.push_back(std::make_unique<CPMFencePointData>());
  m_fencePoints = m_fencePointRecords.back().get();
  return m_fencePoints;
}

void CResolutionDef::DropFencePoints() {
  m_fencePoints = nullptr;
}

}  // namespace tarn
