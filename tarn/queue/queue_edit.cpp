#include "tarn/queue/queue_edit.h"

#include <algorithm>

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/registry.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"
#include "tarn/queue/internal/parse.h"

namespace tarn {

struct CQueueEdit::Fields {
  using R = CQueueEdit;
  using F = internal::Field<R>;
  static const internal::FieldTable<R>& Table() {
    static const internal::FieldTable<R> table(R::kElementName,
                                               {
                                                   F::Writer(WriteVersion),
                                                   F::Text("JobName", &R::job_name_),
                                                   F::Text("SourceFile", &R::source_file_),
                                                   F::Text("Printer", &R::printer_),
                                                   F::Int("Copies", &R::copies_),
                                                   F::Real("Width", &R::job_width_).In("JobSize"),
                                                   F::Real("Height", &R::job_height_).In("JobSize"),
                                                   F::Real("Width", &R::page_width_).In("PageSize"),
                                                   F::Real("Height", &R::page_height_).In("PageSize"),
                                                   F::Text("Media", &R::media_).In("PageSize"),
                                                   F::Text("PrintMode", &R::print_mode_),
                                                   F::Text("Queue", &R::queue_path_).In("Paths"),
                                                   F::Text("Rip", &R::rip_folder_).In("Paths"),
                                                   F::Text("PrintModes", &R::print_modes_folder_).In("Paths"),
                                               });
    return table;
  }

  static void WriteVersion(const R&, pugi::xml_node node) {
    xml::SetAttributeInt(node, "version", R::kVersion);
  }

  // The parameter file's key of each row: its element path, "PageSize.Width";
  // empty for the rows that have none.
  static const std::vector<std::string>& Keys() {
    static const std::vector<std::string> keys = [] {
      std::vector<std::string> out;
      for (const F& row : Table().rows()) {
        if (row.codec == internal::Codec::kCustom) {
          out.emplace_back();
        } else if (row.place == internal::Place::kGroupChild) {
          out.push_back(std::string(row.group) + "." + row.name);
        } else {
          out.emplace_back(row.name);
        }
      }
      return out;
    }();
    return keys;
  }
};

void CQueueEdit::Setup() {
  queue_path_ = GetQModulePath();
  rip_folder_ = GetTarnRipFolder();
  print_modes_folder_ = tarn::GetPrintModesFolder();
  // The store leaves the printer alone when it holds no such string.
  if (const CXRegistry* registry = GetTarnRegistryBase()) {
    registry->GetString(L"Queue/Printer", printer_);
  }
}

// --- the XML form ---------------------------------------------------------------

bool CQueueEdit::ReadXML(const pugi::xml_node& node) {
  CQueueEdit read;
  if (!Fields::Table().Read(read, node)) {
    return false;
  }
  *this = std::move(read);
  return true;
}

void CQueueEdit::WriteXML(pugi::xml_node parent) const {
  Fields::Table().Write(*this, parent.append_child(kElementName));
}

bool CQueueEdit::Load(const std::wstring& path, std::wstring* error) {
  std::string data;
  if (!ReadWholeFile(path, data, error)) {
    return false;
  }
  return LoadFromString(data, error);
}

bool CQueueEdit::LoadFromString(std::string_view utf8, std::wstring* error) {
  pugi::xml_document document;
  if (!internal::ParseDocument(document, utf8, kElementName, error)) {
    return false;
  }
  return ReadXML(document.first_child());
}

std::string CQueueEdit::SaveToString() const {
  pugi::xml_document document;
  WriteXML(document);
  return xml::SaveDocumentToString(document);
}

bool CQueueEdit::Save(const std::wstring& path, std::wstring* error) const {
  return WriteFileAtomically(path, SaveToString(), error);
}

// --- the job parameter file ------------------------------------------------------
//
//   # tarn job parameters 1
//   JobName=Spring poster
//   SourceFile=D:\jobs\spring.pdf
//   Copies=2
//   PageSize.Width=1190.5511811023623
//
// Values are the XML form's text, percent-escaped so that the file is plain
// ASCII, one line a value whatever it holds, and no editor that trims lines can
// change a value: "%" followed by two upper-case hex digits stands for one
// byte of the value's UTF-8. Escaped are control characters (line breaks, NUL),
// DEL, every byte of a non-ASCII character, "%" itself, and a blank at either
// end of the value. Backslashes stay as they are, so paths read naturally.

namespace {

constexpr char kHex[] = "0123456789ABCDEF";

std::string EscapeValue(std::string_view value) {
  std::string out;
  out.reserve(value.size());
  for (size_t i = 0; i < value.size(); ++i) {
    const auto byte = static_cast<unsigned char>(value[i]);
    const bool edge_blank = byte == ' ' && (i == 0 || i + 1 == value.size());
    if (byte < 0x20 || byte >= 0x7f || byte == '%' || edge_blank) {
      out += '%';
      out += kHex[byte >> 4];
      out += kHex[byte & 0xf];
    } else {
      out += static_cast<char>(byte);
    }
  }
  return out;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  c = static_cast<char>(c | ' ');
  return (c >= 'a' && c <= 'f') ? c - 'a' + 10 : -1;
}

// False when a "%" is not followed by two hex digits.
bool UnescapeValue(std::string_view value, std::string& out) {
  out.clear();
  for (size_t i = 0; i < value.size(); ++i) {
    if (value[i] != '%') {
      out += value[i];
      continue;
    }
    const int high = i + 2 < value.size() ? HexDigit(value[i + 1]) : -1;
    const int low = high >= 0 ? HexDigit(value[i + 2]) : -1;
    if (low < 0) {
      return false;
    }
    out += static_cast<char>(high * 16 + low);
    i += 2;
  }
  return true;
}

}  // namespace

std::vector<CQueueEdit::Parameter> CQueueEdit::GetParameters() const {
  const auto& table = Fields::Table();
  std::vector<Parameter> out;
  for (size_t i = 0; i < table.rows().size(); ++i) {
    const auto& row = table.rows()[i];
    if (row.codec == internal::Codec::kCustom) {
      continue;
    }
    out.push_back({Fields::Keys()[i], row.codec == internal::Codec::kText
                                          ? this->*row.member.text
                                          : FromUtf8(table.GetText(*this, i))});
  }
  return out;
}

std::string CQueueEdit::WriteParameters() const {
  std::string out(kParameterHeader);
  out += '\n';
  for (const Parameter& parameter : GetParameters()) {
    out += parameter.key;
    out += '=';
    out += EscapeValue(ToUtf8(parameter.value));
    out += '\n';
  }
  return out;
}

bool CQueueEdit::ReadParameters(std::string_view text, std::wstring* error) {
  const auto& table = Fields::Table();
  CQueueEdit read;
  std::string value;
  size_t line_number = 0;
  while (!text.empty()) {
    ++line_number;
    const size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    if (!line.empty() && line.back() == '\r') {
      line.remove_suffix(1);
    }
    if (line.empty() || line.front() == '#') {
      continue;
    }
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos || equals == 0) {
      if (error) {
        *error = Format(L"line %zu: expected key=value", line_number);
      }
      return false;
    }
    if (!UnescapeValue(line.substr(equals + 1), value)) {
      if (error) {
        *error = Format(L"line %zu: a %% must be followed by two hex digits", line_number);
      }
      return false;
    }
    const std::string_view key = line.substr(0, equals);
    for (size_t i = 0; i < table.rows().size(); ++i) {
      const auto& row = table.rows()[i];
      if (row.codec == internal::Codec::kCustom || Fields::Keys()[i] != key) {
        continue;
      }
      // Text goes in whole, NUL included; numbers read as the XML reader reads them.
      if (row.codec == internal::Codec::kText) {
        read.*row.member.text = FromUtf8(value);
      } else {
        table.SetText(read, i, value.c_str());
      }
      break;
    }
  }
  *this = std::move(read);
  return true;
}

bool CQueueEdit::SaveParameterFile(const std::wstring& path, std::wstring* error) const {
  return WriteFileAtomically(path, WriteParameters(), error);
}

bool CQueueEdit::LoadParameterFile(const std::wstring& path, std::wstring* error) {
  std::string data;
  if (!ReadWholeFile(path, data, error)) {
    return false;
  }
  return ReadParameters(data, error);
}

// --- the print mode ------------------------------------------------------------

namespace {

std::wstring Normalised(std::wstring_view path) {
  std::wstring out = FoldCase(path);
  std::replace(out.begin(), out.end(), L'/', L'\\');
  return out;
}

bool IsAbsolute(std::wstring_view path) {
  return (!path.empty() && (path[0] == L'\\' || path[0] == L'/')) || (path.size() >= 2 && path[1] == L':');
}

}  // namespace

void CQueueEdit::SetPrintModePath(const std::wstring& path) {
  std::wstring folder = print_modes_folder_.empty() ? tarn::GetPrintModesFolder() : print_modes_folder_;
  if (!folder.empty() && folder.back() != L'\\' && folder.back() != L'/') {
    folder += L'\\';
  }
  // Only an absolute folder makes a path relative: with no RIP folder set the
  // print modes folder is the bare "System\pmodes\", which says nothing.
  if (IsAbsolute(folder) && path.size() > folder.size() &&
      Normalised(std::wstring_view(path).substr(0, folder.size())) == Normalised(folder)) {
    print_mode_ = path.substr(folder.size());
  } else {
    print_mode_ = path;
  }
}

std::wstring CQueueEdit::GetPrintModeFullPath() const {
  if (print_mode_.empty() || IsAbsolute(print_mode_)) {
    return print_mode_;
  }
  return tarn::GetPrintModesFolder() + print_mode_;
}

}  // namespace tarn
