// Readers of the small definition records of a printer definition, e.g.
//
//   <NCOLOR2>
//   	<NAME>CMYKOG</NAME>
//   	<DISPLAYNAME>CMYK + Orange Green</DISPLAYNAME>
//   	<BASEMODEL>CMYK</BASEMODEL>
//   	<PLANE keyword="1" color="1" profile="0">Cyan</PLANE>
//   </NCOLOR2>
//
// The full layout is in docs/formats/printer-definition.md.

#include "tarn/printer/definitions.h"

#include "tarn/foundation/format.h"
#include "tarn/foundation/limits.h"
#include "tarn/foundation/plates.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {

namespace {

// Colour model.
constexpr const char* kColorName = "NAME";
constexpr const char* kColorDisplayName = "DISPLAYNAME";
constexpr const char* kColorBaseModel = "BASEMODEL";
constexpr const char* kColorPlane = "PLANE";
constexpr const char* kPlaneKeyword = "keyword";
constexpr const char* kPlaneColor = "color";
constexpr const char* kPlaneProfile = "profile";

// Printer option.
constexpr const char* kCustomName = "NAME";
constexpr const char* kCustomProc = "PROC";
constexpr const char* kCustomDefault = "DEFAULT";
constexpr const char* kCustomChoice = "CHOICE";
constexpr const char* kCustomChoiceValue = "value";
constexpr const char* kCustomNested = "CUSTOM";
constexpr const char* kCustomHTM = "htm";

// Page size.
constexpr const char* kPageName = "PAGENAME";
constexpr const char* kPagePS = "PAGEPS";
constexpr const char* kPageWidth = "PAGEWIDTH";
constexpr const char* kPageDepth = "PAGEDEPTH";
constexpr const char* kPageLeft = "LEFTMARG";
constexpr const char* kPageRight = "RIGHTMARG";
constexpr const char* kPageTop = "TOPMARG";
constexpr const char* kPageBottom = "BOTMARG";

// Dot profile.
constexpr const char* kDotName = "NAME";
constexpr const char* kDotSize = "SIZE";
constexpr const char* kDotUsage = "USAGE";
constexpr const char* kDotResolution = "RESOLUTION";

// Spot type.
constexpr const char* kSpotName = "NAME";
constexpr const char* kSpotShape = "SHAPE";
constexpr const char* kSpotFrequency = "FREQUENCY";
constexpr const char* kSpotAngle = "ANGLE";
constexpr const char* kSpotVisible = "visible";

// Data-monitor button.
constexpr const char* kButtonName = "NAME";
constexpr const char* kButtonLabel = "LABEL";
constexpr const char* kButtonCommand = "COMMAND";
constexpr const char* kButtonToolTip = "TOOLTIP";
constexpr const char* kButtonConfirm = "CONFIRM";

// SNMP.
constexpr const char* kSNMPEnabled = "enabled";
constexpr const char* kSNMPCommunity = "COMMUNITY";
constexpr const char* kSNMPPort = "PORT";
constexpr const char* kSNMPTimeout = "TIMEOUT";
constexpr const char* kSNMPStatus = "STATUSOID";
constexpr const char* kSNMPInk = "INKOID";
constexpr const char* kSNMPInkName = "name";
constexpr const char* kSNMPNameEntry = "NAME";

// Ink list.
constexpr const char* kInk = "INK";
constexpr const char* kInkName = "name";
constexpr const char* kInkColor = "color";

// ISO Lab references.
constexpr const char* kLabStandard = "standard";
constexpr const char* kLab = "LAB";
constexpr const char* kLabName = "name";
constexpr const char* kLabL = "L";
constexpr const char* kLabA = "a";
constexpr const char* kLabB = "b";

constexpr int kSNMPDefaultPort = 161;
constexpr int kSNMPDefaultTimeout = 1000;

// The process plates the RIP knows by name without any colour-model help.
bool IsProcessPlate(const std::wstring& name) {
  return plates::IsProcessPlane(name);
}

bool HasAttribute(const pugi::xml_node& node, const char* name) {
  return !node.attribute(name).empty();
}

}  // namespace

// --- CColorDef -------------------------------------------------------------

void CColorDef::SetDefaults() {
  *this = CColorDef();
}

bool CColorDef::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!node) {
    return false;
  }
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kColorName)) {
      m_name = xml::ReadText(child);
    } else if (xml::IsNamed(child, kColorDisplayName)) {
      m_displayName = xml::ReadText(child);
    } else if (xml::IsNamed(child, kColorBaseModel)) {
      m_baseModel = xml::ReadText(child);
    } else if (xml::IsNamed(child, kColorPlane)) {
      CColorPlaneDef plane;
      plane.name = xml::ReadText(child);
      plane.keyword = HasAttribute(child, kPlaneKeyword) ? xml::ReadAttributeBool(child, kPlaneKeyword)
                                                         : IsProcessPlate(plane.name);
      plane.color = HasAttribute(child, kPlaneColor) ? xml::ReadAttributeBool(child, kPlaneColor) : true;
      plane.profile = HasAttribute(child, kPlaneProfile) ? xml::ReadAttributeInt(child, kPlaneProfile) : -1;
      AddPlane(plane);
    }
  }
  return true;
}

std::vector<std::wstring> CColorDef::GetPlanes() const {
  std::vector<std::wstring> names;
  names.reserve(m_planes.size());
  for (const CColorPlaneDef& plane : m_planes) {
    names.push_back(plane.name);
  }
  return names;
}

const CColorPlaneDef* CColorDef::FindPlane(const std::wstring& name) const {
  for (const CColorPlaneDef& plane : m_planes) {
    if (plane.name == name) {
      return &plane;
    }
  }
  return nullptr;
}

bool CColorDef::AddPlane(const CColorPlaneDef& plane) {
  if (plane.name.empty()) {
    return false;
  }
  m_planes.push_back(plane);
  return true;
}

// --- CCustomDef ------------------------------------------------------------

void CCustomDef::SetDefaults() {
  *this = CCustomDef();
}

bool CCustomDef::ReadXML(const pugi::xml_node& node) {
  return ReadXML(node, 1);
}

bool CCustomDef::ReadXML(const pugi::xml_node& node, int depth) {
  SetDefaults();
  if (!node) {
    return false;
  }
  // Loaded files are bounded already; a node built in memory may not be.
  if (depth > kMaxNestingDepth) {
    ShowMessage(Format(L"Printer options are nested more than %d levels deep.", kMaxNestingDepth),
                L"Printer definition");
    return false;
  }
  m_htm = xml::ReadAttributeBool(node, kCustomHTM);
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kCustomName)) {
      m_name = xml::ReadText(child);
    } else if (xml::IsNamed(child, kCustomProc)) {
      m_proc = xml::ReadText(child);
    } else if (xml::IsNamed(child, kCustomDefault)) {
      m_default = xml::ReadText(child);
    } else if (xml::IsNamed(child, kCustomChoice)) {
      CCustomChoice choice;
      choice.label = xml::ReadText(child);
      choice.value = HasAttribute(child, kCustomChoiceValue) ? xml::ReadAttribute(child, kCustomChoiceValue)
                                                             : choice.label;
      if (!choice.value.empty()) {
        m_choices.push_back(std::move(choice));
      }
    } else if (xml::IsNamed(child, kCustomNested)) {
      CCustomDef option;
      if (!option.ReadXML(child, depth + 1)) {
        SetDefaults();
        return false;
      }
      if (!option.GetName().empty()) {
        m_options.push_back(std::move(option));
      }
    }
  }
  return true;
}

const CCustomChoice* CCustomDef::FindChoice(const std::wstring& value) const {
  for (const CCustomChoice& choice : m_choices) {
    if (choice.value == value) {
      return &choice;
    }
  }
  return nullptr;
}

// --- CPageSizeDef ----------------------------------------------------------

void CPageSizeDef::SetDefaults() {
  *this = CPageSizeDef();
}

bool CPageSizeDef::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!node) {
    return false;
  }
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kPageName)) {
      m_name = xml::ReadText(child);
    } else if (xml::IsNamed(child, kPagePS)) {
      m_psName = xml::ReadText(child);
    } else if (xml::IsNamed(child, kPageWidth)) {
      m_width = xml::ReadReal(child);
    } else if (xml::IsNamed(child, kPageDepth)) {
      m_depth = xml::ReadReal(child);
    } else if (xml::IsNamed(child, kPageLeft)) {
      m_left = xml::ReadReal(child);
    } else if (xml::IsNamed(child, kPageRight)) {
      m_right = xml::ReadReal(child);
    } else if (xml::IsNamed(child, kPageTop)) {
      m_top = xml::ReadReal(child);
    } else if (xml::IsNamed(child, kPageBottom)) {
      m_bottom = xml::ReadReal(child);
    }
  }
  return true;
}

// --- CDotProfileDef --------------------------------------------------------

void CDotProfileDef::SetDefaults() {
  *this = CDotProfileDef();
}

bool CDotProfileDef::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!node) {
    return false;
  }
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kDotName)) {
      m_name = xml::ReadText(child);
    } else if (xml::IsNamed(child, kDotSize)) {
      m_size = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kDotUsage)) {
      m_usage = xml::ReadReal(child);
    } else if (xml::IsNamed(child, kDotResolution)) {
      m_resolution = xml::ReadText(child);
    }
  }
  return true;
}

bool CDotProfileDef::AppliesTo(const std::wstring& label) const {
  return m_resolution.empty() || EqualsNoCase(m_resolution, label);
}

// --- CSpotDef --------------------------------------------------------------

void CSpotDef::SetDefaults() {
  *this = CSpotDef();
}

bool CSpotDef::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!node) {
    return false;
  }
  if (HasAttribute(node, kSpotVisible)) {
    m_visible = xml::ReadAttributeBool(node, kSpotVisible);
  }
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kSpotName)) {
      m_name = xml::ReadText(child);
    } else if (xml::IsNamed(child, kSpotShape)) {
      m_shape = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kSpotFrequency)) {
      m_frequency = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kSpotAngle)) {
      m_angle = xml::ReadInt(child);
    }
  }
  return true;
}

// --- CButtonDef ------------------------------------------------------------

void CButtonDef::SetDefaults() {
  *this = CButtonDef();
}

bool CButtonDef::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!node) {
    return false;
  }
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kButtonName)) {
      m_name = xml::ReadText(child);
    } else if (xml::IsNamed(child, kButtonLabel)) {
      m_label = xml::ReadText(child);
    } else if (xml::IsNamed(child, kButtonCommand)) {
      m_command = xml::ReadText(child);
    } else if (xml::IsNamed(child, kButtonToolTip)) {
      m_toolTip = xml::ReadText(child);
    } else if (xml::IsNamed(child, kButtonConfirm)) {
      m_confirm = xml::ReadBool(child);
    }
  }
  return true;
}

// --- CSNMPData -------------------------------------------------------------

void CSNMPData::SetDefaults() {
  m_enabled = false;
  m_community = L"public";
  m_port = kSNMPDefaultPort;
  m_timeout = kSNMPDefaultTimeout;
  m_statusOID.clear();
  m_inkOIDs.clear();
}

bool CSNMPData::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!node) {
    return false;
  }
  // An "SNMP" element turns the queries on unless it says otherwise.
  m_enabled = HasAttribute(node, kSNMPEnabled) ? xml::ReadAttributeBool(node, kSNMPEnabled) : true;
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kSNMPCommunity)) {
      m_community = xml::ReadText(child);
    } else if (xml::IsNamed(child, kSNMPPort)) {
      m_port = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kSNMPTimeout)) {
      m_timeout = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kSNMPStatus)) {
      m_statusOID = xml::ReadText(child);
    } else if (xml::IsNamed(child, kSNMPInk)) {
      std::wstring name = xml::ReadAttribute(child, kSNMPInkName);
      std::wstring oid = xml::ReadText(child);
      if (!name.empty() && !oid.empty()) {
        m_inkOIDs.emplace_back(std::move(name), std::move(oid));
      }
    }
  }
  return true;
}

// --- CSNMPName -------------------------------------------------------------

bool CSNMPName::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!node) {
    return false;
  }
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kSNMPNameEntry)) {
      std::wstring name = xml::ReadText(child);
      if (!name.empty()) {
        m_names.push_back(std::move(name));
      }
    }
  }
  return true;
}

bool CSNMPName::Matches(const std::wstring& reported) const {
  for (const std::wstring& name : m_names) {
    if (reported.size() >= name.size() &&
        EqualsNoCase(std::wstring_view(reported).substr(0, name.size()), name)) {
      return true;
    }
  }
  return false;
}

// --- CInkList --------------------------------------------------------------

bool CInkList::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!node) {
    return false;
  }
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kInk)) {
      CInkDef ink;
      ink.name = xml::ReadAttribute(child, kInkName);
      ink.label = xml::ReadText(child);
      ink.color = xml::ReadAttribute(child, kInkColor);
      if (!ink.name.empty()) {
        m_inks.push_back(std::move(ink));
      }
    }
  }
  return true;
}

const CInkDef* CInkList::Find(const std::wstring& name) const {
  for (const CInkDef& ink : m_inks) {
    if (EqualsNoCase(ink.name, name)) {
      return &ink;
    }
  }
  return nullptr;
}

// --- CISOLABRef ------------------------------------------------------------

void CISOLABRef::SetDefaults() {
  m_standard.clear();
  m_references.clear();
}

bool CISOLABRef::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!node) {
    return false;
  }
  m_standard = xml::ReadAttribute(node, kLabStandard);
  for (pugi::xml_node child : node.children()) {
    if (xml::IsNamed(child, kLab)) {
      CLabReference reference;
      reference.name = xml::ReadAttribute(child, kLabName);
      reference.L = xml::ReadAttributeReal(child, kLabL);
      reference.a = xml::ReadAttributeReal(child, kLabA);
      reference.b = xml::ReadAttributeReal(child, kLabB);
      if (!reference.name.empty()) {
        m_references.push_back(std::move(reference));
      }
    }
  }
  return true;
}

const CLabReference* CISOLABRef::Find(const std::wstring& name) const {
  for (const CLabReference& reference : m_references) {
    if (EqualsNoCase(reference.name, name)) {
      return &reference;
    }
  }
  return nullptr;
}

}  // namespace tarn
