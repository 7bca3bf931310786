#include "tarn/sections/printer_options_data.h"

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/tags.h"
#include "tarn/foundation/xml.h"

namespace tarn {

namespace {

constexpr const char* kTagOptions = CPMPrinterOptionsData::kElementName;
constexpr const char* kTagOverrideEnable = tags::kOverrideEnable;
constexpr const char* kTagAdvanced = "ADVANCED";
constexpr const char* kTagOption = "OPTION";
constexpr const char* kTagProc = "PROC";
constexpr const char* kTagParam = "PARAM";

}  // namespace

void CPMPrinterOptionsData::SetDefaults() {
  override_enable_ = false;
  advanced_ = false;
  options_.clear();
  iteration_name_.clear();
  iterating_ = false;
}

const std::wstring* CPMPrinterOptionsData::GetOptionValue(const std::wstring& name) const {
  const auto it = options_.find(name);
  return it == options_.end() ? nullptr : &it->second;
}

bool CPMPrinterOptionsData::ReturnOption(OptionMap::const_iterator it, std::wstring& name,
                                         std::wstring& value) {
  iterating_ = it != options_.end();
  if (!iterating_) {
    return false;
  }
  iteration_name_ = it->first;
  name = it->first;
  value = it->second;
  return true;
}

bool CPMPrinterOptionsData::GetFirstOption(std::wstring& name, std::wstring& value) {
  return ReturnOption(options_.cbegin(), name, value);
}

bool CPMPrinterOptionsData::GetNextOption(std::wstring& name, std::wstring& value) {
  if (!iterating_) {
    return false;
  }
  return ReturnOption(options_.upper_bound(iteration_name_), name, value);
}

std::wstring CPMPrinterOptionsData::GetResolutionName() const {
  const std::wstring* value = GetOptionValue(kResolution);
  return value ? *value : std::wstring();
}

std::wstring CPMPrinterOptionsData::GetColorMode() const {
  const std::wstring* value = GetOptionValue(kColorPlane);
  return value ? *value : std::wstring();
}

bool CPMPrinterOptionsData::IsPMLocked() const {
  const std::wstring* value = GetOptionValue(kLocked);
  long long number = 0;
  return value && ParseIntPrefix(*value, number) > 0 && number == 1;
}

bool CPMPrinterOptionsData::IsMarkedForUpload() const {
  const std::wstring* value = GetOptionValue(kRequiresUpload);
  return value && *value == L"0";
}

bool CPMPrinterOptionsData::IsMarkedAsModified() const {
  const std::wstring* value = GetOptionValue(kRequiresUpload);
  return value && *value == L"2";
}

void CPMPrinterOptionsData::SetExisting(const wchar_t* name, const wchar_t* value) {
  const auto it = options_.find(name);
  if (it != options_.end()) {
    it->second = value;
  }
}

struct CPMPrinterOptionsData::Fields {
  using R = CPMPrinterOptionsData;
  using F = internal::Field<R>;

  // One option; an empty name or value is skipped, a later one replaces an earlier.
  static void ReadOption(R& r, const pugi::xml_node& child, internal::ReadContext& /*context*/) {
    std::wstring name;
    std::wstring value;
    for (const pugi::xml_node& part : child.children()) {
      if (xml::IsNamed(part, kTagProc)) {
        name = xml::ReadText(part);
      } else if (xml::IsNamed(part, kTagParam)) {
        value = xml::ReadText(part);
      }
    }
    if (!name.empty() && !value.empty()) {
      r.options_[name] = std::move(value);
    }
  }
  static void WriteOptions(const R& r, pugi::xml_node& node) {
    for (const auto& [name, value] : r.options_) {
      pugi::xml_node option = xml::AppendElement(node, kTagOption);
      xml::AppendText(option, kTagProc, name);
      xml::AppendCData(option, kTagParam, value);
    }
  }

  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(
        kTagOptions, {
                         F::Bool(kTagOverrideEnable, &R::override_enable_).Writes(internal::Write::kIfTrue),
                         F::Bool(kTagAdvanced, &R::advanced_).Writes(internal::Write::kIfTrue),
                         F::Custom(kTagOption, &ReadOption, &WriteOptions),
                     });
    return table;
  }
};

bool CPMPrinterOptionsData::operator==(const CPMPrinterOptionsData& other) const {
  return Fields::Table().Equal(*this, other) && options_ == other.options_;
}

bool CPMPrinterOptionsData::ReadXML(const pugi::xml_node& node) {
  if (!xml::IsNamed(node, kTagOptions)) {
    return false;
  }
  // The options held before are kept; only the switches start again from off.
  override_enable_ = false;
  advanced_ = false;
  return Fields::Table().Read(*this, node, internal::Start::kCurrent);
}

void CPMPrinterOptionsData::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, xml::AppendElement(parent, kTagOptions));
}

}  // namespace tarn
