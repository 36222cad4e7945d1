#include "hosts/kivreport/page/class_figures.h"

#include <algorithm>
#include <vector>

namespace kivreport {

int WithinCourse(int mission) {
  return std::clamp(mission, 1, kMissions);
}

ClassFigures FiguresOf(const Report& report, const Class& group) {
  ClassFigures figures;
  std::vector<int> missions;
  for (const Student& student : group.students) {
    if (student.progress) {
      const int mission = student.progress->currentMission;
      missions.push_back(mission);
      ++figures.atMission[static_cast<size_t>(WithinCourse(mission) - 1)];
      const Standing standing = StandingOf(report, student);
      figures.notBegun += standing == Standing::kNotBegun;
      figures.idle += standing == Standing::kIdle;
    }
  }
  figures.known = missions.size();
  if (!missions.empty()) {
    const auto [least, most] = std::minmax_element(missions.begin(), missions.end());
    figures.least = *least;
    figures.most = *most;
    figures.median = Median(missions).value_or(0);
  }
  return figures;
}

}  // namespace kivreport
