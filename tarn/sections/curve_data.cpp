#include "tarn/sections/curve_data.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "tarn/foundation/format.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/tags.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {

const double DENSITY_DEFAULTS[13] = {0.0, 0.05, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 0.95, 1.0};
const double DENSITY_EXTDEFAULTS[29] = {0.0, 0.01, 0.03, 0.05, 0.07, 0.09, 0.1,  0.15, 0.2, 0.25,
                                        0.3, 0.35, 0.4,  0.45, 0.5,  0.55, 0.6,  0.65, 0.7, 0.75,
                                        0.8, 0.85, 0.9,  0.91, 0.93, 0.95, 0.97, 0.99, 1.0};
// The gamma point and the last point both sit at x = 1.0; searches by x find
// the gamma first, and files and callers depend on this order.
const double LEVELS_DEFAULTS[13] = {0.0, 1.0, 2.0, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 0.95, 1.0};

namespace {

// Tags of both curve elements, used by reader and writer alike.
constexpr const char* kTagCurveData = tags::kCurveData;
constexpr const char* kTagCurveData2 = tags::kCurveData2;
constexpr const char* kAttrName = tags::kName;
constexpr const char* kAttrType = "type";
constexpr const char* kAttrKeepZero = "keep0";
constexpr const char* kTagData = "DATA";
constexpr const char* kTagDataFlexible = "DATA_FLEXIBLE";
constexpr const char* kTagListCurve = "CurveData";
constexpr const char* kTagListName = "Name";
constexpr const char* kTagListSelected = "Selected";

constexpr size_t kTableSize = 13;

// White space as the "C" locale knows it, whatever the process locale is.
bool IsBlank(wchar_t c) {
  return c == L' ' || (c >= L'\t' && c <= L'\r');
}
constexpr double kMergeTolerance = 0.01;

template <size_t N>
CurvePoints IdentityOn(const double (&table)[N]) {
  CurvePoints points;
  points.reserve(N);
  for (double d : table) {
    points.emplace_back(d, d);
  }
  return points;
}

// The merge rule shared by both curve classes: the first point within 0.01 of
// x takes the new y; otherwise the point is added and the curve re-sorted.
void MergePoint(CurvePoints& points, double x, double y) {
  for (auto& point : points) {
    if (std::fabs(point.first - x) < kMergeTolerance) {
      point.second = y;
      return;
    }
  }
  // The points are usually sorted already: then one insertion gives what
  // appending and sorting would, without the sort.
  const CurvePoint point(x, y);
  if (std::is_sorted(points.begin(), points.end())) {
    points.insert(std::upper_bound(points.begin(), points.end(), point), point);
    return;
  }
  points.push_back(point);
  std::sort(points.begin(), points.end());
}

// True when the curve can be written as "DATA": 13 points on the table's x
// positions, within the merge tolerance.
bool FitsTable(const CurvePoints& points, const double* table) {
  if (points.size() != kTableSize) {
    return false;
  }
  for (size_t i = 0; i < kTableSize; ++i) {
    if (!(std::fabs(points[i].first - table[i]) < kMergeTolerance)) {
      return false;
    }
  }
  return true;
}

// "DATA": the 13 y values joined by "," (no blank, no trailing comma).
// "DATA_FLEXIBLE": every pair as "x, y;".
void WritePoints(pugi::xml_node parent, const CurvePoints& points, const double* table) {
  std::wstring text;
  if (FitsTable(points, table)) {
    for (const auto& point : points) {
      if (!text.empty()) {
        text += L',';
      }
      text += Format(L"%0.04f", point.second);
    }
    xml::AppendText(parent, kTagData, text);
  } else {
    for (const auto& point : points) {
      text += Format(L"%0.04f, %0.04f;", point.first, point.second);
    }
    xml::AppendText(parent, kTagDataFlexible, text);
  }
}

// The 13 y values of a "DATA" text. Only a text of exactly 12 commas counts;
// after the commas become blanks every value must read as a number, otherwise
// the whole text is refused so that a half-read curve never replaces a good one.
std::optional<std::vector<double>> ParseDataValues(std::wstring_view text) {
  std::wstring spaced(text);
  size_t commas = 0;
  for (auto& c : spaced) {
    if (c == L',') {
      c = L' ';
      ++commas;
    }
  }
  if (commas != kTableSize - 1) {
    return std::nullopt;
  }
  std::vector<double> values;
  values.reserve(kTableSize);
  std::wstring_view rest(spaced);
  for (size_t i = 0; i < kTableSize; ++i) {
    double value = 0.0;
    const size_t used = ParseRealPrefix(rest, value);
    if (used == 0 || !std::isfinite(value)) {
      return std::nullopt;
    }
    rest.remove_prefix(used);
    // A number must end at a blank or at the end, as a scanner reading
    // "%lf %lf ..." would stop at "1.0x".
    if (i + 1 < kTableSize && (rest.empty() || !IsBlank(rest.front()))) {
      return std::nullopt;
    }
    values.push_back(value);
  }
  return values;
}

// The pairs of a "DATA_FLEXIBLE" text: tokens between ";" read as "%lf, %lf",
// a field that cannot be read staying 0. Tokens holding only white space
// (line breaks of a hand-edited file) count as empty and are skipped.
CurvePoints ParseFlexiblePairs(std::wstring_view text) {
  CurvePoints pairs;
  while (!text.empty()) {
    const size_t end = text.find(L';');
    const std::wstring_view token = text.substr(0, end);
    text.remove_prefix(end == std::wstring_view::npos ? text.size() : end + 1);
    if (std::all_of(token.begin(), token.end(), IsBlank)) {
      continue;
    }
    double x = 0.0;
    double y = 0.0;
    const size_t used = ParseRealPrefix(token, x);
    // The literal "," of the pattern must follow the number directly.
    if (used > 0 && used < token.size() && token[used] == L',') {
      ParseRealPrefix(token.substr(used + 1), y);
    }
    // A field beyond the range of a double ("1e400") counts as unreadable.
    pairs.emplace_back(std::isfinite(x) ? x : 0.0, std::isfinite(y) ? y : 0.0);
  }
  return pairs;
}

}  // namespace

CurvePoints GetDefaultCurve() {
  return IdentityOn(DENSITY_DEFAULTS);
}

namespace {

// The default points merged one by one into an empty curve. No two table
// entries lie within the merge tolerance of each other, so the merge keeps
// them all in table order; building the result once saves every new curve
// thirteen merges.
const CurvePoints& MergedDefaultCurve() {
  static const CurvePoints merged = [] {
    CurvePoints points;
    for (const auto& [x, y] : GetDefaultCurve()) {
      MergePoint(points, x, y);
    }
    return points;
  }();
  return merged;
}

}  // namespace

CurvePoints GetDefaultExtendedCurve() {
  return IdentityOn(DENSITY_EXTDEFAULTS);
}

// --- CPMCurveData ------------------------------------------------------------

CPMCurveData::CPMCurveData() {
  SetDefaults();
}

CPMCurveData::CPMCurveData(bool densityMode, unsigned long drawColor)
    : draw_color_(drawColor), density_mode_(densityMode) {
  SetDefaults();
}

void CPMCurveData::SetDefaults() {
  points_.clear();
  keep_zero_ = false;
  extra_ = 0;
  if (density_mode_) {
    points_ = MergedDefaultCurve();
  } else {
    // Level points are kept by position, not sorted: low, gamma, high first.
    for (double v : LEVELS_DEFAULTS) {
      points_.emplace_back(v, v);
    }
    points_[0] = {0.0, 0.0};
    points_[1] = {1.0, 1.0};
    points_[2] = {2.0, 255.0};
  }
}

bool CPMCurveData::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!xml::IsNamed(node, kTagCurveData) && !xml::IsNamed(node, kTagCurveData2)) {
    return false;
  }
  for (const auto& attribute : node.attributes()) {
    const std::string_view name = attribute.name();
    if (name == kAttrName) {
      name_ = FromUtf8(attribute.value());
    } else if (name == kAttrType) {
      // The mode changes without re-defaulting the points: the DATA text that
      // follows is read in the new mode.
      density_mode_ = attribute.as_int() != 0;
    } else if (name == kAttrKeepZero) {
      keep_zero_ = attribute.as_int() != 0;
    }
  }
  for (const auto& child : node.children()) {
    if (xml::IsNamed(child, kTagData)) {
      ParseXMLData(xml::ReadText(child));
    } else if (xml::IsNamed(child, kTagDataFlexible)) {
      ParseXMLFlexibleData(xml::ReadText(child));
    }
  }
  return true;
}

void CPMCurveData::WriteXML(pugi::xml_node parent, bool /*flag*/, unsigned int version) const {
  pugi::xml_node node = xml::AppendElement(parent, version != 0 ? kTagCurveData2 : kTagCurveData);
  xml::SetAttribute(node, kAttrName, name_);
  xml::SetAttribute(node, kAttrType, density_mode_ ? L"1" : L"0");
  xml::SetAttribute(node, kAttrKeepZero, keep_zero_ ? L"1" : L"0");
  WritePoints(node, points_, density_mode_ ? DENSITY_DEFAULTS : LEVELS_DEFAULTS);
}

void CPMCurveData::ParseXMLData(std::wstring_view text) {
  const auto values = ParseDataValues(text);
  if (!values) {
    return;
  }
  if (density_mode_) {
    for (size_t i = 0; i < kTableSize; ++i) {
      SetValue(DENSITY_DEFAULTS[i], (*values)[i]);
    }
  } else {
    points_.clear();
    for (size_t i = 0; i < kTableSize; ++i) {
      points_.emplace_back(LEVELS_DEFAULTS[i], (*values)[i]);
    }
  }
}

void CPMCurveData::ParseXMLFlexibleData(std::wstring_view text) {
  // The pairs replace the points as they stand: no merge, no sorting. A text
  // without any pair keeps the points, since an empty curve cannot be evaluated.
  CurvePoints pairs = ParseFlexiblePairs(text);
  if (!pairs.empty()) {
    points_ = std::move(pairs);
  }
}

void CPMCurveData::SetDensityMode(bool on) {
  if (on == density_mode_) {
    return;
  }
  if (!on) {
    density_mode_ = false;
    SetDefaults();
    return;
  }
  CPMCurveData converted(true, draw_color_);
  const size_t n = points_.size();
  // Without low, gamma and high there is nothing to sample: the identity stays.
  if (n >= 3) {
    const double* table = n == kTableSize ? DENSITY_DEFAULTS : DENSITY_EXTDEFAULTS;
    const size_t table_size = n == kTableSize ? kTableSize : std::size(DENSITY_EXTDEFAULTS);
    // The table is walked upwards while the new curve is filled from its end
    // downwards; level curves saved by callers depend on this mapping.
    for (size_t k = 0; k < n && k < table_size; ++k) {
      const double y = (255.0 - GetValueFromLevel(255.0 * table[k])) / 255.0;
      const size_t target = n - 1 - k;
      if (target < converted.points_.size()) {
        converted.points_[target].second = y;
      }
    }
  }
  // Name, extra data and keep zero come from the fresh curve: the conversion
  // drops them, and callers accept that loss.
  *this = std::move(converted);
}

std::vector<double> CPMCurveData::GetXAxis() const {
  std::vector<double> xs;
  xs.reserve(points_.size());
  for (const auto& point : points_) {
    xs.push_back(point.first);
  }
  return xs;
}

void CPMCurveData::SetValue(double x, double y) {
  MergePoint(points_, x, y);
}

void CPMCurveData::SetValueStraight(int index, double y) {
  if (index >= 0 && static_cast<size_t>(index) < points_.size()) {
    points_[static_cast<size_t>(index)].second = y;
  }
}

double CPMCurveData::GetValue(double x) const {
  for (const auto& point : points_) {
    if (point.first == x) {
      return point.second;
    }
  }
  return -1.0;
}

void CPMCurveData::MakeLinear(double factor) {
  for (auto& point : points_) {
    point.second = factor * point.first;
  }
}

void CPMCurveData::SetCurve(const CPMCurveData* other) {
  if (other != nullptr && other != this) {
    points_ = other->points_;
  }
}

double CPMCurveData::GetValueFromLevel(double v) const {
  if (points_.size() < 3) {
    throw std::out_of_range("level curve without low, gamma and high points");
  }
  const double low = points_[0].second;
  const double gamma = points_[1].second;
  const double high = points_[2].second;
  const double value = 255.0 * std::pow(((high - low) * (v / 255.0) + low) / 255.0, 1.0 / gamma);
  // std::clamp would hand a NaN through unchanged as well; the explicit form
  // says so.
  if (std::isnan(value)) {
    return value;
  }
  return std::clamp(value, 0.0, 255.0);
}

double CPMCurveData::GetValueFromDensity(double v) const {
  const double d = 1.0 - v / 255.0;
  if (points_.size() < 2) {
    throw std::out_of_range("density curve with fewer than two points");
  }
  for (size_t i = 1; i < points_.size(); ++i) {
    const auto& [xi, yi] = points_[i];
    if (xi >= d) {
      const auto& [xj, yj] = points_[i - 1];
      // Segments extrapolate and equal x values divide by zero: callers that
      // draw or write values check for finite results themselves.
      return 255.0 * ((d - xj) * ((1.0 - yi) - (1.0 - yj)) / (xi - xj) + (1.0 - yj));
    }
  }
  throw std::out_of_range("density curve does not reach the density of the tone");
}

double CPMCurveData::Evaluate(double v) const {
  return density_mode_ ? GetValueFromDensity(v) : GetValueFromLevel(v);
}

double CPMCurveData::GetCurveValue(double v, bool inverted) const {
  if (!inverted) {
    return Evaluate(v);
  }
  const double tone = 255.0 - 255.0 * v;
  return (255.0 - Evaluate(tone)) / 255.0;
}

double CPMCurveData::GetCurveArea() const {
  double previous = Evaluate(0.0);
  double area = 0.0;
  // The loop stops before 255: the last interval is left out, and stored
  // deviations depend on this bound.
  for (int v = 1; v < 255; ++v) {
    const double value = Evaluate(v);
    area += (value + previous) / 2.0;
    previous = value;
  }
  return area;
}

double CPMCurveData::GetCurveDeviation() const {
  return (65025.0 - GetCurveArea()) / 32512.5;
}

bool CPMCurveData::HasSameCurve(const CPMCurveData& other) const {
  return points_ == other.points_;
}

void CPMCurveData::GetPDFPrefix(formatstringT& buffer) const {
  if (!density_mode_) {
    buffer.AppendFormat(L"0.0000, %0.04f, ", GetValue(0.0) / 255.0);
    buffer.AppendFormat(L"0.5000, %0.04f, ", GetValue(1.0));
    buffer.AppendFormat(L"1.0000, %0.04f", GetValue(2.0) / 255.0);
    return;
  }
  for (const auto& [x, y] : points_) {
    buffer.AppendFormat(L"%0.04f, %0.04f, ", x, y);
  }
  // Only the blank this curve wrote goes: an empty curve leaves the buffer alone.
  if (!points_.empty()) {
    buffer.RemoveLastOf(L", ");
  }
}

void CPMCurveData::GetPDFPrefixInverted(formatstringT& buffer) const {
  if (!density_mode_) {
    buffer.AppendFormat(L"0.0000, %0.04f, ", 1.0 - GetValue(0.0) / 255.0);
    // The gamma is inverted unscaled; the PostScript set-up expects exactly this.
    buffer.AppendFormat(L"0.5000, %0.04f, ", 1.0 - GetValue(1.0));
    buffer.AppendFormat(L"1.0000, %0.04f", 1.0 - GetValue(2.0) / 255.0);
    return;
  }
  for (const auto& [x, y] : points_) {
    buffer.AppendFormat(L"%0.04f, %0.04f, ", x, 1.0 - y);
  }
  if (!points_.empty()) {
    buffer.RemoveLastOf(L", ");
  }
}

bool CPMCurveData::operator==(const CPMCurveData& other) const {
  return density_mode_ == other.density_mode_ && name_ == other.name_ && keep_zero_ == other.keep_zero_ &&
         points_ == other.points_;
}

// --- CCurveData --------------------------------------------------------------

CCurveData::CCurveData() {
  SetDefaults();
}

void CCurveData::SetDefaults() {
  points_ = MergedDefaultCurve();
  name_ = L"(*v*)Linear";
  XLT_TranslateString(name_);
  selected_ = false;
}

void CCurveData::SetValue(double x, double y) {
  MergePoint(points_, x, y);
}

bool CCurveData::ReadXML(const pugi::xml_node& node) {
  SetDefaults();
  if (!xml::IsNamed(node, kTagListCurve)) {
    return false;
  }
  for (const auto& child : node.children()) {
    if (xml::IsNamed(child, kTagListName)) {
      std::wstring name = xml::ReadText(child);
      if (!name.empty()) {
        name_ = std::move(name);
      }
    } else if (xml::IsNamed(child, kTagData)) {
      ParseXMLData(xml::ReadText(child));
    } else if (xml::IsNamed(child, kTagDataFlexible)) {
      ParseXMLFlexibleData(xml::ReadText(child));
    } else if (xml::IsNamed(child, kTagListSelected)) {
      if (!xml::ReadText(child).empty()) {
        selected_ = xml::ReadBool(child);
      }
    }
  }
  return true;
}

void CCurveData::WriteXML(pugi::xml_node parent) const {
  pugi::xml_node node = xml::AppendElement(parent, kTagListCurve);
  xml::AppendText(node, kTagListName, name_);
  WritePoints(node, points_, DENSITY_DEFAULTS);
  xml::AppendBool(node, kTagListSelected, selected_);
}

void CCurveData::ParseXMLData(std::wstring_view text) {
  if (const auto values = ParseDataValues(text)) {
    for (size_t i = 0; i < kTableSize; ++i) {
      SetValue(DENSITY_DEFAULTS[i], (*values)[i]);
    }
  }
}

void CCurveData::ParseXMLFlexibleData(std::wstring_view text) {
  // Unlike the print mode's curves, list curves merge: the result is sorted
  // and near-equal x values collapse.
  for (const auto& [x, y] : ParseFlexiblePairs(text)) {
    SetValue(x, y);
  }
}

}  // namespace tarn
