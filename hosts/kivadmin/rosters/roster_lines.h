// The rosters of a store in the form of a roster outside of it.
#pragma once

#include <vector>

#include "hosts/kivadmin/roster_files/roster_file.h"
#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

// List by list, in their orders.
std::vector<RosterLine> RosterLines(const Session& session);

}  // namespace kivadmin
