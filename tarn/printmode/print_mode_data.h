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

#include <pugixml.hpp>

#include "tarn/foundation/export.h"

// sections: includes

namespace tarn {

class CPrinterData;

// The library's own version, written as QUEUEVERSION into every print mode.
inline constexpr int kQueueVersionMajor = 10;
inline constexpr int kQueueVersionMinor = 9;
inline constexpr int kQueueVersionBuild = 259;
// The version written on the root of a print mode file.
inline constexpr int kPrintModeFileVersion = 8;

class TARN_API CPrintModeData {
 public:
  CPrintModeData();
  // Binds the record to a file and loads it when it exists (see SetFullPath).
  explicit CPrintModeData(const std::wstring& path);
  CPrintModeData(const CPrintModeData& other);
  CPrintModeData& operator=(const CPrintModeData& other);
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

  // Reads a "PMH" element. Always true.
  bool ReadXML(const pugi::xml_node& node);
  // Appends the whole "PMH" element to parent (document or node).
  void WriteXML(pugi::xml_node parent) const;
  // Appends a "PMH" element with the sections only, for embedding in another document.
  void WriteTarnSection(pugi::xml_node node) const;

  // Saves into folder (null: the folder of the full path) under the record's
  // name, replacing the file atomically. False, after telling the user, when
  // the name is empty or not a plain file name, or the file cannot be written;
  // nothing on disk changes then. The PostScript form is not available yet:
  // postscript true returns false and writes nothing.
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
  bool operator!=(const CPrintModeData& other) const { return !(*this == other); }

  void EnableAllOverrideFlags();
  void DisableAllOverrideFlags();

  // Kept for callers; returns true and changes nothing.
  bool CleanUpOverrides(const CPrinterData* /*printer*/) { return true; }
  // Kept for callers; does nothing.
  void HarmonizeICCData(bool /*colorAdjust*/) {}

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

  // sections: accessors

 private:
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

  // sections: members
};

}  // namespace tarn
