// Rosters in the forms that other programs take, and ReadRosterFile.
#pragma once

#include <string>
#include <vector>

#include "hosts/kivadmin/roster_files/roster_file.h"

namespace kivadmin {

// With the heading teacher,class,first_name,last_name, UTF-8.
std::string RosterAsCsv(const std::vector<RosterLine>& lines);

// A bundle of OneRoster 1.1 as a zip: orgs, users, classes, enrollments, and the manifest; a file
// without rows is left out, as the manifest says. The sourcedIds are made of the names, so that who
// keeps the name keeps the sourcedId. Who has one name only has no family name. Throws as
// ZipWriter.
void WriteOneRoster(const std::string& path, bool mayReplace, const std::string& school,
                    const std::vector<RosterLine>& lines);

}  // namespace kivadmin
