#pragma once

// The printer driver's own options of a print mode: named string values, plus
// an override switch and an advanced switch.
//
// The section is kept as "PRINTEROPTIONS". The switches are written only when
// on; each value is a CDATA section so that it may hold markup as it stands:
//
//   <PRINTEROPTIONS>
//   	<OVR_ENABLE>1</OVR_ENABLE>
//   	<ADVANCED>1</ADVANCED>
//   	<OPTION>
//   		<PROC>Color Plane</PROC>
//   		<PARAM><![CDATA[CMYKcm]]></PARAM>
//   	</OPTION>
//   	<OPTION>
//   		<PROC>REQUPLOAD</PROC>
//   		<PARAM><![CDATA[0]]></PARAM>
//   	</OPTION>
//   </PRINTEROPTIONS>
//
// A few option names are reserved: "Resolution", "Color Plane", "LOCKED"
// ("1" locked) and "REQUPLOAD" ("0" upload required, "1" none, "2" modified).

#include <pugixml.hpp>

#include <map>
#include <string>

#include "tarn/foundation/export.h"

namespace tarn {

class TARN_API CPMPrinterOptionsData {
 public:
  // Option names ordered ordinally, the empty name first; names compare
  // exactly, as the printer definition and the PostScript set-up name them.
  using OptionMap = std::map<std::wstring, std::wstring>;

  // Element name of the section ("PRINTEROPTIONS").
  static constexpr const char* kElementName = "PRINTEROPTIONS";

  static constexpr const wchar_t* kResolution = L"Resolution";
  static constexpr const wchar_t* kColorPlane = L"Color Plane";
  static constexpr const wchar_t* kLocked = L"LOCKED";
  static constexpr const wchar_t* kRequiresUpload = L"REQUPLOAD";

  // Both switches off, no options.
  CPMPrinterOptionsData() = default;

  // Both switches off, no options.
  void SetDefaults();

  bool GetOverrideEnable() const { return override_enable_; }
  void SetOverrideEnable(bool on) { override_enable_ = on; }
  bool GetAdvanced() const { return advanced_; }
  void SetAdvanced(bool on) { advanced_ = on; }

  // Stores value under name, adding the option when absent.
  void AddOption(const std::wstring& name, const std::wstring& value) { options_[name] = value; }
  void SetOptionValue(const std::wstring& name, const std::wstring& value) { options_[name] = value; }
  // Erases the option; false when there was none.
  bool RemoveOption(const std::wstring& name) { return options_.erase(name) > 0; }
  // The stored value, or null when there is no such option. The pointer stays
  // valid until the option is changed or removed.
  const std::wstring* GetOptionValue(const std::wstring& name) const;
  const OptionMap& GetOptions() const { return options_; }

  // Iterate the options in name order: false when there is no (further)
  // option. Changing the options between calls is safe; the walk continues
  // after the last name returned.
  bool GetFirstOption(std::wstring& name, std::wstring& value);
  bool GetNextOption(std::wstring& name, std::wstring& value);

  // The value of "Resolution" / "Color Plane"; empty when absent.
  std::wstring GetResolutionName() const;
  std::wstring GetColorMode() const;

  // "LOCKED" exists and its value read as a whole number is 1 ("01" counts).
  bool IsPMLocked() const;
  // Set "LOCKED" to "1" / "0", only when the option already exists.
  void LockPM() { SetExisting(kLocked, L"1"); }
  void UnlockPM() { SetExisting(kLocked, L"0"); }

  // Set "REQUPLOAD", only when the option already exists. The coding is
  // inverted ("0" means an upload is required); printers and queues depend on it.
  void MarkForUpload() { SetExisting(kRequiresUpload, L"0"); }
  void UnMarkForUpload() { SetExisting(kRequiresUpload, L"1"); }
  void MarkForModify() { SetExisting(kRequiresUpload, L"2"); }
  // "REQUPLOAD" exists and is exactly "0" / "2" ("00" is not).
  bool IsMarkedForUpload() const;
  bool IsMarkedAsModified() const;

  // Reads a "PRINTEROPTIONS" element: the switches (off when absent) and the
  // options, each replacing an earlier value of the same name. Options with an
  // empty name or value are skipped; options held before are kept. False, with
  // nothing changed, when node is not "PRINTEROPTIONS".
  bool ReadXML(const pugi::xml_node& node);
  // Appends "PRINTEROPTIONS" to parent.
  void WriteXML(pugi::xml_node parent) const;

  // Equal when both switches and all options are equal.
  bool operator==(const CPMPrinterOptionsData& other) const;

 private:
  struct Fields;  // the field table, in the source file

  void SetExisting(const wchar_t* name, const wchar_t* value);
  bool ReturnOption(OptionMap::const_iterator it, std::wstring& name, std::wstring& value);

  bool override_enable_ = false;
  bool advanced_ = false;
  OptionMap options_;
  // Name last returned by GetFirstOption/GetNextOption; kept as a name, not an
  // iterator, so that edits between the calls cannot invalidate it.
  std::wstring iteration_name_;
  bool iterating_ = false;
};

}  // namespace tarn
