#include "tarn/foundation/xml.h"

#include <algorithm>

#include "tarn/foundation/format.h"
#include "tarn/foundation/limits.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/text.h"

namespace tarn::xml {

namespace {

void SetTextUtf8(pugi::xml_node node, const std::string& value) {
  node.text().set(value.c_str());
}

// Collects pugixml's output in one string, so the file can be written in one piece.
class StringWriter final : public pugi::xml_writer {
 public:
  void write(const void* data, size_t size) override { text.append(static_cast<const char*>(data), size); }
  std::string text;
};

void SetError(std::wstring* error, const std::wstring& text) {
  if (error) {
    *error = text;
  }
}

// Line and column (both from 1, the column in characters) of a byte offset.
std::wstring WhereIs(std::string_view text, std::ptrdiff_t offset) {
  const size_t end = std::min(static_cast<size_t>(std::max<std::ptrdiff_t>(offset, 0)), text.size());
  size_t line = 1;
  size_t column = 1;
  for (size_t i = 0; i < end; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte == '\n') {
      ++line;
      column = 1;
    } else if ((byte & 0xC0) != 0x80) {
      ++column;
    }
  }
  return Format(L"XML error at line %zu, column %zu: ", line, column);
}

// Length of the valid UTF-8 sequence for a character XML 1.0 allows at the
// start of text, 0 when there is none: invalid or overlong bytes, surrogates,
// control characters other than tab, line feed and carriage return, U+FFFE
// and U+FFFF.
size_t AllowedCharAt(std::string_view text, size_t at) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[at + i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) {
    return (lead >= 0x20 || lead == '\t' || lead == '\n' || lead == '\r') ? 1 : 0;
  }
  size_t length = 0;
  char32_t code = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    code = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    code = lead & 0x0F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    code = lead & 0x07;
  } else {
    return 0;
  }
  if (at + length > text.size()) {
    return 0;
  }
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) {
      return 0;
    }
    code = (code << 6) | (byte(i) & 0x3F);
  }
  const char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (code < smallest[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF) || code == 0xFFFE ||
      code == 0xFFFF) {
    return 0;
  }
  return length;
}

// text with every byte that does not start an allowed character replaced by
// U+FFFD in repaired; false, repaired untouched, when nothing needs it.
bool RepairText(std::string_view text, std::string& repaired) {
  size_t at = 0;
  while (at < text.size()) {
    const size_t length = AllowedCharAt(text, at);
    if (length == 0) {
      break;
    }
    at += length;
  }
  if (at == text.size()) {
    return false;
  }
  repaired.assign(text.substr(0, at));
  while (at < text.size()) {
    const size_t length = AllowedCharAt(text, at);
    if (length == 0) {
      repaired += "\xEF\xBF\xBD";
      // Skip the rest of a broken sequence as one character.
      ++at;
      while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80) {
        ++at;
      }
      continue;
    }
    repaired.append(text.substr(at, length));
    at += length;
  }
  return true;
}

// Replaces, in every text, attribute and CDATA value of the document, the
// characters that XML 1.0 cannot carry even escaped (control characters,
// lone surrogates, bytes that are not UTF-8) by U+FFFD, walking the tree
// without recursion. Done to every document loaded, so records never hold
// such text from a file, and to every document saved, so a file parses with
// any strict parser whatever a host has put into a record. Returns the first
// element nested deeper than the limit, null when there is none.
pugi::xml_node RepairDocument(const pugi::xml_document& document) {
  std::string repaired;
  pugi::xml_node too_deep;
  pugi::xml_node node = document.first_child();
  int depth = 1;
  while (node) {
    if (!too_deep && node.type() == pugi::node_element && depth > kMaxNestingDepth) {
      too_deep = node;
    }
    if (RepairText(node.value(), repaired)) {
      node.set_value(repaired.c_str());
    }
    for (pugi::xml_attribute attribute : node.attributes()) {
      if (RepairText(attribute.value(), repaired)) {
        attribute.set_value(repaired.c_str());
      }
    }
    if (node.first_child()) {
      node = node.first_child();
      ++depth;
      continue;
    }
    while (node && !node.next_sibling()) {
      node = node.parent();
      --depth;
    }
    if (node) {
      node = node.next_sibling();
    }
  }
  return too_deep;
}

}  // namespace

pugi::xml_node AppendElement(pugi::xml_node parent, const char* tag) {
  return parent.append_child(tag);
}

pugi::xml_node AppendText(pugi::xml_node parent, const char* tag, std::wstring_view value) {
  pugi::xml_node node = parent.append_child(tag);
  SetText(node, value);
  return node;
}

pugi::xml_node AppendBool(pugi::xml_node parent, const char* tag, bool value) {
  pugi::xml_node node = parent.append_child(tag);
  node.text().set(value ? "1" : "0");
  return node;
}

pugi::xml_node AppendInt(pugi::xml_node parent, const char* tag, long long value) {
  pugi::xml_node node = parent.append_child(tag);
  node.text().set(value);
  return node;
}

pugi::xml_node AppendUInt(pugi::xml_node parent, const char* tag, unsigned long long value) {
  pugi::xml_node node = parent.append_child(tag);
  node.text().set(value);
  return node;
}

pugi::xml_node AppendReal(pugi::xml_node parent, const char* tag, double value) {
  pugi::xml_node node = parent.append_child(tag);
  SetTextUtf8(node, FormatReal(value));
  return node;
}

pugi::xml_node AppendReal(pugi::xml_node parent, const char* tag, double value, std::string_view format) {
  pugi::xml_node node = parent.append_child(tag);
  SetTextUtf8(node, Format(format, value));
  return node;
}

pugi::xml_node AppendCData(pugi::xml_node parent, const char* tag, std::wstring_view value) {
  pugi::xml_node node = parent.append_child(tag);
  // pugixml splits a "]]>" inside the value over two CDATA sections when it
  // prints, so any text survives the round trip.
  node.append_child(pugi::node_cdata).set_value(ToUtf8(value).c_str());
  return node;
}

void SetText(pugi::xml_node node, std::wstring_view value) {
  SetTextUtf8(node, ToUtf8(value));
}

void SetAttribute(pugi::xml_node node, const char* name, std::wstring_view value) {
  node.append_attribute(name).set_value(ToUtf8(value).c_str());
}

void SetAttributeBool(pugi::xml_node node, const char* name, bool value) {
  node.append_attribute(name).set_value(value ? "1" : "0");
}

void SetAttributeInt(pugi::xml_node node, const char* name, long long value) {
  node.append_attribute(name).set_value(value);
}

void SetAttributeReal(pugi::xml_node node, const char* name, double value) {
  node.append_attribute(name).set_value(FormatReal(value).c_str());
}

void SetAttributeReal(pugi::xml_node node, const char* name, double value, std::string_view format) {
  node.append_attribute(name).set_value(Format(format, value).c_str());
}

std::wstring ReadText(const pugi::xml_node& node) {
  // A value holding "]]>" comes back as several CDATA sections; join them.
  const pugi::xml_node first = node.first_child();
  if (!first || !first.next_sibling()) {
    return FromUtf8(node.text().get());
  }
  std::string joined;
  for (const pugi::xml_node& part : node.children()) {
    if (part.type() == pugi::node_pcdata || part.type() == pugi::node_cdata) {
      joined += part.value();
    }
  }
  return FromUtf8(joined);
}

bool ReadBool(const pugi::xml_node& node) {
  return node.text().as_bool();
}

int ReadInt(const pugi::xml_node& node) {
  return node.text().as_int();
}

unsigned ReadUInt(const pugi::xml_node& node) {
  return node.text().as_uint();
}

long long ReadInt64(const pugi::xml_node& node) {
  return node.text().as_llong();
}

double ReadReal(const pugi::xml_node& node) {
  return ToReal(std::string_view(node.text().get()));
}

std::wstring ReadAttribute(const pugi::xml_node& node, const char* name) {
  return FromUtf8(node.attribute(name).value());
}

bool ReadAttributeBool(const pugi::xml_node& node, const char* name) {
  return node.attribute(name).as_bool();
}

int ReadAttributeInt(const pugi::xml_node& node, const char* name) {
  return node.attribute(name).as_int();
}

double ReadAttributeReal(const pugi::xml_node& node, const char* name) {
  return ToReal(std::string_view(node.attribute(name).value()));
}

bool LoadDocumentFromBuffer(pugi::xml_document& document, std::string_view utf8, const char* root,
                            std::wstring* error) {
  document.reset();
  if (utf8.empty()) {
    SetError(error, L"empty file");
    return false;
  }
  const pugi::xml_parse_result result =
      document.load_buffer(utf8.data(), utf8.size(), pugi::parse_default, pugi::encoding_auto);
  if (!result) {
    std::wstring description = FromUtf8(result.description());
    if (!description.empty()) {
      description[0] = FoldCase(description.substr(0, 1))[0];
    }
    SetError(error, WhereIs(utf8, result.offset) + description);
    document.reset();
    return false;
  }
  const pugi::xml_node first = document.first_child();
  if (!first || !IsNamed(first, root)) {
    SetError(error, Format(L"the root element is <%s>, not <%s>", FromUtf8(first.name()), FromUtf8(root)));
    document.reset();
    return false;
  }
  if (const pugi::xml_node deep = RepairDocument(document)) {
    SetError(error, WhereIs(utf8, deep.offset_debug()) +
                        Format(L"elements nested more than %d levels deep", kMaxNestingDepth));
    document.reset();
    return false;
  }
  return true;
}

bool LoadDocument(pugi::xml_document& document, const std::wstring& path, const char* root,
                  std::wstring* error) {
  std::string data;
  if (!ReadWholeFile(path, data, error)) {
    document.reset();
    return false;
  }
  return LoadDocumentFromBuffer(document, data, root, error);
}

bool LoadDocumentFromString(pugi::xml_document& document, std::wstring_view text, const char* root,
                            std::wstring* error) {
  return LoadDocumentFromBuffer(document, ToUtf8(text), root, error);
}

std::string SaveDocumentToString(const pugi::xml_document& document) {
  RepairDocument(document);
  StringWriter writer;
  document.save(writer, "\t", pugi::format_indent, pugi::encoding_utf8);
  return std::move(writer.text);
}

bool SaveDocument(const pugi::xml_document& document, const std::wstring& path, std::wstring* error) {
  return WriteFileAtomically(path, SaveDocumentToString(document), error);
}

bool ExtractXMLSection(std::wstring& out, const std::wstring& path) {
  out.clear();
  std::string data;
  if (!ReadWholeFile(path, data)) {
    return false;
  }
  static constexpr std::string_view kStart = "<?xml";
  static constexpr std::string_view kEnd = "</PMH>";
  std::string kept;
  bool inside = false;
  size_t pos = 0;
  while (pos < data.size()) {
    size_t stop = data.find_first_of("\r\n", pos);
    if (stop == std::string::npos) {
      stop = data.size();
    }
    const std::string_view line(data.data() + pos, stop - pos);
    pos = stop + 1;
    if (line.empty()) {
      continue;
    }
    if (!inside) {
      const size_t at = line.find(kStart);
      if (at == std::string_view::npos) {
        continue;
      }
      inside = true;
      const std::string_view rest = line.substr(at);
      const size_t end = rest.find(kEnd);
      if (end != std::string_view::npos) {
        kept.append(rest.substr(0, end + kEnd.size()));
        break;
      }
      kept.append(rest);
      continue;
    }
    // Lines are joined with a line feed so that a tag or text broken over two
    // lines does not run together.
    kept += '\n';
    const size_t end = line.find(kEnd);
    if (end != std::string_view::npos) {
      kept.append(line.substr(0, end + kEnd.size()));
      break;
    }
    kept.append(line);
  }
  if (kept.empty()) {
    return false;
  }
  out = FromUtf8(kept);
  return true;
}

}  // namespace tarn::xml
