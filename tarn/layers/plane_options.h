#pragma once

// Per-plane settings of a layer (PlaneOptions), the plane list of a layer
// (PlanesOptions), and the plane table of a printer (PlaneMapping).
//
// A plane's settings, as a layer writes them:
//
//   <PlaneOptions>
//   	<Name>White</Name>
//   	<Enabled>1</Enabled>
//   	<Flood>0</Flood>
//   	<Choke>2</Choke>
//   	<Substitute>White2</Substitute>
//   	<XShift>0</XShift>
//   	<YShift>-3</YShift>
//   </PlaneOptions>
//
// A plane list on its own, and the form inside print mode files (one CHANNEL
// per plane, its text the plane's name, nothing for the list itself):
//
//   <PlanesOptions>                   <CHANNEL>White<PlaneOptions>...</PlaneOptions></CHANNEL>
//   	<Enabled>1</Enabled>            <CHANNEL>Clear<PlaneOptions>...</PlaneOptions></CHANNEL>
//   	<PlaneOptions>...</PlaneOptions>
//   </PlanesOptions>
//
// The plane table merged into a printer definition's plane list:
//
//   <Plane name="White">
//   	<Synonym>White</Synonym>
//   	<Synonym>Opaque White</Synonym>
//   	<Substitute>White2</Substitute>
//   </Plane>
//
// Plane names are compared exactly everywhere (ordinal, case-sensitive): the
// RIP matches ink channels by their exact names. The layouts are described in
// docs/formats/layered-print-mode.md.

#include <pugixml.hpp>

#include <map>
#include <string>
#include <vector>

#include "tarn/foundation/export.h"

namespace tarn {

// The record a plane list belongs to. The list only carries the pointer for
// its owner's sake and never follows it.
class CBaseData;

// One plane's settings in a layer. Flood and a non-zero choke exclude each
// other; the setters keep it so.
class TARN_API PlaneOptions {
 public:
  // Element name of a plane's settings.
  static constexpr const char* kElementName = "PlaneOptions";

  // No name, disabled, no flood, choke, substitute or shift.
  PlaneOptions() = default;
  // A plane named by SetName: enabled, standing in for itself.
  explicit PlaneOptions(const std::wstring& name) { SetName(name); }

  // Names the plane and resets every other setting: enabled, no flood, choke
  // 0, substitute the plane itself, no shift. Set the other fields after the name.
  void SetName(const std::wstring& name);
  const std::wstring& GetName() const { return name_; }

  void SetEnabled(bool enabled) { enabled_ = enabled; }
  bool IsEnabled() const { return enabled_; }
  // Flooding clears the choke; clearing the flood changes nothing else.
  void SetFlood(bool flood);
  bool GetIfFlood() const { return flood_; }
  // A non-zero choke clears the flood; a choke of 0 changes nothing else.
  void SetChoke(int choke);
  int GetChoke() const { return choke_; }
  void SetXShift(int shift) { x_shift_ = shift; }
  int GetXShift() const { return x_shift_; }
  void SetYShift(int shift) { y_shift_ = shift; }
  int GetYShift() const { return y_shift_; }

  void SetSubstitute(const std::wstring& name) { substitute_ = name; }
  // The plane that prints in this one's place: empty for a process plane (they
  // are never substituted), else the substitute, else the plane's own name.
  std::wstring GetSubstitute() const;
  // The substitute as stored, whatever the plane is.
  const std::wstring& GetStoredSubstitute() const { return substitute_; }

  // "Cyan", "Magenta", "Yellow" or "Black", exactly.
  bool IsCMYorK() const;
  // "Gray", exactly ("gray" is not a process plane).
  bool IsGray() const;
  bool IsCMYKorGray() const { return IsCMYorK() || IsGray(); }

  // Planes are identified by name: only the names are compared. Plane lists
  // and layers compare their planes this way; use HasSameSettings to compare
  // everything.
  bool operator==(const PlaneOptions& other) const { return name_ == other.name_; }
  // True when all seven settings are equal.
  bool HasSameSettings(const PlaneOptions& other) const;

  // Reads a "PlaneOptions" element over the current settings: each child that
  // is present and not empty sets its field, others leave it. The setters'
  // invariant is not applied, so a file is read as it stands. An element of
  // another name reads nothing. Always true.
  bool ReadXML(const pugi::xml_node& node);
  // Appends a "PlaneOptions" element to parent. Always true.
  bool WriteXML(pugi::xml_node parent) const;

 private:
  struct Fields;  // the field table, in the source file

  std::wstring name_;
  bool enabled_ = false;
  bool flood_ = false;
  int choke_ = 0;
  std::wstring substitute_;
  int x_shift_ = 0;
  int y_shift_ = 0;
};

// The plane list of a layer, in file order. Planes of the same name are not
// prevented; lookups find the first.
class TARN_API PlanesOptions {
 public:
  // The value the list's level starts at: full ink.
  static constexpr int kFullLevel = 255;

  // An empty, disabled list belonging to owner (which may be null).
  explicit PlanesOptions(CBaseData* owner = nullptr) : owner_(owner) {}

  CBaseData* GetOwner() const { return owner_; }
  void SetEnabled(bool enabled) { enabled_ = enabled; }
  bool IsEnabled() const { return enabled_; }
  // The ink level (0..255) the list's flooded planes print at; 255 unless set.
  // Compared with the list but kept in memory only, never in a file.
  void SetLevel(int level) { level_ = level; }
  int GetLevel() const { return level_; }

  // Copies the first plane named name (exactly) into out. False, out
  // untouched, when there is none.
  bool FindPlaneOptions(const std::wstring& name, PlaneOptions& out) const;
  // Replaces the whole list.
  void SetPlaneOptions(const std::vector<PlaneOptions>& planes) { planes_ = planes; }
  const std::vector<PlaneOptions>& GetPlaneOptions() const { return planes_; }

  // Appends to out (not cleared first), for each enabled plane that is not a
  // process plane, its substitute or, when that is empty, its name. Disabled
  // and process planes contribute nothing.
  void GetSubstitutes(std::vector<std::wstring>& out) const;

  // Appends a "PlanesOptions" element: "Enabled", then each plane. Always true.
  bool WriteXML(pugi::xml_node parent) const;
  // The form inside print mode files: for each plane a "CHANNEL" element under
  // parent whose text is the plane's name and which holds the plane's
  // "PlaneOptions". Nothing for the list itself; an empty list writes nothing.
  // Always true.
  bool WritePFXML(pugi::xml_node parent) const;
  // Reads a "PlanesOptions" element: "Enabled", and each "PlaneOptions" child
  // appended to the planes already held. An element of another name (or a null
  // node) reads nothing. Always true.
  bool ReadXML(const pugi::xml_node& node);
  // Parses text as an XML document and reads its first element as above; text
  // that does not parse reads nothing. Always true.
  bool ReadXML(const std::wstring& text);

  // Equal enabled flags and levels, and the same plane names in the same order
  // (the planes' other settings are not compared).
  bool operator==(const PlanesOptions& other) const;

 private:
  struct Fields;  // the field table, in the source file

  CBaseData* owner_ = nullptr;
  bool enabled_ = false;
  int level_ = kFullLevel;
  std::vector<PlaneOptions> planes_;
};

// The plane table of a printer: its planes, each with its synonyms (the plane's
// own name first) and the plane that substitutes for it. Merged into a printer
// definition's plane list by SaveXML.
class TARN_API PlaneMapping {
 public:
  // Plane name to synonym; one entry per synonym, in insertion order within a plane.
  using SynonymMap = std::multimap<std::wstring, std::wstring>;
  // Plane name to its substitute; one entry per plane.
  using SubstituteMap = std::map<std::wstring, std::wstring>;

  PlaneMapping() = default;

  void SetEnable(bool enable) { enable_ = enable; }
  bool IfEnabled() const { return enable_; }

  // Adds the plane with its own name as a synonym and as its substitute; a
  // substitute already set for the plane is kept.
  void AddNewPlane(const std::wstring& name);
  // Adds a synonym of plane (also when the plane was not added). Always true.
  bool AddSynonym(const std::wstring& plane, const std::wstring& synonym);
  // Sets the plane's substitute, replacing any earlier one.
  void SetSubstitute(const std::wstring& plane, const std::wstring& substitute);
  // Removes the plane's synonyms and its substitute; nothing when unknown.
  void RemovePlane(const std::wstring& name);

  // The plane's synonyms in insertion order; empty for an unknown plane.
  std::vector<std::wstring> GetSynonyms(const std::wstring& plane) const;
  const SubstituteMap& GetSubstitutes() const { return substitutes_; }
  const SynonymMap& GetSynonymMap() const { return synonyms_; }
  // The planes (names with at least one synonym), in name order.
  std::vector<std::wstring> GetPlanes() const;
  // True when the plane has a synonym, i.e. was added.
  bool FindPlane(const std::wstring& name) const { return synonyms_.count(name) > 0; }

  // Replaces the table with the "Plane" children of node, the printer
  // definition element that holds them: each named plane with its "Synonym"
  // texts in order (its own name when it lists none) and its "Substitute" (its
  // own name when absent or empty). Planes without a name are skipped. False,
  // the table emptied, for a null node.
  bool ReadXML(const pugi::xml_node& node);
  // Merges the table into node, the printer definition element that holds the
  // "Plane" children: planes the table lacks are removed, known planes gain
  // the synonyms they lack and take the table's substitute (the plane's own
  // name when it has none), and new planes are appended. A table without
  // planes leaves node as it is. No synonym is ever written twice for a plane.
  // False for a null node.
  bool SaveXML(pugi::xml_node node) const;

  bool operator==(const PlaneMapping& other) const = default;

 private:
  bool enable_ = false;
  SynonymMap synonyms_;
  SubstituteMap substitutes_;
};

}  // namespace tarn
