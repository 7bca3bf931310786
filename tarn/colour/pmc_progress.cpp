#include "tarn/colour/pmc_progress.h"

#include <algorithm>

#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"
#include "tarn/printer/printer_data.h"

namespace tarn {
namespace {

namespace tag {
constexpr const char* kVersion = "version";
constexpr const char* kPrinter = "Printer";
constexpr const char* kSelectPage = "SelectPage";
constexpr const char* kType = "type";
constexpr const char* kCompleted = "completed";
constexpr const char* kLabel = "Label";
constexpr const char* kValue = "Value";
constexpr const char* kName = "name";
constexpr const char* kInk = "Ink";
constexpr const char* kColorModel = "colorModel";
constexpr const char* kTotalInk = "totalInk";
constexpr const char* kMaxInk = "maxInk";
constexpr const char* kLinearize = "linearize";
constexpr const char* kTargetL = "L";
constexpr const char* kTargetA = "a";
constexpr const char* kTargetB = "b";
constexpr const char* kDeviceLinkData = "DEVICELINKDATA";
}  // namespace tag

// The version of the progress element this library writes.
constexpr const wchar_t* kVersion = L"1";

struct SectionName {
  PMCSectionType type;
  const wchar_t* name;   // as files hold it
  const wchar_t* label;  // the wizard's default label
};

// One table for both directions of the translation, in step order.
constexpr SectionName kSectionNames[kPMCSectionTypeCount] = {
    {PMCSectionType::kMetadata, L"Metadata", L"Metadata"},
    {PMCSectionType::kInkLimits, L"InkLimits", L"Ink limits"},
    {PMCSectionType::kCalibration, L"Calibration", L"Calibration"},
    {PMCSectionType::kSeparation, L"Separation", L"Separation"},
    {PMCSectionType::kICCCreation, L"ICCCreation", L"ICC profile"},
    {PMCSectionType::kReprofiling, L"Reprofiling", L"Reprofiling"},
    {PMCSectionType::kBlackGeneration, L"BlackGeneration", L"Black generation"},
};

const SectionName& Entry(PMCSectionType type) {
  const auto index = static_cast<std::size_t>(type);
  return index < std::size(kSectionNames) ? kSectionNames[index] : kSectionNames[0];
}

}  // namespace

const wchar_t* PMCSectionTypeName(PMCSectionType type) {
  return Entry(type).name;
}

bool PMCSectionTypeFromName(std::wstring_view name, PMCSectionType& type) {
  for (const SectionName& entry : kSectionNames) {
    if (name == entry.name) {
      type = entry.type;
      return true;
    }
  }
  return false;
}

std::wstring PMCSectionDefaultLabel(PMCSectionType type) {
  return Entry(type).label;
}

bool PMCSectionHasChart(PMCSectionType type) {
  return type != PMCSectionType::kMetadata;
}

bool PMCSectionHasICCInfo(PMCSectionType type) {
  return type == PMCSectionType::kICCCreation || type == PMCSectionType::kReprofiling ||
         type == PMCSectionType::kBlackGeneration;
}

// --- CPMCSection -----------------------------------------------------------

struct CPMCSection::Fields {
  using R = CPMCSection;
  using F = internal::Field<R>;

  // The type is the section's identity: written first, read by ReadXML
  // before the table runs, since SetDefaults keeps it.
  static void WriteType(const R& section, pugi::xml_node node) {
    xml::SetAttribute(node, tag::kType, PMCSectionTypeName(section.type_));
  }
  static void ReadValue(R& section, const pugi::xml_node& node, internal::ReadContext&) {
    section.SetValue(xml::ReadAttribute(node, tag::kName), xml::ReadText(node));
  }
  static void WriteValues(const R& section, pugi::xml_node node) {
    for (const auto& [name, value] : section.values_) {
      xml::SetAttribute(xml::AppendText(node, tag::kValue, value), tag::kName, name);
    }
  }
  static void ReadChart(R& section, const pugi::xml_node& node, internal::ReadContext&) {
    CIT8Chart chart;
    if (chart.ReadXML(node)) {
      section.SetIt8Chart(chart);
    }
  }
  static void WriteChart(const R& section, pugi::xml_node node) {
    if (section.chart_) {
      section.chart_->WriteXML(node);
    }
  }
  static void ReadICCInfo(R& section, const pugi::xml_node& node, internal::ReadContext&) {
    CICCInfo info;
    if (info.ReadPMCXML(node)) {
      section.SetICCInfo(info);
    }
  }
  static void WriteICCInfo(const R& section, pugi::xml_node node) {
    if (section.icc_info_) {
      section.icc_info_->WritePMCXML(node);
    }
  }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        R::kElementName, {
                             F::Writer(WriteType),
                             F::Bool(tag::kCompleted, &R::completed_).Attribute(),
                             F::Text(tag::kLabel, &R::label_),
                             // Collections and owned records: hand-written beside the table.
                             F::Custom(tag::kValue, ReadValue, WriteValues),
                             F::Custom(CIT8Chart::kElementName, ReadChart, WriteChart),
                             F::Custom(tag::kDeviceLinkData, ReadICCInfo, WriteICCInfo),
                         });
    return table;
  }
};

CPMCSection::CPMCSection(PMCSectionType type) : type_(type), label_(PMCSectionDefaultLabel(type)) {}

CPMCSection::CPMCSection(const CPMCSection& other)
    : type_(other.type_),
      label_(other.label_),
      completed_(other.completed_),
      values_(other.values_),
      chart_(other.chart_ ? std::make_unique<CIT8Chart>(*other.chart_) : nullptr),
      icc_info_(other.icc_info_) {}

CPMCSection& CPMCSection::operator=(const CPMCSection& other) {
  if (this != &other) {
    CPMCSection copy(other);
    *this = std::move(copy);
  }
  return *this;
}

CPMCSection::~CPMCSection() = default;

void CPMCSection::SetDefaults() {
  *this = CPMCSection(type_);
}

const std::wstring* CPMCSection::GetValue(std::wstring_view name) const {
  for (const auto& [key, value] : values_) {
    if (key == name) {
      return &value;
    }
  }
  return nullptr;
}

bool CPMCSection::SetValue(const std::wstring& name, const std::wstring& value) {
  if (name.empty()) {
    return false;
  }
  for (auto& [key, current] : values_) {
    if (key == name) {
      current = value;
      return true;
    }
  }
  values_.emplace_back(name, value);
  return true;
}

bool CPMCSection::RemoveValue(std::wstring_view name) {
  const auto found =
      std::find_if(values_.begin(), values_.end(), [name](const auto& entry) { return entry.first == name; });
  if (found == values_.end()) {
    return false;
  }
  values_.erase(found);
  return true;
}

bool CPMCSection::SetIt8Chart(const CIT8Chart& chart) {
  if (!PMCSectionHasChart(type_)) {
    return false;
  }
  chart_ = std::make_unique<CIT8Chart>(chart);
  return true;
}

bool CPMCSection::SetICCInfo(const CICCInfo& info) {
  if (!PMCSectionHasICCInfo(type_)) {
    return false;
  }
  icc_info_ = info;
  return true;
}

bool CPMCSection::ReadXML(const pugi::xml_node& node) {
  PMCSectionType type = type_;
  if (!xml::IsNamed(node, kElementName) ||
      !PMCSectionTypeFromName(xml::ReadAttribute(node, tag::kType), type)) {
    return false;
  }
  type_ = type;
  return Fields::Table().Read(*this, node);
}

void CPMCSection::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, kElementName));
}

bool CPMCSection::operator==(const CPMCSection& other) const {
  const bool same_chart = chart_ ? (other.chart_ && *chart_ == *other.chart_) : !other.chart_;
  return type_ == other.type_ && Fields::Table().Equal(*this, other) && values_ == other.values_ &&
         same_chart && icc_info_ == other.icc_info_;
}

// --- CPMCInkModel ----------------------------------------------------------

namespace {

struct InkFields {
  using F = internal::Field<CPMCInk>;

  // The aim is three attributes, written only when the ink has one.
  static void WriteTarget(const CPMCInk& ink, pugi::xml_node node) {
    if (ink.hasTarget) {
      xml::SetAttributeReal(node, tag::kTargetL, ink.target.L);
      xml::SetAttributeReal(node, tag::kTargetA, ink.target.a);
      xml::SetAttributeReal(node, tag::kTargetB, ink.target.b);
    }
  }

  static const internal::FieldTable<CPMCInk>& Table() {
    static const internal::FieldTable<CPMCInk> table(
        tag::kInk,
        {
            F::Text(tag::kName, &CPMCInk::name).Attribute(),
            F::Real(tag::kMaxInk, &CPMCInk::maxInk).Attribute().Reads(internal::Read::kIfPresent),
            F::Bool(tag::kLinearize, &CPMCInk::linearize).Attribute().Reads(internal::Read::kIfPresent),
            F::Writer(WriteTarget),
        });
    return table;
  }

  static bool Read(CPMCInk& ink, const pugi::xml_node& node) {
    ink = CPMCInk();
    if (!Table().Read(ink, node)) {
      return false;
    }
    const pugi::xml_attribute L = node.attribute(tag::kTargetL);
    if (L) {
      ink.hasTarget = true;
      ink.target =
          CLabColor{xml::ReadAttributeReal(node, tag::kTargetL), xml::ReadAttributeReal(node, tag::kTargetA),
                    xml::ReadAttributeReal(node, tag::kTargetB)};
    }
    return true;
  }
};

}  // namespace

struct CPMCInkModel::Fields {
  using R = CPMCInkModel;
  using F = internal::Field<R>;

  static void ReadInk(R& model, const pugi::xml_node& node, internal::ReadContext&) {
    CPMCInk ink;
    if (InkFields::Read(ink, node) && !ink.name.empty()) {
      model.SetInk(ink);
    }
  }
  static void WriteInks(const R& model, pugi::xml_node node) {
    for (const CPMCInk& ink : model.inks_) {
      InkFields::Table().Write(ink, xml::AppendElement(node, tag::kInk));
    }
  }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        R::kElementName,
        {
            F::Text(tag::kColorModel, &R::color_model_).Attribute(),
            F::Real(tag::kTotalInk, &R::total_ink_).Attribute().Reads(internal::Read::kIfPresent),
            // The inks: a collection, hand-written beside the table.
            F::Custom(tag::kInk, ReadInk, WriteInks),
        });
    return table;
  }
};

const CPMCInk* CPMCInkModel::FindInk(std::wstring_view name) const {
  for (const CPMCInk& ink : inks_) {
    if (EqualsNoCase(ink.name, name)) {
      return &ink;
    }
  }
  return nullptr;
}

bool CPMCInkModel::SetInk(const CPMCInk& ink) {
  if (ink.name.empty()) {
    return false;
  }
  for (CPMCInk& current : inks_) {
    if (EqualsNoCase(current.name, ink.name)) {
      current = ink;
      return true;
    }
  }
  inks_.push_back(ink);
  return true;
}

bool CPMCInkModel::ReadXML(const pugi::xml_node& node) {
  return Fields::Table().Read(*this, node);
}

void CPMCInkModel::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, kElementName));
}

bool CPMCInkModel::operator==(const CPMCInkModel& other) const {
  return Fields::Table().Equal(*this, other) && inks_ == other.inks_;
}

// --- CPMCProgress ----------------------------------------------------------

struct CPMCProgress::Fields {
  using R = CPMCProgress;
  using F = internal::Field<R>;

  static void WriteVersion(const R&, pugi::xml_node node) {
    xml::SetAttribute(node, tag::kVersion, kVersion);
  }
  static void ReadInkModel(R& progress, const pugi::xml_node& node, internal::ReadContext&) {
    progress.ink_model_.ReadXML(node);
  }
  static void WriteInkModel(const R& progress, pugi::xml_node node) { progress.ink_model_.WriteXML(node); }
  static void ReadSection(R& progress, const pugi::xml_node& node, internal::ReadContext&) {
    auto section = std::make_unique<CPMCSection>();
    if (section->ReadXML(node)) {
      progress.AddSection(section.release());
    }
  }
  static void WriteSections(const R& progress, pugi::xml_node node) {
    for (const auto& section : progress.sections_) {
      section->WriteXML(node);
    }
  }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        R::kElementName, {
                             F::Writer(WriteVersion),
                             F::Text(tag::kPrinter, &R::printer_),
                             F::Int(tag::kSelectPage, &R::select_page_),
                             // The ink model and the sections are records of their own.
                             F::Custom(CPMCInkModel::kElementName, ReadInkModel, WriteInkModel),
                             F::Custom(CPMCSection::kElementName, ReadSection, WriteSections),
                         });
    return table;
  }
};

CPMCProgress::CPMCProgress(const CPMCProgress& other)
    : printer_(other.printer_), select_page_(other.select_page_), ink_model_(other.ink_model_) {
  sections_.reserve(other.sections_.size());
  for (const auto& section : other.sections_) {
    sections_.push_back(std::make_unique<CPMCSection>(*section));
  }
}

CPMCProgress& CPMCProgress::operator=(const CPMCProgress& other) {
  if (this != &other) {
    CPMCProgress copy(other);
    *this = std::move(copy);
  }
  return *this;
}

CPMCProgress::~CPMCProgress() = default;

void CPMCProgress::SetDefaults() {
  *this = CPMCProgress();
}

CPMCSection* CPMCProgress::AddSection(CPMCSection* section) {
  if (section == nullptr) {
    return nullptr;
  }
  std::unique_ptr<CPMCSection> owned(section);
  const auto before = std::find_if(sections_.begin(), sections_.end(), [section](const auto& current) {
    return static_cast<int>(current->GetType()) >= static_cast<int>(section->GetType());
  });
  if (before != sections_.end() && (*before)->GetType() == section->GetType()) {
    if (before->get() != section) {
      *before = std::move(owned);
    } else {
      owned.release();  // already ours
    }
    return section;
  }
  sections_.insert(before, std::move(owned));
  return section;
}

CPMCSection* CPMCProgress::AddSection(const CPMCSection& section) {
  return AddSection(new CPMCSection(section));
}

const CPMCSection* CPMCProgress::GetSectionAt(std::size_t index) const {
  return index < sections_.size() ? sections_[index].get() : nullptr;
}

CPMCSection* CPMCProgress::GetSection(PMCSectionType type) {
  for (const auto& section : sections_) {
    if (section->GetType() == type) {
      return section.get();
    }
  }
  return nullptr;
}

const CPMCSection* CPMCProgress::GetSection(PMCSectionType type) const {
  return const_cast<CPMCProgress*>(this)->GetSection(type);
}

std::wstring CPMCProgress::GetSectionLabel(PMCSectionType type) const {
  const CPMCSection* section = GetSection(type);
  return section != nullptr ? section->GetLabel() : std::wstring();
}

const CIT8Chart* CPMCProgress::GetSectionIt8Chart(PMCSectionType type) const {
  const CPMCSection* section = GetSection(type);
  return section != nullptr ? section->GetIt8Chart() : nullptr;
}

bool CPMCProgress::RemoveSection(PMCSectionType type) {
  const auto found = std::find_if(sections_.begin(), sections_.end(),
                                  [type](const auto& section) { return section->GetType() == type; });
  if (found == sections_.end()) {
    return false;
  }
  sections_.erase(found);
  return true;
}

CPMCInkModel CPMCProgress::GetInkModel(const CPrinterData* printer) const {
  if (printer == nullptr) {
    return ink_model_;
  }
  const CColorDef* colors = nullptr;
  if (!ink_model_.GetColorModel().empty()) {
    colors = printer->GetColorModel(ink_model_.GetColorModel());
  }
  if (colors == nullptr) {
    colors = printer->GetColorModel(printer->GetColorDefault());
  }
  if (colors == nullptr) {
    return ink_model_;
  }
  CPMCInkModel model;
  model.SetColorModel(colors->GetName());
  model.SetTotalInk(ink_model_.GetTotalInk());
  for (const std::wstring& plane : colors->GetPlanes()) {
    CPMCInk ink;
    if (const CPMCInk* stored = ink_model_.FindInk(plane)) {
      ink = *stored;
    }
    ink.name = plane;
    if (!ink.hasTarget) {
      if (const CLabReference* reference = printer->GetISOLABRef().Find(plane)) {
        ink.hasTarget = true;
        ink.target = CLabColor{reference->L, reference->a, reference->b};
      }
    }
    model.SetInk(ink);
  }
  return model;
}

bool CPMCProgress::ReadXML(const pugi::xml_node& node) {
  return Fields::Table().Read(*this, node);
}

void CPMCProgress::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, kElementName));
}

bool CPMCProgress::operator==(const CPMCProgress& other) const {
  if (!Fields::Table().Equal(*this, other) || !(ink_model_ == other.ink_model_) ||
      sections_.size() != other.sections_.size()) {
    return false;
  }
  for (std::size_t i = 0; i < sections_.size(); ++i) {
    if (!(*sections_[i] == *other.sections_[i])) {
      return false;
    }
  }
  return true;
}

}  // namespace tarn
