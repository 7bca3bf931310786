#include "tarn/colour/it8_chart.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "tarn/colour/internal/cgats_text.h"
#include "tarn/foundation/format.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {
namespace {

// Keywords the CGATS standard defines; any other needs a KEYWORD declaration.
constexpr std::array<std::wstring_view, 25> kStandardKeywords = {L"ORIGINATOR",
                                                                 L"FILE_DESCRIPTOR",
                                                                 L"CREATED",
                                                                 L"DESCRIPTOR",
                                                                 L"DIFFUSE_GEOMETRY",
                                                                 L"MANUFACTURER",
                                                                 L"MANUFACTURE",
                                                                 L"PROD_DATE",
                                                                 L"MATERIAL",
                                                                 L"INSTRUMENTATION",
                                                                 L"MEASUREMENT_SOURCE",
                                                                 L"PRINT_CONDITIONS",
                                                                 L"SAMPLE_BACKING",
                                                                 L"CHISQ_DOF",
                                                                 L"SERIAL",
                                                                 L"FILTER",
                                                                 L"POLARIZATION",
                                                                 L"WEIGHTING_FUNCTION",
                                                                 L"COMPUTATIONAL_PARAMETER",
                                                                 L"TARGET_TYPE",
                                                                 L"COLORANT",
                                                                 L"TABLE_DESCRIPTOR",
                                                                 L"TABLE_NAME",
                                                                 L"NUMBER_OF_FIELDS",
                                                                 L"NUMBER_OF_SETS"};

// A cell of a row; rows hold their cells joined by NUL.
std::string_view CellOf(const std::string& row, std::size_t field) {
  std::size_t begin = 0;
  for (std::size_t i = 0; i < field; ++i) {
    begin = row.find('\0', begin);
    if (begin == std::string::npos) {
      return {};
    }
    ++begin;
  }
  std::size_t end = row.find('\0', begin);
  if (end == std::string::npos) {
    end = row.size();
  }
  return std::string_view(row).substr(begin, end - begin);
}

bool IsPlainName(std::wstring_view name) {
  return !name.empty() && name.find_first_of(L" \t\r\n\"'#") == std::wstring_view::npos;
}

}  // namespace

CLabColor XYZToLab(const CXYZColor& xyz, const CXYZColor& white) {
  // Little CMS works on the scale where the white's Y is 1.
  const cmsCIEXYZ w{white.X / 100.0, white.Y / 100.0, white.Z / 100.0};
  const cmsCIEXYZ c{xyz.X / 100.0, xyz.Y / 100.0, xyz.Z / 100.0};
  cmsCIELab lab;
  cmsXYZ2Lab(&w, &lab, &c);
  return CLabColor{lab.L, lab.a, lab.b};
}

std::wstring CIT8Issue::Describe() const {
  if (line == 0) {
    return text;
  }
  return L"line " + std::to_wstring(line) + L": " + text;
}

// --- CIT8Table -------------------------------------------------------------

const std::wstring* CIT8Table::GetProperty(std::wstring_view name) const {
  for (const CIT8Property& property : properties_) {
    if (property.kind == CIT8Property::Kind::kValue && property.name == name) {
      return &property.value;
    }
  }
  return nullptr;
}

bool CIT8Table::SetProperty(const std::wstring& name, const std::wstring& value) {
  if (!IsPlainName(name)) {
    return false;
  }
  for (CIT8Property& property : properties_) {
    if (property.kind == CIT8Property::Kind::kValue && property.name == name) {
      property.value = value;
      property.quoted = true;
      return true;
    }
  }
  const bool standard =
      std::find(kStandardKeywords.begin(), kStandardKeywords.end(), name) != kStandardKeywords.end();
  const bool declared =
      std::any_of(properties_.begin(), properties_.end(), [&name](const CIT8Property& property) {
        return property.kind == CIT8Property::Kind::kDeclaration && property.name == name;
      });
  if (!standard && !declared) {
    properties_.push_back(CIT8Property{CIT8Property::Kind::kDeclaration, name, {}, true, {}});
  }
  properties_.push_back(CIT8Property{CIT8Property::Kind::kValue, name, value, true, {}});
  return true;
}

void CIT8Table::AddComment(const std::wstring& text) {
  properties_.push_back(CIT8Property{CIT8Property::Kind::kComment, {}, text, false, {}});
}

int CIT8Table::FindField(std::wstring_view name) const {
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (fields_[i] == name) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

bool CIT8Table::SetFields(const std::vector<std::wstring>& fields) {
  if (!rows_.empty() && fields.size() != fields_.size()) {
    return false;
  }
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (!IsPlainName(fields[i]) ||
        std::find(fields.begin(), fields.begin() + i, fields[i]) != fields.begin() + i) {
      return false;
    }
  }
  fields_ = fields;
  return true;
}

std::wstring CIT8Table::GetCell(std::size_t row, std::size_t field) const {
  if (row >= rows_.size() || field >= fields_.size()) {
    return {};
  }
  return FromUtf8(CellOf(rows_[row], field));
}

bool CIT8Table::GetCellReal(std::size_t row, std::size_t field, double& value) const {
  value = 0.0;
  if (row >= rows_.size() || field >= fields_.size()) {
    return false;
  }
  return internal::ParseCgatsNumber(CellOf(rows_[row], field), value);
}

bool CIT8Table::AddRow(const std::vector<std::wstring>& cells) {
  if (cells.size() != fields_.size()) {
    return false;
  }
  std::string row;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (cells[i].find(L'\0') != std::wstring::npos) {
      return false;
    }
    if (i > 0) {
      row.push_back('\0');
    }
    row += ToUtf8(cells[i]);
  }
  rows_.push_back(std::move(row));
  return true;
}

bool CIT8Table::SetCell(std::size_t row, std::size_t field, const std::wstring& text) {
  if (row >= rows_.size() || field >= fields_.size() || text.find(L'\0') != std::wstring::npos) {
    return false;
  }
  std::vector<std::wstring> cells = GetRow(row);
  cells[field] = text;
  std::string joined;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (i > 0) {
      joined.push_back('\0');
    }
    joined += ToUtf8(cells[i]);
  }
  rows_[row] = std::move(joined);
  return true;
}

bool CIT8Table::SetCellReal(std::size_t row, std::size_t field, double value) {
  return SetCell(row, field, FromUtf8(internal::FormatCgatsNumber(value)));
}

std::vector<std::wstring> CIT8Table::GetRow(std::size_t row) const {
  std::vector<std::wstring> cells;
  if (row >= rows_.size()) {
    return cells;
  }
  cells.reserve(fields_.size());
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    cells.push_back(FromUtf8(CellOf(rows_[row], i)));
  }
  return cells;
}

int CIT8Table::FindPatch(std::wstring_view id_or_name) const {
  const std::string wanted = ToUtf8(id_or_name);
  for (const wchar_t* name : {L"SAMPLE_ID", L"SAMPLE_NAME"}) {
    const int field = FindField(name);
    if (field < 0) {
      continue;
    }
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      if (CellOf(rows_[row], static_cast<std::size_t>(field)) == wanted) {
        return static_cast<int>(row);
      }
    }
  }
  return -1;
}

std::wstring CIT8Table::GetPatchKey(std::size_t row) const {
  for (const wchar_t* name : {L"SAMPLE_ID", L"SAMPLE_NAME"}) {
    const int field = FindField(name);
    if (field >= 0) {
      return GetCell(row, static_cast<std::size_t>(field));
    }
  }
  return std::to_wstring(row + 1);
}

bool CIT8Table::HasColorimetry() const {
  return (FindField(L"LAB_L") >= 0 && FindField(L"LAB_A") >= 0 && FindField(L"LAB_B") >= 0) ||
         (FindField(L"XYZ_X") >= 0 && FindField(L"XYZ_Y") >= 0 && FindField(L"XYZ_Z") >= 0);
}

bool CIT8Table::GetLab(std::size_t row, CLabColor& lab, const CXYZColor& white) const {
  const auto read3 = [this, row](const wchar_t* f0, const wchar_t* f1, const wchar_t* f2, double(&v)[3]) {
    const int fields[3] = {FindField(f0), FindField(f1), FindField(f2)};
    for (int i = 0; i < 3; ++i) {
      if (fields[i] < 0 || !GetCellReal(row, static_cast<std::size_t>(fields[i]), v[i])) {
        return false;
      }
    }
    return true;
  };
  double v[3] = {};
  if (FindField(L"LAB_L") >= 0) {
    if (!read3(L"LAB_L", L"LAB_A", L"LAB_B", v)) {
      return false;
    }
    lab = CLabColor{v[0], v[1], v[2]};
    return true;
  }
  if (!read3(L"XYZ_X", L"XYZ_Y", L"XYZ_Z", v)) {
    return false;
  }
  lab = XYZToLab(CXYZColor{v[0], v[1], v[2]}, white);
  return true;
}

// --- CIT8Chart -------------------------------------------------------------

void CIT8Chart::SetDefaults() {
  tables_.clear();
  trailing_comments_.clear();
  line_ending_ = LineEnding::kCRLF;
  warnings_.clear();
}

const CIT8Table* CIT8Chart::GetTable(std::size_t index) const {
  return index < tables_.size() ? &tables_[index] : nullptr;
}

CIT8Table* CIT8Chart::GetTable(std::size_t index) {
  return index < tables_.size() ? &tables_[index] : nullptr;
}

CIT8Table& CIT8Chart::AddTable(CIT8Table table) {
  tables_.push_back(std::move(table));
  return tables_.back();
}

bool CIT8Chart::RemoveTable(std::size_t index) {
  if (index >= tables_.size()) {
    return false;
  }
  tables_.erase(tables_.begin() + static_cast<std::ptrdiff_t>(index));
  return true;
}

const CIT8Table* CIT8Chart::GetMeasurementTable() const {
  for (const CIT8Table& table : tables_) {
    if (table.HasColorimetry()) {
      return &table;
    }
  }
  return tables_.empty() ? nullptr : &tables_.front();
}

bool CIT8Chart::operator==(const CIT8Chart& other) const {
  return tables_ == other.tables_ && trailing_comments_ == other.trailing_comments_ &&
         line_ending_ == other.line_ending_;
}

bool CIT8Chart::LoadFile(const std::wstring& path, CIT8Issue* error) {
  SetDefaults();
  std::string bytes;
  std::wstring reason;
  if (!ReadWholeFile(path, bytes, &reason)) {
    if (error != nullptr) {
      *error = CIT8Issue{0, reason.empty() ? L"cannot read the file" : reason};
    }
    return false;
  }
  if (bytes.size() > kMaxFileSize) {
    if (error != nullptr) {
      *error = CIT8Issue{0, L"the file is too large for a chart"};
    }
    return false;
  }
  return ReadText(bytes, error);
}

bool CIT8Chart::SaveFile(const std::wstring& path, std::wstring* error) const {
  std::string text;
  if (!WriteText(text, error)) {
    return false;
  }
  return WriteFileAtomically(path, text, error);
}

bool CIT8Chart::ReadText(std::string_view bytes, CIT8Issue* error) {
  SetDefaults();
  CIT8Issue issue;
  if (!internal::ReadCgatsText(bytes, tables_, trailing_comments_, warnings_, line_ending_, issue)) {
    SetDefaults();
    if (error != nullptr) {
      *error = std::move(issue);
    }
    return false;
  }
  return true;
}

bool CIT8Chart::WriteText(std::string& out, std::wstring* error) const {
  out.clear();
  const std::string eol = line_ending_ == LineEnding::kCRLF ? "\r\n" : "\n";
  for (std::size_t t = 0; t < tables_.size(); ++t) {
    if (t > 0) {
      out += eol;
    }
    if (!internal::WriteCgatsTable(tables_[t], eol, out, error)) {
      out.clear();
      return false;
    }
  }
  for (const std::wstring& comment : trailing_comments_) {
    if (!internal::WriteCgatsComment(comment, eol, out, error)) {
      out.clear();
      return false;
    }
  }
  return true;
}

// --- XML form --------------------------------------------------------------

namespace {

namespace tag {
constexpr const char* kLineEnding = "lineEnding";
constexpr const char* kTable = "Table";
constexpr const char* kSheetType = "sheetType";
constexpr const char* kKeyword = "Keyword";
constexpr const char* kDeclare = "Declare";
constexpr const char* kComment = "Comment";
constexpr const char* kName = "name";
constexpr const char* kQuoted = "quoted";
constexpr const char* kNote = "note";
constexpr const char* kFields = "Fields";
constexpr const char* kData = "Data";
constexpr const char* kTrailing = "TrailingComment";
}  // namespace tag

constexpr const wchar_t* kLF = L"LF";
constexpr const wchar_t* kCRLF = L"CRLF";

}  // namespace

bool CIT8Chart::WriteXML(pugi::xml_node parent, std::wstring* error) const {
  // What cannot be written as text cannot be written here either; checked
  // before anything is appended so a failure leaves parent as it was.
  std::string text;
  if (!WriteText(text, error)) {
    return false;
  }
  std::vector<std::string> data(tables_.size());
  for (std::size_t t = 0; t < tables_.size(); ++t) {
    if (!internal::WriteCgatsRows(tables_[t], "\n", data[t], error)) {
      return false;
    }
  }
  pugi::xml_node node = xml::AppendElement(parent, kElementName);
  xml::SetAttribute(node, tag::kLineEnding, line_ending_ == LineEnding::kCRLF ? kCRLF : kLF);
  for (std::size_t t = 0; t < tables_.size(); ++t) {
    const CIT8Table& table = tables_[t];
    pugi::xml_node element = xml::AppendElement(node, tag::kTable);
    if (!table.sheet_type_.empty()) {
      xml::SetAttribute(element, tag::kSheetType, table.sheet_type_);
    }
    for (const CIT8Property& property : table.properties_) {
      switch (property.kind) {
        case CIT8Property::Kind::kValue: {
          pugi::xml_node keyword = xml::AppendText(element, tag::kKeyword, property.value);
          xml::SetAttribute(keyword, tag::kName, property.name);
          if (!property.quoted) {
            xml::SetAttributeBool(keyword, tag::kQuoted, false);
          }
          if (!property.note.empty()) {
            xml::SetAttribute(keyword, tag::kNote, property.note);
          }
          break;
        }
        case CIT8Property::Kind::kDeclaration: {
          pugi::xml_node declare = xml::AppendElement(element, tag::kDeclare);
          xml::SetAttribute(declare, tag::kName, property.name);
          if (!property.note.empty()) {
            xml::SetAttribute(declare, tag::kNote, property.note);
          }
          break;
        }
        case CIT8Property::Kind::kComment:
          xml::AppendText(element, tag::kComment, property.value);
          break;
      }
    }
    std::wstring fields;
    for (const std::wstring& field : table.fields_) {
      fields += fields.empty() ? field : L" " + field;
    }
    xml::AppendText(element, tag::kFields, fields);
    xml::AppendText(element, tag::kData, FromUtf8(data[t]));
  }
  for (const std::wstring& comment : trailing_comments_) {
    xml::AppendText(node, tag::kTrailing, comment);
  }
  return true;
}

bool CIT8Chart::ReadXML(const pugi::xml_node& node, CIT8Issue* error) {
  SetDefaults();
  if (!xml::IsNamed(node, kElementName)) {
    if (error != nullptr) {
      *error = CIT8Issue{0, L"not an It8Chart element"};
    }
    return false;
  }
  line_ending_ = xml::ReadAttribute(node, tag::kLineEnding) == kLF ? LineEnding::kLF : LineEnding::kCRLF;
  for (const pugi::xml_node& child : node.children()) {
    if (xml::IsNamed(child, tag::kTrailing)) {
      trailing_comments_.push_back(xml::ReadText(child));
      continue;
    }
    if (!xml::IsNamed(child, tag::kTable)) {
      continue;
    }
    CIT8Table& table = AddTable();
    table.sheet_type_ = xml::ReadAttribute(child, tag::kSheetType);
    std::wstring fields;
    std::wstring data;
    for (const pugi::xml_node& item : child.children()) {
      if (xml::IsNamed(item, tag::kKeyword)) {
        const bool quoted =
            item.attribute(tag::kQuoted).empty() || xml::ReadAttributeBool(item, tag::kQuoted);
        table.properties_.push_back(CIT8Property{CIT8Property::Kind::kValue,
                                                 xml::ReadAttribute(item, tag::kName), xml::ReadText(item),
                                                 quoted, xml::ReadAttribute(item, tag::kNote)});
      } else if (xml::IsNamed(item, tag::kDeclare)) {
        table.properties_.push_back(CIT8Property{CIT8Property::Kind::kDeclaration,
                                                 xml::ReadAttribute(item, tag::kName),
                                                 {},
                                                 true,
                                                 xml::ReadAttribute(item, tag::kNote)});
      } else if (xml::IsNamed(item, tag::kComment)) {
        table.AddComment(xml::ReadText(item));
      } else if (xml::IsNamed(item, tag::kFields)) {
        fields = xml::ReadText(item);
      } else if (xml::IsNamed(item, tag::kData)) {
        data = xml::ReadText(item);
      }
    }
    CIT8Issue issue;
    if (!internal::ReadCgatsFields(ToUtf8(fields), table.fields_, issue) ||
        !internal::ReadCgatsRows(ToUtf8(data), table, issue)) {
      const std::size_t index = tables_.size();
      SetDefaults();
      if (error != nullptr) {
        issue.text = L"table " + std::to_wstring(index) + L", data line " + std::to_wstring(issue.line) +
                     L": " + issue.text;
        issue.line = 0;
        *error = std::move(issue);
      }
      return false;
    }
  }
  return true;
}

}  // namespace tarn
