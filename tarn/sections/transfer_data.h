#pragma once

// CPMTransferData: the print mode's transfer curves, one tone curve per plane
// in two independent sets.
//
// Per-plane form (planes 1 to 6 of each set; plane 0 is not written):
//
//   <TCURVES type="1" inripseps="0">
//   	<OVR_ENABLE>1</OVR_ENABLE>
//   	<CURVEDATA name="Cyan" type="1" keep0="0">
//   		<DATA>0.0000,0.0500,...,1.0000</DATA>
//   	</CURVEDATA>
//   	... Magenta, Yellow, Black, Hex0, Hex1, then the same six as CURVEDATA2
//   </TCURVES>
//
// "All" form, one curve per set standing for every plane:
//
//   <TCURVES type="1" inripseps="0" all="1">
//   	<CURVEDATA name="All" type="1" keep0="0">...</CURVEDATA>
//   	<CURVEDATA2 name="All" type="1" keep0="0">...</CURVEDATA2>
//   </TCURVES>
//
// OVR_ENABLE is written only when the curves are enabled.

#include <pugixml.hpp>

#include <map>
#include <optional>
#include <string>

#include "tarn/foundation/cursor.h"
#include "tarn/foundation/export.h"
#include "tarn/sections/curve_data.h"

namespace tarn {

class TARN_API CPMTransferData {
 public:
  // Planes 0 ("All") to 6 ("Hex1").
  static constexpr unsigned kPlaneCount = 7;

  // Seven density identity curves in each set, enable off, mode 1.
  CPMTransferData();
  CPMTransferData(const CPMTransferData&) = default;
  CPMTransferData(CPMTransferData&&) noexcept = default;
  CPMTransferData& operator=(const CPMTransferData&) = default;
  CPMTransferData& operator=(CPMTransferData&&) noexcept = default;
  virtual ~CPMTransferData() = default;

  // Every field to its default and a fresh identity curve for each plane of both sets.
  void SetDefaults();
  // Removes every curve of both sets.
  void ClearData();
  // Puts a density identity curve with the plane's default name and draw
  // colour at each plane of both sets, replacing what is there.
  void InitializeCurves();
  // Fills each plane that has no curve, in either set, with a density identity
  // curve with an empty name and draw colour 0; existing curves stay.
  void VerifyCurves();

  // The plane's curve in the first set (set 0) or the second (any other set);
  // null when the plane has none.
  CPMCurveData* GetCurve(unsigned plane, unsigned set);
  const CPMCurveData* GetCurve(unsigned plane, unsigned set) const;
  // The number of curves in the first (set 0) or second set.
  unsigned GetCurveCount(unsigned set) const;
  // Replaces the plane's curve in the chosen set by a copy of curve given the
  // plane's draw colour. Planes 7 and above are ignored.
  void SetCurve(unsigned plane, const CPMCurveData& curve, unsigned set);

  // Walk the first set in plane order; null at the end.
  CPMCurveData* GetFirstCurve();
  CPMCurveData* GetNextCurve();

  // y := factor * x on the first-set curve of the plane named "Cyan",
  // "Magenta", "Yellow" or "Black" (case is ignored); other names do nothing.
  void MakeLinear(const std::wstring& planeName, double factor);

  bool GetEnable() const { return enable_; }
  void SetEnable(bool enable) { enable_ = enable; }
  unsigned GetMode() const { return mode_; }
  void SetMode(unsigned mode) { mode_ = mode; }
  unsigned GetInputMode() const { return input_mode_; }
  void SetInputMode(unsigned mode) { input_mode_ = mode; }
  bool GetUseAll() const { return use_all_; }
  void SetUseAll(bool useAll) { use_all_ = useAll; }
  bool GetInRipSeps() const { return in_rip_seps_; }
  void SetInRipSeps(bool inRipSeps) { in_rip_seps_ = inRipSeps; }
  int GetMaxInk() const { return max_ink_; }
  void SetMaxInk(int maxInk) { max_ink_ = maxInk; }

  // The plane's default name ("All", "Cyan", "Magenta", "YELLOW", "Black",
  // "Hex0", "Hex1"); empty for planes 7 and above.
  static std::wstring GetCurveName(unsigned plane);
  // The plane's draw colour, 0x00BBGGRR; 0 for planes 7 and above.
  static unsigned long GetDrawColor(unsigned plane);
  // The plane's name in files ("Yellow" for plane 3); empty for planes 7 and above.
  static std::wstring GetFileName(unsigned plane);

  // Reads a "TCURVES" element after restoring every default. Returns false,
  // with the section defaulted, when node is not such an element.
  bool ReadXML(const pugi::xml_node& node);
  // Appends a "TCURVES" element to parent.
  void WriteXML(pugi::xml_node parent) const;

  // Equal when every field is equal and both sets hold the same planes with
  // the same mode, keep zero and points; curve names and colours follow the
  // plane and are not compared.
  bool operator==(const CPMTransferData& other) const;

 private:
  using CurveMap = std::map<unsigned, CPMCurveData>;

  CurveMap& Set(unsigned set) { return set == 0 ? curves_ : curves2_; }
  const CurveMap& Set(unsigned set) const { return set == 0 ? curves_ : curves2_; }

  bool enable_ = false;
  unsigned input_mode_ = 0;
  unsigned mode_ = 1;
  bool use_all_ = false;
  int max_ink_ = 400;
  CurveMap curves_;
  CurveMap curves2_;
  bool in_rip_seps_ = false;
  Cursor<unsigned> cursor_;  // of GetFirstCurve/GetNextCurve
};

}  // namespace tarn
