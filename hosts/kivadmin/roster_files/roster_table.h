// A roster as a table that a spreadsheet wrote: a row a student, a heading that tells the columns.
#pragma once

#include "hosts/kivadmin/roster_files/file_text.h"
#include "hosts/kivadmin/roster_files/roster_file.h"

namespace kivadmin {

// Fills all of `roster` but its name. A comma, a semicolon or a tab separates the columns,
// whichever makes the heading known, or what a first line "sep=;" says. Rows without a name are
// skipped, short ones filled up; what has more fields than the heading, or no name in them, is
// refused. Throws wrong usage where it is no such table.
void ReadRosterTable(const FileText& file, const RosterFormat& format, RosterFile& roster);

}  // namespace kivadmin
