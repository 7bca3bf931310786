#pragma once

// What the RIP does to a job's bitmap when it builds a layer (CBmpProcessOptions),
// and the white-mask settings it holds two of (CWhiteMask):
//
//   <BitmapProcessingOptions>
//   	<UsePrimer>0</UsePrimer>
//   	<PrimerMaxInk>100</PrimerMaxInk>
//   	<PrimerBleed>0</PrimerBleed>
//   	<PrimerPlane>Promoter</PrimerPlane>
//   	<InvertAlpha>0</InvertAlpha>
//   	<PrimeOpaque>0</PrimeOpaque>
//   	<UseKnockMeBlack>0</UseKnockMeBlack>
//   	<KnockMeBlack>70</KnockMeBlack>
//   	<UseKnockMeWhite>0</UseKnockMeWhite>
//   	<KnockMeWhite>0</KnockMeWhite>
//   	<CleanBlack>255</CleanBlack>
//   	<ColorBoost>1</ColorBoost>
//   	<ColorBoostBlend>0</ColorBoostBlend>
//   	<Flatten>1</Flatten>
//   	<WhiteUsage>1</WhiteUsage>
//   	<WhiteMask>                       (the mask under black)
//   		<Display>Strong</Display>
//   		<Strength>-1</Strength>
//   		<LightStrength>-1</LightStrength>
//   		<DarkStrength>-1</DarkStrength>
//   		<WhiteStrength>-1</WhiteStrength>
//   		<LastPointStrength>100</LastPointStrength>
//   	</WhiteMask>
//   	<WhiteMask>...</WhiteMask>        (the second mask)
//   	<WhiteMaxInk>100</WhiteMaxInk>
//   	<ChokeWhite>0</ChokeWhite>
//   	<WhiteOpaque>0</WhiteOpaque>
//   	<CurveData>...</CurveData>        (the white curve)
//   	<UseClear>0</UseClear>
//   	<ClearMaxInk>100</ClearMaxInk>
//   	<ClearBleed>0</ClearBleed>
//   	<ClearOpaque>0</ClearOpaque>
//   </BitmapProcessingOptions>
//
// Reals are written as the "C" locale writes them, whatever the process
// locale. The units of bleeds, chokes and knock-outs belong to the rendering
// side; they are kept as plain integers.

#include <pugixml.hpp>

#include <span>
#include <string>

#include "tarn/foundation/export.h"
#include "tarn/sections/curve_data.h"

namespace tarn {

// One white-mask setting: a named strength preset, a manually drawn curve
// (strengths -2), or explicit strengths.
class TARN_API CWhiteMask {
 public:
  // The strength that marks the strong preset, and the one that marks a manual curve.
  static constexpr int kStrong = -1;
  static constexpr int kManualCurve = -2;

  // A preset of the mask table: its display name and its five strengths.
  struct Preset {
    const wchar_t* display;
    int strength;
    int lightStrength;
    int darkStrength;
    int whiteStrength;
    int lastPointStrength;
  };
  // The presets, "Strong" (the default) first, then "Manual Curve...".
  static std::span<const Preset> GetPresets();

  // The first preset.
  CWhiteMask() = default;
  explicit CWhiteMask(const Preset& preset);

  // Takes the preset's display name and strengths.
  void SetPreset(const Preset& preset);

  bool IsStrongMask() const { return strength_ == kStrong; }
  bool IsManualCurve() const { return strength_ == kManualCurve; }

  const std::wstring& GetDisplay() const { return display_; }
  void SetDisplay(const std::wstring& display) { display_ = display; }
  int GetStrength() const { return strength_; }
  void SetStrength(int value) { strength_ = value; }
  int GetLightStrength() const { return light_strength_; }
  void SetLightStrength(int value) { light_strength_ = value; }
  int GetDarkStrength() const { return dark_strength_; }
  void SetDarkStrength(int value) { dark_strength_ = value; }
  int GetWhiteStrength() const { return white_strength_; }
  void SetWhiteStrength(int value) { white_strength_ = value; }
  int GetLastPointStrength() const { return last_point_strength_; }
  void SetLastPointStrength(int value) { last_point_strength_ = value; }

  // Masks that print alike are equal: the five strengths are compared, the
  // display name is not.
  bool operator==(const CWhiteMask& other) const;

  // Appends a "WhiteMask" element. Always true.
  bool WriteXML(pugi::xml_node parent) const;
  // Reads a "WhiteMask" element over the current values: each child present
  // and not empty sets its field; an element of another name reads nothing.
  // Always true.
  bool ReadXML(const pugi::xml_node& node);

 private:
  struct Fields;  // the field table, in the source file

  // The first preset, "Strong".
  std::wstring display_ = L"Strong";
  int strength_ = kStrong;
  int light_strength_ = kStrong;
  int dark_strength_ = kStrong;
  int white_strength_ = kStrong;
  int last_point_strength_ = 100;
};

// How the white ink is used in a layer.
enum WhiteUsage : int {
  WHITE_USAGE_NONE = 0,
  WHITE_USAGE_UNDERBASE = 1,
  WHITE_USAGE_HIGHLIGHT = 2,
  WHITE_USAGE_COVERAGE = 3,
};

// The bitmap processing options of one layer.
class TARN_API CBmpProcessOptions {
 public:
  // Element name of the options.
  static constexpr const char* kElementName = "BitmapProcessingOptions";

  // The primer plane a new record names: the plane by which a layer knows its
  // prime channel.
  static constexpr const wchar_t* kDefaultPrimerPlane = L"Promoter";

  // Every field at its default; both masks the default mask.
  CBmpProcessOptions() = default;

  // Every field to its default except the two white masks, which stay as they
  // are; the white curve becomes the identity again.
  void SetToDefault();

  // --- questions the RIP asks ---
  bool HasPrimer() const { return use_primer_; }
  bool HasKnockMeBlack() const { return use_knock_me_black_; }
  bool HasKnockMeWhite() const { return use_knock_me_white_; }
  // A boost of exactly 1.0 (or less) is no boost.
  bool HasColorBoost() const { return color_boost_ > 1.0; }
  bool HasUnderbase() const { return white_usage_ == WHITE_USAGE_UNDERBASE; }
  bool HasHighlight() const { return white_usage_ == WHITE_USAGE_HIGHLIGHT; }
  bool HasCoverage() const { return white_usage_ == WHITE_USAGE_COVERAGE; }
  bool HasClear() const { return use_clear_; }
  bool ShouldFlattened() const { return flatten_; }
  // True when any knock-out, boost, white usage, clear coat or primer is on.
  // Flattening, black cleaning, an opaque primer and an inverted alpha are
  // applied on the way and do not by themselves make the layer need processing.
  bool HasAnyProcessing() const;

  // --- primer ---
  bool GetUsePrimer() const { return use_primer_; }
  void SetUsePrimer(bool on) { use_primer_ = on; }
  double GetPrimerMaxInk() const { return primer_max_ink_; }
  void SetPrimerMaxInk(double percent) { primer_max_ink_ = percent; }
  int GetPrimerBleed() const { return primer_bleed_; }
  void SetPrimerBleed(int bleed) { primer_bleed_ = bleed; }
  const std::wstring& GetPrimerPlane() const { return primer_plane_; }
  void SetPrimerPlane(const std::wstring& plane) { primer_plane_ = plane; }
  bool GetInvertAlpha() const { return invert_alpha_; }
  void SetInvertAlpha(bool on) { invert_alpha_ = on; }
  bool GetPrimeOpaque() const { return prime_opaque_; }
  void SetPrimeOpaque(bool on) { prime_opaque_ = on; }

  // --- knock-outs, black, boost ---
  bool GetUseKnockMeBlack() const { return use_knock_me_black_; }
  void SetUseKnockMeBlack(bool on) { use_knock_me_black_ = on; }
  int GetKnockMeBlack() const { return knock_me_black_; }
  void SetKnockMeBlack(int value) { knock_me_black_ = value; }
  bool GetUseKnockMeWhite() const { return use_knock_me_white_; }
  void SetUseKnockMeWhite(bool on) { use_knock_me_white_ = on; }
  int GetKnockMeWhite() const { return knock_me_white_; }
  void SetKnockMeWhite(int value) { knock_me_white_ = value; }
  int GetCleanBlack() const { return clean_black_; }
  void SetCleanBlack(int value) { clean_black_ = value; }
  double GetColorBoost() const { return color_boost_; }
  void SetColorBoost(double boost) { color_boost_ = boost; }
  double GetColorBoostBlend() const { return color_boost_blend_; }
  void SetColorBoostBlend(double blend) { color_boost_blend_ = blend; }
  bool GetFlatten() const { return flatten_; }
  void SetFlatten(bool on) { flatten_ = on; }

  // --- white ---
  // One of WhiteUsage; other values are kept as they are and match no predicate.
  int GetWhiteUsage() const { return white_usage_; }
  void SetWhiteUsage(int usage) { white_usage_ = usage; }
  // The mask under black, and the second mask.
  const CWhiteMask& GetWhiteMask() const { return white_mask_; }
  CWhiteMask& GetWhiteMask() { return white_mask_; }
  void SetWhiteMask(const CWhiteMask& mask) { white_mask_ = mask; }
  const CWhiteMask& GetWhiteMask2() const { return white_mask2_; }
  CWhiteMask& GetWhiteMask2() { return white_mask2_; }
  void SetWhiteMask2(const CWhiteMask& mask) { white_mask2_ = mask; }
  double GetWhiteMaxInk() const { return white_max_ink_; }
  void SetWhiteMaxInk(double percent) { white_max_ink_ = percent; }
  int GetChokeWhite() const { return choke_white_; }
  void SetChokeWhite(int choke) { choke_white_ = choke; }
  bool GetWhiteOpaque() const { return white_opaque_; }
  void SetWhiteOpaque(bool on) { white_opaque_ = on; }
  const CCurveData& GetWhiteCurve() const { return white_curve_; }
  CCurveData& GetWhiteCurve() { return white_curve_; }
  void SetWhiteCurve(const CCurveData& curve) { white_curve_ = curve; }

  // --- clear coat ---
  bool GetUseClear() const { return use_clear_; }
  void SetUseClear(bool on) { use_clear_ = on; }
  double GetClearMaxInk() const { return clear_max_ink_; }
  void SetClearMaxInk(double percent) { clear_max_ink_ = percent; }
  int GetClearBleed() const { return clear_bleed_; }
  void SetClearBleed(int bleed) { clear_bleed_ = bleed; }
  bool GetClearOpaque() const { return clear_opaque_; }
  void SetClearOpaque(bool on) { clear_opaque_ = on; }

  // Field by field. The masks compare as masks do (strengths only); the white
  // curve by its name, selection and points, so that an edited curve counts
  // as a change.
  bool operator==(const CBmpProcessOptions& other) const;

  // Appends a "BitmapProcessingOptions" element. Always true.
  bool WriteXML(pugi::xml_node parent) const;
  // Reads a "BitmapProcessingOptions" element over the current values: each
  // scalar present and not empty sets its field; the first "WhiteMask" is
  // read into the mask under black, the second into the second mask, further
  // ones are ignored; "CurveData" replaces the white curve. An element of
  // another name reads nothing. Always true.
  bool ReadXML(const pugi::xml_node& node);

 private:
  struct Fields;  // the field table, in the source file

  bool use_primer_ = false;
  double primer_max_ink_ = 100.0;
  int primer_bleed_ = 0;
  std::wstring primer_plane_ = kDefaultPrimerPlane;
  bool invert_alpha_ = false;
  bool prime_opaque_ = false;
  bool use_knock_me_black_ = false;
  int knock_me_black_ = 70;
  bool use_knock_me_white_ = false;
  int knock_me_white_ = 0;
  int clean_black_ = 255;
  double color_boost_ = 1.0;
  double color_boost_blend_ = 0.0;
  bool flatten_ = true;
  int white_usage_ = WHITE_USAGE_NONE;
  CWhiteMask white_mask_;
  CWhiteMask white_mask2_;
  double white_max_ink_ = 100.0;
  int choke_white_ = 0;
  bool white_opaque_ = false;
  CCurveData white_curve_;
  bool use_clear_ = false;
  double clear_max_ink_ = 100.0;
  int clear_bleed_ = 0;
  bool clear_opaque_ = false;
};

}  // namespace tarn
