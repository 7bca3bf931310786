#include "tarn/sections/halftone_data.h"

#include <array>
#include <cmath>
#include <limits>

#include "tarn/foundation/format.h"
#include "tarn/foundation/registry.h"
#include "tarn/foundation/tags.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

struct SpotShape {
  std::wstring_view display;     // files, configuration store, SetShape
  std::wstring_view postscript;  // the name the RIP's spot function is registered under
};

// The RIP's spot functions. The PostScript names are registered exactly so,
// including "EllipsetoDiamond" beside "DiamondToSpot"; jobs depend on them.
constexpr std::array<SpotShape, CPMHalftoneOption::kShapeCount> kSpotShapes = {{
    {L"Round", L"Round"},
    {L"Line", L"Line"},
    {L"Ellipse", L"Ellipse"},
    {L"Diamond", L"Diamond"},
    {L"Elliptical", L"Elliptical"},
    {L"Inverted Round", L"Inverted_Round"},
    {L"Rhomboid", L"Rhomboid"},
    {L"Dot", L"Dot"},
    {L"Square", L"Square"},
    {L"Dither", L"Dither"},
    {L"Tri-dot", L"Tri-dot"},
    {L"Variable", L"Variable"},
    {L"Diamond To Spot", L"DiamondToSpot"},
    {L"Ellipse To Diamond", L"EllipsetoDiamond"},
    {L"Euclidean Round", L"EuclideanRound"},
    {L"Small Ellipse", L"SmallEllipse"},
    {L"Screen Small Ellipse", L"ScrSmallEllipse"},
    {L"Screen Ellipse", L"ScrEllipse"},
    {L"Screen Line", L"ScrLine"},
    {L"Screen Fine Line", L"ScrFineLine"},
    {L"Inverse Elliptical", L"InverseElliptical"},
    {L"Euclidean Small Ellipse", L"EuclideanSmallEllipse"},
    {L"Euclidean Ellipse", L"EuclideanEllipse"},
}};

// Plate numbers of the five standard screens.
constexpr std::array<std::wstring_view, 5> kPlates = {L"Cyan", L"Magenta", L"Yellow", L"Black", L"Spot"};
constexpr std::wstring_view kBlack = L"Black";

// Tags of a screen and of the section, shared by readers and writers.
namespace tag {
constexpr const char* kShape = "SHAPE";
constexpr const char* kFrequency = "FREQUENCY";
constexpr const char* kAngle = "ANGLE";
constexpr const char* kPlate = "PLATE";
constexpr const char* kName = "NAME";
constexpr const char* kSeparation = "SEP";
constexpr const char* kChoke = "CHOKE";
constexpr const char* kIsUsed = "enable";
constexpr const char* kApp = "app";
constexpr const char* kSpot = "spot";
constexpr const char* kSame = "same";
constexpr const char* kSuper = "super";
constexpr const char* kJitterData = "JitterData";
constexpr const char* kJitterValue = "JitterValue";
constexpr const char* kJitterKey = "key";
constexpr const char* kJitterValueAttr = "value";
}  // namespace tag

std::wstring WithoutBlanks(std::wstring_view text) {
  std::wstring out;
  for (const wchar_t c : text) {
    if (c != L' ') {
      out.push_back(c);
    }
  }
  return out;
}

// The screen rulings are whole numbers in PostScript; like a C cast, but a
// value beyond int (or NaN) cannot make the conversion undefined.
int TruncateFrequency(double frequency) {
  if (std::isnan(frequency)) {
    return 0;
  }
  if (frequency >= static_cast<double>(std::numeric_limits<int>::max())) {
    return std::numeric_limits<int>::max();
  }
  if (frequency <= static_cast<double>(std::numeric_limits<int>::min())) {
    return std::numeric_limits<int>::min();
  }
  return static_cast<int>(frequency);
}

// Default screen angles that keep the process plates from forming moiré.
double DefaultAngle(std::wstring_view plate) {
  if (EqualsNoCase(plate, L"Cyan")) {
    return 108.0;
  }
  if (EqualsNoCase(plate, L"Magenta")) {
    return 90.0;
  }
  if (EqualsNoCase(plate, L"Yellow")) {
    return 161.0;
  }
  return 45.0;
}

CPMHalftoneData::JitterTable DefaultJitter() {
  CPMHalftoneData::JitterTable jitter;
  for (std::int32_t key = 0; key <= 100; key += 5) {
    jitter.emplace_back(key, 0.0);
  }
  return jitter;
}

}  // namespace

// --- CPMHalftoneOption -----------------------------------------------------

std::wstring_view CPMHalftoneOption::GetShapeName(std::int32_t shape) {
  return shape >= 0 && shape < kShapeCount ? kSpotShapes[static_cast<size_t>(shape)].display
                                           : std::wstring_view();
}

std::wstring_view CPMHalftoneOption::GetShapePostScriptName(std::int32_t shape) {
  return shape >= 0 && shape < kShapeCount ? kSpotShapes[static_cast<size_t>(shape)].postscript
                                           : std::wstring_view();
}

std::int32_t CPMHalftoneOption::FindShape(std::wstring_view text) {
  for (std::int32_t i = 0; i < kShapeCount; ++i) {
    const std::wstring_view display = kSpotShapes[static_cast<size_t>(i)].display;
    if (EqualsNoCase(display, text) || EqualsNoCase(WithoutBlanks(display), text)) {
      return i;
    }
  }
  // Not a name: the text counts as the number it starts with, 0 when none, as
  // older files and callers expect ("Bogus" is shape 0, "7 dots" shape 7).
  // Numbers past the table give the default; a negative one would index
  // before the table, so it gives the default too.
  long long number = 0;
  ParseIntPrefix(text, number);
  if (number >= 0 && number < kShapeCount) {
    return static_cast<std::int32_t>(number);
  }
  return kDefaultShape;
}

CPMHalftoneOption::CPMHalftoneOption() = default;

CPMHalftoneOption::CPMHalftoneOption(double frequency, double angle, std::int32_t shape,
                                     const std::wstring& plate, const std::wstring& name, bool separation,
                                     std::int32_t choke)
    : frequency_(frequency),
      angle_(angle),
      plate_(plate),
      name_(name),
      separation_(separation),
      choke_(choke) {
  SetShape(shape);
}

void CPMHalftoneOption::SetShape(std::int32_t shape) {
  shape_ = shape >= 0 && shape < kShapeCount ? shape : kDefaultShape;
}

void CPMHalftoneOption::SetShape(const wchar_t* text) {
  shape_ = FindShape(text ? std::wstring_view(text) : std::wstring_view());
}

bool CPMHalftoneOption::IsBlackPlate() const {
  return EqualsNoCase(plate_, kBlack);
}

bool CPMHalftoneOption::GetPlate(unsigned plate, std::wstring& name) {
  // An unknown number gives an empty name, and the option takes it too.
  const bool known = plate < kPlates.size();
  name = known ? std::wstring(kPlates[plate]) : std::wstring();
  plate_ = name;
  name_ = name;
  return known;
}

bool CPMHalftoneOption::ReadXML(const pugi::xml_node& node, unsigned int& fields) {
  fields = 0;
  if (!xml::IsNamed(node, kElementName)) {
    return false;
  }
  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, tag::kShape)) {
      SetShape(xml::ReadText(child).c_str());
    } else if (xml::IsNamed(child, tag::kFrequency)) {
      frequency_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, tag::kAngle)) {
      angle_ = xml::ReadReal(child);
    } else if (xml::IsNamed(child, tag::kPlate)) {
      plate_ = xml::ReadText(child);
    } else if (xml::IsNamed(child, tag::kName)) {
      name_ = xml::ReadText(child);
    } else if (xml::IsNamed(child, tag::kSeparation)) {
      separation_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, tag::kChoke)) {
      choke_ = xml::ReadInt(child);
    } else {
      continue;
    }
    ++fields;
  }
  return true;
}

void CPMHalftoneOption::WriteXML(pugi::xml_node& parent, const std::wstring& key) const {
  pugi::xml_node node = xml::AppendElement(parent, kElementName);
  xml::SetAttribute(node, tags::kName, key);
  xml::AppendText(node, tag::kShape, GetShapeName(shape_));
  xml::AppendReal(node, tag::kFrequency, frequency_);
  xml::AppendReal(node, tag::kAngle, angle_);
  xml::AppendText(node, tag::kPlate, plate_);
  xml::AppendText(node, tag::kName, name_);
  xml::AppendBool(node, tag::kSeparation, separation_);
  xml::AppendInt(node, tag::kChoke, choke_);
}

void CPMHalftoneOption::AppendHFTPostscript(formatstringT& buffer) const {
  buffer.AppendFormat(L"      /%s <<\r\n", plate_);
  buffer.Append(L"        /HalftoneType 1\r\n");
  buffer.AppendFormat(L"        /Frequency %d\r\n", TruncateFrequency(frequency_));
  buffer.AppendFormat(L"        /Angle %.4f\r\n", angle_);
  buffer.AppendFormat(L"        /SpotFunction statusdict /%s get\r\n", GetShapePostScriptName(shape_));
  buffer.Append(L"      >>\r\n");
}

void CPMHalftoneOption::AppendDSCPostscript(formatstringT& buffer, bool plain) const {
  if (plain) {
    buffer.AppendFormat(L"(%s) eq {/thePlateFound true def %d %.4f statusdict /%s get setscreen} if\r\n",
                        name_, TruncateFrequency(frequency_), angle_, GetShapePostScriptName(shape_));
  } else {
    buffer.AppendFormat(
        L"(%s) eq {userdict begin $Enable-Screen end /thePlateFound true def %d %.4f statusdict /%s get "
        L"setscreen "
        L"userdict begin $Disable-Screen end} if\r\n",
        name_, TruncateFrequency(frequency_), angle_, GetShapePostScriptName(shape_));
  }
}

bool CPMHalftoneOption::SaveXRL(CXRegistry* store, const std::wstring& key) const {
  if (store == nullptr) {
    return false;
  }
  std::wstring_view entry;
  for (const std::wstring_view plate : kPlates) {
    if (EqualsNoCase(plate, plate_)) {
      entry = plate;
    }
  }
  if (entry.empty()) {
    return false;
  }
  std::wstring path = key;
  if (!path.empty() && path.back() != L'/') {
    path += L'/';
  }
  path += entry;
  return store->SetString(path, Format(std::wstring_view(L"%.4f,%.4f,%s,%d,%d"), frequency_, angle_,
                                       GetShapeName(shape_), separation_ ? 1 : 0, choke_));
}

// --- CPMHalftoneData -------------------------------------------------------

CPMHalftoneData::CPMHalftoneData() {
  SetDefaults();
}

CPMHalftoneData::CPMHalftoneData(const CPMHalftoneData& other)
    : jitter_(other.jitter_),
      enable_(other.enable_),
      is_used_(other.is_used_),
      use_same_shape_(other.use_same_shape_),
      use_super_cell_(other.use_super_cell_),
      use_app_halftoning_(other.use_app_halftoning_),
      use_app_spot_function_(other.use_app_spot_function_),
      options_(other.options_) {}

CPMHalftoneData& CPMHalftoneData::operator=(const CPMHalftoneData& other) {
  if (this != &other) {
    jitter_ = other.jitter_;
    enable_ = other.enable_;
    is_used_ = other.is_used_;
    use_same_shape_ = other.use_same_shape_;
    use_super_cell_ = other.use_super_cell_;
    use_app_halftoning_ = other.use_app_halftoning_;
    use_app_spot_function_ = other.use_app_spot_function_;
    options_ = other.options_;
    cursor_.reset();
  }
  return *this;
}

bool CPMHalftoneData::operator==(const CPMHalftoneData& other) const {
  return jitter_ == other.jitter_ && enable_ == other.enable_ && is_used_ == other.is_used_ &&
         use_same_shape_ == other.use_same_shape_ && use_super_cell_ == other.use_super_cell_ &&
         use_app_halftoning_ == other.use_app_halftoning_ &&
         use_app_spot_function_ == other.use_app_spot_function_ && options_ == other.options_;
}

void CPMHalftoneData::SetDefaults() {
  jitter_ = DefaultJitter();
  enable_ = false;
  is_used_ = false;
  use_same_shape_ = false;
  use_super_cell_ = true;
  use_app_halftoning_ = false;
  use_app_spot_function_ = false;
  ClearHalftones();
  InitializeHalftones();
}

void CPMHalftoneData::ClearHalftones() {
  options_.clear();
  cursor_.reset();
}

void CPMHalftoneData::InitializeHalftones() {
  for (const std::wstring_view plate : kPlates) {
    const std::wstring key(plate);
    options_.insert_or_assign(key, GetDefaultHaftone(key));
  }
}

void CPMHalftoneData::VerifyHalftones() {
  for (const std::wstring_view plate : kPlates) {
    const std::wstring name(plate);
    if (options_.find(name) == options_.end()) {
      // A missing Black screen goes under "Balck" and is made anew each time;
      // existing print modes carry that key, so it must stay as it is.
      const std::wstring key = plate == kBlack ? std::wstring(L"Balck") : name;
      options_.insert_or_assign(key, GetDefaultHaftone(name));
    }
  }
}

CPMHalftoneOption* CPMHalftoneData::GetHalftoneOption(unsigned plate) {
  return plate < kPlates.size() ? GetHalftoneOption(std::wstring(kPlates[plate])) : nullptr;
}

CPMHalftoneOption* CPMHalftoneData::GetHalftoneOption(const std::wstring& key) {
  const auto it = options_.find(key);
  return it == options_.end() ? nullptr : &it->second;
}

const CPMHalftoneOption* CPMHalftoneData::GetHalftoneOption(const std::wstring& key) const {
  const auto it = options_.find(key);
  return it == options_.end() ? nullptr : &it->second;
}

CPMHalftoneOption* CPMHalftoneData::GetFirstHalftone(std::wstring* key) {
  cursor_.reset();
  return GetNextHalftone(key);
}

CPMHalftoneOption* CPMHalftoneData::GetNextHalftone(std::wstring* key) {
  const auto it = cursor_ ? options_.upper_bound(*cursor_) : options_.begin();
  if (it == options_.end()) {
    cursor_ = options_.empty() ? std::nullopt : std::optional<std::wstring>(options_.rbegin()->first);
    return nullptr;
  }
  cursor_ = it->first;
  if (key != nullptr) {
    *key = it->first;
  }
  return &it->second;
}

void CPMHalftoneData::AddHalftoneOption(const CPMHalftoneOption* option) {
  if (option != nullptr) {
    options_.insert_or_assign(option->GetPlate(), *option);
  }
}

void CPMHalftoneData::AddHalftones(const HalftoneMap& options) {
  if (&options == &options_) {
    // Adding the section's own screens would insert while walking them.
    const HalftoneMap copy = options;  // NOLINT(performance-unnecessary-copy-initialization)
    AddHalftones(copy);
    return;
  }
  for (const auto& [key, option] : options) {
    AddHalftoneOption(&option);
  }
}

void CPMHalftoneData::MergeHalftones(const CPMHalftoneData* other) {
  if (other != nullptr) {
    AddHalftones(other->options_);
  }
}

CPMHalftoneOption CPMHalftoneData::GetDefaultHaftone(const std::wstring& plate) const {
  return CPMHalftoneOption(60.0, DefaultAngle(plate), CPMHalftoneOption::kDefaultShape, plate, plate, true,
                           0);
}

bool CPMHalftoneData::ReadXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kElementName)) {
    return false;
  }
  // Screens the element does not hold keep their default screens.
  SetDefaults();

  const auto read_flag = [&node](const char* name, bool& flag) {
    if (node.attribute(name)) {
      flag = xml::ReadAttributeBool(node, name);
    }
  };
  read_flag(tag::kIsUsed, is_used_);
  read_flag(tag::kApp, use_app_halftoning_);
  read_flag(tag::kSpot, use_app_spot_function_);
  read_flag(tag::kSame, use_same_shape_);
  read_flag(tag::kSuper, use_super_cell_);

  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, tags::kOverrideEnable)) {
      enable_ = xml::ReadBool(child);
    } else if (xml::IsNamed(child, CPMHalftoneOption::kElementName)) {
      // Any key is kept, so screens of inks beyond the standard plates
      // survive; what the element leaves out is the plate's default.
      const std::wstring key = xml::ReadAttribute(child, tags::kName);
      if (!key.empty()) {
        CPMHalftoneOption option = GetDefaultHaftone(key);
        unsigned int fields = 0;
        option.ReadXML(child, fields);
        options_.insert_or_assign(key, option);
      }
    } else if (xml::IsNamed(child, tag::kJitterData)) {
      ReadJitterXML(child, jitter_);
    }
  }
  return true;
}

void CPMHalftoneData::WriteXML(pugi::xml_node& parent) const {
  if (!is_used_) {
    return;
  }
  pugi::xml_node node = xml::AppendElement(parent, kElementName);
  xml::SetAttributeBool(node, tag::kIsUsed, is_used_);
  xml::SetAttributeBool(node, tag::kApp, use_app_halftoning_);
  xml::SetAttributeBool(node, tag::kSpot, use_app_spot_function_);
  xml::SetAttributeBool(node, tag::kSame, use_same_shape_);
  xml::SetAttributeBool(node, tag::kSuper, use_super_cell_);
  if (enable_) {
    xml::AppendBool(node, tags::kOverrideEnable, true);
  }
  for (const auto& [key, option] : options_) {
    if (!key.empty()) {
      option.WriteXML(node, key);
    }
  }
  WriteJitterXML(node, jitter_);
}

bool CPMHalftoneData::ReadJitterXML(const pugi::xml_node& node, JitterTable& jitter) {
  if (!xml::IsNamed(node, tag::kJitterData)) {
    return false;
  }
  JitterTable table;
  for (const pugi::xml_node& entry : node.children()) {
    if (xml::IsNamed(entry, tag::kJitterValue) && entry.attribute(tag::kJitterKey)) {
      table.emplace_back(xml::ReadAttributeInt(entry, tag::kJitterKey),
                         xml::ReadAttributeReal(entry, tag::kJitterValueAttr));
    }
  }
  jitter = std::move(table);
  return true;
}

void CPMHalftoneData::WriteJitterXML(pugi::xml_node& parent, const JitterTable& jitter) {
  pugi::xml_node node = xml::AppendElement(parent, tag::kJitterData);
  for (const auto& [key, value] : jitter) {
    pugi::xml_node entry = xml::AppendElement(node, tag::kJitterValue);
    xml::SetAttributeInt(entry, tag::kJitterKey, key);
    xml::SetAttributeReal(entry, tag::kJitterValueAttr, value);
  }
}

}  // namespace tarn
