#include "hosts/kivadmin/roster_files/roster_writer.h"

#include "hosts/kivadmin/roster_files/csv_text.h"

namespace kivadmin {

std::string RosterAsCsv(const std::vector<RosterLine>& lines) {
  std::string text = FormatCsv({"teacher", "class", "first_name", "last_name"});
  for (const RosterLine& line : lines) {
    text += FormatCsv({line.teacher, line.group, line.first, line.last});
  }
  return text;
}

}  // namespace kivadmin
