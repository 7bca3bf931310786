#include "tarn/layers/layer.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/tags.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"
#include "tarn/layers/internal/layer_xml.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {
namespace {

namespace tag {
constexpr const char* kLayer = Layer::kElementName;
constexpr const char* kLayerName = "LayerName";
constexpr const char* kPrintMode = "PrintMode";
constexpr const char* kColorMode = "ColorMode";
constexpr const char* kBaseModel = "BaseModel";
constexpr const char* kRepeats = "Repeats";
constexpr const char* kMirror = "Mirror";
constexpr const char* kFloodLevel = "FloodLevel";
constexpr const char* kPage = "Page";
constexpr const char* kExcludeFromPreview = "ExcludeFromPreview";
constexpr const char* kLayerDelayDlg = "LayerDelayDlg";
constexpr const char* kLayerDelay = "LayerDelay";
constexpr const char* kTogglePort = "TogglePort";
constexpr const char* kScaleX = "ScaleX";
constexpr const char* kScaleY = "ScaleY";
constexpr const char* kBitmapOptions = CBmpProcessOptions::kElementName;
constexpr const char* kPlaneOptions = PlaneOptions::kElementName;
constexpr const char* kChannels = "Channels";
constexpr const char* kChannelEnabled = "enabled";
constexpr const char* kChannelName = "name";
}  // namespace tag

constexpr const wchar_t* kProcessPlanes[] = {L"Cyan", L"Magenta", L"Yellow", L"Black"};
constexpr std::wstring_view kWhitePrefix = L"White";

// Fields change only where the file holds a value.
constexpr internal::Read kKeep = internal::Read::kIfPresentNotEmpty;

bool IsWhiteName(const std::wstring& name) {
  return name.starts_with(kWhitePrefix);
}

// The colour model a print mode prints with in printer: the one its printer
// options name, looked up by name (ignoring case). Null when there is none.
const CColorDef* ColorDefinition(const CPrintModeData& printMode, const CPrinterData& printer) {
  const std::wstring mode = printMode.GetPrinterOptions()->GetColorMode();
  return printer.GetColorModel(mode);
}

std::wstring Trimmed(const std::wstring& text) {
  constexpr std::wstring_view kBlanks = L" \t\r\n";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::wstring::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

Layer::Layer()
    : layer_name_(XLT_TranslateCString(kDefaultName)), print_mode_(std::make_unique<CPrintModeData>()) {
  for (const wchar_t* name : kProcessPlanes) {
    planes_.emplace_back(name);
  }
}

Layer::Layer(const Layer& other)
    : layer_name_(other.layer_name_),
      repeats_(other.repeats_),
      mirror_(other.mirror_),
      flood_level_(other.flood_level_),
      page_(other.page_),
      exclude_from_preview_(other.exclude_from_preview_),
      bitmap_options_(other.bitmap_options_),
      layer_delay_dlg_(other.layer_delay_dlg_),
      layer_delay_(other.layer_delay_),
      toggle_port_(other.toggle_port_),
      scale_x_(other.scale_x_),
      scale_y_(other.scale_y_),
      print_mode_(other.print_mode_ ? std::make_unique<CPrintModeData>(*other.print_mode_) : nullptr),
      print_mode_name_(other.print_mode_name_),
      color_model_(other.color_model_),
      base_model_(other.base_model_),
      planes_(other.planes_),
      planes_all_keywords_(other.planes_all_keywords_),
      channel_cursor_(other.channel_cursor_) {}

Layer& Layer::operator=(const Layer& other) {
  if (this != &other) {
    Layer copy(other);
    *this = std::move(copy);
  }
  return *this;
}

Layer::Layer(Layer&& other) noexcept = default;
Layer& Layer::operator=(Layer&& other) noexcept = default;
Layer::~Layer() = default;

// --- print mode -----------------------------------------------------------------

bool Layer::SetPrintMode(const CPrintModeData& printMode, CPrinterData* printer, Layer* previous) {
  if (printer == nullptr) {
    return false;
  }
  const std::wstring colorMode = printMode.GetPrinterOptions()->GetColorMode();
  const CColorDef* definition = ColorDefinition(printMode, *printer);
  if (definition == nullptr) {
    return false;
  }
  const bool changed = colorMode != color_model_;

  if (&printMode != print_mode_.get()) {
    print_mode_ = std::make_unique<CPrintModeData>(printMode);
  }
  print_mode_name_ = print_mode_->GetName();
  color_model_ = colorMode;
  base_model_ = definition->GetBaseModel();
  if (!changed) {
    return true;
  }
  // previous may be this layer: take its planes before they are rebuilt.
  std::vector<PlaneOptions> previousPlanes;
  if (previous != nullptr) {
    previousPlanes = previous->planes_;
  }
  RebuildPlanes(definition->GetPlanes(), previous != nullptr ? &previousPlanes : nullptr);
  UpdatePlanesAllKeyWords(*printer);
  return true;
}

void Layer::RebuildPlanes(const std::vector<std::wstring>& names, const std::vector<PlaneOptions>* previous) {
  planes_.clear();
  for (const std::wstring& name : names) {
    const PlaneOptions* match = nullptr;
    if (previous != nullptr) {
      const auto found = std::find_if(previous->begin(), previous->end(),
                                      [&name](const PlaneOptions& plane) { return plane.GetName() == name; });
      match = found != previous->end() ? &*found : nullptr;
    }
    if (match != nullptr) {
      planes_.push_back(*match);
    } else {
      planes_.emplace_back(name);
    }
  }
}

void Layer::UpdatePlanesAllKeyWords(const CPrinterData& printer) {
  std::vector<std::pair<std::wstring, bool>> planes;
  print_mode_->GetPlanes(planes, &printer);
  planes_all_keywords_ = std::all_of(planes.begin(), planes.end(), [this, &printer](const auto& plane) {
    return print_mode_->IsKeyWordPlane(plane.first, &printer);
  });
}

bool Layer::GetPrintMode(CPrintModeData& out) const {
  if (!print_mode_) {
    return false;
  }
  out = *print_mode_;
  return true;
}

std::wstring Layer::GetPrinterL() const {
  return print_mode_ ? print_mode_->GetPrinterX() : std::wstring();
}

// --- planes ---------------------------------------------------------------------

bool Layer::GetFirstChannel(PlaneOptions& out) {
  channel_cursor_ = 0;
  if (planes_.empty()) {
    return false;
  }
  out = planes_.front();
  return true;
}

bool Layer::GetNextChannel(PlaneOptions& out) {
  if (channel_cursor_ < 0) {
    return false;
  }
  // The cursor stops one past the end, so a walk that ran out stays out.
  if (static_cast<size_t>(channel_cursor_) < planes_.size()) {
    ++channel_cursor_;
  }
  if (static_cast<size_t>(channel_cursor_) >= planes_.size()) {
    return false;
  }
  out = planes_[static_cast<size_t>(channel_cursor_)];
  return true;
}

bool Layer::IsPlaneEnable(const std::wstring& name) const {
  const auto found = std::find_if(planes_.begin(), planes_.end(),
                                  [&name](const PlaneOptions& plane) { return plane.GetName() == name; });
  return found != planes_.end() && found->IsEnabled();
}

void Layer::SetSynonym(const std::wstring& plane, const std::wstring& substitute) {
  const auto found = std::find_if(planes_.begin(), planes_.end(), [&plane](const PlaneOptions& options) {
    return options.GetName() == plane;
  });
  if (found != planes_.end()) {
    found->SetSubstitute(substitute);
  }
}

void Layer::GetSubstitutes(std::vector<std::wstring>& out) const {
  for (const PlaneOptions& plane : planes_) {
    if (plane.IsCMYKorGray()) {
      continue;
    }
    const std::wstring& substitute = plane.GetStoredSubstitute();
    out.push_back(substitute.empty() ? plane.GetName() : substitute);
  }
}

void Layer::GetSubstituteMap(std::map<std::wstring, std::wstring>& out) const {
  for (const PlaneOptions& plane : planes_) {
    std::wstring substitute = plane.GetSubstitute();
    if (!substitute.empty()) {
      out.emplace(plane.GetName(), std::move(substitute));
    }
  }
}

std::wstring Layer::GetWhiteSubstitute() const {
  for (const PlaneOptions& plane : planes_) {
    if (IsWhiteName(plane.GetName())) {
      return plane.GetSubstitute();
    }
  }
  return {};
}

bool Layer::HasWhiteChannel() const {
  return std::any_of(planes_.begin(), planes_.end(),
                     [](const PlaneOptions& plane) { return plane.GetName() == L"White"; });
}

bool Layer::HasClearChannel() const {
  return std::any_of(planes_.begin(), planes_.end(),
                     [](const PlaneOptions& plane) { return plane.GetName() == L"Clear"; });
}

bool Layer::HasPrimeChannel() const {
  return std::any_of(planes_.begin(), planes_.end(), [](const PlaneOptions& plane) {
    return plane.GetName() == CBmpProcessOptions::kDefaultPrimerPlane;
  });
}

bool Layer::HasColorChannels() const {
  return std::any_of(planes_.begin(), planes_.end(), [](const PlaneOptions& plane) {
    if (!plane.IsEnabled()) {
      return false;
    }
    const std::wstring& name = plane.GetName();
    return plane.IsCMYorK() || name == L"Red" || name == L"Green" || name == L"Blue";
  });
}

bool Layer::HasOnlyWhiteChannelsEnabled() const {
  bool anyEnabled = false;
  for (const PlaneOptions& plane : planes_) {
    if (!plane.IsEnabled()) {
      continue;
    }
    if (!IsWhiteName(plane.GetName())) {
      return false;
    }
    anyEnabled = true;
  }
  return anyEnabled;
}

bool Layer::HasSeparationChannels() const {
  return print_mode_ && !print_mode_->GetSeparations()->GetSepInks().empty();
}

// --- XML ------------------------------------------------------------------------

// A layer is read over its current values: what the file leaves empty or out
// keeps its value.
struct Layer::Fields {
  using R = Layer;
  using F = internal::Field<R>;

  static void ReadPrintMode(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    auto printMode = std::make_unique<CPrintModeData>();
    printMode->ReadXML(child);
    r.print_mode_ = std::move(printMode);
  }
  static void WritePrintMode(const R& r, pugi::xml_node& node) {
    if (r.print_mode_) {
      r.print_mode_->WriteTarnSection(node);
    }
  }
  // Levels are 0..255; a file's level outside is taken as the nearest.
  static void ReadFloodLevel(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    if (internal::HasValue(child)) {
      r.flood_level_ = static_cast<std::uint8_t>(std::clamp(xml::ReadInt(child), 0, 255));
    }
  }
  static void WriteFloodLevel(const R& r, pugi::xml_node& node) {
    xml::AppendInt(node, tag::kFloodLevel, r.flood_level_);
  }
  static void ReadBitmapOptions(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    r.bitmap_options_.ReadXML(child);
  }
  static void WriteBitmapOptions(const R& r, pugi::xml_node& node) { r.bitmap_options_.WriteXML(node); }
  // The planes a file lists replace those held, from its first plane on.
  static void ReadPlane(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    if (!child.previous_sibling(tag::kPlaneOptions)) {
      r.planes_.clear();
    }
    internal::AppendPlane(r.planes_, child);
  }
  static void WritePlanes(const R& r, pugi::xml_node& node) { internal::WritePlanes(r.planes_, node); }
  // The older form gives the planes only when the layer lists none of its own.
  static void ReadOlderChannels(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    if (!child.parent().child(tag::kPlaneOptions)) {
      r.ReadChannels(child);
    }
  }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        tag::kLayer, {
                         F::Text(tag::kLayerName, &R::layer_name_).Reads(kKeep),
                         F::Text(tag::kPrintMode, &R::print_mode_name_).Reads(kKeep),
                         F::Custom(tags::kPrintModeRoot, &ReadPrintMode, &WritePrintMode),
                         F::Text(tag::kColorMode, &R::color_model_).Reads(kKeep),
                         F::Text(tag::kBaseModel, &R::base_model_).Reads(kKeep),
                         F::UInt(tag::kRepeats, &R::repeats_).Reads(kKeep),
                         F::UInt(tag::kMirror, &R::mirror_).Reads(kKeep),
                         F::Custom(tag::kFloodLevel, &ReadFloodLevel, &WriteFloodLevel),
                         F::Int(tag::kPage, &R::page_).Reads(kKeep),
                         F::Bool(tag::kExcludeFromPreview, &R::exclude_from_preview_).Reads(kKeep),
                         F::Bool(tag::kLayerDelayDlg, &R::layer_delay_dlg_).Reads(kKeep),
                         F::Int(tag::kLayerDelay, &R::layer_delay_).Reads(kKeep),
                         F::Bool(tag::kTogglePort, &R::toggle_port_).Reads(kKeep),
                         F::Real(tag::kScaleX, &R::scale_x_).Reads(kKeep),
                         F::Real(tag::kScaleY, &R::scale_y_).Reads(kKeep),
                         F::Custom(tag::kBitmapOptions, &ReadBitmapOptions, &WriteBitmapOptions),
                         F::Custom(tag::kPlaneOptions, &ReadPlane, &WritePlanes),
                         F::Custom(tag::kChannels, &ReadOlderChannels, nullptr),  // read, never written
                     });
    return table;
  }
};

bool Layer::operator==(const Layer& other) const {
  const bool samePrintMode = print_mode_ && other.print_mode_ ? *print_mode_ == *other.print_mode_
                                                              : !print_mode_ && !other.print_mode_;
  return samePrintMode && Fields::Table().Equal(*this, other) && flood_level_ == other.flood_level_ &&
         bitmap_options_ == other.bitmap_options_ && planes_ == other.planes_;
}

bool Layer::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, tag::kLayer));
  return true;
}

bool Layer::ReadXML(const pugi::xml_node& layerNode, CPrinterData* printer) {
  if (!Fields::Table().Read(*this, layerNode, internal::Start::kCurrent)) {
    return true;  // not a layer: nothing to read, and no failure
  }

  // A named print mode is the one stored with the layer, a default one when
  // nothing is stored. Settings stored under an empty name are read too (by
  // the table), so that a print mode that never had a name survives a save.
  bool named = false;
  for (const pugi::xml_node& child : layerNode.children(tag::kPrintMode)) {
    named = named || internal::HasValue(child);
  }
  const bool stored = static_cast<bool>(layerNode.child(tags::kPrintModeRoot));
  if (named && !stored) {
    print_mode_ = std::make_unique<CPrintModeData>();
  }
  if ((named || stored) && print_mode_) {
    print_mode_->SetName(print_mode_name_);
  }

  const bool listed = layerNode.child(tag::kPlaneOptions) || layerNode.child(tag::kChannels);
  if (printer != nullptr && print_mode_) {
    const CColorDef* definition = ColorDefinition(*print_mode_, *printer);
    if (definition != nullptr && (!listed || planes_.empty())) {
      RebuildPlanes(definition->GetPlanes(), nullptr);
    }
    UpdatePlanesAllKeyWords(*printer);
  }
  return true;
}

void Layer::ReadChannels(const pugi::xml_node& channels) {
  // One plane per element child. The plane's name is the child's text (or its
  // "name" attribute), "enabled" gives its state (on when absent), and a
  // "PlaneOptions" element inside, as print mode files hold it, gives the rest.
  planes_.clear();
  for (const pugi::xml_node& child : channels.children()) {
    if (child.type() != pugi::node_element) {
      continue;
    }
    std::wstring name;
    for (const pugi::xml_node& part : child.children()) {
      if (part.type() == pugi::node_pcdata || part.type() == pugi::node_cdata) {
        name += FromUtf8(part.value());
      }
    }
    name = Trimmed(name);
    if (name.empty()) {
      name = Trimmed(xml::ReadAttribute(child, tag::kChannelName));
    }
    PlaneOptions plane(name);
    if (child.attribute(tag::kChannelEnabled)) {
      plane.SetEnabled(xml::ReadAttributeBool(child, tag::kChannelEnabled));
    }
    if (const pugi::xml_node options = child.child(tag::kPlaneOptions)) {
      plane.ReadXML(options);
    }
    if (!plane.GetName().empty()) {
      planes_.push_back(std::move(plane));
    }
  }
}

}  // namespace tarn
