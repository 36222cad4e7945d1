// A plan that brings the lines of a roster file into a store, or makes the store as they say.
//
// A line is there already if its class has somebody of that name, letter case ignored. Else, where
// students may move: if of all students whom no line names in their class exactly one has the name,
// and no other line wants it, it is that one who moves, with options and games. Where more than one
// could be meant nobody moves, is added or is removed for that name, and the lines are told.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/kivadmin/plans/plan.h"
#include "hosts/kivadmin/roster_files/roster_file.h"

namespace kivadmin {

struct RosterWish {
  bool keepsTwins = false;                // the second of one name in one class too, told apart
  bool moves = false;                     // students who are in another class by the file
  bool removesMissing = false;            // students whom no line names
  std::vector<std::string> renames = {};  // "4b=5b" or "Ms Hill/4b=5b", classes ahead of the rest
  std::optional<size_t> allowed = {};     // so many may be removed, whatever their share
};

// Changes nothing. Throws what makes a plan impossible: a list that cannot be read where students
// may move, a rename of a class that is not there.
Plan PlanRoster(const Session& session, School& school, const RosterFile& roster,
                const RosterWish& wish);

}  // namespace kivadmin
