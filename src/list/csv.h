// Comma-separated values for the auditors' download: quoting after RFC 4180,
// and cells that a spreadsheet would take for a formula made harmless.
#pragma once

#include <string>
#include <vector>

// One cell. A text starting with "=", "+", "-", "@", a tab or a carriage
// return gets an apostrophe in front, so that a spreadsheet shows it as text
// instead of evaluating it (a directory value such as "=HYPERLINK(...)" is
// written by whoever may write the directory, not by the auditor). Then a
// cell holding a comma, a quotation mark, CR or LF is enclosed in quotation
// marks with each quotation mark doubled.
std::string CsvCell(const std::string& text);

// One record: the cells joined by commas, ended by CRLF.
std::string CsvRecord(const std::vector<std::string>& cells);
