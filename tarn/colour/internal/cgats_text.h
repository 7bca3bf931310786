#pragma once

// The CGATS text form of a chart, read and written without the process
// locale. Shared by the chart's text and XML forms (the XML form keeps a
// table's rows as CGATS row text).

#include <string>
#include <string_view>
#include <vector>

#include "tarn/colour/it8_chart.h"

namespace tarn::internal {

// Access to a table's parts for the readers.
struct CgatsAccess {
  static std::wstring& SheetType(CIT8Table& table) { return table.sheet_type_; }
  static std::vector<CIT8Property>& Properties(CIT8Table& table) { return table.properties_; }
  static std::vector<std::wstring>& Fields(CIT8Table& table) { return table.fields_; }
  static std::vector<std::string>& Rows(CIT8Table& table) { return table.rows_; }
  static const std::vector<std::string>& Rows(const CIT8Table& table) { return table.rows_; }
};

// Reads a number as CGATS writes it: an optional sign, digits with at most one
// decimal point, an optional exponent. Nothing else ("1,5", "0x10", "inf",
// blanks) is a number. value is 0 when false.
bool ParseCgatsNumber(std::string_view text, double& value);
// A number with up to 6 decimals, trailing zeros dropped ("37.99", "-0.5", "100").
std::string FormatCgatsNumber(double value);
// True for the fields whose values must be numbers (LAB_L, RGB_R, SPECTRAL_500 ...).
bool IsNumericField(std::string_view name);

// Reads the whole text form. On failure error says what and where.
bool ReadCgatsText(std::string_view bytes, std::vector<CIT8Table>& tables,
                   std::vector<std::wstring>& trailing, std::vector<CIT8Issue>& warnings,
                   CIT8Chart::LineEnding& ending, CIT8Issue& error);

// The field names of a data format (blank-separated), checked as the text
// reader checks them.
bool ReadCgatsFields(std::string_view text, std::vector<std::wstring>& fields, CIT8Issue& error);
// Rows as CGATS row text, one row a line, appended to the table.
bool ReadCgatsRows(std::string_view text, CIT8Table& table, CIT8Issue& error);

// Writers: false, with the reason in error, when a value cannot be written.
bool WriteCgatsTable(const CIT8Table& table, const std::string& eol, std::string& out, std::wstring* error);
bool WriteCgatsRows(const CIT8Table& table, const std::string& eol, std::string& out, std::wstring* error);
bool WriteCgatsComment(const std::wstring& text, const std::string& eol, std::string& out,
                       std::wstring* error);

}  // namespace tarn::internal
