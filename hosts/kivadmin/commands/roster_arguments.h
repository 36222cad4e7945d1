// What the commands that take a roster file have in common.
#pragma once

#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/roster_files/roster_file.h"

namespace kivadmin {

// FILE, which is read by `format`, whose options these are.
void AddRosterArguments(const Command& command, std::string& file, RosterFormat& format);

// --twins=keep.
void AddTwins(const Command& command, bool& keepsTwins);

}  // namespace kivadmin
