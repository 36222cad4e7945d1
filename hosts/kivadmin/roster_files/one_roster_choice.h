// Which classes of a OneRoster bundle are meant: those of one school, and of one term.
#pragma once

#include <string>
#include <vector>

#include "hosts/kivadmin/roster_files/one_roster.h"

namespace kivadmin {

// Their sourcedIds, in the order of the file. Throws wrong usage, with `file`, where the school or
// the term that is told is not there, and where several schools are and none is told.
std::vector<std::string> ChooseClasses(const OneRoster& bundle, const RosterFormat& format,
                                       const std::string& file);

}  // namespace kivadmin
