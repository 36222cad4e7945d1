// Bringing the lines of a roster file into a store.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hosts/kivadmin/roster_files/roster_file.h"
#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

struct ImportCounts {
  size_t teachers = 0;
  size_t classes = 0;
  size_t students = 0;
  size_t there = 0;  // lines that added nothing
  size_t notTaken = 0;
};

// What stopped a line, or at once several of one class, of which `line` is the first.
using Refused = std::function<void(const RosterLine& line, const std::string& why)>;

// Adds what the lines have and the store has not: the teachers and classes first, as the lines
// come, then class by class the students. What cannot be taken is told to `refused` in the order of
// the lines, and the rest is taken.
ImportCounts ImportRosters(const Session& session, const std::vector<RosterLine>& lines,
                           const Refused& refused);

}  // namespace kivadmin
