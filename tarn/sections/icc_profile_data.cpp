#include "tarn/sections/icc_profile_data.h"

#include <algorithm>

#include "tarn/foundation/paths.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/tags.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {

namespace {

// --- tags ----------------------------------------------------------------

constexpr const char* kTagProfiles = CPMICCProfileData::kElementName;
constexpr const char* kTagProfile = "ICCPROFILE";
constexpr const char* kTagPath = "PATH";
constexpr const char* kTagUsed = "USED";
constexpr const char* kAttrName = tags::kName;
constexpr const char* kAttrType = "type";
constexpr const char* kAttrSepBitmaps = "sepbitmaps";
constexpr const char* kAttrGrayscaleMode = "grayscalemode";
constexpr const char* kAttrOverrideInput = "overrideinput";
constexpr const char* kAttrOverrideOutput = "overrideoutput";
constexpr const char* kAttrOverrideOther = "overrideother";
constexpr const char* kAttrSpotColorMatching = "spotcolormatching";

constexpr const char* kTagInfo = "ICCINFO";
constexpr const char* kAttrKey = "key";
constexpr const char* kTagDeviceLink = "DEVICELINKDATA";
constexpr const char* kAttrDefault = "default";
constexpr const char* kTagConfigName = "ConfigName";
constexpr const char* kTagDeletable = "Deletable";
constexpr const char* kTagIntent = "Intent";
constexpr const char* kAttrInIntent = "inIntent";
constexpr const char* kAttrOutIntent = "outIntent";
constexpr const char* kAttrMergeFactor = "mergefactor";
constexpr const char* kAttrChroma2 = "chroma2";
constexpr const char* kTagExceptions = "Exceptions";
constexpr const char* kAttrFlags = "flags";
constexpr const char* kAttrRange = "range";
constexpr const char* kTagLinks = "links";
constexpr const char* kTagLink = "link";
constexpr const char* kTagBlack = "Black";
constexpr const char* kAttrMode = "mode";
constexpr const char* kAttrGcr = "gcr";
constexpr const char* kAttrStart = "start";
constexpr const char* kAttrWidth = "width";
constexpr const char* kAttrInkSave = "inksave";
constexpr const char* kAttrShadows = "shadows";
constexpr const char* kTagInk = "Ink";
constexpr const char* kAttrMaxInk = "maxink";
constexpr const char* kAttrMaxBlack = "maxblack";
constexpr const char* kAttrCustom = "custom";
// Attributes of ICCINFO from before the Intent element; "intent" is still
// written, as the one place the file keeps the rendering intent.
constexpr const char* kAttrIntent = "intent";
constexpr const char* kAttrPreserveK = "preserveK";
constexpr const char* kAttrKeepK = "keepK";
constexpr const char* kAttrPreserveCMY = "preserveCMY";

// --- key tables ----------------------------------------------------------

struct SlotRow {
  const wchar_t* pathKey;
  ICC_USE use;
  const char* type;
  ICC_INFO info;
};

// Indexed by ICC_PATH.
constexpr SlotRow kSlots[] = {
    {L"SPTDevicePath", ICC_USE_SPT_DEVICE, "SPOT", ICC_INFO_SOFTPROOF},
    {L"LA_RGBPath", ICC_USE_LA_RGB, "RGB", ICC_INFO_LA_RGB},
    {L"LA_LABPath", ICC_USE_LA_LAB, "LAB", ICC_INFO_LA_LAB},
    {L"LA_CMYKPath", ICC_USE_LA_CMYK, "CMYK", ICC_INFO_LA_CMYK},
    {L"BMP_RGBPath", ICC_USE_BMP_RGB, "RGB", ICC_INFO_BMP_RGB},
    {L"BMP_LABPath", ICC_USE_BMP_LAB, "LAB", ICC_INFO_BMP_LAB},
    {L"BMP_CMYKPath", ICC_USE_BMP_CMYK, "CMYK", ICC_INFO_BMP_CMYK},
    {L"OutTagDevicePath", ICC_USE_ICC_TAGS, "OUTPUT", ICC_INFO_OUTPUT},
};

// Indexed by ICC_USE.
constexpr const wchar_t* kUseKeys[] = {
    L"UseSPTDevice", L"UseLA_RGB",   L"UseLA_LAB",  L"UseLA_CMYK",        L"UseBMP_RGB",
    L"UseBMP_LAB",   L"UseBMP_CMYK", L"UseICCTags", L"CTSeparateBitmaps", L"CTGrayscaleMode",
};

// Indexed by ICC_INFO; 0 is no record.
constexpr const wchar_t* kInfoKeys[] = {
    L"",
    L"LA_RGB_INFO",
    L"LA_LAB_INFO",
    L"LA_CMYK_INFO",
    L"BMP_RGB_INFO",
    L"BMP_LAB_INFO",
    L"BMP_CMYK_INFO",
    L"OUTPUT_INFO",
    L"SOFTPROOF_INFO",
    L"GREYSCALE_INFO",
};

constexpr const wchar_t* kIntentNames[] = {L"Perceptual", L"Relative", L"Saturation", L"Absolute"};

// The order in which the slots are written; readers do not depend on it.
constexpr ICC_PATH kWriteOrder[] = {ICC_LA_CMYK_PATH,    ICC_LA_LAB_PATH,    ICC_LA_RGB_PATH,
                                    ICC_BMP_CMYK_PATH,   ICC_BMP_LAB_PATH,   ICC_BMP_RGB_PATH,
                                    ICC_SPT_DEVICE_PATH, ICC_OUT_DEVICE_PATH};

// The entry after the slots carries the "UseICCTags" flag again and the
// greyscale settings, the one record no slot owns.
constexpr const wchar_t* kIccTagsEntry = L"UseICCTags";
constexpr const char* kIccTagsEntryType = "OUTPUT";

template <size_t N>
int IndexOf(const wchar_t* const (&table)[N], std::wstring_view key) {
  if (key.empty()) {
    return -1;
  }
  for (size_t i = 0; i < N; ++i) {
    if (key == table[i]) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

bool IsValidSlot(int slot) {
  return slot >= 0 && slot < static_cast<int>(std::size(kSlots));
}
bool IsValidUse(int use) {
  return use >= 0 && use < static_cast<int>(std::size(kUseKeys));
}
bool IsValidInfo(int info) {
  return info >= 1 && info < static_cast<int>(std::size(kInfoKeys));
}

bool IsRgb(int slot) {
  return slot == ICC_LA_RGB_PATH || slot == ICC_BMP_RGB_PATH;
}

// Photographs and screen colours convert perceptually, press (CMYK) and
// measured (Lab) colours relatively, so SetDefaults equals
// SetRenderingIntent(kDefaultRgbIntent, kDefaultCmykIntent) on those slots.
constexpr std::uint32_t kDefaultRgbIntent = ICC_INTENT_PERCEPTUAL;
constexpr std::uint32_t kDefaultCmykIntent = ICC_INTENT_RELATIVE;

std::uint32_t DefaultInputIntent(int slot) {
  return IsRgb(slot) ? kDefaultRgbIntent : kDefaultCmykIntent;
}

// --- paths ---------------------------------------------------------------

// Folded, with "/" as "\\", for comparing Windows paths.
std::wstring ComparablePath(std::wstring_view path) {
  std::wstring out = FoldCase(path);
  std::replace(out.begin(), out.end(), L'/', L'\\');
  return out;
}

bool StartsWithVariable(std::wstring_view path) {
  const auto& var = CPMICCProfileData::kSystemFolderVariable;
  return path.size() >= var.size() && EqualsNoCase(path.substr(0, var.size()), var);
}

std::wstring ExpandSystemFolder(const std::wstring& path) {
  if (!StartsWithVariable(path)) {
    return path;
  }
  return GetSystemFolder() + path.substr(CPMICCProfileData::kSystemFolderVariable.size());
}

// Removes every "\\4Color" and "\\6Color": the level the RIP's profile folders
// once had per ink count.
std::wstring RemoveInkCountFolders(std::wstring path) {
  for (const std::wstring_view folder : {std::wstring_view(L"\\4Color"), std::wstring_view(L"\\6Color")}) {
    for (size_t at = path.find(folder); at != std::wstring::npos; at = path.find(folder, at)) {
      path.erase(at, folder.size());
    }
  }
  return path;
}

// Repairs one path: true, with repaired set, when the expanded path is missing
// and the path without the ink-count folders exists.
bool FindMovedProfile(const std::wstring& stored, std::wstring& repaired) {
  const std::wstring expanded = ExpandSystemFolder(stored);
  if (expanded.empty() || FileExists(expanded)) {
    return false;
  }
  std::wstring stripped = RemoveInkCountFolders(expanded);
  if (stripped == expanded || !FileExists(stripped)) {
    return false;
  }
  repaired = std::move(stripped);
  return true;
}

// --- reading helpers -----------------------------------------------------

void ReadIntAttribute(const pugi::xml_node& node, const char* name, std::int32_t& field) {
  if (const pugi::xml_attribute attribute = node.attribute(name)) {
    field = attribute.as_int();
  }
}

void ReadUIntAttribute(const pugi::xml_node& node, const char* name, std::uint32_t& field) {
  if (const pugi::xml_attribute attribute = node.attribute(name)) {
    field = attribute.as_uint();
  }
}

void ReadBoolAttribute(const pugi::xml_node& node, const char* name, bool& field) {
  if (const pugi::xml_attribute attribute = node.attribute(name)) {
    field = attribute.as_bool();
  }
}

}  // namespace

// --- CICCInfo ------------------------------------------------------------

std::wstring CICCInfo::GetICCInfoKey(std::wstring_view pathKey) {
  for (const SlotRow& row : kSlots) {
    if (pathKey == row.pathKey) {
      return kInfoKeys[row.info];
    }
  }
  return {};
}

std::wstring CICCInfo::GetIntentStr(std::uint32_t intent) {
  return intent < std::size(kIntentNames) ? kIntentNames[intent] : L"";
}

int CICCInfo::IntentFromString(std::wstring_view text) {
  return IndexOf(kIntentNames, text);
}

void CICCInfo::WriteSettings(pugi::xml_node node) const {
  pugi::xml_node intentNode = xml::AppendElement(node, kTagIntent);
  xml::SetAttributeInt(intentNode, kAttrInIntent, inIntent);
  xml::SetAttributeInt(intentNode, kAttrOutIntent, outIntent);
  xml::SetAttributeInt(intentNode, kAttrMergeFactor, mergefactor);
  xml::SetAttributeInt(intentNode, kAttrChroma2, chroma2);

  pugi::xml_node exceptions = xml::AppendElement(node, kTagExceptions);
  xml::SetAttributeInt(exceptions, kAttrFlags, flags);
  xml::SetAttributeInt(exceptions, kAttrRange, range);

  pugi::xml_node linksNode = xml::AppendElement(node, kTagLinks);
  for (const std::wstring& link : links) {
    xml::AppendText(linksNode, kTagLink, link);
  }
}

void CICCInfo::WriteBlackAndInk(pugi::xml_node node) const {
  pugi::xml_node black = xml::AppendElement(node, kTagBlack);
  xml::SetAttributeInt(black, kAttrMode, blackMode);
  xml::SetAttributeInt(black, kAttrGcr, gcr);
  xml::SetAttributeInt(black, kAttrStart, start);
  xml::SetAttributeInt(black, kAttrWidth, width);
  xml::SetAttributeInt(black, kAttrInkSave, inksave);
  xml::SetAttributeBool(black, kAttrShadows, shadows);
  xml::SetAttributeInt(black, kAttrRange, blackRange);

  pugi::xml_node ink = xml::AppendElement(node, kTagInk);
  xml::SetAttributeInt(ink, kAttrMode, inkMode);
  xml::SetAttributeInt(ink, kAttrMaxInk, maxink);
  xml::SetAttributeInt(ink, kAttrMaxBlack, maxblack);
  xml::SetAttribute(ink, kAttrCustom, custom);
}

void CICCInfo::ReadSetting(const pugi::xml_node& child) {
  if (xml::IsNamed(child, kTagIntent)) {
    ReadIntAttribute(child, kAttrInIntent, inIntent);
    ReadIntAttribute(child, kAttrOutIntent, outIntent);
    ReadIntAttribute(child, kAttrMergeFactor, mergefactor);
    ReadIntAttribute(child, kAttrChroma2, chroma2);
  } else if (xml::IsNamed(child, kTagExceptions)) {
    ReadUIntAttribute(child, kAttrFlags, flags);
    ReadIntAttribute(child, kAttrRange, range);
  } else if (xml::IsNamed(child, kTagLinks)) {
    links.clear();
    for (const pugi::xml_node& link : child.children()) {
      if (xml::IsNamed(link, kTagLink)) {
        std::wstring name = xml::ReadText(link);
        if (!name.empty()) {
          links.push_back(std::move(name));
        }
      }
    }
  } else if (xml::IsNamed(child, kTagBlack)) {
    ReadIntAttribute(child, kAttrMode, blackMode);
    ReadIntAttribute(child, kAttrGcr, gcr);
    ReadIntAttribute(child, kAttrStart, start);
    ReadIntAttribute(child, kAttrWidth, width);
    ReadIntAttribute(child, kAttrInkSave, inksave);
    ReadBoolAttribute(child, kAttrShadows, shadows);
    ReadIntAttribute(child, kAttrRange, blackRange);
  } else if (xml::IsNamed(child, kTagInk)) {
    ReadIntAttribute(child, kAttrMode, inkMode);
    ReadIntAttribute(child, kAttrMaxInk, maxink);
    ReadIntAttribute(child, kAttrMaxBlack, maxblack);
    if (child.attribute(kAttrCustom)) {
      custom = xml::ReadAttribute(child, kAttrCustom);
    }
  }
}

void CICCInfo::WriteXML(pugi::xml_node parent, std::wstring_view key) const {
  if (key.empty()) {
    return;
  }
  pugi::xml_node node = xml::AppendElement(parent, kTagInfo);
  xml::SetAttribute(node, kAttrKey, key);
  WriteSettings(node);
}

bool CICCInfo::ReadXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kTagInfo)) {
    return false;
  }
  // The intent was once written by number or by name.
  if (const pugi::xml_attribute attribute = node.attribute(kAttrIntent)) {
    const int named = IntentFromString(xml::ReadAttribute(node, kAttrIntent));
    intent = named >= 0 ? static_cast<std::uint32_t>(named) : attribute.as_uint();
  }
  // Older black choices: preserving the black plane is the stronger promise
  // and wins over keeping pure black when a file sets both.
  if (node.attribute(kAttrPreserveK).as_bool()) {
    blackMode = ICC_BLACK_PRESERVE_PLANE;
  } else if (node.attribute(kAttrKeepK).as_bool()) {
    blackMode = ICC_BLACK_KEEP_PURE;
  }
  if (const pugi::xml_attribute attribute = node.attribute(kAttrPreserveCMY)) {
    if (attribute.as_bool()) {
      flags |= ICC_EXCEPTION_PURE_PRIMARIES;
    } else {
      flags &= ~ICC_EXCEPTION_PURE_PRIMARIES;
    }
  }
  // Elements come after the attributes so that a file holding both forms
  // ends with what its newer elements say.
  for (const pugi::xml_node& child : node.children()) {
    ReadSetting(child);
  }
  return true;
}

void CICCInfo::WritePMCXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kTagDeviceLink);
  xml::SetAttributeBool(node, kAttrDefault, isDefault);
  if (!configName.empty()) {
    xml::AppendText(node, kTagConfigName, configName);
  }
  xml::AppendBool(node, kTagDeletable, deletable);
  WriteSettings(node);
  WriteBlackAndInk(node);
}

bool CICCInfo::ReadPMCXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kTagDeviceLink)) {
    return false;
  }
  ReadBoolAttribute(node, kAttrDefault, isDefault);
  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, kTagConfigName)) {
      configName = xml::ReadText(child);
    } else if (xml::IsNamed(child, kTagDeletable)) {
      deletable = xml::ReadBool(child);
    } else {
      ReadSetting(child);
    }
  }
  return true;
}

// --- CPMICCProfileData ---------------------------------------------------

CPMICCProfileData::CPMICCProfileData() {
  SetDefaults();
}

void CPMICCProfileData::SetDefaults() {
  paths_ = {};
  used_ = {};
  infos_ = {};
  SetDefaultInputs();
  paths_[ICC_OUT_DEVICE_PATH] = L"Orvel Gen Inkjet.icm";
  for (int use = ICC_USE_LA_RGB; use <= ICC_USE_BMP_CMYK; ++use) {
    used_[use] = true;
  }
  // The default inputs give bitmaps their own profiles, which only take
  // effect with separate bitmap profiles on.
  used_[ICC_USE_SEPARATE_BITMAPS] = true;
  override_input_ = false;
  override_output_ = false;
  override_other_ = false;
  spot_color_matching_ = false;
  enabled_ = true;
  remembered_used_ = {};
  has_remembered_ = false;
}

void CPMICCProfileData::ResetInputSettings() {
  for (int slot = ICC_LA_RGB_PATH; slot <= ICC_BMP_CMYK_PATH; ++slot) {
    CICCInfo& info = infos_[kSlots[slot].info];
    info.SetDefaults();
    info.intent = DefaultInputIntent(slot);
  }
}

void CPMICCProfileData::SetDefaultInputs() {
  paths_[ICC_LA_RGB_PATH] = L"Orvel Vector RGB.icm";
  paths_[ICC_BMP_RGB_PATH] = L"Orvel Image RGB.icm";
  paths_[ICC_LA_CMYK_PATH] = L"Orvel Vector CMYK.icm";
  paths_[ICC_BMP_CMYK_PATH] = L"Orvel Image CMYK.icm";
  paths_[ICC_LA_LAB_PATH] = L"cielab.icm";
  paths_[ICC_BMP_LAB_PATH] = L"cielab.icm";
  ResetInputSettings();
}

void CPMICCProfileData::SetEnhancedInputs() {
  paths_[ICC_LA_RGB_PATH] = L"Orvel Unified RGB.icm";
  paths_[ICC_BMP_RGB_PATH] = L"Orvel Unified RGB.icm";
  paths_[ICC_LA_CMYK_PATH] = L"Orvel Vector CMYK.icm";
  paths_[ICC_BMP_CMYK_PATH] = L"Orvel Vector CMYK.icm";
  paths_[ICC_LA_LAB_PATH] = L"cielab.icm";
  paths_[ICC_BMP_LAB_PATH] = L"cielab.icm";
  ResetInputSettings();
}

void CPMICCProfileData::SetCustomInputProfiles(const std::wstring& laRgb, const std::wstring& laLab,
                                               const std::wstring& laCmyk, const std::wstring& bmpRgb,
                                               const std::wstring& bmpLab, const std::wstring& bmpCmyk) {
  SetICCPath(ICC_LA_RGB_PATH, laRgb);
  SetICCPath(ICC_LA_LAB_PATH, laLab);
  SetICCPath(ICC_LA_CMYK_PATH, laCmyk);
  SetICCPath(ICC_BMP_RGB_PATH, bmpRgb);
  SetICCPath(ICC_BMP_LAB_PATH, bmpLab);
  SetICCPath(ICC_BMP_CMYK_PATH, bmpCmyk);
  ResetInputSettings();
}

std::wstring CPMICCProfileData::PathStringFromEnum(int slot) {
  return IsValidSlot(slot) ? kSlots[slot].pathKey : L"";
}

ICC_PATH CPMICCProfileData::PathEnumFromString(std::wstring_view key) {
  if (key.empty()) {
    return ICC_PATH_UNKNOWN;
  }
  for (size_t slot = 0; slot < std::size(kSlots); ++slot) {
    if (key == kSlots[slot].pathKey) {
      return static_cast<ICC_PATH>(slot);
    }
  }
  return ICC_PATH_UNKNOWN;
}

std::wstring CPMICCProfileData::UseStringFromEnum(int use) {
  return IsValidUse(use) ? kUseKeys[use] : L"";
}

ICC_USE CPMICCProfileData::UseEnumFromString(std::wstring_view key) {
  return static_cast<ICC_USE>(IndexOf(kUseKeys, key));
}

std::wstring CPMICCProfileData::StringFromEnum(int info) {
  return IsValidInfo(info) ? kInfoKeys[info] : L"";
}

ICC_INFO CPMICCProfileData::EnumFromString(std::wstring_view key) {
  return static_cast<ICC_INFO>(IndexOf(kInfoKeys, key));
}

namespace {

// The slot a profile type names; -1 when unknown.
int SlotForType(std::wstring_view type, bool bitmap) {
  if (EqualsNoCase(type, L"SPOT")) {
    return ICC_SPT_DEVICE_PATH;
  }
  if (EqualsNoCase(type, L"OUTPUT")) {
    return ICC_OUT_DEVICE_PATH;
  }
  if (EqualsNoCase(type, L"CMYK")) {
    return bitmap ? ICC_BMP_CMYK_PATH : ICC_LA_CMYK_PATH;
  }
  if (EqualsNoCase(type, L"LAB")) {
    return bitmap ? ICC_BMP_LAB_PATH : ICC_LA_LAB_PATH;
  }
  if (EqualsNoCase(type, L"RGB")) {
    return bitmap ? ICC_BMP_RGB_PATH : ICC_LA_RGB_PATH;
  }
  return -1;
}

}  // namespace

std::wstring CPMICCProfileData::GetICCProfilePathKey(std::wstring_view type, bool bitmap) {
  return PathStringFromEnum(SlotForType(type, bitmap));
}

std::wstring CPMICCProfileData::GetICCProfileUsedKey(std::wstring_view type, bool bitmap) {
  const int slot = SlotForType(type, bitmap);
  return IsValidSlot(slot) ? kUseKeys[kSlots[slot].use] : L"";
}

std::wstring CPMICCProfileData::GetICCPath(int slot) const {
  return IsValidSlot(slot) ? paths_[slot] : L"";
}

std::wstring CPMICCProfileData::GetICCPath(std::wstring_view pathKey) const {
  return GetICCPath(PathEnumFromString(pathKey));
}

void CPMICCProfileData::SetICCPath(int slot, const std::wstring& path) {
  if (!IsValidSlot(slot)) {
    return;
  }
  // Without a RIP folder the system folder would be the bare "system\\", which
  // relative paths could start with by chance.
  const std::wstring system = GetSystemFolder();
  if (!GetTarnRipFolder().empty() && path.size() > system.size() &&
      ComparablePath(std::wstring_view(path).substr(0, system.size())) == ComparablePath(system)) {
    paths_[slot] = std::wstring(kSystemFolderVariable) + path.substr(system.size());
  } else {
    paths_[slot] = path;
  }
}

void CPMICCProfileData::SetICCPath(std::wstring_view pathKey, const std::wstring& path) {
  SetICCPath(PathEnumFromString(pathKey), path);
}

bool CPMICCProfileData::GetICCAbsolutePath(int slot, std::wstring& out) const {
  if (!IsValidSlot(slot)) {
    out.clear();
    return false;
  }
  out = ExpandSystemFolder(paths_[slot]);
  return true;
}

bool CPMICCProfileData::GetICCAbsolutePath(std::wstring_view pathKey, std::wstring& out) const {
  return GetICCAbsolutePath(PathEnumFromString(pathKey), out);
}

bool CPMICCProfileData::UpdateICCPath(int slot, std::wstring_view from, std::wstring_view to) {
  if (!IsValidSlot(slot) || from.empty()) {
    return false;
  }
  const std::wstring& path = paths_[slot];
  const std::wstring folded = FoldCase(path);
  const std::wstring foldedFrom = FoldCase(from);
  std::wstring result;
  size_t copied = 0;
  for (size_t at = folded.find(foldedFrom); at != std::wstring::npos; at = folded.find(foldedFrom, copied)) {
    result.append(path, copied, at - copied).append(to);
    copied = at + from.size();
  }
  if (copied == 0) {
    return false;
  }
  result.append(path, copied, std::wstring::npos);
  paths_[slot] = std::move(result);
  return true;
}

bool CPMICCProfileData::RepairMovedProfilePaths() {
  bool changed = false;
  std::wstring repaired;
  if (FindMovedProfile(paths_[ICC_LA_RGB_PATH], repaired)) {
    paths_[ICC_LA_RGB_PATH] = repaired;
    // The other inputs moved with it; they are stored whether or not their
    // files exist, so that one missing profile shows up as missing.
    for (int slot = ICC_LA_LAB_PATH; slot <= ICC_BMP_CMYK_PATH; ++slot) {
      paths_[slot] = RemoveInkCountFolders(ExpandSystemFolder(paths_[slot]));
    }
    changed = true;
  }
  if (FindMovedProfile(paths_[ICC_OUT_DEVICE_PATH], repaired)) {
    paths_[ICC_OUT_DEVICE_PATH] = repaired;
    changed = true;
  }
  return changed;
}

bool CPMICCProfileData::GetICCUsed(int use) const {
  return IsValidUse(use) && used_[use];
}

bool CPMICCProfileData::GetICCUsed(std::wstring_view key) const {
  const int use = UseEnumFromString(key);
  if (use != ICC_USE_UNKNOWN) {
    return used_[use];
  }
  const int slot = PathEnumFromString(key);
  return IsValidSlot(slot) && used_[kSlots[slot].use];
}

void CPMICCProfileData::SetICCUsed(int use, bool used) {
  if (IsValidUse(use)) {
    used_[use] = used;
  }
}

void CPMICCProfileData::SetICCUsed(std::wstring_view key, bool used) {
  const int use = UseEnumFromString(key);
  if (use != ICC_USE_UNKNOWN) {
    used_[use] = used;
    return;
  }
  const int slot = PathEnumFromString(key);
  if (IsValidSlot(slot)) {
    used_[kSlots[slot].use] = used;
  }
}

bool CPMICCProfileData::GetICCInfo(int info, CICCInfo& out) const {
  if (!IsValidInfo(info)) {
    return false;
  }
  out = infos_[info];
  return true;
}

bool CPMICCProfileData::GetICCInfo(std::wstring_view key, CICCInfo& out) const {
  return GetICCInfo(EnumFromString(key), out);
}

void CPMICCProfileData::SetICCInfo(int info, const CICCInfo& settings) {
  if (IsValidInfo(info)) {
    infos_[info] = settings;
  }
}

void CPMICCProfileData::SetICCInfo(std::wstring_view key, const CICCInfo& settings) {
  SetICCInfo(EnumFromString(key), settings);
}

void CPMICCProfileData::SetRenderingIntent(std::uint32_t rgbIntent, std::uint32_t cmykIntent) {
  for (const int slot : {ICC_LA_RGB_PATH, ICC_BMP_RGB_PATH, ICC_LA_CMYK_PATH, ICC_BMP_CMYK_PATH}) {
    CICCInfo& info = infos_[kSlots[slot].info];
    info.SetDefaults();
    info.intent = IsRgb(slot) ? rgbIntent : cmykIntent;
  }
}

void CPMICCProfileData::DisableICCProfiles() {
  // A second disable must not remember the cleared flags over the real ones.
  if (!has_remembered_) {
    for (int use = ICC_USE_LA_RGB; use <= ICC_USE_BMP_CMYK; ++use) {
      remembered_used_[use] = used_[use];
    }
    has_remembered_ = true;
  }
  for (int use = ICC_USE_LA_RGB; use <= ICC_USE_BMP_CMYK; ++use) {
    used_[use] = false;
  }
  enabled_ = false;
}

void CPMICCProfileData::ReEnableICCProfiles() {
  if (has_remembered_) {
    for (int use = ICC_USE_LA_RGB; use <= ICC_USE_BMP_CMYK; ++use) {
      used_[use] = remembered_used_[use];
    }
    has_remembered_ = false;
  }
  enabled_ = true;
}

void CPMICCProfileData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kTagProfiles);
  xml::SetAttributeBool(node, kAttrSepBitmaps, used_[ICC_USE_SEPARATE_BITMAPS]);
  xml::SetAttributeBool(node, kAttrGrayscaleMode, used_[ICC_USE_GRAYSCALE_MODE]);
  xml::SetAttributeBool(node, kAttrOverrideInput, override_input_);
  xml::SetAttributeBool(node, kAttrOverrideOutput, override_output_);
  xml::SetAttributeBool(node, kAttrOverrideOther, override_other_);
  xml::SetAttributeBool(node, kAttrSpotColorMatching, spot_color_matching_);

  const auto writeEntry = [&node](std::wstring_view name, const char* type, const std::wstring& path,
                                  bool used, const CICCInfo& info, std::wstring_view infoKey) {
    pugi::xml_node entry = xml::AppendElement(node, kTagProfile);
    xml::SetAttribute(entry, kAttrName, name);
    entry.append_attribute(kAttrType).set_value(type);
    xml::AppendText(entry, kTagPath, path);
    xml::AppendBool(entry, kTagUsed, used);
    info.WriteXML(entry, infoKey);
  };
  for (const ICC_PATH slot : kWriteOrder) {
    const SlotRow& row = kSlots[slot];
    writeEntry(row.pathKey, row.type, paths_[slot], used_[row.use], infos_[row.info], kInfoKeys[row.info]);
  }
  writeEntry(kIccTagsEntry, kIccTagsEntryType, std::wstring(), used_[ICC_USE_ICC_TAGS],
             infos_[ICC_INFO_GREYSCALE], kInfoKeys[ICC_INFO_GREYSCALE]);
}

void CPMICCProfileData::ReadICCProfile(const pugi::xml_node& node) {
  const std::wstring name = xml::ReadAttribute(node, kAttrName);
  const int slot = PathEnumFromString(name);
  int use = ICC_USE_UNKNOWN;
  int info = ICC_INFO_UNKNOWN;
  if (IsValidSlot(slot)) {
    use = kSlots[slot].use;
    info = kSlots[slot].info;
  } else if (name == kIccTagsEntry) {
    use = ICC_USE_ICC_TAGS;
    info = ICC_INFO_GREYSCALE;
  } else {
    return;
  }
  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, kTagPath)) {
      if (IsValidSlot(slot)) {
        paths_[slot] = xml::ReadText(child);
      }
    } else if (xml::IsNamed(child, kTagUsed)) {
      used_[use] = xml::ReadBool(child);
    } else if (xml::IsNamed(child, kTagInfo)) {
      infos_[info].ReadXML(child);
    }
  }
}

bool CPMICCProfileData::ReadXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kTagProfiles)) {
    return false;
  }
  SetDefaults();
  ReadBoolAttribute(node, kAttrSepBitmaps, used_[ICC_USE_SEPARATE_BITMAPS]);
  ReadBoolAttribute(node, kAttrGrayscaleMode, used_[ICC_USE_GRAYSCALE_MODE]);
  ReadBoolAttribute(node, kAttrOverrideInput, override_input_);
  ReadBoolAttribute(node, kAttrOverrideOutput, override_output_);
  ReadBoolAttribute(node, kAttrOverrideOther, override_other_);
  ReadBoolAttribute(node, kAttrSpotColorMatching, spot_color_matching_);
  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, kTagProfile)) {
      ReadICCProfile(child);
    }
  }
  return true;
}

bool CPMICCProfileData::operator==(const CPMICCProfileData& other) const {
  return paths_ == other.paths_ && used_ == other.used_ && infos_ == other.infos_ &&
         override_input_ == other.override_input_ && override_output_ == other.override_output_ &&
         override_other_ == other.override_other_ && spot_color_matching_ == other.spot_color_matching_;
}

}  // namespace tarn
