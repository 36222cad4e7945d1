// Plans for entries that a file names one by one: those to move and those to delete. Somebody who
// is not there, or is there twice, is told with the line, and the others are planned.
#pragma once

#include <string>
#include <vector>

#include "hosts/kivadmin/plans/plan.h"
#include "hosts/kivadmin/roster_files/roster_file.h"

namespace kivadmin {

// A student, and the class that he or she goes to; without a teacher in `to` the same teacher.
struct MoveWish {
  RosterLine from;
  RosterLine to;
};

Plan PlanMoves(const Session& session, School& school, const std::vector<MoveWish>& wishes);

// The lines' students; or, of lines without any, their classes.
Plan PlanRemovals(const Session& session, School& school, const RosterFile& roster, bool ofClasses);

}  // namespace kivadmin
