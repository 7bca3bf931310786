#pragma once

// Conventions shared by every record that lives in an XML document.
//
// A scalar field is a child element whose text is the value:
//
//   <PMH version="8">
//   	<PRINTER>Aurora 64</PRINTER>
//   	<INVERT>0</INVERT>
//   </PMH>
//
// Booleans are written "1"/"0" and read with pugixml's rule (absent or empty
// text is false; "1", "true", "yes" are true). Whole numbers use pugixml's
// integer conversions, which do not depend on the locale. Reals never touch
// pugixml's real conversions (they follow the process locale): they are written
// with the text pugixml would write in the "C" locale, "%.17g", or with the
// record's own printf format, and read as strtod reads in the "C" locale.
//
// Element names are compared exactly: same characters, same case.

#include <pugixml.hpp>

#include <cstring>
#include <string>
#include <string_view>

#include "tarn/foundation/export.h"

namespace tarn::xml {

// True when node is an element named exactly tag.
inline bool IsNamed(const pugi::xml_node& node, const char* tag) {
  return node.type() == pugi::node_element && std::strcmp(node.name(), tag) == 0;
}

// --- writing -------------------------------------------------------------

// Appends <tag/> to parent and returns it.
TARN_API pugi::xml_node AppendElement(pugi::xml_node parent, const char* tag);
// Appends <tag>value</tag>; the value is written as UTF-8.
TARN_API pugi::xml_node AppendText(pugi::xml_node parent, const char* tag, std::wstring_view value);
// Appends <tag>1</tag> or <tag>0</tag>.
TARN_API pugi::xml_node AppendBool(pugi::xml_node parent, const char* tag, bool value);
TARN_API pugi::xml_node AppendInt(pugi::xml_node parent, const char* tag, long long value);
TARN_API pugi::xml_node AppendUInt(pugi::xml_node parent, const char* tag, unsigned long long value);
// Appends a real as "%.17g", or in the printf format given (e.g. "%lf").
TARN_API pugi::xml_node AppendReal(pugi::xml_node parent, const char* tag, double value);
TARN_API pugi::xml_node AppendReal(pugi::xml_node parent, const char* tag, double value,
                                   std::string_view format);
// Appends <tag><![CDATA[value]]></tag>, so markup characters survive as they are.
// A value holding "]]>" is split over several CDATA sections, as pugixml does.
TARN_API pugi::xml_node AppendCData(pugi::xml_node parent, const char* tag, std::wstring_view value);

TARN_API void SetText(pugi::xml_node node, std::wstring_view value);
TARN_API void SetAttribute(pugi::xml_node node, const char* name, std::wstring_view value);
TARN_API void SetAttributeBool(pugi::xml_node node, const char* name, bool value);
TARN_API void SetAttributeInt(pugi::xml_node node, const char* name, long long value);
TARN_API void SetAttributeReal(pugi::xml_node node, const char* name, double value);
TARN_API void SetAttributeReal(pugi::xml_node node, const char* name, double value, std::string_view format);

// --- reading -------------------------------------------------------------

// The element's text as wide text; empty when absent. Several text and CDATA
// children (a CDATA value split at "]]>") are joined.
TARN_API std::wstring ReadText(const pugi::xml_node& node);
TARN_API bool ReadBool(const pugi::xml_node& node);
TARN_API int ReadInt(const pugi::xml_node& node);
TARN_API unsigned ReadUInt(const pugi::xml_node& node);
TARN_API long long ReadInt64(const pugi::xml_node& node);
// The element's text read as strtod reads it in the "C" locale; 0 when absent or not a number.
TARN_API double ReadReal(const pugi::xml_node& node);

// The attribute's value as wide text; empty when absent.
TARN_API std::wstring ReadAttribute(const pugi::xml_node& node, const char* name);
TARN_API bool ReadAttributeBool(const pugi::xml_node& node, const char* name);
TARN_API int ReadAttributeInt(const pugi::xml_node& node, const char* name);
TARN_API double ReadAttributeReal(const pugi::xml_node& node, const char* name);

// --- documents -----------------------------------------------------------

// Loads the file at a RIP-style path with pugixml's default parse options and
// encoding detection. Returns false when the file cannot be read (platform.h:
// only regular files of bounded size), is empty or does not parse, when the
// document's first child is not an element named exactly root, or when its
// elements nest more than kMaxNestingDepth levels (limits.h). Characters
// that XML 1.0 cannot carry (a "&#1;" reference, bytes that are not UTF-8)
// are replaced by U+FFFD as the document loads, so no record holds text that
// its next save could not write back. The reason for a failure goes
// into error when given: "permission denied", "empty file", "XML error at line
// 3, column 7: start-end tags mismatch", ...
TARN_API bool LoadDocument(pugi::xml_document& document, const std::wstring& path, const char* root,
                           std::wstring* error = nullptr);

// The same for a document held in memory (an embedded section).
TARN_API bool LoadDocumentFromString(pugi::xml_document& document, std::wstring_view text, const char* root,
                                     std::wstring* error = nullptr);
TARN_API bool LoadDocumentFromBuffer(pugi::xml_document& document, std::string_view utf8, const char* root,
                                     std::wstring* error = nullptr);

// The document as the files carry it: declaration <?xml version="1.0"?>, one tab
// of indentation per level, UTF-8. Characters that XML 1.0 cannot carry at all
// (control characters other than tab, line feed and carriage return, lone
// surrogates, bytes that are not UTF-8) are first replaced in the document by
// U+FFFD, so every file the library writes parses with a strict parser.
TARN_API std::string SaveDocumentToString(const pugi::xml_document& document);

// Writes SaveDocumentToString's text to the file in one piece, replacing it
// atomically (platform.h: through links, keeping mode and owner). On failure
// returns false, leaves any old file untouched and puts the reason into error
// when given.
TARN_API bool SaveDocument(const pugi::xml_document& document, const std::wstring& path,
                           std::wstring* error = nullptr);

// Cuts a print mode document out of a larger text file: from the first line
// holding "<?xml" (from "<?xml" on) up to and including the line holding
// "</PMH>" (up to and including "</PMH>"). Lines end at CR or LF; empty lines
// are dropped. Returns false, with out emptied, when nothing was found or the
// file cannot be read.
TARN_API bool ExtractXMLSection(std::wstring& out, const std::wstring& path);

}  // namespace tarn::xml
