#include "tarn/sections/laser_data.h"

#include <algorithm>

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/tags.h"
#include "tarn/foundation/xml.h"

namespace tarn {

namespace {

constexpr const char* kTagColor = "VPCOLOR";
constexpr const char* kAttrColorSpace = "cspace";
constexpr const char* kAttrColorName = "cname";

constexpr const char* kTagPen = "VPEN";
constexpr const char* kAttrEnabled = "enabled";
constexpr const char* kAttrPower = "power";
constexpr const char* kAttrSpeed = "speed";
constexpr const char* kAttrPPI = "ppi";
constexpr const char* kAttrIndex = "index";

constexpr const char* kTagLaser = CPMLaserData::kElementName;
constexpr const char* kAttrVersion = tags::kVersion;
constexpr int kLaserVersion = 2;
constexpr const char* kTagRasterPower = "RPOWER";
constexpr const char* kTagRasterSpeed = "RSPEED";
constexpr const char* kTagDPI = "DPI";
constexpr const char* kTagRasterTotalWidth = "RSTOTALWIDTH";
constexpr const char* kTagRasterSplitWidth = "RSSPLITWIDTH";
constexpr const char* kTagRasterSplitPower = "RSSPLITPOWER";
constexpr const char* kTagUseVectorSpeedAndPower = "USEVECTORSPEEDANDPOWER";
constexpr const char* kTagVectorResolution = "VRESOLUTION";
constexpr const char* kTagCurve = tags::kCurveData;
constexpr const char* kTagCurve2 = tags::kCurveData2;
constexpr const char* kTagRotaryFixture = "ROTARYFIXTURE";
constexpr const char* kTagUseHotWatch = "USEHOTWATCH";

// A 32-bit value written as "%d" or "%u": both read back to the same bits.
std::uint32_t ParsePacked(std::wstring_view text) {
  long long value = 0;
  ParseIntPrefix(text, value);
  return static_cast<std::uint32_t>(value);
}

void ReadRealAttribute(const pugi::xml_node& node, const char* name, double& field) {
  if (node.attribute(name)) {
    field = xml::ReadAttributeReal(node, name);
  }
}

}  // namespace

// --- CColor --------------------------------------------------------------

CColor CColor::FromRGB(int r, int g, int b) {
  CColor color;
  color.SetR(r);
  color.SetG(g);
  color.SetB(b);
  return color;
}

CColor CColor::FromCMYK(int c, int m, int y, int k) {
  CColor color(kCMYK, 0);
  color.SetC(c);
  color.SetM(m);
  color.SetY(y);
  color.SetK(k);
  return color;
}

void CColor::SetComponent(int byte, int v) {
  const int shift = 8 * byte;
  value_ = (value_ & ~(0xFFu << shift)) | ((static_cast<std::uint32_t>(v) & 0xFFu) << shift);
}

std::uint32_t CColor::GetScreenColor() const {
  switch (cspace_) {
    case kRGB:
      return value_ & 0xFFFFFFu;
    case kCMYK: {
      const int k = static_cast<int>(GetK() / 100.0 * 255.0);
      const auto channel = [k](int percent) {
        return static_cast<std::uint32_t>(std::max(0, static_cast<int>(255.0 - percent / 100.0 * 255.0) - k));
      };
      return channel(GetC()) | (channel(GetM()) << 8) | (channel(GetY()) << 16);
    }
    default:
      return 0;
  }
}

std::wstring CColor::FormatColorName() const {
  switch (cspace_) {
    case kRGB:
      return Format(L"RGB: (%d,%d,%d)", GetR(), GetG(), GetB());
    case kCMYK:
      return Format(L"CMYK: (%d,%d,%d,%d)", GetC(), GetM(), GetY(), GetK());
    case kNamed:
      return cname_;
    default:
      return {};
  }
}

void CColor::WriteXML(pugi::xml_node parent) const {
  // "%d", as the files have always held it: a value with its top bit set reads
  // as negative text and comes back to the same bits.
  pugi::xml_node node = xml::AppendCData(parent, kTagColor, Format(L"%d", static_cast<std::int32_t>(value_)));
  xml::SetAttributeInt(node, kAttrColorSpace, cspace_);
  if (!cname_.empty()) {
    xml::SetAttribute(node, kAttrColorName, cname_);
  }
}

bool CColor::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!xml::IsNamed(node, kTagColor)) {
    return false;
  }
  cspace_ = node.attribute(kAttrColorSpace).as_uint();
  cname_ = xml::ReadAttribute(node, kAttrColorName);
  value_ = ParsePacked(xml::ReadText(node));
  return true;
}

// --- CLaserPen -----------------------------------------------------------

void CLaserPen::SetData(bool enabled, double power, double speed, double ppi, const CColor& color) {
  enabled_ = enabled;
  power_ = power;
  speed_ = speed;
  ppi_ = ppi;
  color_ = color;
}

void CLaserPen::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kTagPen);
  xml::SetAttributeBool(node, kAttrEnabled, enabled_);
  xml::SetAttributeReal(node, kAttrPower, power_);
  xml::SetAttributeReal(node, kAttrSpeed, speed_);
  xml::SetAttributeReal(node, kAttrPPI, ppi_);
  xml::SetAttributeInt(node, kAttrIndex, index_);
  color_.WriteXML(node);
}

bool CLaserPen::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!xml::IsNamed(node, kTagPen)) {
    return false;
  }
  if (const pugi::xml_attribute enabled = node.attribute(kAttrEnabled)) {
    enabled_ = enabled.as_bool();
  }
  ReadRealAttribute(node, kAttrPower, power_);
  ReadRealAttribute(node, kAttrSpeed, speed_);
  ReadRealAttribute(node, kAttrPPI, ppi_);
  if (node.attribute(kAttrIndex)) {
    index_ = ParsePacked(xml::ReadAttribute(node, kAttrIndex));
  }
  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, kTagColor)) {
      color_.ReadXML(child);
    }
  }
  return true;
}

// --- CVectorPenList ------------------------------------------------------

CVectorPenList::CVectorPenList(const CVectorPenList& other) : position_(other.position_) {
  pens_.reserve(other.pens_.size());
  for (const auto& pen : other.pens_) {
    pens_.push_back(std::make_unique<CLaserPen>(*pen));
  }
}

CVectorPenList& CVectorPenList::operator=(const CVectorPenList& other) {
  if (this != &other) {
    CVectorPenList copy(other);
    *this = std::move(copy);
  }
  return *this;
}

bool CVectorPenList::IsTaken(const CColor& color) const {
  if (color.GetColorSpace() == CColor::kNamed) {
    return GetPenByName(color.GetName()) != nullptr;
  }
  return GetPenByColor(color.GetFullColor()) != nullptr;
}

bool CVectorPenList::AddPen(const CLaserPen& pen) {
  return InsertPen(pens_.size(), pen);
}

bool CVectorPenList::AddPen(bool enabled, double power, double speed, double ppi, const CColor& color) {
  return AddPen(CLaserPen(enabled, power, speed, ppi, color));
}

bool CVectorPenList::AddColor(const CColor& color) {
  CLaserPen pen;
  pen.SetColor(color);
  return AddPen(pen);
}

bool CVectorPenList::InsertPen(size_t position, const CLaserPen& pen) {
  if (IsTaken(pen.GetColor())) {
    return false;
  }
  position = std::min(position, pens_.size());
  pens_.insert(pens_.begin() + static_cast<std::ptrdiff_t>(position), std::make_unique<CLaserPen>(pen));
  ReorderPens();
  return true;
}

bool CVectorPenList::RemovePenByColor(std::uint32_t value) {
  const CLaserPen* pen = GetPenByColor(value);
  if (!pen) {
    return false;
  }
  std::erase_if(pens_, [pen](const auto& held) { return held.get() == pen; });
  ReorderPens();
  return true;
}

bool CVectorPenList::RemovePenByName(const std::wstring& name) {
  const CLaserPen* pen = GetPenByName(name);
  if (!pen) {
    return false;
  }
  std::erase_if(pens_, [pen](const auto& held) { return held.get() == pen; });
  ReorderPens();
  return true;
}

const CLaserPen* CVectorPenList::GetPenByColor(std::uint32_t value) const {
  // A named colour is known by its name; its packed value identifies nothing.
  for (const auto& pen : pens_) {
    if (pen->GetColor().GetColorSpace() != CColor::kNamed && pen->GetColor().GetFullColor() == value) {
      return pen.get();
    }
  }
  return nullptr;
}

CLaserPen* CVectorPenList::GetPenByColor(std::uint32_t value) {
  return const_cast<CLaserPen*>(std::as_const(*this).GetPenByColor(value));
}

const CLaserPen* CVectorPenList::GetPenByName(const std::wstring& name) const {
  if (name.empty()) {
    return nullptr;
  }
  for (const auto& pen : pens_) {
    if (pen->GetColor().GetColorSpace() == CColor::kNamed && pen->GetColor().GetName() == name) {
      return pen.get();
    }
  }
  return nullptr;
}

CLaserPen* CVectorPenList::GetPenByName(const std::wstring& name) {
  return const_cast<CLaserPen*>(std::as_const(*this).GetPenByName(name));
}

CLaserPen* CVectorPenList::GetFirstPen() {
  position_ = 0;
  return GetNextPen();
}

CLaserPen* CVectorPenList::GetNextPen() {
  if (position_ >= pens_.size()) {
    return nullptr;
  }
  return pens_[position_++].get();
}

void CVectorPenList::ReorderPens() {
  std::uint32_t index = 1;
  for (auto& pen : pens_) {
    pen->SetIndex(index++);
  }
}

void CVectorPenList::WriteXML(pugi::xml_node parent) const {
  for (const auto& pen : pens_) {
    pen->WriteXML(parent);
  }
}

void CVectorPenList::ReadXML(const pugi::xml_node& node) {
  for (const pugi::xml_node& child : node.children()) {
    CLaserPen pen;
    if (pen.ReadXML(child)) {
      AddPen(pen);
    }
  }
}

bool CVectorPenList::operator==(const CVectorPenList& other) const {
  return std::equal(pens_.begin(), pens_.end(), other.pens_.begin(), other.pens_.end(),
                    [](const auto& a, const auto& b) { return *a == *b; });
}

// --- CPMLaserData --------------------------------------------------------

struct CPMLaserData::Fields {
  using R = CPMLaserData;
  using F = internal::Field<R>;

  static void WriteVersion(const R& /*r*/, pugi::xml_node& node) {
    xml::SetAttributeInt(node, kAttrVersion, kLaserVersion);
  }
  static void ReadCurve(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    r.power_curve_.ReadXML(child);
  }
  static void WriteCurve(const R& r, pugi::xml_node& node) { r.power_curve_.WriteXML(node, false, 0); }
  // The fixture is in use exactly when its diameter is in the file.
  static void ReadRotary(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    r.rotary_fixture_ = xml::ReadReal(child);
    r.use_rotary_fixture_ = true;
  }
  static void WriteRotary(const R& r, pugi::xml_node& node) {
    if (r.use_rotary_fixture_) {
      xml::AppendReal(node, kTagRotaryFixture, r.rotary_fixture_);
    }
  }
  static void ReadPen(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    CLaserPen pen;
    if (pen.ReadXML(child)) {
      r.pens_.AddPen(pen);
    }
  }
  static void WritePens(const R& r, pugi::xml_node& node) { r.pens_.WriteXML(node); }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        kTagLaser, {
                       F::Writer(&WriteVersion),
                       F::Real(kTagRasterPower, &R::raster_power_),
                       F::Real(kTagRasterSpeed, &R::raster_speed_),
                       F::Int(kTagDPI, &R::dpi_),
                       F::Int(kTagRasterTotalWidth, &R::raster_total_width_),
                       F::Int(kTagRasterSplitWidth, &R::raster_split_width_),
                       F::Real(kTagRasterSplitPower, &R::raster_split_power_),
                       F::Bool(kTagUseVectorSpeedAndPower, &R::use_vector_speed_and_power_),
                       F::Int(kTagVectorResolution, &R::vector_resolution_),
                       F::Custom(kTagCurve, &ReadCurve, &WriteCurve),
                       F::Custom(kTagCurve2, &ReadCurve, nullptr),  // older files name the curve so
                       F::Custom(kTagRotaryFixture, &ReadRotary, &WriteRotary),
                       F::Bool(kTagUseHotWatch, &R::use_hot_watch_),
                       F::Custom(kTagPen, &ReadPen, &WritePens),
                   });
    return table;
  }
};

void CPMLaserData::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, kTagLaser));
}

bool CPMLaserData::ReadXML(const pugi::xml_node& node) {
  // Restored even when the element is not ours: callers rely on the defaults then.
  SetDefaults();
  return Fields::Table().Read(*this, node, internal::Start::kCurrent);
}

bool CPMLaserData::operator==(const CPMLaserData& other) const {
  return Fields::Table().Equal(*this, other) && rotary_fixture_ == other.rotary_fixture_ &&
         raster_enabled_ == other.raster_enabled_ && use_rotary_fixture_ == other.use_rotary_fixture_ &&
         vector_first_ == other.vector_first_ && pens_ == other.pens_ && power_curve_ == other.power_curve_;
}

}  // namespace tarn
