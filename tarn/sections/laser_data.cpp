#include "tarn/sections/laser_data.h"

#include <algorithm>

#include "tarn/foundation/format.h"
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

void CPMLaserData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kTagLaser);
  xml::SetAttributeInt(node, kAttrVersion, kLaserVersion);
  xml::AppendReal(node, kTagRasterPower, raster_power_);
  xml::AppendReal(node, kTagRasterSpeed, raster_speed_);
  xml::AppendInt(node, kTagDPI, dpi_);
  xml::AppendInt(node, kTagRasterTotalWidth, raster_total_width_);
  xml::AppendInt(node, kTagRasterSplitWidth, raster_split_width_);
  xml::AppendReal(node, kTagRasterSplitPower, raster_split_power_);
  xml::AppendBool(node, kTagUseVectorSpeedAndPower, use_vector_speed_and_power_);
  xml::AppendInt(node, kTagVectorResolution, vector_resolution_);
  power_curve_.WriteXML(node, false, 0);
  if (use_rotary_fixture_) {
    xml::AppendReal(node, kTagRotaryFixture, rotary_fixture_);
  }
  xml::AppendBool(node, kTagUseHotWatch, use_hot_watch_);
  pens_.WriteXML(node);
}

bool CPMLaserData::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!xml::IsNamed(node, kTagLaser)) {
    return false;
  }
  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, kTagRasterPower)) {
      raster_power_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, kTagRasterSpeed)) {
      raster_speed_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, kTagDPI)) {
      dpi_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kTagRasterTotalWidth)) {
      raster_total_width_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kTagRasterSplitWidth)) {
      raster_split_width_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kTagRasterSplitPower)) {
      raster_split_power_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, kTagUseVectorSpeedAndPower)) {
      use_vector_speed_and_power_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, kTagVectorResolution)) {
      vector_resolution_ = xml::ReadInt(child);
    } else if (xml::IsNamed(child, kTagCurve) || xml::IsNamed(child, kTagCurve2)) {
      power_curve_.ReadXML(child);
    } else if (xml::IsNamed(child, kTagRotaryFixture)) {
      // The fixture is in use exactly when its diameter is in the file.
      rotary_fixture_ = xml::ReadReal(child);
      use_rotary_fixture_ = true;
    } else if (xml::IsNamed(child, kTagUseHotWatch)) {
      use_hot_watch_ = xml::ReadBool(child);
    }
  }
  pens_.ReadXML(node);
  return true;
}

bool CPMLaserData::operator==(const CPMLaserData& other) const {
  return vector_resolution_ == other.vector_resolution_ && raster_power_ == other.raster_power_ &&
         raster_speed_ == other.raster_speed_ && rotary_fixture_ == other.rotary_fixture_ &&
         raster_total_width_ == other.raster_total_width_ &&
         raster_split_width_ == other.raster_split_width_ &&
         raster_split_power_ == other.raster_split_power_ && dpi_ == other.dpi_ &&
         raster_enabled_ == other.raster_enabled_ && use_rotary_fixture_ == other.use_rotary_fixture_ &&
         use_hot_watch_ == other.use_hot_watch_ && vector_first_ == other.vector_first_ &&
         use_vector_speed_and_power_ == other.use_vector_speed_and_power_ && pens_ == other.pens_ &&
         power_curve_ == other.power_curve_;
}

}  // namespace tarn
