#include "tarn/colour/internal/cgats_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "tarn/foundation/format.h"
#include "tarn/foundation/text.h"

namespace tarn::internal {
namespace {

// Words that shape the file rather than name keywords.
constexpr std::string_view kBeginDataFormat = "BEGIN_DATA_FORMAT";
constexpr std::string_view kEndDataFormat = "END_DATA_FORMAT";
constexpr std::string_view kBeginData = "BEGIN_DATA";
constexpr std::string_view kEndData = "END_DATA";
constexpr std::string_view kKeyword = "KEYWORD";
constexpr std::string_view kNumberOfFields = "NUMBER_OF_FIELDS";
constexpr std::string_view kNumberOfSets = "NUMBER_OF_SETS";

bool IsReserved(std::string_view word) {
  return word == kBeginDataFormat || word == kEndDataFormat || word == kBeginData || word == kEndData ||
         word == kKeyword || word == kNumberOfFields || word == kNumberOfSets;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\f' || c == '\v';
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::wstring Wide(std::string_view utf8) {
  return FromUtf8(utf8);
}

// One word of a line: its text without quotes, and where its lexeme (with
// quotes) lies in the line.
struct Token {
  std::string_view text;
  bool quoted = false;
  std::size_t begin = 0;
  std::size_t end = 0;
};

struct LineTokens {
  std::vector<Token> tokens;
  std::optional<std::string_view> comment;  // text after "#"
};

// Splits a line into words. Quoted words run to the matching quote (" or '),
// "#" outside quotes starts a comment. False for a quote that is not closed.
bool Tokenize(std::string_view line, LineTokens& out) {
  out.tokens.clear();
  out.comment.reset();
  std::size_t i = 0;
  while (i < line.size()) {
    const char c = line[i];
    if (IsBlank(c)) {
      ++i;
      continue;
    }
    if (c == '#') {
      out.comment = line.substr(i + 1);
      return true;
    }
    if (c == '"' || c == '\'') {
      const std::size_t close = line.find(c, i + 1);
      if (close == std::string_view::npos) {
        return false;
      }
      out.tokens.push_back(Token{line.substr(i + 1, close - i - 1), true, i, close + 1});
      i = close + 1;
      continue;
    }
    std::size_t end = i;
    while (end < line.size() && !IsBlank(line[end]) && line[end] != '#') {
      ++end;
    }
    out.tokens.push_back(Token{line.substr(i, end - i), false, i, end});
    i = end;
  }
  return true;
}

bool IsWord(const LineTokens& line, std::string_view word) {
  return !line.tokens.empty() && !line.tokens[0].quoted && line.tokens[0].text == word;
}

bool IsValidUtf8(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    const auto c = static_cast<unsigned char>(text[i]);
    std::size_t extra = 0;
    std::uint32_t min = 0;
    if (c < 0x80) {
      ++i;
      continue;
    } else if ((c & 0xE0) == 0xC0) {
      extra = 1;
      min = 0x80;
    } else if ((c & 0xF0) == 0xE0) {
      extra = 2;
      min = 0x800;
    } else if ((c & 0xF8) == 0xF0) {
      extra = 3;
      min = 0x10000;
    } else {
      return false;
    }
    if (i + extra >= text.size()) {
      return false;
    }
    std::uint32_t code = c & (0x3F >> extra);
    for (std::size_t k = 1; k <= extra; ++k) {
      const auto next = static_cast<unsigned char>(text[i + k]);
      if ((next & 0xC0) != 0x80) {
        return false;
      }
      code = (code << 6) | (next & 0x3F);
    }
    if (code < min || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
      return false;
    }
    i += extra + 1;
  }
  return true;
}

std::string Latin1ToUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 8);
  for (const char ch : text) {
    const auto c = static_cast<unsigned char>(ch);
    if (c < 0x80) {
      out.push_back(ch);
    } else {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
  }
  return out;
}

// Walks the lines of a text: LF, CR LF or a lone CR end a line.
class LineWalker {
 public:
  explicit LineWalker(std::string_view text) : text_(text) {}

  // The next line, or false at the end of the text.
  bool Next(std::string_view& line) {
    if (pos_ >= text_.size()) {
      return false;
    }
    ++number_;
    const std::size_t end = text_.find_first_of("\r\n", pos_);
    if (end == std::string_view::npos) {
      line = text_.substr(pos_);
      pos_ = text_.size();
      return true;
    }
    line = text_.substr(pos_, end - pos_);
    if (text_[end] == '\r' && end + 1 < text_.size() && text_[end + 1] == '\n') {
      if (!seen_break_) {
        crlf_ = true;
      }
      pos_ = end + 2;
    } else {
      pos_ = end + 1;
    }
    seen_break_ = true;
    return true;
  }

  std::size_t number() const { return number_; }
  // True when the first line break was CR LF.
  bool crlf() const { return crlf_; }

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
  std::size_t number_ = 0;
  bool seen_break_ = false;
  bool crlf_ = false;
};

// Text with a NUL or another control character is not a chart; say so on the
// line where it starts rather than read it as words.
bool HasBinary(std::string_view line) {
  return std::any_of(line.begin(), line.end(), [](char ch) {
    const auto c = static_cast<unsigned char>(ch);
    return c < 0x20 && c != '\t' && c != '\f' && c != '\v';
  });
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && IsBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

bool ParseCount(std::string_view text, long long& value) {
  value = 0;
  if (text.empty() || !std::all_of(text.begin(), text.end(), IsDigit)) {
    return false;
  }
  return ParseIntPrefix(text, value) == text.size();
}

// Checks a data row and appends it to the table.
bool AddDataRow(const LineTokens& line, std::size_t number, const std::vector<std::wstring>& fields,
                const std::vector<bool>& numeric, std::vector<std::string>& rows, CIT8Issue& error) {
  if (line.tokens.size() != fields.size()) {
    error = CIT8Issue{number, std::to_wstring(line.tokens.size()) + L" values where the data format has " +
                                  std::to_wstring(fields.size()) + L" fields"};
    return false;
  }
  std::string row;
  for (std::size_t i = 0; i < line.tokens.size(); ++i) {
    const std::string_view cell = line.tokens[i].text;
    double value = 0.0;
    if (numeric[i] && !ParseCgatsNumber(cell, value)) {
      std::wstring text = L"\"" + Wide(cell) + L"\" is not a number (field " + fields[i] + L")";
      if (cell.find(',') != std::string_view::npos) {
        text += L"; numbers are written with a decimal point";
      }
      error = CIT8Issue{number, text};
      return false;
    }
    if (i > 0) {
      row.push_back('\0');
    }
    row.append(cell);
  }
  rows.push_back(std::move(row));
  return true;
}

std::vector<bool> NumericFlags(const std::vector<std::wstring>& fields) {
  std::vector<bool> numeric(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    numeric[i] = IsNumericField(ToUtf8(fields[i]));
  }
  return numeric;
}

// Adds the words of a data format line to fields.
bool AddFields(const LineTokens& line, std::size_t number, std::vector<std::wstring>& fields,
               CIT8Issue& error) {
  for (const Token& token : line.tokens) {
    std::wstring name = Wide(token.text);
    if (name.empty() || name.find_first_of(L" \t\f\v\"'#") != std::wstring::npos) {
      error = CIT8Issue{number, L"\"" + name + L"\" is not a field name (one word)"};
      return false;
    }
    if (std::find(fields.begin(), fields.end(), name) != fields.end()) {
      error = CIT8Issue{number, L"the field " + name + L" appears twice in the data format"};
      return false;
    }
    fields.push_back(std::move(name));
  }
  return true;
}

// The reader's state between lines.
enum class Section { kBetween, kHeader, kFormat, kData };

class TextReader {
 public:
  TextReader(std::vector<CIT8Table>& tables, std::vector<std::wstring>& trailing,
             std::vector<CIT8Issue>& warnings)
      : tables_(tables), trailing_(trailing), warnings_(warnings) {}

  bool Read(std::string_view text, CIT8Chart::LineEnding& ending, CIT8Issue& error) {
    LineWalker walker(text);
    std::string_view line;
    while (walker.Next(line)) {
      const std::size_t number = walker.number();
      if (HasBinary(line)) {
        error = CIT8Issue{number, L"binary data (control characters): this is not a chart text file"};
        return false;
      }
      if (!Tokenize(line, tokens_)) {
        error = CIT8Issue{number, L"a quoted value is not closed"};
        return false;
      }
      if (!Line(line, number, error)) {
        return false;
      }
    }
    ending = walker.crlf() ? CIT8Chart::LineEnding::kCRLF : CIT8Chart::LineEnding::kLF;
    return Finish(walker.number(), error);
  }

 private:
  bool Line(std::string_view line, std::size_t number, CIT8Issue& error) {
    switch (section_) {
      case Section::kFormat:
        return FormatLine(number, error);
      case Section::kData:
        return DataLine(number, error);
      case Section::kBetween:
      case Section::kHeader:
        return HeaderLine(line, number, error);
    }
    return true;
  }

  CIT8Table& Current(std::size_t number) {
    if (section_ == Section::kBetween) {
      tables_.emplace_back();
      for (std::wstring& comment : pending_comments_) {
        tables_.back().AddComment(comment);
      }
      pending_comments_.clear();
      section_ = Section::kHeader;
      table_line_ = number;
      fields_line_ = 0;
      sets_line_ = 0;
      has_format_ = false;
    }
    return tables_.back();
  }

  bool HeaderLine(std::string_view line, std::size_t number, CIT8Issue& error) {
    const std::vector<Token>& words = tokens_.tokens;
    if (words.empty()) {
      if (tokens_.comment) {
        if (section_ == Section::kBetween) {
          pending_comments_.push_back(Wide(*tokens_.comment));
        } else {
          tables_.back().AddComment(Wide(*tokens_.comment));
        }
      }
      return true;
    }
    if (words[0].quoted) {
      error = CIT8Issue{number, L"a keyword name cannot be quoted"};
      return false;
    }
    const std::string_view name = words[0].text;
    CIT8Table& table = Current(number);
    if (name == kBeginDataFormat) {
      if (has_format_) {
        error = CIT8Issue{number, L"a second data format in one table"};
        return false;
      }
      has_format_ = true;
      format_line_ = number;
      section_ = Section::kFormat;
      tokens_.tokens.erase(tokens_.tokens.begin());
      return FormatLine(number, error);
    }
    if (name == kBeginData) {
      if (!has_format_) {
        error = CIT8Issue{
            number, L"BEGIN_DATA before any data format (BEGIN_DATA_FORMAT): the fields are undeclared"};
        return false;
      }
      if (words.size() > 1) {
        error = CIT8Issue{number, L"text after BEGIN_DATA"};
        return false;
      }
      section_ = Section::kData;
      data_line_ = number;
      numeric_ = NumericFlags(CgatsAccess::Fields(table));
      return true;
    }
    if (name == kEndDataFormat || name == kEndData) {
      error = CIT8Issue{number, Wide(name) + L" without its BEGIN"};
      return false;
    }
    if (name == kNumberOfFields || name == kNumberOfSets) {
      long long count = 0;
      if (words.size() != 2 || !ParseCount(words[1].text, count)) {
        error = CIT8Issue{number, Wide(name) + L" must be followed by a whole number"};
        return false;
      }
      (name == kNumberOfFields ? declared_fields_ : declared_sets_) = count;
      (name == kNumberOfFields ? fields_line_ : sets_line_) = number;
      return true;
    }
    if (name == kKeyword) {
      if (words.size() != 2) {
        error = CIT8Issue{number, L"KEYWORD must be followed by one name"};
        return false;
      }
      CIT8Property declaration{CIT8Property::Kind::kDeclaration, Wide(words[1].text), {}, true, {}};
      if (tokens_.comment) {
        declaration.note = Wide(*tokens_.comment);
      }
      CgatsAccess::Properties(table).push_back(std::move(declaration));
      return true;
    }
    // The first word alone on the table's first line names the sheet type.
    const bool first =
        CgatsAccess::SheetType(table).empty() && fields_line_ == 0 && sets_line_ == 0 &&
        std::all_of(CgatsAccess::Properties(table).begin(), CgatsAccess::Properties(table).end(),
                    [](const CIT8Property& p) { return p.kind == CIT8Property::Kind::kComment; });
    if (first && words.size() == 1 && !tokens_.comment) {
      CgatsAccess::SheetType(table) = Wide(name);
      return true;
    }
    // A keyword without a value reads as an empty quoted one, so that it is
    // never mistaken for a sheet type when written back.
    CIT8Property property{CIT8Property::Kind::kValue, Wide(name), {}, words.size() < 2, {}};
    if (words.size() >= 2) {
      if (words[1].quoted && words.size() == 2) {
        property.value = Wide(words[1].text);
        property.quoted = true;
      } else if (words[1].quoted) {
        error = CIT8Issue{number, L"text after the quoted value of " + property.name};
        return false;
      } else {
        // An unquoted value runs to the end of the line ("CREATED Sun Sep 04 2022").
        property.value = Wide(line.substr(words[1].begin, words.back().end - words[1].begin));
      }
    }
    if (tokens_.comment) {
      property.note = Wide(*tokens_.comment);
    }
    CgatsAccess::Properties(table).push_back(std::move(property));
    return true;
  }

  bool FormatLine(std::size_t number, CIT8Issue& error) {
    CIT8Table& table = tables_.back();
    const std::vector<Token>& words = tokens_.tokens;
    const auto end = std::find_if(words.begin(), words.end(),
                                  [](const Token& t) { return !t.quoted && t.text == kEndDataFormat; });
    for (auto word = words.begin(); word != end; ++word) {
      if (!word->quoted && IsReserved(word->text)) {
        error = CIT8Issue{number, L"END_DATA_FORMAT is missing before " + Wide(word->text) +
                                      L" (the data format begins on line " + std::to_wstring(format_line_) +
                                      L")"};
        return false;
      }
    }
    LineTokens before;
    before.tokens.assign(words.begin(), end);
    if (!AddFields(before, number, CgatsAccess::Fields(table), error)) {
      return false;
    }
    if (end == words.end()) {
      return true;
    }
    if (end + 1 != words.end()) {
      error = CIT8Issue{number, L"text after END_DATA_FORMAT"};
      return false;
    }
    section_ = Section::kHeader;
    if (fields_line_ != 0 &&
        static_cast<std::size_t>(declared_fields_) != CgatsAccess::Fields(table).size()) {
      warnings_.push_back(CIT8Issue{
          fields_line_, L"NUMBER_OF_FIELDS says " + std::to_wstring(declared_fields_) +
                            L" but the data format lists " +
                            std::to_wstring(CgatsAccess::Fields(table).size()) + L"; the list is kept"});
    }
    return true;
  }

  bool DataLine(std::size_t number, CIT8Issue& error) {
    if (tokens_.tokens.empty()) {
      return true;
    }
    CIT8Table& table = tables_.back();
    if (IsWord(tokens_, kEndData)) {
      if (tokens_.tokens.size() > 1) {
        error = CIT8Issue{number, L"text after END_DATA"};
        return false;
      }
      if (sets_line_ != 0 && static_cast<std::size_t>(declared_sets_) != CgatsAccess::Rows(table).size()) {
        warnings_.push_back(CIT8Issue{
            sets_line_, L"NUMBER_OF_SETS says " + std::to_wstring(declared_sets_) + L" but the data holds " +
                            std::to_wstring(CgatsAccess::Rows(table).size()) + L" rows; the rows are kept"});
      }
      section_ = Section::kBetween;
      return true;
    }
    if (!tokens_.tokens[0].quoted && IsReserved(tokens_.tokens[0].text)) {
      error = CIT8Issue{number, L"END_DATA is missing before " + Wide(tokens_.tokens[0].text) +
                                    L" (the data begins on line " + std::to_wstring(data_line_) + L")"};
      return false;
    }
    return AddDataRow(tokens_, number, CgatsAccess::Fields(table), numeric_, CgatsAccess::Rows(table), error);
  }

  bool Finish(std::size_t last_line, CIT8Issue& error) {
    switch (section_) {
      case Section::kFormat:
        error = CIT8Issue{last_line, L"END_DATA_FORMAT is missing: the data format that begins on line " +
                                         std::to_wstring(format_line_) + L" runs to the end of the text"};
        return false;
      case Section::kData:
        error = CIT8Issue{last_line, L"END_DATA is missing: the data that begins on line " +
                                         std::to_wstring(data_line_) + L" runs to the end of the text"};
        return false;
      case Section::kHeader:
        error = CIT8Issue{table_line_, L"the table that begins here has no data (BEGIN_DATA)"};
        return false;
      case Section::kBetween:
        break;
    }
    if (tables_.empty()) {
      error = CIT8Issue{0, L"no chart data: the text has no BEGIN_DATA_FORMAT and BEGIN_DATA"};
      return false;
    }
    trailing_ = std::move(pending_comments_);
    return true;
  }

  std::vector<CIT8Table>& tables_;
  std::vector<std::wstring>& trailing_;
  std::vector<CIT8Issue>& warnings_;
  LineTokens tokens_;
  Section section_ = Section::kBetween;
  std::vector<std::wstring> pending_comments_;
  std::vector<bool> numeric_;
  bool has_format_ = false;
  long long declared_fields_ = 0;
  long long declared_sets_ = 0;
  std::size_t table_line_ = 0;
  std::size_t fields_line_ = 0;
  std::size_t sets_line_ = 0;
  std::size_t format_line_ = 0;
  std::size_t data_line_ = 0;
};

// --- writing ---------------------------------------------------------------

bool Fail(std::wstring* error, std::wstring text) {
  if (error != nullptr) {
    *error = std::move(text);
  }
  return false;
}

// Line breaks end a line of the text form, and other control characters
// cannot stand in an XML document: neither can be written.
bool HasLineBreak(std::string_view text) {
  return std::any_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t'; });
}

// A word that would not read back as itself without quotes. A quote inside
// a word is literal; only one at its start opens a quoted word.
bool NeedsQuotes(std::string_view text) {
  return text.empty() || text.find_first_of(" \t\f\v#") != std::string_view::npos || text.front() == '"' ||
         text.front() == '\'' || IsReserved(text);
}

bool AppendQuoted(std::string_view text, std::string& out, std::wstring* error) {
  const char quote = text.find('"') == std::string_view::npos ? '"' : '\'';
  if (text.find(quote) != std::string_view::npos) {
    return Fail(error, L"\"" + Wide(text) + L"\" holds both kinds of quote and cannot be written");
  }
  out.push_back(quote);
  out.append(text);
  out.push_back(quote);
  return true;
}

bool AppendWord(std::string_view text, std::string& out, std::wstring* error) {
  if (HasLineBreak(text)) {
    return Fail(error,
                L"\"" + Wide(text) + L"\" holds a line break or control character and cannot be written");
  }
  if (NeedsQuotes(text)) {
    return AppendQuoted(text, out, error);
  }
  out.append(text);
  return true;
}

bool AppendName(const std::wstring& name, std::string& out, std::wstring* error) {
  const std::string utf8 = ToUtf8(name);
  if (NeedsQuotes(utf8) || HasLineBreak(utf8) || utf8.find_first_of("\"'") != std::string::npos) {
    return Fail(error, L"\"" + name + L"\" is not a keyword or field name (one word)");
  }
  out.append(utf8);
  return true;
}

bool AppendNote(const std::wstring& note, std::string& out, std::wstring* error) {
  if (note.empty()) {
    return true;
  }
  const std::string utf8 = ToUtf8(note);
  if (HasLineBreak(utf8)) {
    return Fail(error, L"a comment holds a line break or control character and cannot be written");
  }
  out += " #";
  out += utf8;
  return true;
}

bool AppendProperty(const CIT8Property& property, std::string& out, std::wstring* error) {
  switch (property.kind) {
    case CIT8Property::Kind::kComment: {
      const std::string utf8 = ToUtf8(property.value);
      if (HasLineBreak(utf8)) {
        return Fail(error, L"a comment holds a line break or control character and cannot be written");
      }
      out += "#";
      out += utf8;
      return true;
    }
    case CIT8Property::Kind::kDeclaration:
      out += "KEYWORD \"";
      if (!AppendName(property.name, out, error)) {
        return false;
      }
      out += "\"";
      return AppendNote(property.note, out, error);
    case CIT8Property::Kind::kValue:
      break;
  }
  if (!AppendName(property.name, out, error)) {
    return false;
  }
  const std::string value = ToUtf8(property.value);
  if (HasLineBreak(value)) {
    return Fail(error, L"the value of " + property.name +
                           L" holds a line break or control character and cannot be written");
  }
  // An unquoted value is written as it stands when it reads back the same:
  // one or more words, no comment, not opening with a quote.
  LineTokens words;
  const bool plain = !property.quoted && !value.empty() && Trim(value).size() == value.size() &&
                     value.front() != '"' && value.front() != '\'' && Tokenize(value, words) &&
                     !words.comment;
  out.push_back(' ');
  if (plain) {
    out += value;
  } else if (!AppendQuoted(value, out, error)) {
    return false;
  }
  return AppendNote(property.note, out, error);
}

}  // namespace

bool ParseCgatsNumber(std::string_view text, double& value) {
  value = 0.0;
  std::size_t i = 0;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    ++i;
  }
  std::size_t digits = 0;
  while (i < text.size() && IsDigit(text[i])) {
    ++i;
    ++digits;
  }
  if (i < text.size() && text[i] == '.') {
    ++i;
    while (i < text.size() && IsDigit(text[i])) {
      ++i;
      ++digits;
    }
  }
  if (digits == 0) {
    return false;
  }
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    ++i;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
      ++i;
    }
    if (i == text.size() || !IsDigit(text[i])) {
      return false;
    }
    while (i < text.size() && IsDigit(text[i])) {
      ++i;
    }
  }
  if (i != text.size()) {
    return false;
  }
  double parsed = 0.0;
  if (ParseRealPrefix(text, parsed) != text.size()) {
    return false;
  }
  value = parsed;
  return true;
}

std::string FormatCgatsNumber(double value) {
  std::string text = Format("%.6f", value);
  if (text.find('.') != std::string::npos) {
    while (text.back() == '0') {
      text.pop_back();
    }
    if (text.back() == '.') {
      text.pop_back();
    }
  }
  if (text == "-0") {
    text = "0";
  }
  return text;
}

bool IsNumericField(std::string_view name) {
  static constexpr std::string_view kPrefixes[] = {"RGB_",     "CMYK_",   "CMY_", "LAB_",      "XYZ_",
                                                   "XYY_",     "LCH_",    "D_",   "SPECTRAL_", "STDEV_",
                                                   "CHI_SQD_", "MEAN_DE", "HIFI_"};
  for (const std::string_view prefix : kPrefixes) {
    if (name.substr(0, prefix.size()) == prefix) {
      return true;
    }
  }
  // nCLR_ fields of n-colour data: "5CLR_1" ... "15CLR_15".
  std::size_t i = 0;
  while (i < name.size() && IsDigit(name[i])) {
    ++i;
  }
  return i > 0 && name.substr(i, 4) == "CLR_";
}

bool ReadCgatsText(std::string_view bytes, std::vector<CIT8Table>& tables,
                   std::vector<std::wstring>& trailing, std::vector<CIT8Issue>& warnings,
                   CIT8Chart::LineEnding& ending, CIT8Issue& error) {
  if (bytes.substr(0, 3) == "\xEF\xBB\xBF") {
    bytes.remove_prefix(3);
  }
  // DOS tools end text files with Ctrl-Z.
  while (!bytes.empty() && bytes.back() == '\x1A') {
    bytes.remove_suffix(1);
  }
  std::string converted;
  if (!IsValidUtf8(bytes)) {
    converted = Latin1ToUtf8(bytes);
    bytes = converted;
  }
  TextReader reader(tables, trailing, warnings);
  return reader.Read(bytes, ending, error);
}

bool ReadCgatsFields(std::string_view text, std::vector<std::wstring>& fields, CIT8Issue& error) {
  fields.clear();
  LineTokens line;
  if (HasBinary(text) || !Tokenize(text, line) || line.comment) {
    error = CIT8Issue{0, L"the field list is not a list of names"};
    return false;
  }
  return AddFields(line, 0, fields, error);
}

bool ReadCgatsRows(std::string_view text, CIT8Table& table, CIT8Issue& error) {
  const std::vector<bool> numeric = NumericFlags(table.GetFields());
  std::vector<std::string>& rows = CgatsAccess::Rows(table);
  LineWalker walker(text);
  std::string_view line;
  LineTokens tokens;
  while (walker.Next(line)) {
    if (HasBinary(line) || !Tokenize(line, tokens)) {
      error = CIT8Issue{walker.number(), L"the row is not CGATS row text"};
      return false;
    }
    if (tokens.tokens.empty()) {
      continue;
    }
    if (!AddDataRow(tokens, walker.number(), table.GetFields(), numeric, rows, error)) {
      return false;
    }
  }
  return true;
}

bool WriteCgatsRows(const CIT8Table& table, const std::string& eol, std::string& out, std::wstring* error) {
  const std::size_t width = table.GetFieldCount();
  for (const std::string& row : CgatsAccess::Rows(table)) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < width; ++i) {
      std::size_t end = row.find('\0', begin);
      if (end == std::string::npos) {
        end = row.size();
      }
      if (i > 0) {
        out.push_back(' ');
      }
      if (!AppendWord(std::string_view(row).substr(begin, end - begin), out, error)) {
        return false;
      }
      begin = end + 1;
    }
    out += eol;
  }
  return true;
}

bool WriteCgatsComment(const std::wstring& text, const std::string& eol, std::string& out,
                       std::wstring* error) {
  CIT8Property comment{CIT8Property::Kind::kComment, {}, text, false, {}};
  if (!AppendProperty(comment, out, error)) {
    return false;
  }
  out += eol;
  return true;
}

bool WriteCgatsTable(const CIT8Table& table, const std::string& eol, std::string& out, std::wstring* error) {
  if (!table.GetSheetType().empty()) {
    if (!AppendName(table.GetSheetType(), out, error)) {
      return false;
    }
    out += eol;
  }
  for (const CIT8Property& property : table.GetProperties()) {
    if (!AppendProperty(property, out, error)) {
      return false;
    }
    out += eol;
  }
  out += eol;
  out += "NUMBER_OF_FIELDS " + std::to_string(table.GetFieldCount()) + eol;
  out += "BEGIN_DATA_FORMAT" + eol;
  for (std::size_t i = 0; i < table.GetFieldCount(); ++i) {
    if (i > 0) {
      out.push_back(' ');
    }
    if (!AppendName(table.GetFields()[i], out, error)) {
      return false;
    }
  }
  out += eol + "END_DATA_FORMAT" + eol + eol;
  out += "NUMBER_OF_SETS " + std::to_string(table.GetRowCount()) + eol;
  out += "BEGIN_DATA" + eol;
  if (!WriteCgatsRows(table, eol, out, error)) {
    return false;
  }
  out += "END_DATA" + eol;
  return true;
}

}  // namespace tarn::internal
