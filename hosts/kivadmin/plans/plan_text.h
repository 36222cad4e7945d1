// A plan and what came of it, in words and as JSON.
//
//   + teacher Ms Hill
//   + class 5a (Ms Hill)
//   + student Ann Lee (5a, Ms Hill)
//   ~ class 4b renamed 5b (Ms Hill)
//   ~ class 5a moved Mr Fox -> 6a, Ms Hill
//   ~ student Bo Chan moved 4b, Mr Fox -> 5b, Ms Hill
//   - student Cy Dee (5a, Ms Hill)
//   - class 9c (Ms Hill): 24 students
#pragma once

#include <iosfwd>
#include <string>

#include "hosts/kivadmin/plans/plan.h"

namespace kivadmin {

// A line for each step; of a long plan those who are added to a class are counted in one, unless
// `all` is asked for.
void PrintPlan(std::ostream& out, const Plan& plan, bool all, bool isColored);

// "add 1 teacher, 2 classes and 28 students, move 3 students, remove 1"; empty where nothing is to
// be done.
std::string ToDo(const Plan& plan);
// "1 teacher, 2 classes, 28 students added; 3 students moved; 27 lines there already, 1 not taken":
// what is done; "nothing to change" where nothing is.
std::string DoneText(const Plan& plan);

// {"read_as": ..., "notes": [...], "dry_run": ..., "steps": [{"do": "add", "level": "student",
// "name": ..., "at": ..., "to": ..., "line": ..., "outcome": "done", "why": ...}], "refused":
// [{"line": ..., "file": ..., "why": ..., "lines": ...}], "totals": {...}}
std::string PlanJson(const Plan& plan, const std::string& readAs, bool isDryRun);

}  // namespace kivadmin
