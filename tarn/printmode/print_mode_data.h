#pragma once

// CPrintModeData: one print mode, bound to its print mode file (.pmx).
//
//   <?xml version="1.0"?>
//   <PMH version="8">
//   	<COPYRIGHT>...</COPYRIGHT>
//   	<QUEUEVERSION>10.9.259</QUEUEVERSION>
//   	<PRINTER>Aurora 64</PRINTER>
//   	<DRIVER>Aurora64</DRIVER>
//   	<INVERT>0</INVERT>
//   	<MIRROR>0</MIRROR>
//   	<METADATA>
//   		<INKSET>CMYK</INKSET>
//   		...
//   	</METADATA>
//   	<TCURVES ...> ... the sections, in a fixed order
//   </PMH>
//
// The layout is described in docs/formats/print-mode.md.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <pugixml.hpp>

#include "tarn/foundation/export.h"

#include "tarn/sections/fence_point_data.h"
#include "tarn/sections/halftone_data.h"
#include "tarn/sections/icc_profile_data.h"
#include "tarn/sections/image_adjust_data.h"
#include "tarn/sections/laser_data.h"
#include "tarn/sections/max_ink_data.h"
#include "tarn/sections/printer_options_data.h"
#include "tarn/sections/separation_data.h"
#include "tarn/sections/transfer_data.h"

namespace tarn {

class CColorDef;
class CPrinterData;

// The library's own version, written as QUEUEVERSION into every print mode.
inline constexpr int kQueueVersionMajor = 10;
inline constexpr int kQueueVersionMinor = 9;
inline constexpr int kQueueVersionBuild = 259;
// The version written on the root of a print mode file.
inline constexpr int kPrintModeFileVersion = 8;

// What the printer needs of a print mode (DoesRequireSyncing).
enum SYNC_TYPE : int {
  SYNC_NONE = 0,      // nothing to send
  SYNC_UPLOAD = 1,    // marked for upload
  SYNC_MODIFIED = 2,  // changed since the printer last had it
};

class TARN_API CPrintModeData {
 public:
  CPrintModeData();
  // Binds the record to a file and loads it when it exists (see SetFullPath).
  explicit CPrintModeData(const std::wstring& path);
  CPrintModeData(const CPrintModeData& other);
  CPrintModeData& operator=(const CPrintModeData& other);
  CPrintModeData(CPrintModeData&& other) noexcept;
  CPrintModeData& operator=(CPrintModeData&& other) noexcept;
  ~CPrintModeData();

  // Header to defaults; with headerOnly false every section too.
  void SetDefaults(bool headerOnly);

  // Binds the record to path (ignored when empty): the name becomes the file
  // name, and an existing file is loaded and its time recorded.
  void SetFullPath(const std::wstring& path);

  // Loads the bound file (or path when none is bound) and applies the repairs
  // of loading. False, after telling the user, when the file is missing, not
  // XML, or not a print mode; the record then keeps what it had.
  bool LoadPrintMode(const wchar_t* printer, const wchar_t* driver, const wchar_t* path, bool flag);

  // Loads the document at path; false when it cannot be read or its root is not "PMH".
  bool LoadXMLPrintMode(const std::wstring& path);

  // Reads a "PMH" element. Every section starts from its defaults, so a
  // section the element lacks is a default one. Always true.
  bool ReadXML(const pugi::xml_node& node);
  // Appends the whole "PMH" element to parent (document or node).
  void WriteXML(pugi::xml_node parent) const;
  // Appends a "PMH" element with the sections only, for embedding in another document.
  void WriteTarnSection(pugi::xml_node node) const;

  // Saves into folder (null: the folder of the full path) under the record's
  // name, replacing the file atomically. False, after telling the user, when
  // the name is empty or not a plain file name, or the file cannot be written;
  // nothing on disk changes then. With postscript true the PostScript set-up
  // (CPostscriptSetup) is written instead, and the record is not reloaded;
  // the set-up is never written over the print mode's own file.
  bool SavePrintMode(const wchar_t* folder, bool postscript);

  // Cuts an embedded print mode out of a text file (see xml::ExtractXMLSection).
  static bool ExtractXMLSection(std::wstring& out, const std::wstring& path);

  // True when the file on disk still equals this record. Note the sense: an
  // unchanged disk-based print mode reports true, a changed one false, and a
  // record without a file (or whose file is gone) true. Callers rely on it.
  bool IsModified() const;
  // The loaded flag for a disk-based record; true otherwise.
  bool IsLoaded() const;
  // The full path without the print modes folder; empty when not inside it.
  std::wstring GetRelativePath() const;
  // True when ink set, manufacturer, media category and description are all set.
  bool ValidateMetaData() const;

  // Compares the settings that shape the output; header and metadata take no part.
  bool operator==(const CPrintModeData& other) const;

  // Set or clear every override flag of the sections: the enable switches
  // that the transfers, separations, halftones and printer options keep as
  // "OVR_ENABLE", and the ICC section's input, output and other overrides.
  // Loading ends by clearing them, so a loaded print mode starts with none on.
  void EnableAllOverrideFlags();
  void DisableAllOverrideFlags();

  // Kept for callers; returns true and changes nothing.
  bool CleanUpOverrides(const CPrinterData* /*printer*/) { return true; }
  // Kept for callers; does nothing.
  void HarmonizeICCData(bool /*colorAdjust*/) {}

  // --- questions to the printer definition (tarn/printer/print_mode_printer.cpp) ---
  // Each takes the printer definition to ask; null means the one named by the
  // driver, loaded for the call (pass the printer when asking many questions).
  // The print mode's colour mode: the "Color Plane" option, else the separations'.
  std::wstring GetColorModeName() const;
  // The printer's colour model for the colour mode (by name, then display name), or null.
  const CColorDef* GetColorModel(const CPrinterData& printer) const;
  // The colour model's planes in order, each with whether it carries colour.
  // False when the printer lacks the model: the separations' planes are given
  // then, with only the built-in process plates as colour planes.
  bool GetPlanes(std::vector<std::pair<std::wstring, bool>>& planes,
                 const CPrinterData* printer = nullptr) const;
  // The plane's flags in the colour model; for a plane the model lacks, IsKeyWordPlaneBasic.
  bool IsColorPlane(const std::wstring& plane, const CPrinterData* printer = nullptr) const;
  bool IsKeyWordPlane(const std::wstring& plane, const CPrinterData* printer = nullptr) const;
  // True for the built-in process plates: Cyan, Magenta, Yellow, Black, Gray (exact names).
  static bool IsKeyWordPlaneBasic(const std::wstring& plane);
  // The "Resolution" option, else the separations' resolution; SetResolution sets both.
  std::wstring GetResolution() const;
  void SetResolution(const std::wstring& resolution);
  // Bits per pixel of the resolution in the printer, else the printer's "BITS"; 0 when neither.
  int GetBitsPerPixel(const CPrinterData* printer = nullptr) const;
  bool Is2BitPerPixel(const CPrinterData* printer = nullptr) const;
  bool Is8BitPerPixel(const CPrinterData* printer = nullptr) const;
  // True when the fence points hold dot sizes.
  bool HasDotSizeData() const;
  // True when the separations are made for the colour model and hold exactly
  // its planes, each with a curve. False when the printer lacks the model.
  bool ValidateSeparationData(const CPrinterData* printer = nullptr) const;
  // Linear separations for every plane of the colour model colorMode, which
  // also becomes the "Color Plane" option. False, nothing changed, when the
  // printer lacks the model.
  bool ResetSeparationData(const std::wstring& colorMode, const CPrinterData* printer = nullptr);
  // True when no fence points are in use, or they belong to the colour model,
  // name only its planes, and name only dot profiles of the resolution. False
  // when the printer lacks the model.
  bool ValidateFencePointData(const CPrinterData* printer = nullptr) const;
  // Rebuilds the fence points from the resolution's fence points, the colour
  // model's planes and the printer's dot profiles. False, nothing changed,
  // when the printer lacks the model.
  bool ResetFencePointData(const CPrinterData* printer = nullptr);
  // Takes other's settings, keeps this record's name and file, and saves it
  // there; false when the record has no file or the save fails.
  bool SaveAndApply(const CPrintModeData& other);
  // True when the printer definition named by the driver loads and is a laser device.
  bool IsLaserPrinter() const;

  // --- header accessors ---
  const std::wstring& GetName() const { return name_; }
  void SetName(const std::wstring& name) { name_ = name; }
  std::wstring GetMediaName() const { return name_; }
  const std::wstring& GetVersion() const { return version_; }
  void SetVersion(const std::wstring& version) { version_ = version; }
  const std::wstring& GetEmailAddress() const { return email_; }
  void SetEmailAddress(const std::wstring& email) { email_ = email; }
  const std::wstring& GetFullPath() const { return full_path_; }
  const std::wstring& GetPrinterX() const { return printer_; }
  void SetPrinterX(const std::wstring& printer) { printer_ = printer; }
  const std::wstring& GetDriver() const { return driver_; }
  void SetDriver(const std::wstring& driver) { driver_ = driver; }
  bool GetInvert() const { return invert_; }
  void SetInvert(bool invert) { invert_ = invert; }
  bool GetMirror() const { return mirror_; }
  void SetMirror(bool mirror) { mirror_ = mirror; }
  int GetRotateAngle() const { return rotate_angle_; }
  void SetRotateAngle(int angle) { rotate_angle_ = angle; }
  bool IsDiskBased() const { return disk_based_; }
  void SetIsDiskBased(bool disk_based) { disk_based_ = disk_based; }
  void SetIsLoaded(bool loaded) { loaded_ = loaded; }
  std::int64_t GetFileTime() const { return file_time_; }
  bool IsRipVersionPresent() const { return rip_version_present_; }

  // --- metadata ---
  const std::wstring& GetInkSet() const { return ink_set_; }
  void SetInkSet(const std::wstring& value) { ink_set_ = value; }
  const std::wstring& GetManufacturer() const { return manufacturer_; }
  void SetManufacturer(const std::wstring& value) { manufacturer_ = value; }
  const std::wstring& GetMediaCategory() const { return media_category_; }
  void SetMediaCategory(const std::wstring& value) { media_category_ = value; }
  const std::wstring& GetMediaDescription() const { return media_description_; }
  void SetMediaDescription(const std::wstring& value) { media_description_ = value; }
  const std::wstring& GetCreationDate() const { return creation_date_; }
  void SetCreationDate(const std::wstring& value) { creation_date_ = value; }
  const std::wstring& GetRipVersion() const { return rip_version_; }
  void SetRipVersion(const std::wstring& value) { rip_version_ = value; }
  bool GetUnderbase() const { return underbase_; }
  void SetUnderbase(bool value) { underbase_ = value; }
  bool GetWindowsUnderbase() const { return windows_underbase_; }
  void SetWindowsUnderbase(bool value) { windows_underbase_ = value; }
  bool GetFinish() const { return finish_; }
  void SetFinish(bool value) { finish_ = value; }
  const std::wstring& GetTrailerText() const { return trailer_text_; }
  void SetTrailerText(const std::wstring& value) { trailer_text_ = value; }

  // --- sections ---
  // The transfer curves and separations, owned by the record; never null.
  CPMTransferData* GetTransfers() { return &transfers_; }
  const CPMTransferData* GetTransfers() const { return &transfers_; }
  CPMSeparationData* GetSeparations() { return &separations_; }
  const CPMSeparationData* GetSeparations() const { return &separations_; }
  // Copy a section in, replacing the record's own.
  void SetTransferData(const CPMTransferData& transfers) { transfers_ = transfers; }
  void SetSeparationData(const CPMSeparationData& separations) { separations_ = separations; }
  // Image adjustment, halftones, ink limits and fence points, owned by the
  // record; never null.
  CPMImageAdjustData* GetImageAdjust() { return &image_adjust_; }
  const CPMImageAdjustData* GetImageAdjust() const { return &image_adjust_; }
  CPMHalftoneData* GetHalftones() { return &halftones_; }
  const CPMHalftoneData* GetHalftones() const { return &halftones_; }
  CPMMaxInkData* GetMaxInkEx() { return &max_ink_; }
  const CPMMaxInkData* GetMaxInkEx() const { return &max_ink_; }
  CPMFencePointData* GetFencePointData() { return &fence_points_; }
  const CPMFencePointData* GetFencePointData() const { return &fence_points_; }
  void SetHalftone(const CPMHalftoneData& halftones) { halftones_ = halftones; }
  // ICC profiles, printer options and laser data, owned by the record; never null.
  CPMICCProfileData* GetICCProfiles() { return &icc_profiles_; }
  const CPMICCProfileData* GetICCProfiles() const { return &icc_profiles_; }
  CPMPrinterOptionsData* GetPrinterOptions() { return &printer_options_; }
  const CPMPrinterOptionsData* GetPrinterOptions() const { return &printer_options_; }
  CPMLaserData* GetLaserData() { return &laser_data_; }
  const CPMLaserData* GetLaserData() const { return &laser_data_; }

  // True when the ICC profile sections differ, so a new preview is needed.
  bool CompareForPreviewRegenerate(const CPrintModeData& other) const {
    return !(icc_profiles_ == other.icc_profiles_);
  }
  // SYNC_MODIFIED when the printer options are marked as modified, else
  // SYNC_UPLOAD when marked for upload, else SYNC_NONE.
  SYNC_TYPE DoesRequireSyncing() const;
  // True when the printer options are not locked.
  bool IsCustom() const { return !printer_options_.IsPMLocked(); }

 private:
  // Writes the PostScript set-up to path in one atomic replace; false, with the
  // system's reason shown, when it cannot. Defined with the set-up writer
  // (tarn/postscript/), which sits above the printer definitions it reads.
  bool SavePostscriptSetup(const std::wstring& path);
  struct Fields;  // the header's field table, in the source file
  void SetHeaderDefaults();
  void SetSectionDefaults();
  void WriteSections(pugi::xml_node root) const;
  bool ReadSection(const pugi::xml_node& child);
  void ApplyLoadRepairs();

  std::wstring name_;
  bool rip_version_present_ = false;
  std::int64_t file_time_ = 0;
  std::wstring ink_set_;
  std::wstring manufacturer_;
  std::wstring media_category_;
  std::wstring media_description_;
  std::wstring creation_date_;
  std::wstring rip_version_;
  std::wstring full_path_;
  bool underbase_ = false;
  bool windows_underbase_ = false;
  std::wstring trailer_text_;
  bool finish_ = false;
  std::wstring version_;
  std::wstring email_;
  std::wstring printer_;
  std::wstring driver_;
  bool disk_based_ = false;
  bool loaded_ = false;
  bool invert_ = false;
  bool mirror_ = false;
  int rotate_angle_ = 0;

  CPMTransferData transfers_;
  CPMSeparationData separations_;
  CPMImageAdjustData image_adjust_;
  CPMICCProfileData icc_profiles_;
  CPMHalftoneData halftones_;
  CPMPrinterOptionsData printer_options_;
  CPMMaxInkData max_ink_;
  CPMLaserData laser_data_;
  CPMFencePointData fence_points_;
};

}  // namespace tarn
