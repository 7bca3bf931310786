#pragma once

// Halftone screens: one screen per plate (frequency, angle, spot shape, choke)
// and the section-wide switches and jitter table.
//
// The section is kept as "HALFTONEDATA", and only while it is in use:
//
//   <HALFTONEDATA enable="1" app="0" spot="0" same="0" super="1">
//   	<OVR_ENABLE>1</OVR_ENABLE>
//   	<HALFTONE name="Black">
//   		<SHAPE>Euclidean Small Ellipse</SHAPE>
//   		<FREQUENCY>60</FREQUENCY>
//   		<ANGLE>45</ANGLE>
//   		<PLATE>Black</PLATE>
//   		<NAME>Black</NAME>
//   		<SEP>1</SEP>
//   		<CHOKE>0</CHOKE>
//   	</HALFTONE>
//   	<JitterData>
//   		<JitterValue key="0" value="0" />
//   		...
//   	</JitterData>
//   </HALFTONEDATA>
//
// Each screen also writes its PostScript, for the job's plate dispatch:
//
//         /Black <<
//           /HalftoneType 1
//           /Frequency 60
//           /Angle 45.0000
//           /SpotFunction statusdict /EuclideanSmallEllipse get
//         >>
//   (Black) eq {/thePlateFound true def 60 45.0000 statusdict /EuclideanSmallEllipse get setscreen} if

#include <pugixml.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tarn/foundation/export.h"
#include "tarn/foundation/format_string.h"

namespace tarn {

class CXRegistry;

// One plate's screen.
class TARN_API CPMHalftoneOption {
 public:
  // Entries of the spot shape table, and the shape a new screen gets
  // ("Euclidean Small Ellipse").
  static constexpr std::int32_t kShapeCount = 23;
  static constexpr std::int32_t kDefaultShape = 21;
  // Element name of one screen ("HALFTONE").
  static constexpr const char* kElementName = "HALFTONE";

  // The display name of a shape ("Inverted Round"), as files and the
  // configuration store keep it; empty for an index outside the table.
  static std::wstring_view GetShapeName(std::int32_t shape);
  // The name the RIP registers the spot function under ("Inverted_Round");
  // empty for an index outside the table.
  static std::wstring_view GetShapePostScriptName(std::int32_t shape);
  // The shape index a text names: a display name, ignoring case, with or
  // without its blanks ("EllipseToDiamond"); otherwise the number the text
  // starts with (0 when none), and kDefaultShape for a number outside 0..22.
  static std::int32_t FindShape(std::wstring_view text);

  // A Black screen: 60 lpi, 45 degrees, shape 21, separation, no choke.
  CPMHalftoneOption();
  CPMHalftoneOption(double frequency, double angle, std::int32_t shape, const std::wstring& plate,
                    const std::wstring& name, bool separation, std::int32_t choke);

  bool operator==(const CPMHalftoneOption& other) const = default;

  void SetDefaults() { *this = CPMHalftoneOption(); }

  double GetFrequency() const { return frequency_; }
  void SetFrequency(double frequency) { frequency_ = frequency; }
  double GetAngle() const { return angle_; }
  void SetAngle(double angle) { angle_ = angle; }
  std::int32_t GetShape() const { return shape_; }
  // An index outside the table gives kDefaultShape.
  void SetShape(std::int32_t shape);
  // Sets the shape a text names (see FindShape).
  void SetShape(const wchar_t* text);
  const std::wstring& GetPlate() const { return plate_; }
  void GetPlate(std::wstring& plate) const { plate = plate_; }
  void SetPlate(const std::wstring& plate) { plate_ = plate; }
  // The separation name the PostScript plate tests compare with.
  const std::wstring& GetName() const { return name_; }
  void GetName(std::wstring& name) const { name = name_; }
  void SetName(const std::wstring& name) { name_ = name; }
  bool GetSeparation() const { return separation_; }
  void SetSeparation(bool separation) { separation_ = separation; }
  std::int32_t GetChoke() const { return choke_; }
  void SetChoke(std::int32_t choke) { choke_ = choke; }

  // True when the plate is "Black" (ignoring case).
  bool IsBlackPlate() const;

  // The name of plate number 0..4 ("Cyan", "Magenta", "Yellow", "Black",
  // "Spot"); the screen's plate and name become that name. Other numbers give
  // an empty name, which the screen takes too, and return false.
  bool GetPlate(unsigned plate, std::wstring& name);

  // Reads a "HALFTONE" element over the current values; fields counts the
  // known children read. False when node is not a "HALFTONE" element.
  bool ReadXML(const pugi::xml_node& node, unsigned int& fields);
  // Appends a "HALFTONE" element named key to parent.
  void WriteXML(pugi::xml_node& parent, const std::wstring& key) const;

  // Appends the screen's halftone dictionary entry.
  void AppendHFTPostscript(formatstringT& buffer) const;
  // Appends the screen's line of the plate dispatch; unless plain, the
  // setscreen call is bracketed by the RIP's screen enable/disable procedures.
  void AppendDSCPostscript(formatstringT& buffer, bool plain) const;

  // Stores the screen as one text value "<key>/<plate>" in the configuration
  // store: "60.0000,45.0000,Euclidean Small Ellipse,1,0". False when the store
  // is null, the plate is none of the five standard plates, or the store
  // refuses the value.
  bool SaveXRL(CXRegistry* store, const std::wstring& key) const;

 private:
  double frequency_ = 60.0;
  double angle_ = 45.0;
  std::int32_t shape_ = kDefaultShape;
  std::wstring plate_ = L"Black";
  std::wstring name_ = L"Black";
  bool separation_ = true;
  std::int32_t choke_ = 0;
};

// The print mode's halftone section.
class TARN_API CPMHalftoneData {
 public:
  // Element name of the section ("HALFTONEDATA").
  static constexpr const char* kElementName = "HALFTONEDATA";

  using JitterTable = std::vector<std::pair<std::int32_t, double>>;
  using HalftoneMap = std::map<std::wstring, CPMHalftoneOption>;

  CPMHalftoneData();
  CPMHalftoneData(const CPMHalftoneData& other);
  CPMHalftoneData& operator=(const CPMHalftoneData& other);

  // Compares the switches, the jitter table and the screens (not the cursor).
  bool operator==(const CPMHalftoneData& other) const;

  // Flags and jitter table to their defaults, then the five default screens.
  void SetDefaults();
  // Removes every screen.
  void ClearHalftones();
  // Adds the default screens of Cyan, Magenta, Yellow, Black and Spot.
  void InitializeHalftones();
  // Gives each of the five standard plates that has no screen a default one.
  void VerifyHalftones();

  // The screen of plate number 0..4 (see CPMHalftoneOption::GetPlate), or of
  // a key; null when there is none.
  CPMHalftoneOption* GetHalftoneOption(unsigned plate);
  CPMHalftoneOption* GetHalftoneOption(const std::wstring& key);
  const CPMHalftoneOption* GetHalftoneOption(const std::wstring& key) const;
  size_t GetHalftoneCount() const { return options_.size(); }
  const HalftoneMap& GetHalftones() const { return options_; }

  // Walk the screens in key order; null after the last. The cursor survives
  // additions and removals (it remembers the key last returned).
  CPMHalftoneOption* GetFirstHalftone(std::wstring* key = nullptr);
  CPMHalftoneOption* GetNextHalftone(std::wstring* key = nullptr);

  // Stores a copy under the option's plate, or gives the plate's existing
  // screen the option's values. A null option does nothing.
  void AddHalftoneOption(const CPMHalftoneOption* option);
  // AddHalftoneOption for each screen of a map.
  void AddHalftones(const HalftoneMap& options);
  // AddHalftoneOption for each screen of another section; null does nothing.
  void MergeHalftones(const CPMHalftoneData* other);

  // A new default screen for a plate: 60 lpi, shape 21, no choke, and the
  // plate's angle (Cyan 108, Magenta 90, Yellow 161, others 45).
  CPMHalftoneOption GetDefaultHaftone(const std::wstring& plate) const;

  // Halftone overrides are applied.
  bool GetEnable() const { return enable_; }
  void SetEnable(bool enable) { enable_ = enable; }
  // The section is in use; an unused section is not written at all.
  bool GetIsUsed() const { return is_used_; }
  void SetIsUsed(bool used) { is_used_ = used; }
  bool GetUseSameShape() const { return use_same_shape_; }
  void SetUseSameShape(bool same) { use_same_shape_ = same; }
  bool GetUseSuperCell() const { return use_super_cell_; }
  void SetUseSuperCell(bool super) { use_super_cell_ = super; }
  bool GetUseAppHalftoning() const { return use_app_halftoning_; }
  void SetUseAppHalftoning(bool app) { use_app_halftoning_ = app; }
  bool GetUseAppSpotFunction() const { return use_app_spot_function_; }
  void SetUseAppSpotFunction(bool spot) { use_app_spot_function_ = spot; }

  const JitterTable& GetJitter() const { return jitter_; }
  void SetJitter(const JitterTable& jitter) { jitter_ = jitter; }

  // Reads a "HALFTONEDATA" element. The section starts from its defaults, so
  // a standard plate the element does not name keeps its default screen; a
  // screen of any other key is added as it stands (an unnamed one is
  // skipped). Without "JitterData" the default jitter table stays. False,
  // section unchanged, when node is not "HALFTONEDATA".
  bool ReadXML(const pugi::xml_node& node);
  // Appends "HALFTONEDATA" to parent, or nothing when the section is unused.
  void WriteXML(pugi::xml_node& parent) const;

  // Replaces jitter by the entries of the "JitterData" element node; false,
  // jitter unchanged, when node is not "JitterData".
  static bool ReadJitterXML(const pugi::xml_node& node, JitterTable& jitter);
  // Appends "JitterData" with one "JitterValue" per entry, even when empty.
  static void WriteJitterXML(pugi::xml_node& parent, const JitterTable& jitter);

 private:
  JitterTable jitter_;
  bool enable_ = false;
  bool is_used_ = false;
  bool use_same_shape_ = false;
  bool use_super_cell_ = true;
  bool use_app_halftoning_ = false;
  bool use_app_spot_function_ = false;
  HalftoneMap options_;
  std::optional<std::wstring> cursor_;  // key GetFirst/GetNextHalftone returned last
};

}  // namespace tarn
