#include "tarn/layers/bmp_process_options.h"

#include <array>

#include "tarn/foundation/xml.h"
#include "tarn/layers/internal/layer_xml.h"

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
constexpr const char* kOptions = "BitmapProcessingOptions";
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

using internal::HasValue;

}  // namespace

// --- CWhiteMask ---------------------------------------------------------------

std::span<const CWhiteMask::Preset> CWhiteMask::GetPresets() {
  return kPresets;
}

CWhiteMask::CWhiteMask() {
  SetPreset(kPresets.front());
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

bool CWhiteMask::operator==(const CWhiteMask& other) const {
  return strength_ == other.strength_ && light_strength_ == other.light_strength_ &&
         dark_strength_ == other.dark_strength_ && white_strength_ == other.white_strength_ &&
         last_point_strength_ == other.last_point_strength_;
}

bool CWhiteMask::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, mask_tag::kWhiteMask);
  xml::AppendText(node, mask_tag::kDisplay, display_);
  xml::AppendInt(node, mask_tag::kStrength, strength_);
  xml::AppendInt(node, mask_tag::kLightStrength, light_strength_);
  xml::AppendInt(node, mask_tag::kDarkStrength, dark_strength_);
  xml::AppendInt(node, mask_tag::kWhiteStrength, white_strength_);
  xml::AppendInt(node, mask_tag::kLastPointStrength, last_point_strength_);
  return true;
}

bool CWhiteMask::ReadXML(const pugi::xml_node& node) {
  for (const pugi::xml_node& child : node.children()) {
    if (!HasValue(child)) {
      continue;
    }
    if (xml::IsNamed(child, mask_tag::kDisplay)) {
      display_ = xml::ReadText(child);
    } else if (xml::IsNamed(child, mask_tag::kStrength)) {
      strength_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, mask_tag::kLightStrength)) {
      light_strength_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, mask_tag::kDarkStrength)) {
      dark_strength_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, mask_tag::kWhiteStrength)) {
      white_strength_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, mask_tag::kLastPointStrength)) {
      last_point_strength_ = xml::ReadInt(child);
    }
  }
  return true;
}

// --- CBmpProcessOptions -------------------------------------------------------

CBmpProcessOptions::CBmpProcessOptions() {
  SetToDefault();
}

void CBmpProcessOptions::SetToDefault() {
  // The masks are deliberately left alone: callers reset the options and keep
  // the masks the user chose.
  use_primer_ = false;
  primer_max_ink_ = 100.0;
  primer_bleed_ = 0;
  primer_plane_ = kDefaultPrimerPlane;
  invert_alpha_ = false;
  prime_opaque_ = false;
  use_knock_me_black_ = false;
  knock_me_black_ = 70;
  use_knock_me_white_ = false;
  knock_me_white_ = 0;
  clean_black_ = 255;
  color_boost_ = 1.0;
  color_boost_blend_ = 0.0;
  flatten_ = true;
  white_usage_ = WHITE_USAGE_NONE;
  white_max_ink_ = 100.0;
  choke_white_ = 0;
  white_opaque_ = false;
  white_curve_.SetDefaults();
  use_clear_ = false;
  clear_max_ink_ = 100.0;
  clear_bleed_ = 0;
  clear_opaque_ = false;
}

bool CBmpProcessOptions::HasAnyProcessing() const {
  return use_knock_me_black_ || use_knock_me_white_ || HasColorBoost() || HasUnderbase() || HasHighlight() ||
         HasCoverage() || use_clear_ || use_primer_;
}

bool CBmpProcessOptions::operator==(const CBmpProcessOptions& other) const {
  const auto sameCurve = [](const CCurveData& a, const CCurveData& b) {
    return a.GetName() == b.GetName() && a.IsSelected() == b.IsSelected() && a.GetValues() == b.GetValues();
  };
  return use_primer_ == other.use_primer_ && primer_max_ink_ == other.primer_max_ink_ &&
         primer_bleed_ == other.primer_bleed_ && primer_plane_ == other.primer_plane_ &&
         invert_alpha_ == other.invert_alpha_ && prime_opaque_ == other.prime_opaque_ &&
         use_knock_me_black_ == other.use_knock_me_black_ && knock_me_black_ == other.knock_me_black_ &&
         use_knock_me_white_ == other.use_knock_me_white_ && knock_me_white_ == other.knock_me_white_ &&
         clean_black_ == other.clean_black_ && color_boost_ == other.color_boost_ &&
         color_boost_blend_ == other.color_boost_blend_ && flatten_ == other.flatten_ &&
         white_usage_ == other.white_usage_ && white_mask_ == other.white_mask_ &&
         white_mask2_ == other.white_mask2_ && white_max_ink_ == other.white_max_ink_ &&
         choke_white_ == other.choke_white_ && white_opaque_ == other.white_opaque_ &&
         sameCurve(white_curve_, other.white_curve_) && use_clear_ == other.use_clear_ &&
         clear_max_ink_ == other.clear_max_ink_ && clear_bleed_ == other.clear_bleed_ &&
         clear_opaque_ == other.clear_opaque_;
}

bool CBmpProcessOptions::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, tag::kOptions);
  xml::AppendBool(node, tag::kUsePrimer, use_primer_);
  xml::AppendReal(node, tag::kPrimerMaxInk, primer_max_ink_);
  xml::AppendInt(node, tag::kPrimerBleed, primer_bleed_);
  xml::AppendText(node, tag::kPrimerPlane, primer_plane_);
  xml::AppendBool(node, tag::kInvertAlpha, invert_alpha_);
  xml::AppendBool(node, tag::kPrimeOpaque, prime_opaque_);
  xml::AppendBool(node, tag::kUseKnockMeBlack, use_knock_me_black_);
  xml::AppendInt(node, tag::kKnockMeBlack, knock_me_black_);
  xml::AppendBool(node, tag::kUseKnockMeWhite, use_knock_me_white_);
  xml::AppendInt(node, tag::kKnockMeWhite, knock_me_white_);
  xml::AppendInt(node, tag::kCleanBlack, clean_black_);
  xml::AppendReal(node, tag::kColorBoost, color_boost_);
  xml::AppendReal(node, tag::kColorBoostBlend, color_boost_blend_);
  xml::AppendBool(node, tag::kFlatten, flatten_);
  xml::AppendInt(node, tag::kWhiteUsage, white_usage_);
  white_mask_.WriteXML(node);
  white_mask2_.WriteXML(node);
  xml::AppendReal(node, tag::kWhiteMaxInk, white_max_ink_);
  xml::AppendInt(node, tag::kChokeWhite, choke_white_);
  xml::AppendBool(node, tag::kWhiteOpaque, white_opaque_);
  white_curve_.WriteXML(node);
  xml::AppendBool(node, tag::kUseClear, use_clear_);
  xml::AppendReal(node, tag::kClearMaxInk, clear_max_ink_);
  xml::AppendInt(node, tag::kClearBleed, clear_bleed_);
  xml::AppendBool(node, tag::kClearOpaque, clear_opaque_);
  return true;
}

bool CBmpProcessOptions::ReadXML(const pugi::xml_node& node) {
  int masks = 0;
  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, mask_tag::kWhiteMask)) {
      // The first mask is the one under black, the second the other; files
      // never hold more, and a third is ignored.
      if (masks == 0) {
        white_mask_.ReadXML(child);
      } else if (masks == 1) {
        white_mask2_.ReadXML(child);
      }
      ++masks;
      continue;
    }
    if (xml::IsNamed(child, tag::kCurveData)) {
      white_curve_.ReadXML(child);
      continue;
    }
    if (!HasValue(child)) {
      continue;
    }
    if (xml::IsNamed(child, tag::kUsePrimer)) {
      use_primer_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, tag::kPrimerMaxInk)) {
      primer_max_ink_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, tag::kPrimerBleed)) {
      primer_bleed_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kPrimerPlane)) {
      primer_plane_ = xml::ReadText(child);
    } else if (xml::IsNamed(child, tag::kInvertAlpha)) {
      invert_alpha_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, tag::kPrimeOpaque)) {
      prime_opaque_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, tag::kUseKnockMeBlack)) {
      use_knock_me_black_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, tag::kKnockMeBlack)) {
      knock_me_black_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kUseKnockMeWhite)) {
      use_knock_me_white_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, tag::kKnockMeWhite)) {
      knock_me_white_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kCleanBlack)) {
      clean_black_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kColorBoost)) {
      color_boost_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, tag::kColorBoostBlend)) {
      color_boost_blend_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, tag::kFlatten)) {
      flatten_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, tag::kWhiteUsage)) {
      white_usage_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kWhiteMaxInk)) {
      white_max_ink_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, tag::kChokeWhite)) {
      choke_white_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kWhiteOpaque)) {
      white_opaque_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, tag::kUseClear)) {
      use_clear_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, tag::kClearMaxInk)) {
      clear_max_ink_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, tag::kClearBleed)) {
      clear_bleed_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, tag::kClearOpaque)) {
      clear_opaque_ = xml::ReadBool(child);
    }
  }
  return true;
}

}  // namespace tarn
