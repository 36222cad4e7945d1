// Plans for whole classes: other names, and the change of year.
#pragma once

#include <string>
#include <vector>

#include "hosts/kivadmin/plans/plan.h"

namespace kivadmin {

// "4b=5b", or "Ms Hill/4b=5b" where more than one teacher has a 4b. The school has the new names
// from then on. Throws if a class is not there or its new name is taken.
void PlanRenames(const Session& session, School& school, const std::vector<std::string>& renames,
                 Plan& plan);

// A class that goes up a year, or with nothing in `toGroup` leaves school.
struct Promotion {
  size_t line = 0;
  std::string fromTeacher, fromGroup, toTeacher, toGroup;
};

// Whole classes, each by one rename: to its new name, its new teacher, or both. Where a class of
// that name is and stays, its students come into that one. The order is found here: a class whose
// name another wants goes first.
Plan PlanPromotions(const Session& session, School& school,
                    const std::vector<Promotion>& promotions);

}  // namespace kivadmin
