// Comma-separated values with a header line.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kivadmin {

struct CsvLine {
  size_t number;  // of the line in the file where the record begins, from 1
  std::vector<std::string> fields;
};

// The records of a text; blank lines are none. A byte order mark is dropped.
std::vector<CsvLine> ReadCsv(const std::string& text);

// A record with its end of line, fields quoted where they need it.
std::string FormatCsv(const std::vector<std::string>& fields);

}  // namespace kivadmin
