#include "hosts/kivadmin/plans/plan.h"

#include <algorithm>
#include <map>

namespace kivadmin {

size_t Plan::Count(PlanStep::Kind kind) const {
  return static_cast<size_t>(std::count_if(
      steps.begin(), steps.end(), [&](const PlanStep& step) { return step.kind == kind; }));
}

size_t Plan::Count(PlanStep::Kind kind, PlanStep::Outcome outcome) const {
  return static_cast<size_t>(std::count_if(steps.begin(), steps.end(), [&](const PlanStep& step) {
    return step.kind == kind && step.outcome == outcome;
  }));
}

size_t Plan::CountFailed() const {
  return static_cast<size_t>(std::count_if(steps.begin(), steps.end(), [](const PlanStep& step) {
    return step.outcome == PlanStep::kFailed;
  }));
}

size_t Plan::Removals() const {
  size_t students = Count(PlanStep::kRemoveStudent);
  for (const PlanStep& step : steps) {
    students += step.kind == PlanStep::kRemoveClass ? static_cast<size_t>(step.students) : 0;
  }
  return students;
}

size_t Plan::NotTaken() const {
  size_t lines = 0;
  for (const PlanRefusal& refusal : refused) {
    lines += refusal.lines;
  }
  return lines;
}

void Plan::Sort() {
  std::map<const SchoolClass*, size_t> places;
  for (const PlanStep& step : steps) {
    places.emplace(step.group, places.size());
  }
  std::stable_sort(steps.begin(), steps.end(), [&](const PlanStep& a, const PlanStep& b) {
    return std::pair(a.kind, places[a.group]) < std::pair(b.kind, places[b.group]);
  });
}

}  // namespace kivadmin
