#include "hosts/kivadmin/plans/removal_guard.h"

#include <map>

#include "hosts/common/counted.h"

namespace kivadmin {

using kivhost::Counted;

namespace {

bool Removes(const PlanStep& step) {
  return step.kind == PlanStep::kRemoveStudent || step.kind == PlanStep::kRemoveClass;
}

// Why the file is no ground to remove anybody, whatever is allowed; empty if it may be.
std::string WhyNobody(const RosterFile& roster) {
  return roster.isTorn          ? ": its last row breaks off with the file"
         : roster.lines.empty() ? ": has no rows"
                                : "";
}

// Why so many students are doubtful; empty if they are not.
std::string WhyDoubtful(const Plan& plan, const RosterFile& roster) {
  if (roster.endsOpen) {
    return "by a file whose last row has no end of line: is all of it there?";
  }
  const size_t lines = plan.NotTaken();
  return lines == 0 ? ""
                    : "while " + Counted(lines, "line") + " of the file " +
                          (lines == 1 ? "is" : "are") + " not taken";
}

// "3 of 12 students of class 5a, Ms Hill"; empty if no class loses more than a fifth.
std::string ClassThatLosesMany(const Plan& plan) {
  std::map<const SchoolClass*, size_t> byClass;
  for (const PlanStep& step : plan.steps) {
    if (Removes(step)) {
      byClass[step.group] +=
          step.kind == PlanStep::kRemoveClass ? static_cast<size_t>(step.students) : 1;
    }
  }
  for (const auto& [group, count] : byClass) {
    const auto size = static_cast<size_t>(group->students.list.GetSize());
    if (count * 5 > size) {
      return std::to_string(count) + " of " + Counted(size, "student") + " of class " +
             Text(*group);
    }
  }
  return "";
}

size_t CountStudents(School& school) {
  size_t count = 0;
  for (const auto& teacher : school.GetTeachers()) {
    for (const auto& group : school.GetClasses(*teacher)) {
      count += static_cast<size_t>(group->students.list.GetSize());
    }
  }
  return count;
}

}  // namespace

void NeedModestRemovals(School& school, const Plan& plan, const RosterWish& wish,
                        const RosterFile& roster) {
  const size_t removals = plan.Removals();
  if (removals == 0) {
    return;
  }
  if (const std::string why = WhyNobody(roster); !why.empty()) {
    throw HostError(kRefused, roster.name + why + "; nobody is removed by such a file");
  }
  if (wish.allowed && removals <= *wish.allowed) {
    return;
  }
  const std::string remedy = "; if that is meant, --allow-removals " + std::to_string(removals);
  if (const std::string why = WhyDoubtful(plan, roster); !why.empty()) {
    throw HostError(kRefused, Counted(removals, "student") + " would be removed " + why + remedy);
  }
  if (const std::string group = ClassThatLosesMany(plan); !group.empty()) {
    throw HostError(kRefused, group + " would be removed, more than a fifth" + remedy);
  }
  if (const size_t all = CountStudents(school); removals * 10 > all) {
    throw HostError(kRefused, std::to_string(removals) + " of " + Counted(all, "student") +
                                  " of the store would be removed, more than a tenth" + remedy);
  }
}

}  // namespace kivadmin
