// Comma-separated values as spreadsheets write them, whatever separates them.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kivhost {

struct CsvText {
  std::string name;       // for messages
  std::string_view text;  // without byte order mark
  char separator = ',';
  size_t firstNumber = 1;  // of its first line
};

struct CsvRow {
  size_t number;      // of the line where the row begins
  size_t lastNumber;  // and of that where it ends: a quoted field may have several
  std::vector<std::string> fields;
};

// Row by row until `take` answers false; blank lines are none. Throws wrong usage with the line
// where a quotation mark opens a field that nothing closes, or text stands behind a closed one:
// what is between cannot be told apart any more.
void ReadCsv(const CsvText& csv, const std::function<bool(CsvRow& row)>& take);

// A row with its end of line, fields quoted where they need it.
std::string FormatCsv(const std::vector<std::string>& fields);

}  // namespace kivhost
