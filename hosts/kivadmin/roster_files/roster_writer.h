// Rosters in the forms that other programs take, and ReadRosterFile.
#pragma once

#include <string>
#include <vector>

#include "hosts/kivadmin/roster_files/roster_file.h"

namespace kivadmin {

// With the heading teacher,class,first_name,last_name, UTF-8.
std::string RosterAsCsv(const std::vector<RosterLine>& lines);

}  // namespace kivadmin
