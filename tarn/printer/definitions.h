#pragma once

// The small definition records of a printer definition file: colour models,
// printer options, page sizes, dot profiles, spot types, data-monitor buttons,
// SNMP settings and names, the ink list and the ISO Lab references. They are
// read from the file and never written; docs/formats/printer-definition.md
// gives the element layout of each with a complete example.
//
// Each reader restores the defaults first, skips unknown children and returns
// false only for a null node. Whole numbers and reals that do not parse read
// as 0, as pugixml's conversions do.

#include <pugixml.hpp>

#include <string>
#include <utility>
#include <vector>

#include "tarn/foundation/export.h"

namespace tarn {

// One plane (ink channel) of a colour model.
struct TARN_API CColorPlaneDef {
  std::wstring name;
  // The RIP knows the plane by its name alone (a process or extended-gamut
  // ink), so its separation needs no spot-colour set-up.
  bool keyword = false;
  // The plane carries image colour; white, clear and primer planes do not.
  bool color = true;
  // Fence-point profile position of the plane (0..8); -1 for none.
  int profile = -1;

  bool operator==(const CColorPlaneDef&) const = default;
};

// A colour model ("NCOLOR2"): its name, a second (display) name, the base
// model it extends, and its planes in print order.
class TARN_API CColorDef {
 public:
  CColorDef() = default;
  virtual ~CColorDef() = default;
  CColorDef(const CColorDef&) = default;
  CColorDef& operator=(const CColorDef&) = default;
  CColorDef(CColorDef&&) noexcept = default;
  CColorDef& operator=(CColorDef&&) noexcept = default;

  void SetDefaults();
  // Reads the element; false only for a null node. Nameless planes are skipped.
  bool ReadXML(const pugi::xml_node& node);

  const std::wstring& GetName() const { return m_name; }
  // The second name, what an editor shows; CColorMap can look a model up by it.
  const std::wstring& GetDisplayName() const { return m_displayName; }
  // The model this one extends ("CMYK" for a six-colour model); empty for none.
  const std::wstring& GetBaseModel() const { return m_baseModel; }

  // The plane names in print order.
  std::vector<std::wstring> GetPlanes() const;
  const std::vector<CColorPlaneDef>& GetPlaneDefs() const { return m_planes; }
  // The plane of that name (exact comparison), or null.
  const CColorPlaneDef* FindPlane(const std::wstring& name) const;

  void SetName(const std::wstring& name) { m_name = name; }
  void SetDisplayName(const std::wstring& name) { m_displayName = name; }
  void SetBaseModel(const std::wstring& model) { m_baseModel = model; }
  // Appends a plane; a plane without a name is refused (false).
  bool AddPlane(const CColorPlaneDef& plane);

  bool operator==(const CColorDef&) const = default;

 private:
  std::wstring m_name;
  std::wstring m_displayName;
  std::wstring m_baseModel;
  std::vector<CColorPlaneDef> m_planes;
};

// One value a printer option can take, with the text the user sees.
struct TARN_API CCustomChoice {
  std::wstring value;
  std::wstring label;

  bool operator==(const CCustomChoice&) const = default;
};

// A printer option ("CUSTOM"): its display name (the map key), its keyword
// (the first field: the option name a print mode stores and the PostScript
// set-up writes), its choices, its default and the options nested under it.
class TARN_API CCustomDef {
 public:
  CCustomDef() = default;
  virtual ~CCustomDef() = default;
  CCustomDef(const CCustomDef&) = default;
  CCustomDef& operator=(const CCustomDef&) = default;
  CCustomDef(CCustomDef&&) noexcept = default;
  CCustomDef& operator=(CCustomDef&&) noexcept = default;

  void SetDefaults();
  // Reads the element and its nested "CUSTOM" children; false for a null node,
  // and, with a message, for options nested more than kMaxNestingDepth levels
  // deep (limits.h). Nested options without a name are skipped.
  bool ReadXML(const pugi::xml_node& node);

  const std::wstring& GetName() const { return m_name; }
  const std::wstring& GetProc() const { return m_proc; }
  const std::wstring& GetDefault() const { return m_default; }
  const std::vector<CCustomChoice>& GetChoices() const { return m_choices; }
  // The choice with that value (exact comparison), or null.
  const CCustomChoice* FindChoice(const std::wstring& value) const;
  // Options that belong to this one (shown under it in an editor).
  const std::vector<CCustomDef>& GetOptions() const { return m_options; }
  std::vector<CCustomDef>& GetOptions() { return m_options; }
  // The option selects the HTM print-mode workflow (see CPrinterData::IsHTMPrinter).
  bool IsHTM() const { return m_htm; }

  void SetName(const std::wstring& name) { m_name = name; }
  void SetProc(const std::wstring& proc) { m_proc = proc; }
  void SetDefault(const std::wstring& value) { m_default = value; }
  void SetHTM(bool htm) { m_htm = htm; }
  void AddChoice(const CCustomChoice& choice) { m_choices.push_back(choice); }
  void AddOption(const CCustomDef& option) { m_options.push_back(option); }

  bool operator==(const CCustomDef&) const = default;

 private:
  bool ReadXML(const pugi::xml_node& node, int depth);

  std::wstring m_name;
  std::wstring m_proc;
  std::wstring m_default;
  bool m_htm = false;
  std::vector<CCustomChoice> m_choices;
  std::vector<CCustomDef> m_options;
};

// A page size ("PAGESIZE"): printable area and margins, in inches.
class TARN_API CPageSizeDef {
 public:
  CPageSizeDef() = default;
  virtual ~CPageSizeDef() = default;
  CPageSizeDef(const CPageSizeDef&) = default;
  CPageSizeDef& operator=(const CPageSizeDef&) = default;
  CPageSizeDef(CPageSizeDef&&) noexcept = default;
  CPageSizeDef& operator=(CPageSizeDef&&) noexcept = default;

  void SetDefaults();
  // Reads the element; false only for a null node.
  bool ReadXML(const pugi::xml_node& node);

  // "PAGENAME", the map key.
  const std::wstring& GetName() const { return m_name; }
  // "PAGEPS", the page's PostScript name.
  const std::wstring& GetPSName() const { return m_psName; }
  double GetWidth() const { return m_width; }
  double GetDepth() const { return m_depth; }
  double GetLeftMargin() const { return m_left; }
  double GetRightMargin() const { return m_right; }
  double GetTopMargin() const { return m_top; }
  double GetBottomMargin() const { return m_bottom; }
  // The sheet: printable size plus both margins.
  double GetFullWidth() const { return m_width + m_left + m_right; }
  double GetFullDepth() const { return m_depth + m_bottom + m_top; }

  void SetName(const std::wstring& name) { m_name = name; }
  void SetPSName(const std::wstring& name) { m_psName = name; }
  void SetSize(double width, double depth) {
    m_width = width;
    m_depth = depth;
  }
  void SetMargins(double left, double right, double top, double bottom) {
    m_left = left;
    m_right = right;
    m_top = top;
    m_bottom = bottom;
  }

  bool operator==(const CPageSizeDef&) const = default;

 private:
  std::wstring m_name;
  std::wstring m_psName;
  double m_width = 0.0;
  double m_depth = 0.0;
  double m_left = 0.0;
  double m_right = 0.0;
  double m_top = 0.0;
  double m_bottom = 0.0;
};

// A dot profile ("DOTPROFILE"): one dot size of the print head and how much of
// it a new print mode uses, optionally limited to one resolution.
class TARN_API CDotProfileDef {
 public:
  CDotProfileDef() = default;
  virtual ~CDotProfileDef() = default;
  CDotProfileDef(const CDotProfileDef&) = default;
  CDotProfileDef& operator=(const CDotProfileDef&) = default;
  CDotProfileDef(CDotProfileDef&&) noexcept = default;
  CDotProfileDef& operator=(CDotProfileDef&&) noexcept = default;

  void SetDefaults();
  // Reads the element; false only for a null node.
  bool ReadXML(const pugi::xml_node& node);

  const std::wstring& GetName() const { return m_name; }
  int GetSize() const { return m_size; }
  double GetUsage() const { return m_usage; }
  // The resolution (label) the profile belongs to; empty for every resolution.
  const std::wstring& GetResolution() const { return m_resolution; }
  // True when the profile applies to the resolution labelled label (ignoring case).
  bool AppliesTo(const std::wstring& label) const;

  void SetName(const std::wstring& name) { m_name = name; }
  void SetSize(int size) { m_size = size; }
  void SetUsage(double usage) { m_usage = usage; }
  void SetResolution(const std::wstring& label) { m_resolution = label; }

  bool operator==(const CDotProfileDef&) const = default;

 private:
  std::wstring m_name;
  int m_size = 0;
  double m_usage = 1.0;
  std::wstring m_resolution;
};

// A spot type ("SPOT"): a halftone dot the printer offers, with its shape
// index (the halftone shape table), frequency and angle.
class TARN_API CSpotDef {
 public:
  CSpotDef() = default;
  virtual ~CSpotDef() = default;
  CSpotDef(const CSpotDef&) = default;
  CSpotDef& operator=(const CSpotDef&) = default;
  CSpotDef(CSpotDef&&) noexcept = default;
  CSpotDef& operator=(CSpotDef&&) noexcept = default;

  void SetDefaults();
  // Reads the element; false only for a null node.
  bool ReadXML(const pugi::xml_node& node);

  const std::wstring& GetName() const { return m_name; }
  int GetShape() const { return m_shape; }
  int GetFrequency() const { return m_frequency; }
  int GetAngle() const { return m_angle; }
  bool IsVisible() const { return m_visible; }

  void SetName(const std::wstring& name) { m_name = name; }

  bool operator==(const CSpotDef&) const = default;

 private:
  std::wstring m_name;
  int m_shape = 0;
  int m_frequency = 0;
  int m_angle = 0;
  bool m_visible = true;
};

// A data-monitor button ("DMBUTTON"): a command the operator can send to the
// printer from the data monitor.
class TARN_API CButtonDef {
 public:
  CButtonDef() = default;
  virtual ~CButtonDef() = default;
  CButtonDef(const CButtonDef&) = default;
  CButtonDef& operator=(const CButtonDef&) = default;
  CButtonDef(CButtonDef&&) noexcept = default;
  CButtonDef& operator=(CButtonDef&&) noexcept = default;

  void SetDefaults();
  // Reads the element; false only for a null node.
  bool ReadXML(const pugi::xml_node& node);

  const std::wstring& GetName() const { return m_name; }
  // The button's caption; its name when the file gives none.
  const std::wstring& GetLabel() const { return m_label.empty() ? m_name : m_label; }
  const std::wstring& GetCommand() const { return m_command; }
  const std::wstring& GetToolTip() const { return m_toolTip; }
  // The operator must confirm before the command is sent.
  bool NeedsConfirmation() const { return m_confirm; }

  void SetName(const std::wstring& name) { m_name = name; }

  bool operator==(const CButtonDef&) const = default;

 private:
  std::wstring m_name;
  std::wstring m_label;
  std::wstring m_command;
  std::wstring m_toolTip;
  bool m_confirm = false;
};

// How the RIP asks a network printer for its state over SNMP ("SNMP").
class TARN_API CSNMPData {
 public:
  CSNMPData() { SetDefaults(); }

  void SetDefaults();
  // Reads the element; false only for a null node. Ink entries without a name
  // or an object identifier are skipped.
  bool ReadXML(const pugi::xml_node& node);

  bool IsEnabled() const { return m_enabled; }
  const std::wstring& GetCommunity() const { return m_community; }
  int GetPort() const { return m_port; }
  int GetTimeout() const { return m_timeout; }  // milliseconds
  const std::wstring& GetStatusOID() const { return m_statusOID; }
  // (ink name, object identifier of its level) in file order.
  const std::vector<std::pair<std::wstring, std::wstring>>& GetInkOIDs() const { return m_inkOIDs; }

  bool operator==(const CSNMPData&) const = default;

 private:
  bool m_enabled = false;
  std::wstring m_community;
  int m_port = 0;
  int m_timeout = 0;
  std::wstring m_statusOID;
  std::vector<std::pair<std::wstring, std::wstring>> m_inkOIDs;
};

// The names under which a printer reports itself over SNMP, USB or a generic
// port, so that a discovered device can be matched with its definition.
class TARN_API CSNMPName {
 public:
  void SetDefaults() { m_names.clear(); }
  // Reads the "NAME" children; false only for a null node. Empty names are skipped.
  bool ReadXML(const pugi::xml_node& node);

  const std::vector<std::wstring>& GetNames() const { return m_names; }
  // True when reported begins with one of the names, ignoring case (devices
  // often append a revision to their model name).
  bool Matches(const std::wstring& reported) const;

  bool operator==(const CSNMPName&) const = default;

 private:
  std::vector<std::wstring> m_names;
};

// One ink of the printer: its plane name, the text shown and a display colour.
struct TARN_API CInkDef {
  std::wstring name;
  std::wstring label;
  std::wstring color;  // "#RRGGBB" as written; empty when not given

  bool operator==(const CInkDef&) const = default;
};

// The inks loaded in the printer ("INKLIST"), in slot order.
class TARN_API CInkList {
 public:
  void SetDefaults() { m_inks.clear(); }
  // Reads the "INK" children; false only for a null node. Nameless inks are skipped.
  bool ReadXML(const pugi::xml_node& node);

  const std::vector<CInkDef>& GetInks() const { return m_inks; }
  // The ink of that name (ignoring case), or null.
  const CInkDef* Find(const std::wstring& name) const;

  bool operator==(const CInkList&) const = default;

 private:
  std::vector<CInkDef> m_inks;
};

// The Lab value an ink should reach, for checking a print mode against a
// printing standard.
struct TARN_API CLabReference {
  std::wstring name;
  double L = 0.0;
  double a = 0.0;
  double b = 0.0;

  bool operator==(const CLabReference&) const = default;
};

// The reference Lab values of the printer's inks ("ISOLABRef").
class TARN_API CISOLABRef {
 public:
  void SetDefaults();
  // Reads the "LAB" children; false only for a null node. Nameless entries are skipped.
  bool ReadXML(const pugi::xml_node& node);

  // The standard the values come from ("ISO 12647-2"); empty when not given.
  const std::wstring& GetStandard() const { return m_standard; }
  const std::vector<CLabReference>& GetReferences() const { return m_references; }
  // The reference of that ink (ignoring case), or null.
  const CLabReference* Find(const std::wstring& name) const;

  bool operator==(const CISOLABRef&) const = default;

 private:
  std::wstring m_standard;
  std::vector<CLabReference> m_references;
};

}  // namespace tarn
