#include "tarn/sections/max_ink_data.h"

#include <cmath>
#include <string_view>

#include "tarn/foundation/format.h"
#include "tarn/foundation/xml.h"
#include "tarn/sections/internal/number_list.h"

namespace tarn {
namespace {

// Tags of the section, shared by its reader and writer.
namespace tag {
constexpr const char* kEnable = "enable";
constexpr const char* kUseOldValue = "use_old_value";
constexpr const char* kData = "MIDATA";
constexpr const char* kOldData = "MIOLDDATA";
}  // namespace tag

constexpr std::wstring_view kDataFormat = L"%lf,%lf,%lf,%lf,%lf,%lf";
constexpr std::string_view kOldDataFormat = "%lf";

// Limits are compared as whole numbers after scaling.
double Round(double x) {
  return std::trunc(x + 0.5);
}

}  // namespace

bool CPMMaxInkData::operator==(const CPMMaxInkData& other) const {
  return enable_ == other.enable_ && a_ == other.a_ && b_ == other.b_ && c_ == other.c_ &&
         use_old_ == other.use_old_ && old_max_ink_ == other.old_max_ink_;
}

void CPMMaxInkData::SetDefaults() {
  enable_ = false;
  a_ = CMaxInkValue{0, 0.0};
  a_plain_ = 0.0;
  b_ = CMaxInkValue{0, kFullInk};
  c_ = CMaxInkValue{0, kFullInk};
  further_[0] = further_[1] = CMaxInkValue{};
  use_old_ = false;
  old_max_ink_ = 0.0;
}

void CPMMaxInkData::SetEnable(bool on) {
  enable_ = on;
  if (on) {
    use_old_ = false;
  } else {
    use_old_ = std::trunc(old_max_ink_ * 1000.0 + 0.5) != 0.0;
  }
}

void CPMMaxInkData::SetOldMaxInk(double v) {
  old_max_ink_ = v;
  use_old_ = true;
  enable_ = true;
}

bool CPMMaxInkData::Validate() {
  const CMaxInkValue old_b = b_;
  const CMaxInkValue old_c = c_;
  if (a_.kind == 0) {
    a_plain_ = a_.value;
  }
  further_[0] = further_[1] = CMaxInkValue{};

  const double a = a_.value;
  // B goes back to full ink; C follows A when A is a plain number.
  const auto reset_b = [this, a] {
    b_ = CMaxInkValue{0, kFullInk};
    if (a_.kind == 0) {
      c_ = CMaxInkValue{0, a};
    }
  };
  if (Round(scale_b_ * b_.value) < Round(scale_b_ * a) ||
      Round(scale_b_ * b_.value) > Round(scale_b_ * kFullInk)) {
    reset_b();
  }
  if (Round(scale_c_ * c_.value) < Round(scale_c_ * a)) {
    reset_b();
  }
  if (Round(scale_c_ * c_.value) > Round(scale_c_ * b_.value)) {
    b_ = CMaxInkValue{0, kFullInk};
    c_ = CMaxInkValue{0, kFullInk};
  }
  // B equal to A leaves no room between them, so B returns to full ink even
  // when the order holds; print modes have always been validated this way.
  if (Round(scale_b_ * b_.value) == Round(scale_b_ * a)) {
    reset_b();
  }
  return !(b_ == old_b && c_ == old_c);
}

bool CPMMaxInkData::ReadXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kElementName)) {
    return false;
  }
  SetDefaults();
  enable_ = xml::ReadAttributeBool(node, tag::kEnable);
  use_old_ = xml::ReadAttributeBool(node, tag::kUseOldValue);
  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, tag::kData)) {
      // A, A again, B, C and two places that are always zero.
      double v[6] = {};
      if (internal::ScanRealList(xml::ReadText(child), v)) {
        a_ = CMaxInkValue{0, v[0]};
        a_plain_ = v[0];
        b_ = CMaxInkValue{0, v[2]};
        c_ = CMaxInkValue{0, v[3]};
      }
    } else if (xml::IsNamed(child, tag::kOldData)) {
      double v[1] = {};
      if (internal::ScanRealList(xml::ReadText(child), v)) {
        old_max_ink_ = v[0];
      }
    }
  }
  return true;
}

void CPMMaxInkData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kElementName);
  xml::SetAttributeBool(node, tag::kEnable, enable_);
  if (use_old_) {
    xml::SetAttributeBool(node, tag::kUseOldValue, true);
  }
  xml::AppendText(node, tag::kData, Format(kDataFormat, a_.value, a_.value, b_.value, c_.value, 0.0, 0.0));
  if (use_old_) {
    xml::AppendReal(node, tag::kOldData, old_max_ink_, kOldDataFormat);
  }
}

}  // namespace tarn
