#include "tarn/printmode/print_mode_data.h"

#include <algorithm>

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/plates.h"
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
CPrintModeData::CPrintModeData(CPrintModeData&& other) noexcept = default;
CPrintModeData& CPrintModeData::operator=(CPrintModeData&& other) noexcept = default;
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

struct CPrintModeData::Fields {
  using R = CPrintModeData;
  using F = internal::Field<R>;

  static void WriteVersion(const R& /*r*/, pugi::xml_node node) {
    node.append_attribute(tags::kVersion).set_value(kPrintModeFileVersion);
  }
  static void WriteCopyright(const R& /*r*/, pugi::xml_node node) {
    xml::AppendText(node, kCopyright, kCopyrightText);
  }
  // The version of the library that wrote the file, whatever the file said.
  static void WriteQueueVersion(const R& /*r*/, pugi::xml_node node) {
    xml::AppendText(node, kQueueVersion,
                    Format(L"%d.%d.%d", kQueueVersionMajor, kQueueVersionMinor, kQueueVersionBuild));
  }
  static void ReadSection(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    r.ReadSection(child);
  }
  static void WriteSections(const R& r, pugi::xml_node node) {
    r.WriteSections(node);
    // Laser data only for a printer whose definition says it is a laser device.
    if (r.IsLaserPrinter()) {
      r.laser_data_.WriteXML(node);
    }
  }

  // The header; the sections are read and written by their own records. Only
  // the image flags take part in equality: names and metadata do not make two
  // print modes print differently.
  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        nullptr,
        {
            F::Writer(&WriteVersion),
            F::Text(tags::kVersion, &R::version_).Attribute().Writes(internal::Write::kNever).NotCompared(),
            F::Writer(&WriteCopyright),
            F::Writer(&WriteQueueVersion),
            F::Text(kPrinter, &R::printer_).NotCompared(),
            F::Text(kDriver, &R::driver_).NotCompared(),
            F::Text(kEmailAddress, &R::email_).Writes(internal::Write::kNever).NotCompared(),
            F::Bool(kInvert, &R::invert_),
            F::Bool(kMirror, &R::mirror_),
            F::Text(kInkSet, &R::ink_set_).In(kMetadata).NotCompared(),
            F::Text(kManufacturer, &R::manufacturer_).In(kMetadata).NotCompared(),
            F::Text(kMediaCategory, &R::media_category_).In(kMetadata).NotCompared(),
            F::Text(kMediaDescription, &R::media_description_).In(kMetadata).NotCompared(),
            F::Text(kCreationDate, &R::creation_date_).In(kMetadata).NotCompared(),
            F::Text(kRipVersion, &R::rip_version_).In(kMetadata).NotCompared(),
            F::Text(kMediaName, &R::name_).In(kMetadata).NotCompared(),
            F::Bool(kUnderbase, &R::underbase_).In(kMetadata).NotCompared(),
            F::Bool(kFinish, &R::finish_).In(kMetadata).NotCompared(),
            F::Bool(kWindowsUnderbase, &R::windows_underbase_).In(kMetadata).NotCompared(),
            F::Writer(&WriteSections),
        },
        &ReadSection);
    return table;
  }
};

// The header is read over the current values (the path has set the name
// before), and any element name: the document loader checked the root. The
// sections start from their defaults, so a section the file leaves out is a
// default one, not what the record held before (a record is reloaded in place
// after every save).
bool CPrintModeData::ReadXML(const pugi::xml_node& node) {
  SetSectionDefaults();
  return Fields::Table().Read(*this, node, internal::Start::kCurrent);
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
  Fields::Table().Write(*this, xml::AppendElement(parent, tags::kPrintModeRoot));
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
  std::replace(target.begin(), target.end(), L'/', L'\\');
  if (target.back() != L'\\') {
    target += L'\\';
  }
  const std::wstring path = target + name_;
  if (postscript && NativePath(path) == NativePath(full_path_)) {
    // The set-up would replace the print mode it was written from.
    ShowMessage(
        Format(L"The PostScript set-up of \"%s\" cannot be written over the print mode itself.", name_),
        kErrorCaption);
    return false;
  }
  SetNormalAttributes(path);

  std::wstring error;
  if (postscript) {
    // The set-up is written in one piece through the same atomic replace as
    // the XML form; the print mode stays bound to its own file.
    return SavePostscriptSetup(path);
  }
  pugi::xml_document document;
  WriteXML(document);
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
  if (rotate_angle_ != other.rotate_angle_ || !Fields::Table().Equal(*this, other)) {
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
  transfers_.SetEnable(true);
  separations_.SetEnable(true);
  halftones_.SetEnable(true);
  icc_profiles_.SetOverrideInput(true);
  icc_profiles_.SetOverrideOutput(true);
  icc_profiles_.SetOverrideOther(true);
  printer_options_.SetOverrideEnable(true);
}

void CPrintModeData::DisableAllOverrideFlags() {
  transfers_.SetEnable(false);
  separations_.SetEnable(false);
  halftones_.SetEnable(false);
  icc_profiles_.SetOverrideInput(false);
  icc_profiles_.SetOverrideOutput(false);
  icc_profiles_.SetOverrideOther(false);
  printer_options_.SetOverrideEnable(false);
}

// --- what the print mode knows of its colour model and resolution by itself ----

std::wstring CPrintModeData::GetColorModeName() const {
  std::wstring mode = printer_options_.GetColorMode();
  return mode.empty() ? separations_.GetColorMode() : mode;
}

bool CPrintModeData::IsKeyWordPlaneBasic(const std::wstring& plane) {
  return plates::IsProcessPlane(plane);
}

std::wstring CPrintModeData::GetResolution() const {
  std::wstring resolution = printer_options_.GetResolutionName();
  return resolution.empty() ? separations_.GetResolution() : resolution;
}

void CPrintModeData::SetResolution(const std::wstring& resolution) {
  printer_options_.SetOptionValue(L"Resolution", resolution);  // the printer option naming it
  separations_.SetResolution(resolution);
}

}  // namespace tarn
