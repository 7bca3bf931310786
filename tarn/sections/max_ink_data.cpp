#include "tarn/sections/max_ink_data.h"

#include <cmath>
#include <string_view>

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/fields.h"
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

struct CPMMaxInkData::Fields {
  using R = CPMMaxInkData;
  using F = internal::Field<R>;

  // A, A again, B, C and two places that are always zero.
  static void ReadData(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    double v[6] = {};
    if (internal::ScanRealList(xml::ReadText(child), v)) {
      r.a_ = CMaxInkValue{0, v[0]};
      r.a_plain_ = v[0];
      r.b_ = CMaxInkValue{0, v[2]};
      r.c_ = CMaxInkValue{0, v[3]};
    }
  }
  static void WriteData(const R& r, pugi::xml_node& node) {
    xml::AppendText(node, tag::kData,
                    Format(kDataFormat, r.a_.value, r.a_.value, r.b_.value, r.c_.value, 0.0, 0.0));
  }
  static void ReadOldData(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    double v[1] = {};
    if (internal::ScanRealList(xml::ReadText(child), v)) {
      r.old_max_ink_ = v[0];
    }
  }
  // Written only while the old limit is in force.
  static void WriteOldData(const R& r, pugi::xml_node& node) {
    if (r.use_old_) {
      xml::AppendReal(node, tag::kOldData, r.old_max_ink_, kOldDataFormat);
    }
  }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        R::kElementName,
        {
            F::Bool(tag::kEnable, &R::enable_).Attribute(),
            F::Bool(tag::kUseOldValue, &R::use_old_).Attribute().Writes(internal::Write::kIfTrue),
            F::Custom(tag::kData, &ReadData, &WriteData),
            F::Custom(tag::kOldData, &ReadOldData, &WriteOldData),
        });
    return table;
  }
};

bool CPMMaxInkData::operator==(const CPMMaxInkData& other) const {
  return Fields::Table().Equal(*this, other) && a_ == other.a_ && b_ == other.b_ && c_ == other.c_ &&
         old_max_ink_ == other.old_max_ink_;
}

bool CPMMaxInkData::ReadXML(const pugi::xml_node& node) {
  return Fields::Table().Read(*this, node);
}

void CPMMaxInkData::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, kElementName));
}

}  // namespace tarn
