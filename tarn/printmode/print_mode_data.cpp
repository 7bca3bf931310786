#include "tarn/printmode/print_mode_data.h"

#include <algorithm>
#include <array>

#include "tarn/foundation/format.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/tags.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {

namespace {

// Tags of the header; the sections keep their own.
constexpr char kCopyright[] = "COPYRIGHT";
constexpr char kQueueVersion[] = "QUEUEVERSION";
constexpr char kPrinter[] = "PRINTER";
constexpr char kDriver[] = "DRIVER";
constexpr char kEmailAddress[] = "EMAILADDRESS";
constexpr char kInvert[] = "INVERT";
constexpr char kMirror[] = "MIRROR";
constexpr char kMetadata[] = "METADATA";
constexpr char kInkSet[] = "INKSET";
constexpr char kManufacturer[] = "MANUFACTURER";
constexpr char kMediaCategory[] = "MEDIA_CATEGORY";
constexpr char kMediaDescription[] = "MEDIA_DESCRIPTION";
constexpr char kCreationDate[] = "CREATION_DATE";
constexpr char kRipVersion[] = "RIP_VERSION";
constexpr char kMediaName[] = "MEDIA_NAME";
constexpr char kUnderbase[] = "UNDERBASE";
constexpr char kFinish[] = "FINISH";
constexpr char kWindowsUnderbase[] = "WINDOWSUNDERBASE";

constexpr wchar_t kCopyrightText[] = L"Copyright (c) 2026 The tarn authors. All rights reserved.";
constexpr wchar_t kDefaultTrailer[] = L"KestrelA4";

constexpr wchar_t kUnsupportedText[] =
    L"This version of print mode is no longer supported.  Please update your printer package to the latest "
    L"version.";
constexpr wchar_t kUnsupportedCaption[] = L"Unsupported print mode";
constexpr wchar_t kErrorCaption[] = L"Error";

// How long a save waits for the file to show up: 41 waits of 250 ms.
constexpr int kSaveWaits = 41;

// The metadata text fields, in the order they are written.
struct TextField {
  const char* tag;
  std::wstring CPrintModeData::*field;
};

// Load step 7: folder names that mark a print mode's role.
bool FolderMentions(const std::wstring& lowered_folder, std::wstring_view word) {
  return lowered_folder.find(word) != std::wstring::npos;
}

// A save name must be a plain file name, so a save never leaves its folder.
bool IsPlainFileName(const std::wstring& name) {
  if (name.empty() || name == L"." || name == L"..") {
    return false;
  }
  return name.find_first_of(L"\\/") == std::wstring::npos && name.find(L':') == std::wstring::npos;
}

}  // namespace

CPrintModeData::CPrintModeData() {
  SetDefaults(false);
}

CPrintModeData::CPrintModeData(const std::wstring& path) {
  SetDefaults(false);
  if (!path.empty()) {
    SetFullPath(path);
  }
}

CPrintModeData::CPrintModeData(const CPrintModeData& other) = default;
CPrintModeData& CPrintModeData::operator=(const CPrintModeData& other) = default;
CPrintModeData::~CPrintModeData() = default;

void CPrintModeData::SetHeaderDefaults() {
  name_.clear();
  version_.clear();
  email_.clear();
  printer_.clear();
  driver_.clear();
  invert_ = false;
  mirror_ = false;
  rotate_angle_ = 0;
  ink_set_.clear();
  manufacturer_.clear();
  media_category_.clear();
  media_description_.clear();
  creation_date_.clear();
  rip_version_.clear();
  underbase_ = false;
  windows_underbase_ = false;
  finish_ = false;
  trailer_text_ = kDefaultTrailer;
}

void CPrintModeData::SetSectionDefaults() {
  transfers_.SetDefaults();
  separations_.SetDefaults();
  image_adjust_.SetDefaults();
  icc_profiles_.SetDefaults();
  halftones_.SetDefaults();
  printer_options_.SetDefaults();
  max_ink_.SetDefaults();
  laser_data_.SetDefaults();
  fence_points_.SetDefaults();
}

void CPrintModeData::SetDefaults(bool headerOnly) {
  SetHeaderDefaults();
  if (!headerOnly) {
    SetSectionDefaults();
  }
}

void CPrintModeData::SetFullPath(const std::wstring& path) {
  if (path.empty()) {
    return;
  }
  disk_based_ = false;
  full_path_ = path;
  SplitPath(path, nullptr, &name_);
  std::int64_t time = 0;
  if (GetModificationTime(full_path_, time)) {
    disk_based_ = true;
    loaded_ = LoadPrintMode(nullptr, nullptr, full_path_.c_str(), true);
    file_time_ = loaded_ ? time : 0;
  }
}

bool CPrintModeData::LoadXMLPrintMode(const std::wstring& path) {
  pugi::xml_document document;
  if (!xml::LoadDocument(document, path, tags::kPrintModeRoot)) {
    return false;
  }
  return ReadXML(document.first_child());
}

bool CPrintModeData::LoadPrintMode(const wchar_t* printer, const wchar_t* driver, const wchar_t* path,
                                   bool /*flag*/) {
  if (full_path_.empty() && path) {
    full_path_ = path;
  }
  if (full_path_.empty()) {
    return false;
  }
  if (!LoadXMLPrintMode(full_path_)) {
    ShowMessage(kUnsupportedText, kUnsupportedCaption);
    return false;
  }
  rip_version_present_ = !rip_version_.empty();
  if (printer_.empty() && printer) {
    printer_ = printer;
  }
  if (driver_.empty() && driver) {
    driver_ = driver;
  }
  ApplyLoadRepairs();

  std::wstring folder;
  SplitPath(full_path_, &folder, nullptr);
  folder = FoldCase(folder);
  // The flags are only ever set here, never cleared: a file's "0" does not
  // undo what its folder says.
  if (FolderMentions(folder, L"priming")) {
    underbase_ = true;
  }
  if (FolderMentions(folder, L"finish")) {
    finish_ = true;
  }
  if (FolderMentions(folder, L"windows underbase")) {
    windows_underbase_ = true;
  }
  loaded_ = true;
  DisableAllOverrideFlags();
  return true;
}

void CPrintModeData::ApplyLoadRepairs() {
  // The printer options are the authority on the colour mode the print mode was made for.
  separations_.SetColorMode(printer_options_.GetColorMode());
  icc_profiles_.RepairMovedProfilePaths();
}

bool CPrintModeData::ReadXML(const pugi::xml_node& node) {
  version_ = xml::ReadAttribute(node, tags::kVersion);
  static const std::array<TextField, 3> kHeaderTexts = {{
      {kEmailAddress, &CPrintModeData::email_},
      {kPrinter, &CPrintModeData::printer_},
      {kDriver, &CPrintModeData::driver_},
  }};
  for (const pugi::xml_node& child : node.children()) {
    if (child.type() != pugi::node_element) {
      continue;
    }
    bool handled = false;
    for (const TextField& text : kHeaderTexts) {
      if (xml::IsNamed(child, text.tag)) {
        this->*text.field = xml::ReadText(child);
        handled = true;
      }
    }
    if (handled) {
      continue;
    }
    if (xml::IsNamed(child, kInvert)) {
      invert_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, kMirror)) {
      mirror_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, kMetadata)) {
      for (const pugi::xml_node& item : child.children()) {
        if (xml::IsNamed(item, kInkSet)) {
          ink_set_ = xml::ReadText(item);
        } else if (xml::IsNamed(item, kManufacturer)) {
          manufacturer_ = xml::ReadText(item);
        } else if (xml::IsNamed(item, kMediaDescription)) {
          media_description_ = xml::ReadText(item);
        } else if (xml::IsNamed(item, kMediaCategory)) {
          media_category_ = xml::ReadText(item);
        } else if (xml::IsNamed(item, kCreationDate)) {
          creation_date_ = xml::ReadText(item);
        } else if (xml::IsNamed(item, kRipVersion)) {
          rip_version_ = xml::ReadText(item);
        } else if (xml::IsNamed(item, kMediaName)) {
          name_ = xml::ReadText(item);
        } else if (xml::IsNamed(item, kUnderbase)) {
          underbase_ = xml::ReadBool(item);
        } else if (xml::IsNamed(item, kFinish)) {
          finish_ = xml::ReadBool(item);
        } else if (xml::IsNamed(item, kWindowsUnderbase)) {
          windows_underbase_ = xml::ReadBool(item);
        }
      }
    } else {
      ReadSection(child);
    }
  }
  return true;
}

bool CPrintModeData::ReadSection(const pugi::xml_node& child) {
  // Section elements are matched by their exact names.
  if (xml::IsNamed(child, tags::kTransferCurves)) {
    return transfers_.ReadXML(child);
  }
  if (xml::IsNamed(child, tags::kSeparation)) {
    return separations_.ReadXML(child, false);
  }
  if (xml::IsNamed(child, CPMImageAdjustData::kElementName)) {
    return image_adjust_.ReadXML(child);
  }
  if (xml::IsNamed(child, CPMHalftoneData::kElementName)) {
    return halftones_.ReadXML(child);
  }
  if (xml::IsNamed(child, CPMMaxInkData::kElementName)) {
    return max_ink_.ReadXML(child);
  }
  if (xml::IsNamed(child, CPMICCProfileData::kElementName)) {
    return icc_profiles_.ReadXML(child);
  }
  if (xml::IsNamed(child, CPMPrinterOptionsData::kElementName)) {
    return printer_options_.ReadXML(child);
  }
  // Laser data is read whenever a file holds it, whatever the printer.
  if (xml::IsNamed(child, CPMLaserData::kElementName)) {
    return laser_data_.ReadXML(child);
  }
  if (xml::IsNamed(child, CPMFencePointData::kElementName)) {
    return fence_points_.ReadXML(child);
  }
  return false;
}

void CPrintModeData::WriteSections(pugi::xml_node root) const {
  // The order of the sections is part of the file layout.
  transfers_.WriteXML(root);
  separations_.WriteXML(root);
  image_adjust_.WriteXML(root);
  icc_profiles_.WriteXML(root);
  halftones_.WriteXML(root);
  printer_options_.WriteXML(root);
  max_ink_.WriteXML(root);
  fence_points_.WriteXML(root);
}

void CPrintModeData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node root = xml::AppendElement(parent, tags::kPrintModeRoot);
  root.append_attribute(tags::kVersion).set_value(kPrintModeFileVersion);
  xml::AppendText(root, kCopyright, kCopyrightText);
  xml::AppendText(root, kQueueVersion,
                  Format(L"%d.%d.%d", kQueueVersionMajor, kQueueVersionMinor, kQueueVersionBuild));
  xml::AppendText(root, kPrinter, printer_);
  xml::AppendText(root, kDriver, driver_);
  xml::AppendBool(root, kInvert, invert_);
  xml::AppendBool(root, kMirror, mirror_);
  pugi::xml_node metadata = xml::AppendElement(root, kMetadata);
  xml::AppendText(metadata, kInkSet, ink_set_);
  xml::AppendText(metadata, kManufacturer, manufacturer_);
  xml::AppendText(metadata, kMediaCategory, media_category_);
  xml::AppendText(metadata, kMediaDescription, media_description_);
  xml::AppendText(metadata, kCreationDate, creation_date_);
  xml::AppendText(metadata, kRipVersion, rip_version_);
  xml::AppendText(metadata, kMediaName, name_);
  xml::AppendBool(metadata, kUnderbase, underbase_);
  xml::AppendBool(metadata, kFinish, finish_);
  xml::AppendBool(metadata, kWindowsUnderbase, windows_underbase_);
  WriteSections(root);
  // Laser data only for a printer whose definition says it is a laser device.
  if (IsLaserPrinter()) {
    laser_data_.WriteXML(root);
  }
}

void CPrintModeData::WriteTarnSection(pugi::xml_node node) const {
  WriteSections(xml::AppendElement(node, tags::kPrintModeRoot));
}

bool CPrintModeData::SavePrintMode(const wchar_t* folder, bool postscript) {
  std::wstring target;
  if (folder) {
    target = folder;
  } else {
    SplitPath(full_path_, &target, nullptr);
  }
  if (target.empty()) {
    return false;
  }
  if (!IsPlainFileName(name_)) {
    ShowMessage(Format(L"The print mode cannot be saved: \"%s\" is not a plain file name.", name_),
                kErrorCaption);
    return false;
  }
  if (postscript) {
    // The PostScript set-up writer is not part of the library yet.
    return false;
  }
  std::replace(target.begin(), target.end(), L'/', L'\\');
  if (target.back() != L'\\') {
    target += L'\\';
  }
  const std::wstring path = target + name_;
  SetNormalAttributes(path);

  pugi::xml_document document;
  WriteXML(document);
  std::wstring error;
  if (!xml::SaveDocument(document, path, &error)) {
    ShowMessage(error, kErrorCaption);
    // The system's text alone does not say which file; a second message does.
    ShowMessage(Format(L"The print mode %s could not be saved: %s", path, error), kErrorCaption);
    return false;
  }
  // The file has been renamed into place, so it exists at once; the wait is
  // kept for file systems that show it late.
  for (int wait = 0; wait < kSaveWaits && !FileExists(path); ++wait) {
    SleepMilliseconds(250);
  }
  SetFullPath(path);
  SetNormalAttributes(path);
  return true;
}

bool CPrintModeData::ExtractXMLSection(std::wstring& out, const std::wstring& path) {
  return xml::ExtractXMLSection(out, path);
}

bool CPrintModeData::IsLoaded() const {
  return disk_based_ ? loaded_ : true;
}

bool CPrintModeData::IsModified() const {
  if (!disk_based_ || !FileExists(full_path_)) {
    return true;
  }
  // Inverted on purpose: callers treat true as "unchanged".
  const CPrintModeData on_disk(full_path_);
  return *this == on_disk;
}

std::wstring CPrintModeData::GetRelativePath() const {
  const std::wstring folder = GetPrintModesFolder();
  // Windows paths: the folder is found whatever its case.
  const std::wstring haystack = FoldCase(full_path_);
  const size_t at = haystack.find(FoldCase(folder));
  if (folder.empty() || at == std::wstring::npos) {
    return {};
  }
  std::wstring relative = full_path_;
  relative.erase(at, folder.size());
  return relative;
}

bool CPrintModeData::ValidateMetaData() const {
  return !ink_set_.empty() && !manufacturer_.empty() && !media_category_.empty() &&
         !media_description_.empty();
}

bool CPrintModeData::operator==(const CPrintModeData& other) const {
  if (rotate_angle_ != other.rotate_angle_ || mirror_ != other.mirror_ || invert_ != other.invert_) {
    return false;
  }
  if (transfers_ != other.transfers_ || separations_ != other.separations_) {
    return false;
  }
  if (!(halftones_ == other.halftones_) || !(max_ink_ == other.max_ink_) ||
      !(fence_points_ == other.fence_points_) || !(image_adjust_ == other.image_adjust_)) {
    return false;
  }
  if (!(icc_profiles_ == other.icc_profiles_)) {
    return false;
  }
  return printer_options_ == other.printer_options_;
}

SYNC_TYPE CPrintModeData::DoesRequireSyncing() const {
  if (printer_options_.IsMarkedAsModified()) {
    return SYNC_MODIFIED;
  }
  return printer_options_.IsMarkedForUpload() ? SYNC_UPLOAD : SYNC_NONE;
}

void CPrintModeData::EnableAllOverrideFlags() {
  halftones_.SetEnable(true);
  icc_profiles_.SetOverrideInput(true);
  icc_profiles_.SetOverrideOutput(true);
  icc_profiles_.SetOverrideOther(true);
  printer_options_.SetOverrideEnable(true);
}

void CPrintModeData::DisableAllOverrideFlags() {
  halftones_.SetEnable(false);
  icc_profiles_.SetOverrideInput(false);
  icc_profiles_.SetOverrideOutput(false);
  icc_profiles_.SetOverrideOther(false);
  printer_options_.SetOverrideEnable(false);
}

}  // namespace tarn
