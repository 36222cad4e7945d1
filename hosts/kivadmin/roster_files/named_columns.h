// Tables whose heading names its columns as a command wants them: "from_class", "to_class".
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kivadmin {

struct WantedColumn {
  const char* name;
  bool isNeeded;
};

struct NamedRow {
  size_t number;                    // of the line where it begins
  std::vector<std::string> fields;  // in the order that was wanted; empty for a column without
};

// In any order, letter case, blanks and "_" ignored; separators and character sets as of a roster.
// Other columns are nobody's business, empty rows skipped. Throws wrong usage where a column is
// missing that is needed, or the file cannot be read as such a table.
std::vector<NamedRow> ReadNamedColumns(const std::string& path,
                                       const std::vector<WantedColumn>& wanted);

}  // namespace kivadmin
