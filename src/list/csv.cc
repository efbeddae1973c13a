#include "csv.h"

std::string CsvCell(const std::string& text) {
    std::string cell = text;
    if (!cell.empty() && (cell[0] == '=' || cell[0] == '+' || cell[0] == '-' || cell[0] == '@' ||
                          cell[0] == '\t' || cell[0] == '\r')) {
        cell.insert(0, 1, '\'');
    }
    if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
    std::string quoted = "\"";
    for (char c : cell) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    quoted += '"';
    return quoted;
}

std::string CsvRecord(const std::vector<std::string>& cells) {
    std::string record;
    for (size_t i = 0; i < cells.size(); ++i) {
        if (i > 0) record += ',';
        record += CsvCell(cells[i]);
    }
    record += "\r\n";
    return record;
}
