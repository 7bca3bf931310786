// What a print mode asks of its printer definition: its colour model and
// planes, its resolution and pixel depth, whether its separations and fence
// points fit the printer, and how to rebuild them from it. The rules are
// listed in docs/formats/printer-definition.md ("How print modes use their
// printer").

#include <algorithm>
#include <optional>

#include "tarn/foundation/text.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {

namespace {

constexpr const wchar_t* kColorPlaneOption = L"Color Plane";

// The printer given, or the print mode's own definition loaded by driver name.
class PrinterFor {
 public:
  PrinterFor(const CPrinterData* printer, const std::wstring& driver) : printer_(printer) {
    if (printer_ == nullptr) {
      loaded_.emplace();
      loaded_->LoadPrinter(driver);
      printer_ = &*loaded_;
    }
  }
  const CPrinterData& operator*() const { return *printer_; }
  const CPrinterData* operator->() const { return printer_; }

 private:
  const CPrinterData* printer_;
  std::optional<CPrinterData> loaded_;
};

// The colour model of that name, else the one with that display name.
const CColorDef* FindColorModel(const CPrinterData& printer, const std::wstring& name) {
  if (name.empty()) {
    return nullptr;
  }
  if (const CColorDef* model = printer.GetColors().Get(name.c_str())) {
    return model;
  }
  return printer.GetColors().Get(name.c_str(), true);
}

}  // namespace

const CColorDef* CPrintModeData::GetColorModel(const CPrinterData& printer) const {
  return FindColorModel(printer, GetColorModeName());
}

bool CPrintModeData::GetPlanes(std::vector<std::pair<std::wstring, bool>>& planes,
                               const CPrinterData* printer) const {
  planes.clear();
  const PrinterFor definition(printer, driver_);
  if (const CColorDef* model = GetColorModel(*definition)) {
    for (const CColorPlaneDef& plane : model->GetPlaneDefs()) {
      planes.emplace_back(plane.name, plane.color);
    }
    return true;
  }
  for (const std::wstring& name : separations_.GetMainInks()) {
    planes.emplace_back(name, IsKeyWordPlaneBasic(name));
  }
  return false;
}

bool CPrintModeData::IsColorPlane(const std::wstring& plane, const CPrinterData* printer) const {
  const PrinterFor definition(printer, driver_);
  const CColorDef* model = GetColorModel(*definition);
  const CColorPlaneDef* found = model ? model->FindPlane(plane) : nullptr;
  return found ? found->color : IsKeyWordPlaneBasic(plane);
}

bool CPrintModeData::IsKeyWordPlane(const std::wstring& plane, const CPrinterData* printer) const {
  const PrinterFor definition(printer, driver_);
  const CColorDef* model = GetColorModel(*definition);
  const CColorPlaneDef* found = model ? model->FindPlane(plane) : nullptr;
  return found ? found->keyword : IsKeyWordPlaneBasic(plane);
}

int CPrintModeData::GetBitsPerPixel(const CPrinterData* printer) const {
  const PrinterFor definition(printer, driver_);
  const CResolutionDef* resolution = definition->GetResolution(GetResolution());
  if (resolution != nullptr && resolution->GetBitsPerPixel() > 0) {
    return resolution->GetBitsPerPixel();
  }
  return definition->GetBits();
}

bool CPrintModeData::Is2BitPerPixel(const CPrinterData* printer) const {
  return GetBitsPerPixel(printer) == 2;
}

bool CPrintModeData::Is8BitPerPixel(const CPrinterData* printer) const {
  return GetBitsPerPixel(printer) == 8;
}

bool CPrintModeData::HasDotSizeData() const {
  return fence_points_.HasDotSizeData();
}

bool CPrintModeData::ValidateSeparationData(const CPrinterData* printer) const {
  const PrinterFor definition(printer, driver_);
  const CColorDef* model = GetColorModel(*definition);
  if (model == nullptr || !EqualsNoCase(separations_.GetColorMode(), model->GetName()) ||
      separations_.GetPlaneCount() != model->GetPlaneDefs().size()) {
    return false;
  }
  return std::all_of(
      model->GetPlaneDefs().begin(), model->GetPlaneDefs().end(),
      [this](const CColorPlaneDef& plane) { return separations_.GetPlaneChannelCount(plane.name) > 0; });
}

bool CPrintModeData::ResetSeparationData(const std::wstring& colorMode, const CPrinterData* printer) {
  const PrinterFor definition(printer, driver_);
  const CColorDef* model = FindColorModel(*definition, colorMode);
  if (model == nullptr) {
    return false;
  }
  separations_.SetDefaults();
  separations_.SetColorMode(model->GetName());
  for (const CColorPlaneDef& plane : model->GetPlaneDefs()) {
    separations_.AddLinearPlane(plane.name);
  }
  printer_options_.SetOptionValue(kColorPlaneOption, model->GetName());
  return true;
}

bool CPrintModeData::ValidateFencePointData(const CPrinterData* printer) const {
  const PrinterFor definition(printer, driver_);
  const CColorDef* model = GetColorModel(*definition);
  if (model == nullptr) {
    return false;
  }
  if (fence_points_.GetColorMap().empty() && fence_points_.GetDotSizeMap().empty()) {
    return true;  // no fence points in use
  }
  if (!EqualsNoCase(fence_points_.GetColorMode(), model->GetName())) {
    return false;
  }
  for (const auto& [ink, position] : fence_points_.GetColorMap()) {
    if (model->FindPlane(ink) == nullptr || position >= CPMFencePointData::kMaxProfiles) {
      return false;
    }
  }
  const std::wstring resolution = GetResolution();
  for (const auto& [name, size] : fence_points_.GetDotSizeMap()) {
    const CDotProfileDef* profile = definition->GetDotProfiles().Get(name.c_str());
    if (profile == nullptr || !profile->AppliesTo(resolution)) {
      return false;
    }
  }
  return true;
}

bool CPrintModeData::ResetFencePointData(const CPrinterData* printer) {
  const PrinterFor definition(printer, driver_);
  const CColorDef* model = GetColorModel(*definition);
  if (model == nullptr) {
    return false;
  }
  const std::wstring resolution = GetResolution();
  fence_points_.SetDefaults();
  fence_points_.SetColorMode(model->GetName());
  const CResolutionDef* resolutionDef = definition->GetResolution(resolution);
  if (resolutionDef != nullptr && resolutionDef->GetFencePoints() != nullptr) {
    const CPMFencePointData& preset = *resolutionDef->GetFencePoints();
    fence_points_.ExchangeTrizoneData(preset);
    fence_points_.SetEnabled(preset.GetEnabled());
    fence_points_.SetUsed(preset.GetUsed());
    fence_points_.SetOffset(preset.GetOffset());
  }
  fence_points_.InitializeColors(*model);
  fence_points_.UpdateDotSizeData(*definition, resolution);
  return true;
}

bool CPrintModeData::SaveAndApply(const CPrintModeData& other) {
  if (&other != this) {
    // Take the other record's settings but stay bound to this record's file.
    const std::wstring name = name_;
    const std::wstring fullPath = full_path_;
    *this = other;
    name_ = name;
    full_path_ = fullPath;
  }
  return SavePrintMode(nullptr, false);
}

bool CPrintModeData::IsLaserPrinter() const {
  CPrinterData printer;
  return printer.LoadPrinter(driver_) && printer.IsLaserDevice();
}

}  // namespace tarn
