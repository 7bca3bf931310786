#include "tarn/layers/plane_options.h"

#include <algorithm>

#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/xml.h"
#include "tarn/layers/internal/layer_xml.h"

namespace tarn {
namespace {

// Tags of a plane's settings and of a plane list.
namespace tag {
constexpr const char* kPlaneOptions = PlaneOptions::kElementName;
constexpr const char* kName = "Name";
constexpr const char* kEnabled = "Enabled";
constexpr const char* kFlood = "Flood";
constexpr const char* kChoke = "Choke";
constexpr const char* kSubstitute = "Substitute";
constexpr const char* kXShift = "XShift";
constexpr const char* kYShift = "YShift";
constexpr const char* kPlanesOptions = "PlanesOptions";
constexpr const char* kChannel = "CHANNEL";
}  // namespace tag

// Tags of a printer definition's plane list.
namespace plane_tag {
constexpr const char* kPlane = "Plane";
constexpr const char* kName = "name";
constexpr const char* kSynonym = "Synonym";
constexpr const char* kSubstitute = "Substitute";
}  // namespace plane_tag

// Plane settings change only where the file holds a value.
constexpr internal::Read kKeep = internal::Read::kIfPresentNotEmpty;

using internal::HasValue;

}  // namespace

// --- PlaneOptions -------------------------------------------------------------

void PlaneOptions::SetName(const std::wstring& name) {
  name_ = name;
  enabled_ = true;
  flood_ = false;
  choke_ = 0;
  substitute_ = name;
  x_shift_ = 0;
  y_shift_ = 0;
}

void PlaneOptions::SetFlood(bool flood) {
  flood_ = flood;
  if (flood) {
    choke_ = 0;
  }
}

void PlaneOptions::SetChoke(int choke) {
  choke_ = choke;
  if (choke != 0) {
    flood_ = false;
  }
}

std::wstring PlaneOptions::GetSubstitute() const {
  if (IsCMYKorGray()) {
    return {};
  }
  return substitute_.empty() ? name_ : substitute_;
}

bool PlaneOptions::IsCMYorK() const {
  return name_ == L"Cyan" || name_ == L"Magenta" || name_ == L"Yellow" || name_ == L"Black";
}

bool PlaneOptions::IsGray() const {
  return name_ == L"Gray";
}

// Every setting of a plane is read only when its element holds a value: an
// empty or absent one keeps what the plane had.
struct PlaneOptions::Fields {
  using R = PlaneOptions;
  using F = internal::Field<R>;
  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(tag::kPlaneOptions,
                                               {
                                                   F::Text(tag::kName, &R::name_).Reads(kKeep),
                                                   F::Bool(tag::kEnabled, &R::enabled_).Reads(kKeep),
                                                   F::Bool(tag::kFlood, &R::flood_).Reads(kKeep),
                                                   F::Int(tag::kChoke, &R::choke_).Reads(kKeep),
                                                   F::Text(tag::kSubstitute, &R::substitute_).Reads(kKeep),
                                                   F::Int(tag::kXShift, &R::x_shift_).Reads(kKeep),
                                                   F::Int(tag::kYShift, &R::y_shift_).Reads(kKeep),
                                               });
    return table;
  }
};

bool PlaneOptions::HasSameSettings(const PlaneOptions& other) const {
  return Fields::Table().Equal(*this, other);
}

bool PlaneOptions::ReadXML(const pugi::xml_node& node) {
  // Over the current settings, as they stand in the file (the setters'
  // flood/choke rule is not applied); an element of another name reads nothing.
  Fields::Table().Read(*this, node, internal::Start::kCurrent);
  return true;
}

bool PlaneOptions::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, tag::kPlaneOptions));
  return true;
}

// --- PlanesOptions ------------------------------------------------------------

bool PlanesOptions::FindPlaneOptions(const std::wstring& name, PlaneOptions& out) const {
  const auto found = std::find_if(planes_.begin(), planes_.end(),
                                  [&name](const PlaneOptions& plane) { return plane.GetName() == name; });
  if (found == planes_.end()) {
    return false;
  }
  out = *found;
  return true;
}

void PlanesOptions::GetSubstitutes(std::vector<std::wstring>& out) const {
  for (const PlaneOptions& plane : planes_) {
    if (!plane.IsEnabled() || plane.IsCMYKorGray()) {
      continue;
    }
    const std::wstring& substitute = plane.GetStoredSubstitute();
    const std::wstring& result = substitute.empty() ? plane.GetName() : substitute;
    if (!result.empty()) {
      out.push_back(result);
    }
  }
}

struct PlanesOptions::Fields {
  using R = PlanesOptions;
  using F = internal::Field<R>;

  // Planes read are appended to those held: callers gather lists so.
  static void ReadPlane(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    internal::AppendPlane(r.planes_, child);
  }
  static void WritePlanes(const R& r, pugi::xml_node& node) { internal::WritePlanes(r.planes_, node); }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(tag::kPlanesOptions,
                                               {
                                                   F::Bool(tag::kEnabled, &R::enabled_),
                                                   F::Custom(tag::kPlaneOptions, &ReadPlane, &WritePlanes),
                                               });
    return table;
  }
};

bool PlanesOptions::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, tag::kPlanesOptions));
  return true;
}

bool PlanesOptions::WritePFXML(pugi::xml_node parent) const {
  for (const PlaneOptions& plane : planes_) {
    pugi::xml_node channel = xml::AppendText(parent, tag::kChannel, plane.GetName());
    plane.WriteXML(channel);
  }
  return true;
}

bool PlanesOptions::ReadXML(const pugi::xml_node& node) {
  // An element of another name reads nothing, and that is no failure.
  Fields::Table().Read(*this, node, internal::Start::kCurrent);
  return true;
}

bool PlanesOptions::ReadXML(const std::wstring& text) {
  pugi::xml_document document;
  // The root check is ReadXML's own: a document of another root reads nothing.
  xml::LoadDocumentFromString(document, text, tag::kPlanesOptions);
  return ReadXML(document.first_child());
}

bool PlanesOptions::operator==(const PlanesOptions& other) const {
  return Fields::Table().Equal(*this, other) && level_ == other.level_ && planes_ == other.planes_;
}

// --- PlaneMapping -------------------------------------------------------------

void PlaneMapping::AddNewPlane(const std::wstring& name) {
  synonyms_.emplace(name, name);
  substitutes_.emplace(name, name);
}

bool PlaneMapping::AddSynonym(const std::wstring& plane, const std::wstring& synonym) {
  synonyms_.emplace(plane, synonym);
  return true;
}

void PlaneMapping::SetSubstitute(const std::wstring& plane, const std::wstring& substitute) {
  substitutes_.insert_or_assign(plane, substitute);
}

void PlaneMapping::RemovePlane(const std::wstring& name) {
  synonyms_.erase(name);
  substitutes_.erase(name);
}

std::vector<std::wstring> PlaneMapping::GetSynonyms(const std::wstring& plane) const {
  std::vector<std::wstring> out;
  const auto [first, last] = synonyms_.equal_range(plane);
  for (auto it = first; it != last; ++it) {
    out.push_back(it->second);
  }
  return out;
}

std::vector<std::wstring> PlaneMapping::GetPlanes() const {
  std::vector<std::wstring> out;
  for (auto it = synonyms_.begin(); it != synonyms_.end(); it = synonyms_.upper_bound(it->first)) {
    out.push_back(it->first);
  }
  return out;
}

bool PlaneMapping::ReadXML(const pugi::xml_node& node) {
  synonyms_.clear();
  substitutes_.clear();
  if (!node) {
    return false;
  }
  for (const pugi::xml_node& plane : node.children()) {
    const std::wstring name =
        xml::IsNamed(plane, plane_tag::kPlane) ? xml::ReadAttribute(plane, plane_tag::kName) : std::wstring();
    if (name.empty()) {
      continue;
    }
    const bool known = FindPlane(name);
    std::wstring substitute;
    for (const pugi::xml_node& child : plane.children()) {
      if (xml::IsNamed(child, plane_tag::kSynonym) && HasValue(child)) {
        AddSynonym(name, xml::ReadText(child));
      } else if (xml::IsNamed(child, plane_tag::kSubstitute) && HasValue(child) && substitute.empty()) {
        substitute = xml::ReadText(child);
      }
    }
    if (!known && !FindPlane(name)) {
      AddSynonym(name, name);
    }
    SetSubstitute(name, substitute.empty() ? name : substitute);
  }
  return true;
}

bool PlaneMapping::SaveXML(pugi::xml_node node) const {
  if (!node) {
    return false;
  }
  if (synonyms_.empty()) {
    return true;  // an empty table must not wipe the printer's planes
  }
  const auto named = [](const pugi::xml_node& plane) { return xml::ReadAttribute(plane, plane_tag::kName); };
  const auto isPlane = [](const pugi::xml_node& child) { return xml::IsNamed(child, plane_tag::kPlane); };

  for (pugi::xml_node child = node.first_child(); child;) {
    const pugi::xml_node next = child.next_sibling();
    if (isPlane(child) && synonyms_.count(named(child)) == 0) {
      node.remove_child(child);
    }
    child = next;
  }

  for (const std::wstring& name : GetPlanes()) {
    pugi::xml_node plane;
    for (const pugi::xml_node& child : node.children()) {
      if (isPlane(child) && named(child) == name) {
        plane = child;
        break;
      }
    }
    if (!plane) {
      plane = xml::AppendElement(node, plane_tag::kPlane);
      xml::SetAttribute(plane, plane_tag::kName, name);
    }
    // A synonym already listed (in the file or earlier in this loop) is not
    // listed again, so repeated saves leave the file as it is.
    std::vector<std::wstring> listed;
    for (const pugi::xml_node& child : plane.children()) {
      if (xml::IsNamed(child, plane_tag::kSynonym)) {
        listed.push_back(xml::ReadText(child));
      }
    }
    pugi::xml_node substitute = plane.child(plane_tag::kSubstitute);
    for (const std::wstring& synonym : GetSynonyms(name)) {
      if (std::find(listed.begin(), listed.end(), synonym) != listed.end()) {
        continue;
      }
      listed.push_back(synonym);
      xml::AppendText(plane, plane_tag::kSynonym, synonym);
    }
    if (!substitute) {
      substitute = xml::AppendElement(plane, plane_tag::kSubstitute);
    }
    const auto mapped = substitutes_.find(name);
    xml::SetText(substitute, mapped == substitutes_.end() ? name : mapped->second);
  }
  return true;
}

}  // namespace tarn
