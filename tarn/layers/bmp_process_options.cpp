#include "tarn/layers/bmp_process_options.h"

#include <array>

#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

namespace mask_tag {
constexpr const char* kWhiteMask = "WhiteMask";
constexpr const char* kDisplay = "Display";
constexpr const char* kStrength = "Strength";
constexpr const char* kLightStrength = "LightStrength";
constexpr const char* kDarkStrength = "DarkStrength";
constexpr const char* kWhiteStrength = "WhiteStrength";
constexpr const char* kLastPointStrength = "LastPointStrength";
}  // namespace mask_tag

namespace tag {
constexpr const char* kOptions = CBmpProcessOptions::kElementName;
constexpr const char* kUsePrimer = "UsePrimer";
constexpr const char* kPrimerMaxInk = "PrimerMaxInk";
constexpr const char* kPrimerBleed = "PrimerBleed";
constexpr const char* kPrimerPlane = "PrimerPlane";
constexpr const char* kInvertAlpha = "InvertAlpha";
constexpr const char* kPrimeOpaque = "PrimeOpaque";
constexpr const char* kUseKnockMeBlack = "UseKnockMeBlack";
constexpr const char* kKnockMeBlack = "KnockMeBlack";
constexpr const char* kUseKnockMeWhite = "UseKnockMeWhite";
constexpr const char* kKnockMeWhite = "KnockMeWhite";
constexpr const char* kCleanBlack = "CleanBlack";
constexpr const char* kColorBoost = "ColorBoost";
constexpr const char* kColorBoostBlend = "ColorBoostBlend";
constexpr const char* kFlatten = "Flatten";
constexpr const char* kWhiteUsage = "WhiteUsage";
constexpr const char* kWhiteMaxInk = "WhiteMaxInk";
constexpr const char* kChokeWhite = "ChokeWhite";
constexpr const char* kWhiteOpaque = "WhiteOpaque";
constexpr const char* kCurveData = "CurveData";
constexpr const char* kUseClear = "UseClear";
constexpr const char* kClearMaxInk = "ClearMaxInk";
constexpr const char* kClearBleed = "ClearBleed";
constexpr const char* kClearOpaque = "ClearOpaque";
}  // namespace tag

constexpr std::array<CWhiteMask::Preset, 2> kPresets = {{
    {L"Strong", CWhiteMask::kStrong, CWhiteMask::kStrong, CWhiteMask::kStrong, CWhiteMask::kStrong, 100},
    {L"Manual Curve...", CWhiteMask::kManualCurve, CWhiteMask::kManualCurve, CWhiteMask::kManualCurve,
     CWhiteMask::kManualCurve, 100},
}};

// Fields change only where the file holds a value.
constexpr internal::Read kKeep = internal::Read::kIfPresentNotEmpty;

}  // namespace

// --- CWhiteMask ---------------------------------------------------------------

std::span<const CWhiteMask::Preset> CWhiteMask::GetPresets() {
  return kPresets;
}

CWhiteMask::CWhiteMask(const Preset& preset) {
  SetPreset(preset);
}

void CWhiteMask::SetPreset(const Preset& preset) {
  display_ = preset.display;
  strength_ = preset.strength;
  light_strength_ = preset.lightStrength;
  dark_strength_ = preset.darkStrength;
  white_strength_ = preset.whiteStrength;
  last_point_strength_ = preset.lastPointStrength;
}

// A mask is read over its current values: what the file leaves empty stays.
struct CWhiteMask::Fields {
  using R = CWhiteMask;
  using F = internal::Field<R>;
  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        mask_tag::kWhiteMask, {
                                  // Masks that print alike are equal, whatever they are called.
                                  F::Text(mask_tag::kDisplay, &R::display_).Reads(kKeep).NotCompared(),
                                  F::Int(mask_tag::kStrength, &R::strength_).Reads(kKeep),
                                  F::Int(mask_tag::kLightStrength, &R::light_strength_).Reads(kKeep),
                                  F::Int(mask_tag::kDarkStrength, &R::dark_strength_).Reads(kKeep),
                                  F::Int(mask_tag::kWhiteStrength, &R::white_strength_).Reads(kKeep),
                                  F::Int(mask_tag::kLastPointStrength, &R::last_point_strength_).Reads(kKeep),
                              });
    return table;
  }
};

bool CWhiteMask::operator==(const CWhiteMask& other) const {
  return Fields::Table().Equal(*this, other);
}

bool CWhiteMask::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, mask_tag::kWhiteMask));
  return true;
}

bool CWhiteMask::ReadXML(const pugi::xml_node& node) {
  Fields::Table().Read(*this, node, internal::Start::kCurrent);
  return true;
}

// --- CBmpProcessOptions -------------------------------------------------------

// The options are read over their current values: a scalar the file leaves
// empty or out keeps its value.
struct CBmpProcessOptions::Fields {
  using R = CBmpProcessOptions;
  using F = internal::Field<R>;

  // The first mask is the one under black, the second the other; files never
  // hold more, and a third is ignored.
  static void ReadMask(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    int before = 0;
    for (pugi::xml_node mask = child.previous_sibling(mask_tag::kWhiteMask); mask && before < 2;
         mask = mask.previous_sibling(mask_tag::kWhiteMask)) {
      ++before;
    }
    if (before == 0) {
      r.white_mask_.ReadXML(child);
    } else if (before == 1) {
      r.white_mask2_.ReadXML(child);
    }
  }
  static void WriteMasks(const R& r, pugi::xml_node& node) {
    r.white_mask_.WriteXML(node);
    r.white_mask2_.WriteXML(node);
  }
  static void ReadCurve(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    r.white_curve_.ReadXML(child);
  }
  static void WriteCurve(const R& r, pugi::xml_node& node) { r.white_curve_.WriteXML(node); }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        tag::kOptions, {
                           F::Bool(tag::kUsePrimer, &R::use_primer_).Reads(kKeep),
                           F::Real(tag::kPrimerMaxInk, &R::primer_max_ink_).Reads(kKeep),
                           F::Int(tag::kPrimerBleed, &R::primer_bleed_).Reads(kKeep),
                           F::Text(tag::kPrimerPlane, &R::primer_plane_).Reads(kKeep),
                           F::Bool(tag::kInvertAlpha, &R::invert_alpha_).Reads(kKeep),
                           F::Bool(tag::kPrimeOpaque, &R::prime_opaque_).Reads(kKeep),
                           F::Bool(tag::kUseKnockMeBlack, &R::use_knock_me_black_).Reads(kKeep),
                           F::Int(tag::kKnockMeBlack, &R::knock_me_black_).Reads(kKeep),
                           F::Bool(tag::kUseKnockMeWhite, &R::use_knock_me_white_).Reads(kKeep),
                           F::Int(tag::kKnockMeWhite, &R::knock_me_white_).Reads(kKeep),
                           F::Int(tag::kCleanBlack, &R::clean_black_).Reads(kKeep),
                           F::Real(tag::kColorBoost, &R::color_boost_).Reads(kKeep),
                           F::Real(tag::kColorBoostBlend, &R::color_boost_blend_).Reads(kKeep),
                           F::Bool(tag::kFlatten, &R::flatten_).Reads(kKeep),
                           F::Int(tag::kWhiteUsage, &R::white_usage_).Reads(kKeep),
                           F::Custom(mask_tag::kWhiteMask, &ReadMask, &WriteMasks),
                           F::Real(tag::kWhiteMaxInk, &R::white_max_ink_).Reads(kKeep),
                           F::Int(tag::kChokeWhite, &R::choke_white_).Reads(kKeep),
                           F::Bool(tag::kWhiteOpaque, &R::white_opaque_).Reads(kKeep),
                           F::Custom(tag::kCurveData, &ReadCurve, &WriteCurve),
                           F::Bool(tag::kUseClear, &R::use_clear_).Reads(kKeep),
                           F::Real(tag::kClearMaxInk, &R::clear_max_ink_).Reads(kKeep),
                           F::Int(tag::kClearBleed, &R::clear_bleed_).Reads(kKeep),
                           F::Bool(tag::kClearOpaque, &R::clear_opaque_).Reads(kKeep),
                       });
    return table;
  }
};

void CBmpProcessOptions::SetToDefault() {
  // The masks are deliberately left alone: callers reset the options and keep
  // the masks the user chose.
  Fields::Table().Assign(CBmpProcessOptions(), *this);
  white_curve_.SetDefaults();
}

bool CBmpProcessOptions::HasAnyProcessing() const {
  return use_knock_me_black_ || use_knock_me_white_ || HasColorBoost() || HasUnderbase() || HasHighlight() ||
         HasCoverage() || use_clear_ || use_primer_;
}

bool CBmpProcessOptions::operator==(const CBmpProcessOptions& other) const {
  // The white curve by its points too: its own comparison looks at the name only.
  const auto sameCurve = [](const CCurveData& a, const CCurveData& b) {
    return a.GetName() == b.GetName() && a.IsSelected() == b.IsSelected() && a.GetValues() == b.GetValues();
  };
  return Fields::Table().Equal(*this, other) && white_mask_ == other.white_mask_ &&
         white_mask2_ == other.white_mask2_ && sameCurve(white_curve_, other.white_curve_);
}

bool CBmpProcessOptions::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, tag::kOptions));
  return true;
}

bool CBmpProcessOptions::ReadXML(const pugi::xml_node& node) {
  Fields::Table().Read(*this, node, internal::Start::kCurrent);
  return true;
}

}  // namespace tarn
