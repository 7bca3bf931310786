#pragma once

// Total-ink limits of a print mode: three limits A <= C <= B <= 400 (percent
// of total ink) and the single limit of print modes made before them.
//
// The section is kept as "MAXINKEX"; "MIDATA" holds A, A again, B, C and two
// places that are always zero:
//
//   <MAXINKEX enable="1" use_old_value="1">
//   	<MIDATA>250.000000,250.000000,400.000000,300.000000,0.000000,0.000000</MIDATA>
//   	<MIOLDDATA>300.000000</MIOLDDATA>
//   </MAXINKEX>
//
// "use_old_value" and "MIOLDDATA" are written only while the old limit is in
// force.

#include <pugixml.hpp>

#include <cstdint>

#include "tarn/foundation/export.h"

namespace tarn {

// A limit value with its kind tag; kind 0 is an ordinary number.
struct TARN_API CMaxInkValue {
  std::int16_t kind = 0;
  double value = 0.0;

  bool operator==(const CMaxInkValue& other) const = default;
};

class TARN_API CPMMaxInkData {
 public:
  // Element name of the section ("MAXINKEX").
  static constexpr const char* kElementName = "MAXINKEX";
  // The highest limit, and what B and C fall back to.
  static constexpr double kFullInk = 400.0;

  CPMMaxInkData() = default;

  // Compares the persisted fields: enable, A, B, C and the old limit. The
  // scale factors describe how limits are compared, not the limits, and
  // take no part.
  bool operator==(const CPMMaxInkData& other) const;

  // Every limit to its default (A 0, B and C 400, old limit off and 0). The
  // scale factors are kept: they belong to the caller, not to the file.
  void SetDefaults();

  bool GetEnable() const { return enable_; }
  // Turning the limits on retires the old limit; turning them off brings it
  // back when it is not zero (to three decimals).
  void SetEnable(bool on);

  double GetValueA() const { return a_.value; }
  double GetValueB() const { return b_.value; }
  double GetValueC() const { return c_.value; }
  // Store an ordinary number (kind 0).
  void SetValueA(double v) { a_ = CMaxInkValue{0, v}; }
  void SetValueB(double v) { b_ = CMaxInkValue{0, v}; }
  void SetValueC(double v) { c_ = CMaxInkValue{0, v}; }
  const CMaxInkValue& GetValueAEx() const { return a_; }
  const CMaxInkValue& GetValueBEx() const { return b_; }
  const CMaxInkValue& GetValueCEx() const { return c_; }

  // Factors applied to B and C (and to what they are compared with) before
  // Validate rounds them; 1 compares plain percent. Not persisted.
  double GetScaleB() const { return scale_b_; }
  void SetScaleB(double scale) { scale_b_ = scale; }
  double GetScaleC() const { return scale_c_; }
  void SetScaleC(double scale) { scale_c_ = scale; }

  // Stores the old single limit and puts it in force (enable on).
  void SetOldMaxInk(double v);
  double GetOldMaxInk() const { return old_max_ink_; }
  bool UseOldMaxInk() const { return use_old_; }

  // Puts the limits back in order, A <= C <= B <= 400, comparing rounded
  // scaled values; B also returns to 400 when it equals A. Returns true when a
  // limit was changed.
  bool Validate();

  // Reads a "MAXINKEX" element, starting from the defaults. A "MIDATA" text
  // that is not six numbers, or a "MIOLDDATA" that is not one, keeps the
  // defaults of what it carries. False only when node is not "MAXINKEX".
  bool ReadXML(const pugi::xml_node& node);
  // Appends "MAXINKEX" to parent.
  void WriteXML(pugi::xml_node parent) const;

 private:
  struct Fields;  // the field table, in the source file

  bool enable_ = false;
  CMaxInkValue a_{0, 0.0};
  double a_plain_ = 0.0;  // A as a plain number, refreshed by Validate
  CMaxInkValue b_{0, kFullInk};
  double scale_b_ = 1.0;
  CMaxInkValue c_{0, kFullInk};
  double scale_c_ = 1.0;
  CMaxInkValue further_[2] = {};  // cleared by Validate, never persisted
  bool use_old_ = false;
  double old_max_ink_ = 0.0;
};

}  // namespace tarn
