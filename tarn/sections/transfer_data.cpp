#include "tarn/sections/transfer_data.h"

#include <iterator>

#include "tarn/foundation/plates.h"
#include "tarn/foundation/tags.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {

namespace {

constexpr const char* kTagTransfers = tags::kTransferCurves;
constexpr const char* kAttrType = "type";
constexpr const char* kAttrInRipSeps = "inripseps";
constexpr const char* kAttrAll = "all";
constexpr const char* kTagEnable = tags::kOverrideEnable;
constexpr const char* kTagCurve = tags::kCurveData;
constexpr const char* kTagCurve2 = tags::kCurveData2;

struct PlaneEntry {
  const wchar_t* default_name;
  const wchar_t* file_name;
  unsigned long draw_color;  // 0x00BBGGRR
};

// data() of the plate names is safe: they are views of whole literals.
// Plane 3's default name is upper case while files say "Yellow": both
// spellings are kept, as saved print modes and callers use each of them.
constexpr PlaneEntry kPlanes[CPMTransferData::kPlaneCount] = {
    {L"All", L"All", 0},
    {plates::kCyan.data(), plates::kCyan.data(), 0xFFFF00},
    {plates::kMagenta.data(), plates::kMagenta.data(), 0xFF00FF},
    {L"YELLOW", plates::kYellow.data(), 0x00FFFF},
    {plates::kBlack.data(), plates::kBlack.data(), 0},
    {plates::kHex0.data(), plates::kHex0.data(), 0},
    {plates::kHex1.data(), plates::kHex1.data(), 0},
};

// The plane a curve of the per-plane form belongs to, by its name; any name
// that is not a plane's (also "All") goes to plane 0. Case is ignored so that
// "YELLOW" and "Yellow" land on the same plane.
unsigned PlaneFromName(const std::wstring& name) {
  for (unsigned plane = 1; plane < CPMTransferData::kPlaneCount; ++plane) {
    if (EqualsNoCase(name, kPlanes[plane].file_name)) {
      return plane;
    }
  }
  return 0;
}

}  // namespace

CPMTransferData::CPMTransferData() {
  SetDefaults();
}

void CPMTransferData::SetDefaults() {
  ClearData();
  enable_ = false;
  input_mode_ = 0;
  mode_ = 1;
  use_all_ = false;
  max_ink_ = 400;
  in_rip_seps_ = false;
  cursor_.Stop();
  InitializeCurves();
}

void CPMTransferData::ClearData() {
  curves_.clear();
  curves2_.clear();
  cursor_.Stop();
}

void CPMTransferData::InitializeCurves() {
  for (unsigned plane = 0; plane < kPlaneCount; ++plane) {
    CPMCurveData curve(true, kPlanes[plane].draw_color);
    curve.SetName(kPlanes[plane].default_name);
    curves_.insert_or_assign(plane, curve);
    curves2_.insert_or_assign(plane, std::move(curve));
  }
}

void CPMTransferData::VerifyCurves() {
  for (unsigned plane = 0; plane < kPlaneCount; ++plane) {
    curves_.try_emplace(plane, true, 0UL);
    curves2_.try_emplace(plane, true, 0UL);
  }
}

CPMCurveData* CPMTransferData::GetCurve(unsigned plane, unsigned set) {
  auto& map = Set(set);
  const auto found = map.find(plane);
  return found == map.end() ? nullptr : &found->second;
}

const CPMCurveData* CPMTransferData::GetCurve(unsigned plane, unsigned set) const {
  const auto& map = Set(set);
  const auto found = map.find(plane);
  return found == map.end() ? nullptr : &found->second;
}

unsigned CPMTransferData::GetCurveCount(unsigned set) const {
  return static_cast<unsigned>(Set(set).size());
}

void CPMTransferData::SetCurve(unsigned plane, const CPMCurveData& curve, unsigned set) {
  if (plane >= kPlaneCount) {
    return;
  }
  CPMCurveData copy(curve);
  copy.SetDrawColor(kPlanes[plane].draw_color);
  Set(set).insert_or_assign(plane, std::move(copy));
}

CPMCurveData* CPMTransferData::GetFirstCurve() {
  const auto it = cursor_.First(curves_);
  return it == curves_.end() ? nullptr : &it->second;
}

CPMCurveData* CPMTransferData::GetNextCurve() {
  const auto it = cursor_.Next(curves_);
  return it == curves_.end() ? nullptr : &it->second;
}

void CPMTransferData::MakeLinear(const std::wstring& planeName, double factor) {
  for (unsigned plane = 1; plane <= 4; ++plane) {
    if (EqualsNoCase(planeName, kPlanes[plane].file_name)) {
      if (CPMCurveData* curve = GetCurve(plane, 0)) {
        curve->MakeLinear(factor);
      }
      return;
    }
  }
}

std::wstring CPMTransferData::GetCurveName(unsigned plane) {
  return plane < kPlaneCount ? kPlanes[plane].default_name : L"";
}

unsigned long CPMTransferData::GetDrawColor(unsigned plane) {
  return plane < kPlaneCount ? kPlanes[plane].draw_color : 0;
}

std::wstring CPMTransferData::GetFileName(unsigned plane) {
  return plane < kPlaneCount ? kPlanes[plane].file_name : L"";
}

bool CPMTransferData::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!xml::IsNamed(node, kTagTransfers)) {
    return false;
  }
  enable_ = xml::ReadBool(node.child(kTagEnable));
  mode_ = node.attribute(kAttrType).as_uint();
  in_rip_seps_ = node.attribute(kAttrInRipSeps).as_bool();
  use_all_ = node.attribute(kAttrAll).as_int() == 1;
  for (const auto& child : node.children()) {
    const bool first = xml::IsNamed(child, kTagCurve);
    if (!first && !xml::IsNamed(child, kTagCurve2)) {
      continue;
    }
    CPMCurveData curve;
    curve.ReadXML(child);
    CurveMap& map = first ? curves_ : curves2_;
    if (use_all_) {
      for (unsigned plane = 0; plane < kPlaneCount; ++plane) {
        CPMCurveData copy(curve);
        copy.SetName(kPlanes[plane].file_name);
        copy.SetDrawColor(kPlanes[plane].draw_color);
        map.insert_or_assign(plane, std::move(copy));
      }
    } else {
      const unsigned plane = PlaneFromName(curve.GetName());
      curve.SetDrawColor(kPlanes[plane].draw_color);
      map.insert_or_assign(plane, std::move(curve));
    }
  }
  return true;
}

void CPMTransferData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kTagTransfers);
  xml::SetAttribute(node, kAttrType, mode_ != 0 ? L"1" : L"0");
  xml::SetAttribute(node, kAttrInRipSeps, in_rip_seps_ ? L"1" : L"0");
  if (use_all_) {
    xml::SetAttribute(node, kAttrAll, L"1");
  }
  if (enable_) {
    xml::AppendBool(node, kTagEnable, true);
  }
  // Curves are written under their planes' file names, whatever they are
  // called in memory.
  const auto write_set = [&](const CurveMap& map, unsigned version, unsigned first, unsigned last) {
    for (unsigned plane = first; plane <= last; ++plane) {
      const auto found = map.find(plane);
      if (found == map.end()) {
        continue;
      }
      CPMCurveData named(found->second);
      named.SetName(kPlanes[plane].file_name);
      named.WriteXML(node, mode_ == 1, version);
    }
  };
  if (use_all_) {
    write_set(curves_, 0, 0, 0);
    write_set(curves2_, 1, 0, 0);
  } else {
    write_set(curves_, 0, 1, kPlaneCount - 1);
    write_set(curves2_, 1, 1, kPlaneCount - 1);
  }
}

bool CPMTransferData::operator==(const CPMTransferData& other) const {
  const auto same_set = [](const CurveMap& a, const CurveMap& b) {
    if (a.size() != b.size()) {
      return false;
    }
    for (auto i = a.begin(), j = b.begin(); i != a.end(); ++i, ++j) {
      // Names and colours follow the plane (files carry "Yellow", defaults
      // "YELLOW"), so only what shapes the curve is compared.
      if (i->first != j->first || i->second.IsDensityMode() != j->second.IsDensityMode() ||
          i->second.GetKeepZero() != j->second.GetKeepZero() || !i->second.HasSameCurve(j->second)) {
        return false;
      }
    }
    return true;
  };
  return enable_ == other.enable_ && input_mode_ == other.input_mode_ && mode_ == other.mode_ &&
         use_all_ == other.use_all_ && max_ink_ == other.max_ink_ && in_rip_seps_ == other.in_rip_seps_ &&
         same_set(curves_, other.curves_) && same_set(curves2_, other.curves2_);
}

}  // namespace tarn
