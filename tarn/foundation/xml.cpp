#include "tarn/foundation/xml.h"

#include "tarn/foundation/format.h"
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

bool CheckRoot(const pugi::xml_document& document, const char* root) {
  const pugi::xml_node first = document.first_child();
  return first && IsNamed(first, root);
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

bool LoadDocumentFromBuffer(pugi::xml_document& document, std::string_view utf8, const char* root) {
  const pugi::xml_parse_result result =
      document.load_buffer(utf8.data(), utf8.size(), pugi::parse_default, pugi::encoding_auto);
  if (!result || !CheckRoot(document, root)) {
    document.reset();
    return false;
  }
  return true;
}

bool LoadDocument(pugi::xml_document& document, const std::wstring& path, const char* root) {
  std::string data;
  if (!ReadWholeFile(path, data)) {
    document.reset();
    return false;
  }
  return LoadDocumentFromBuffer(document, data, root);
}

bool LoadDocumentFromString(pugi::xml_document& document, std::wstring_view text, const char* root) {
  return LoadDocumentFromBuffer(document, ToUtf8(text), root);
}

std::string SaveDocumentToString(const pugi::xml_document& document) {
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
