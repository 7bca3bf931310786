// The fence-point section's set-up from a printer definition: which profile
// position each ink of the colour model uses, the profiles and trizones of the
// resolution, and the dot sizes of the printer's dot profiles.

#include <algorithm>

#include "tarn/printer/printer_data.h"
#include "tarn/sections/fence_point_data.h"

namespace tarn {

void CPMFencePointData::UpdateDotSizeData(const CPrinterData& printer, const std::wstring& resolution) {
  ClearDotSizeData();
  for (const auto& [key, profile] : printer.GetDotProfiles()) {
    if (profile && profile->AppliesTo(resolution)) {
      SetDotSizeData(profile->GetName(), CDotSizeData{profile->GetSize(), profile->GetUsage()});
    }
  }
}

std::size_t CPMFencePointData::ResetCLinkCompositePlanes(const CColorDef& colors) {
  return std::erase_if(colors_,
                       [&colors](const auto& entry) { return colors.FindPlane(entry.first) == nullptr; });
}

void CPMFencePointData::InitializeColors(const CColorDef& colors) {
  colors_.clear();
  std::uint32_t index = 0;
  std::uint32_t used = 0;
  for (const CColorPlaneDef& plane : colors.GetPlaneDefs()) {
    const std::uint32_t position = plane.profile >= 0 ? static_cast<std::uint32_t>(plane.profile) : index;
    if (MapColorToData(plane.name, position)) {
      used = std::max(used, position + 1);
    }
    ++index;
  }
  profile_count_ = std::max(profile_count_, used);
}

}  // namespace tarn
