#pragma once

// ICC profile settings of a print mode: which profiles convert line art and
// bitmaps in RGB, Lab and CMYK, the output and soft-proof device profiles, and
// the conversion settings (CICCInfo) of each slot.
//
// The section is kept as "ICCPROFILES", one "ICCPROFILE" per path key in a
// fixed order, then the "UseICCTags" entry:
//
//   <ICCPROFILES sepbitmaps="1" grayscalemode="0" overrideinput="0"
//                overrideoutput="0" overrideother="0" spotcolormatching="0">
//     <ICCPROFILE name="LA_CMYKPath" type="CMYK">
//       <PATH>Orvel Vector CMYK.icm</PATH>
//       <USED>1</USED>
//       <ICCINFO key="LA_CMYK_INFO">
//         <Intent inIntent="14" outIntent="14" mergefactor="0" chroma2="0" />
//         <Exceptions flags="0" range="30" />
//         <links />
//       </ICCINFO>
//     </ICCPROFILE>
//     ... LA_LABPath, LA_RGBPath, BMP_CMYKPath, BMP_LABPath, BMP_RGBPath,
//         SPTDevicePath, OutTagDevicePath
//     <ICCPROFILE name="UseICCTags" type="OUTPUT">
//       <PATH></PATH>
//       <USED>0</USED>
//       <ICCINFO key="GREYSCALE_INFO"> ... </ICCINFO>
//     </ICCPROFILE>
//   </ICCPROFILES>
//
// The creation wizard keeps a CICCInfo in its own form, "DEVICELINKDATA":
//
//   <DEVICELINKDATA default="1">
//   	<ConfigName>Default</ConfigName>
//   	<Deletable>0</Deletable>
//   	<Intent inIntent="14" outIntent="14" mergefactor="0" chroma2="0" />
//   	<Exceptions flags="0" range="30" />
//   	<links><link>Proof.icc</link></links>
//   	<Black mode="2" gcr="30" start="20" width="100" inksave="0" shadows="0" range="100" />
//   	<Ink mode="0" maxink="400" maxblack="100" custom="" />
//   </DEVICELINKDATA>
//
// A stored path may begin with "%Lumascript%", which stands for the RIP's
// system folder, so that print modes stay valid when the RIP moves.

#include <pugixml.hpp>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/foundation/export.h"

namespace tarn {

// Profile slots. The output device is slot 7 and the soft-proof device slot 0,
// the numbers older print modes and the path repair on loading use.
enum ICC_PATH : int {
  ICC_PATH_UNKNOWN = -1,
  ICC_SPT_DEVICE_PATH = 0,
  ICC_LA_RGB_PATH = 1,
  ICC_LA_LAB_PATH = 2,
  ICC_LA_CMYK_PATH = 3,
  ICC_BMP_RGB_PATH = 4,
  ICC_BMP_LAB_PATH = 5,
  ICC_BMP_CMYK_PATH = 6,
  ICC_OUT_DEVICE_PATH = 7,
};

// Use flags: one per slot (same numbers), then the two switches.
enum ICC_USE : int {
  ICC_USE_UNKNOWN = -1,
  ICC_USE_SPT_DEVICE = 0,
  ICC_USE_LA_RGB = 1,
  ICC_USE_LA_LAB = 2,
  ICC_USE_LA_CMYK = 3,
  ICC_USE_BMP_RGB = 4,
  ICC_USE_BMP_LAB = 5,
  ICC_USE_BMP_CMYK = 6,
  ICC_USE_ICC_TAGS = 7,
  ICC_USE_SEPARATE_BITMAPS = 8,
  ICC_USE_GRAYSCALE_MODE = 9,
};

// Settings records ("LA_RGB_INFO" ... "GREYSCALE_INFO").
enum ICC_INFO : int {
  ICC_INFO_UNKNOWN = -1,
  ICC_INFO_LA_RGB = 1,
  ICC_INFO_LA_LAB = 2,
  ICC_INFO_LA_CMYK = 3,
  ICC_INFO_BMP_RGB = 4,
  ICC_INFO_BMP_LAB = 5,
  ICC_INFO_BMP_CMYK = 6,
  ICC_INFO_OUTPUT = 7,
  ICC_INFO_SOFTPROOF = 8,
  ICC_INFO_GREYSCALE = 9,
};

// ICC rendering intents held in CICCInfo::intent.
enum ICC_INTENT : std::uint32_t {
  ICC_INTENT_PERCEPTUAL = 0,
  ICC_INTENT_RELATIVE = 1,
  ICC_INTENT_SATURATION = 2,
  ICC_INTENT_ABSOLUTE = 3,
};

// Black generation modes held in CICCInfo's Black settings ("mode").
enum ICC_BLACK_MODE : std::int32_t {
  ICC_BLACK_PROFILE = 0,        // the profile's own black generation
  ICC_BLACK_KEEP_PURE = 1,      // pure black stays pure black
  ICC_BLACK_GCR = 2,            // grey component replacement with gcr/start/width
  ICC_BLACK_PRESERVE_PLANE = 3  // the black plane passes through unchanged
};

// Exception flags held in CICCInfo's Exceptions settings ("flags"): colours
// within "range" of a pure primary are kept pure.
inline constexpr std::uint32_t ICC_EXCEPTION_PURE_PRIMARIES = 0x1;

// The conversion settings of one profile slot.
class TARN_API CICCInfo {
 public:
  CICCInfo() = default;

  // Perceptual, configuration "Default", in/out intent 14, GCR 30 from 20 over
  // 100, 400 % ink, 100 % black, no links.
  void SetDefaults() { *this = CICCInfo(); }

  // The settings key of a path key ("LA_RGBPath" -> "LA_RGB_INFO"); empty for
  // anything that is not a path key.
  static std::wstring GetICCInfoKey(std::wstring_view pathKey);

  // "Perceptual", "Relative", "Saturation", "Absolute"; empty for other values.
  static std::wstring GetIntentStr(std::uint32_t intent);
  // The intent named (exactly) by text; -1 when unknown.
  static int IntentFromString(std::wstring_view text);
  std::wstring GetIntentStr() const { return GetIntentStr(intent); }

  // Appends "ICCINFO" with attribute key to parent, holding "Intent",
  // "Exceptions" and "links"; the rendering intent and the black and ink
  // settings belong to the creation wizard's form and are not written here.
  // Writes nothing when key is empty.
  void WriteXML(pugi::xml_node parent, std::wstring_view key) const;
  // Reads an "ICCINFO" element into this record; what is absent keeps its
  // current value. Also takes the creation wizard's "Black" and "Ink" elements
  // and the attributes of files older than the "Intent" element ("intent",
  // "preserveK", "keepK", "preserveCMY"). False when node is not "ICCINFO".
  bool ReadXML(const pugi::xml_node& node);

  // Appends the creation wizard's "DEVICELINKDATA" form to parent.
  void WritePMCXML(pugi::xml_node parent) const;
  // Reads a "DEVICELINKDATA" element; what is absent keeps its current value.
  // False when node is not "DEVICELINKDATA".
  bool ReadPMCXML(const pugi::xml_node& node);

  bool operator==(const CICCInfo& other) const = default;

  // Fields are public: the record is a plain bundle of settings that the
  // editor and the creation wizard fill directly.
  std::uint32_t intent = ICC_INTENT_PERCEPTUAL;
  std::wstring configName = L"Default";
  bool deletable = false;
  bool isDefault = true;
  std::int32_t inIntent = 14;
  std::int32_t outIntent = 14;
  std::int32_t mergefactor = 0;
  std::int32_t chroma2 = 0;
  std::uint32_t flags = 0;
  std::int32_t range = 30;
  std::int32_t blackMode = ICC_BLACK_GCR;
  std::int32_t gcr = 30;
  std::int32_t start = 20;
  std::int32_t width = 100;
  std::int32_t inksave = 0;
  bool shadows = false;
  std::int32_t blackRange = 100;
  std::int32_t inkMode = 0;
  std::int32_t maxink = 400;
  std::int32_t maxblack = 100;
  std::wstring custom;
  std::vector<std::wstring> links;

 private:
  // "Intent", "Exceptions" and "links": what both forms hold.
  void WriteSettings(pugi::xml_node node) const;
  // "Black" and "Ink": the creation wizard's form only.
  void WriteBlackAndInk(pugi::xml_node node) const;
  void ReadSetting(const pugi::xml_node& child);
};

// The ICC profile section of a print mode.
class TARN_API CPMICCProfileData {
 public:
  // Element name of the section ("ICCPROFILES").
  static constexpr const char* kElementName = "ICCPROFILES";
  // The path variable that stands for the RIP's system folder.
  static constexpr std::wstring_view kSystemFolderVariable = L"%Lumascript%";

  // Every slot and settings record at its default (see SetDefaults).
  CPMICCProfileData();

  // Input slots 1 to 6 used, with the default input profiles; output profile
  // "Orvel Gen Inkjet.icm", no soft-proof profile; every settings record reset,
  // RGB records perceptual, CMYK and Lab records relative; separate bitmap
  // profiles on and the other switches off; the section enabled.
  void SetDefaults();
  // The default input profiles and input settings; output and use flags stay.
  void SetDefaultInputs();
  // The unified RGB profile for both RGB slots and the vector CMYK profile for
  // both CMYK slots, with default input settings; output and use flags stay.
  void SetEnhancedInputs();
  // The given input profiles (through SetICCPath) with default input settings;
  // output and use flags stay.
  void SetCustomInputProfiles(const std::wstring& laRgb, const std::wstring& laLab,
                              const std::wstring& laCmyk, const std::wstring& bmpRgb,
                              const std::wstring& bmpLab, const std::wstring& bmpCmyk);

  // Key/enum translations, each from one table. Unknown values give an empty
  // key, unknown keys -1; keys compare exactly.
  static std::wstring PathStringFromEnum(int slot);
  static ICC_PATH PathEnumFromString(std::wstring_view key);
  static std::wstring UseStringFromEnum(int use);
  static ICC_USE UseEnumFromString(std::wstring_view key);
  static std::wstring StringFromEnum(int info);
  static ICC_INFO EnumFromString(std::wstring_view key);

  // The path and use keys for a profile type ("RGB", "LAB", "CMYK", "OUTPUT",
  // "SPOT", ignoring case); bitmap picks the "BMP_" key over the "LA_" key.
  // Empty for an unknown type.
  static std::wstring GetICCProfilePathKey(std::wstring_view type, bool bitmap);
  static std::wstring GetICCProfileUsedKey(std::wstring_view type, bool bitmap);

  // The stored path of a slot, as stored (possibly beginning with
  // "%Lumascript%"); empty for an unknown slot or key.
  std::wstring GetICCPath(int slot) const;
  std::wstring GetICCPath(std::wstring_view pathKey) const;
  // Stores a slot's path; a path below the RIP's system folder is stored with
  // that folder replaced by "%Lumascript%". Unknown slots are ignored.
  void SetICCPath(int slot, const std::wstring& path);
  void SetICCPath(std::wstring_view pathKey, const std::wstring& path);
  // The stored path with a leading "%Lumascript%" replaced by the RIP's system
  // folder. False, with out emptied, for an unknown slot or key.
  bool GetICCAbsolutePath(int slot, std::wstring& out) const;
  bool GetICCAbsolutePath(std::wstring_view pathKey, std::wstring& out) const;
  // Replaces every occurrence of from (ignoring case) by to in the slot's path.
  // False when the slot is unknown, from is empty or does not occur.
  bool UpdateICCPath(int slot, std::wstring_view from, std::wstring_view to);

  // After the RIP's profile folders lost their "\\4Color" and "\\6Color" level:
  // when slot 1's profile is missing but exists without those folder names,
  // slots 1 to 6 are stored without them, as absolute paths; slot 7 is checked
  // by itself in the same way. Slot 0 is left alone. True when a path changed.
  bool RepairMovedProfilePaths();

  // The use flag of a use key, or of a path key's slot; false when unknown.
  bool GetICCUsed(int use) const;
  bool GetICCUsed(std::wstring_view key) const;
  // Unknown uses and keys are ignored.
  void SetICCUsed(int use, bool used);
  void SetICCUsed(std::wstring_view key, bool used);

  // Copies a settings record out; false, out unchanged, for an unknown key.
  bool GetICCInfo(int info, CICCInfo& out) const;
  bool GetICCInfo(std::wstring_view key, CICCInfo& out) const;
  // Replaces a settings record; unknown keys are ignored.
  void SetICCInfo(int info, const CICCInfo& settings);
  void SetICCInfo(std::wstring_view key, const CICCInfo& settings);

  // Rebuilds the settings records of the RGB slots (1, 4) with rgbIntent and
  // of the CMYK slots (3, 6) with cmykIntent, each from defaults. Lab, output,
  // soft-proof and greyscale records stay.
  void SetRenderingIntent(std::uint32_t rgbIntent, std::uint32_t cmykIntent);
  // The same intent for RGB and CMYK.
  void SetRenderingIntent(std::uint32_t intent) { SetRenderingIntent(intent, intent); }

  // Remembers the use flags of slots 1 to 6 and clears them; the section's
  // master switch is cleared too.
  void DisableICCProfiles();
  // Restores the flags remembered by the last DisableICCProfiles and sets the
  // master switch. Without an earlier DisableICCProfiles the flags stay.
  void ReEnableICCProfiles();

  // The six switches kept as attributes of "ICCPROFILES". Separate bitmaps and
  // grayscale mode are also the use keys "CTSeparateBitmaps" and "CTGrayscaleMode".
  bool GetSeparateBitmaps() const { return used_[ICC_USE_SEPARATE_BITMAPS]; }
  void SetSeparateBitmaps(bool on) { used_[ICC_USE_SEPARATE_BITMAPS] = on; }
  bool GetGrayscaleMode() const { return used_[ICC_USE_GRAYSCALE_MODE]; }
  void SetGrayscaleMode(bool on) { used_[ICC_USE_GRAYSCALE_MODE] = on; }
  bool GetOverrideInput() const { return override_input_; }
  void SetOverrideInput(bool on) { override_input_ = on; }
  bool GetOverrideOutput() const { return override_output_; }
  void SetOverrideOutput(bool on) { override_output_ = on; }
  bool GetOverrideOther() const { return override_other_; }
  void SetOverrideOther(bool on) { override_other_ = on; }
  bool GetSpotColorMatching() const { return spot_color_matching_; }
  void SetSpotColorMatching(bool on) { spot_color_matching_ = on; }
  // The section's master switch; held in memory only, not in the file.
  bool IsEnabled() const { return enabled_; }
  void SetEnabled(bool on) { enabled_ = on; }

  // Reads an "ICCPROFILES" element after restoring the defaults. Unknown
  // entries and elements are skipped. False, with the section untouched, when
  // node is not "ICCPROFILES".
  bool ReadXML(const pugi::xml_node& node);
  // Appends "ICCPROFILES" to parent.
  void WriteXML(pugi::xml_node parent) const;

  // Equal when paths, use flags, settings records and switches are equal. The
  // master switch and the flags remembered by DisableICCProfiles are run-time
  // state and take no part.
  bool operator==(const CPMICCProfileData& other) const;

 private:
  static constexpr int kSlotCount = 8;
  static constexpr int kUseCount = 10;
  static constexpr int kInfoCount = 10;  // index 0 unused

  void ResetInputSettings();
  void ReadICCProfile(const pugi::xml_node& node);

  std::array<std::wstring, kSlotCount> paths_;
  std::array<bool, kUseCount> used_{};
  std::array<CICCInfo, kInfoCount> infos_;
  bool override_input_ = false;
  bool override_output_ = false;
  bool override_other_ = false;
  bool spot_color_matching_ = false;
  bool enabled_ = true;
  std::array<bool, 7> remembered_used_{};
  bool has_remembered_ = false;
};

}  // namespace tarn
