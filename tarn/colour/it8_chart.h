#pragma once

// Measurement charts: the CGATS (IT8) text files that measuring instruments
// and profiling tools write, one or more tables each:
//
//   CGATS.17
//   ORIGINATOR "Spectro 2"
//   KEYWORD "MEASUREMENT_SOURCE"
//   MEASUREMENT_SOURCE "Illumination=D50 ObserverAngle=2"
//   # a comment line
//
//   NUMBER_OF_FIELDS 4
//   BEGIN_DATA_FORMAT
//   SAMPLE_ID LAB_L LAB_A LAB_B
//   END_DATA_FORMAT
//
//   NUMBER_OF_SETS 2
//   BEGIN_DATA
//   A01 37.99 13.56 14.06
//   A02 65.71 18.13 17.81
//   END_DATA
//
// Every cell is kept as the text the file holds, so nothing is rounded on the
// way through; numbers are read and written without the process locale. The
// counts NUMBER_OF_FIELDS and NUMBER_OF_SETS are not kept: the field list and
// the rows are what count, and the writer states them anew. Full-line comments
// are kept in order with the keywords; a comment at the end of a keyword line
// stays with that keyword; comments inside the data format and the data are
// skipped. The XML form of a chart is described in
// docs/formats/measurement-chart.md.

#include <pugixml.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/foundation/export.h"

namespace tarn {

namespace internal {
struct CgatsAccess;
}

// CIE L*a*b*.
struct TARN_API CLabColor {
  double L = 0.0;
  double a = 0.0;
  double b = 0.0;

  bool operator==(const CLabColor&) const = default;
};

// CIE XYZ on the scale the charts use: Y of the white is 100.
struct TARN_API CXYZColor {
  double X = 0.0;
  double Y = 0.0;
  double Z = 0.0;

  bool operator==(const CXYZColor&) const = default;
};

// The D50 white of ICC profiles, which charts are measured against unless
// they say otherwise.
inline constexpr CXYZColor kWhiteD50{96.42, 100.0, 82.49};

// L*a*b* of an XYZ value seen under the given white.
TARN_API CLabColor XYZToLab(const CXYZColor& xyz, const CXYZColor& white = kWhiteD50);

// A problem found while reading a chart: the line it is on (1 for the first)
// and what is wrong.
struct TARN_API CIT8Issue {
  std::size_t line = 0;
  std::wstring text;

  // "line 12: text", or the text alone when the line is 0.
  std::wstring Describe() const;
};

// One header line of a table: a keyword with its value, a declaration of a
// keyword (KEYWORD "NAME") or a comment.
struct TARN_API CIT8Property {
  enum class Kind { kValue, kDeclaration, kComment };

  Kind kind = Kind::kValue;
  std::wstring name;   // empty for a comment
  std::wstring value;  // the keyword's value or the comment's text (after "#")
  bool quoted = true;  // the value is written between quotes
  std::wstring note;   // a comment at the end of the line, after "#"; empty for none

  bool operator==(const CIT8Property&) const = default;
};

// One table of a chart: its sheet type, header, fields and rows.
class TARN_API CIT8Table {
 public:
  CIT8Table() = default;

  // The identifier on the table's first line ("CGATS.17", "IT8.7/2", "CTI3");
  // may be empty, as in the second table of some files.
  const std::wstring& GetSheetType() const { return sheet_type_; }
  void SetSheetType(const std::wstring& type) { sheet_type_ = type; }

  // Header lines in file order.
  const std::vector<CIT8Property>& GetProperties() const { return properties_; }
  // The value of the keyword, or null when the table has none.
  const std::wstring* GetProperty(std::wstring_view name) const;
  // Sets a keyword's value (written quoted), adding it when missing. A keyword
  // the CGATS standard does not define gets its KEYWORD declaration too, so
  // strict readers accept the file. False for an empty name or one holding
  // white space, quotes or "#".
  bool SetProperty(const std::wstring& name, const std::wstring& value);
  // Adds a comment line to the header.
  void AddComment(const std::wstring& text);
  // Appends a header line as it stands.
  void AddPropertyLine(CIT8Property property) { properties_.push_back(std::move(property)); }

  // The data format.
  std::size_t GetFieldCount() const { return fields_.size(); }
  const std::vector<std::wstring>& GetFields() const { return fields_; }
  // The index of the field (exact name), or -1.
  int FindField(std::wstring_view name) const;
  // Replaces the data format. False, nothing changed, when the table already
  // has rows and the width would change, or a name is empty or repeated.
  bool SetFields(const std::vector<std::wstring>& fields);

  // The rows: one cell per field, each the text of the file.
  std::size_t GetRowCount() const { return rows_.size(); }
  // The cell's text; empty when row or field is out of range.
  std::wstring GetCell(std::size_t row, std::size_t field) const;
  // The cell read as a number ("C" locale, whatever the process locale is).
  // False when out of range or the text is not a whole number in CGATS form.
  bool GetCellReal(std::size_t row, std::size_t field, double& value) const;
  // Appends a row. False when it does not have one cell per field.
  bool AddRow(const std::vector<std::wstring>& cells);
  // Replaces one cell; false when out of range.
  bool SetCell(std::size_t row, std::size_t field, const std::wstring& text);
  // Replaces one cell with a number, written with up to 6 decimals.
  bool SetCellReal(std::size_t row, std::size_t field, double value);
  // All cells of a row; empty when out of range.
  std::vector<std::wstring> GetRow(std::size_t row) const;
  void ClearRows() { rows_.clear(); }

  // The row whose SAMPLE_ID equals id, else the row whose SAMPLE_NAME does; -1
  // when there is none.
  int FindPatch(std::wstring_view id_or_name) const;
  // The patch's identity for matching: its SAMPLE_ID, else its SAMPLE_NAME,
  // else its row number from 1.
  std::wstring GetPatchKey(std::size_t row) const;

  // True when the table has LAB_L/LAB_A/LAB_B, or XYZ_X/XYZ_Y/XYZ_Z.
  bool HasColorimetry() const;
  // The Lab of a row: from the LAB fields when the table has them, else from
  // the XYZ fields seen under white. False when the row is out of range, the
  // table has neither or a value is not a number.
  bool GetLab(std::size_t row, CLabColor& lab, const CXYZColor& white = kWhiteD50) const;

  bool operator==(const CIT8Table& other) const = default;

 private:
  friend class CIT8Chart;
  friend struct internal::CgatsAccess;

  std::wstring sheet_type_;
  std::vector<CIT8Property> properties_;
  std::vector<std::wstring> fields_;
  // A row's cells as UTF-8 joined by NUL (no cell can hold one): one
  // allocation per row keeps a million-row chart within reach.
  std::vector<std::string> rows_;
};

// A measurement chart: one or more tables.
class TARN_API CIT8Chart {
 public:
  static constexpr const char* kElementName = "It8Chart";
  // Files larger than this are refused rather than read into memory.
  static constexpr std::size_t kMaxFileSize = 512u * 1024u * 1024u;

  enum class LineEnding { kLF, kCRLF };

  CIT8Chart() = default;

  // No tables, CRLF line ends (the RIP's own files are Windows text).
  void SetDefaults();

  std::size_t GetTableCount() const { return tables_.size(); }
  // The table at index; null when out of range.
  const CIT8Table* GetTable(std::size_t index) const;
  CIT8Table* GetTable(std::size_t index);
  // Appends a table and returns it.
  CIT8Table& AddTable(CIT8Table table = CIT8Table());
  bool RemoveTable(std::size_t index);
  // The first table with Lab or XYZ fields; else the first table; null when empty.
  const CIT8Table* GetMeasurementTable() const;

  // Comment lines after the last table.
  const std::vector<std::wstring>& GetTrailingComments() const { return trailing_comments_; }
  void SetTrailingComments(std::vector<std::wstring> comments) { trailing_comments_ = std::move(comments); }

  LineEnding GetLineEnding() const { return line_ending_; }
  void SetLineEnding(LineEnding ending) { line_ending_ = ending; }

  // Reads the text form from bytes. Starts from the defaults; on failure the
  // chart is emptied and error (when given) says what is wrong and on which
  // line. UTF-8 is expected; a file that is not valid UTF-8 is read as
  // Latin-1, as older instruments write it.
  bool ReadText(std::string_view bytes, CIT8Issue* error = nullptr);
  // Reads a chart file; error also tells when the file cannot be read.
  bool LoadFile(const std::wstring& path, CIT8Issue* error = nullptr);
  // Things read that the chart does not keep as the file said them (a
  // NUMBER_OF_FIELDS or NUMBER_OF_SETS that does not match the data).
  const std::vector<CIT8Issue>& GetWarnings() const { return warnings_; }

  // Writes the text form (UTF-8, the chart's line ends). False, with the
  // reason in error, when a value cannot be written: a cell or value holding
  // both kinds of quote, a line break or another control character, or a
  // keyword or field name that is not one word.
  bool WriteText(std::string& out, std::wstring* error = nullptr) const;
  // Writes the text form to a file, replacing it atomically.
  bool SaveFile(const std::wstring& path, std::wstring* error = nullptr) const;

  // The XML form: reads an "It8Chart" element, starting from the defaults.
  // False when node is not "It8Chart" or a table's data does not fit its
  // fields (the chart is then emptied).
  bool ReadXML(const pugi::xml_node& node, CIT8Issue* error = nullptr);
  // Appends "It8Chart" to parent. False, nothing appended, for the same
  // reasons as WriteText.
  bool WriteXML(pugi::xml_node parent, std::wstring* error = nullptr) const;

  // Compares tables, trailing comments and line ends; warnings take no part.
  bool operator==(const CIT8Chart& other) const;

 private:
  std::vector<CIT8Table> tables_;
  std::vector<std::wstring> trailing_comments_;
  LineEnding line_ending_ = LineEnding::kCRLF;
  std::vector<CIT8Issue> warnings_;
};

}  // namespace tarn
