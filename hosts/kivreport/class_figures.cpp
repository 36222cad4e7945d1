#include "hosts/kivreport/class_figures.h"

#include <algorithm>
#include <vector>

namespace kivreport {
namespace {

class Counting {
 public:
  explicit Counting(const Report& report) : report(report) {}

  void Add(const Class& group) {
    for (const Student& student : group.students) {
      if (student.progress) {
        Add(student);
      }
    }
  }

  ClassFigures Take() {
    figures.known = missions.size();
    if (!missions.empty()) {
      const auto [least, most] = std::minmax_element(missions.begin(), missions.end());
      figures.least = *least;
      figures.most = *most;
      figures.median = Median(missions).value_or(0);
    }
    return figures;
  }

 private:
  void Add(const Student& student) {
    const int mission = student.progress->currentMission;
    missions.push_back(mission);
    ++figures.atMission[static_cast<size_t>(WithinCourse(mission) - 1)];
    const Standing standing = StandingOf(report, student);
    figures.notBegun += standing == Standing::kNotBegun;
    figures.idle += standing == Standing::kIdle;
  }

  const Report& report;
  ClassFigures figures;
  std::vector<int> missions;
};

}  // namespace

int WithinCourse(int mission) {
  return std::clamp(mission, 1, kMissions);
}

ClassFigures FiguresOf(const Report& report, const Class& group) {
  Counting counting(report);
  counting.Add(group);
  return counting.Take();
}

ClassFigures FiguresOf(const Report& report) {
  Counting counting(report);
  for (const Teacher& teacher : report.teachers) {
    for (const Class& group : teacher.classes) {
      counting.Add(group);
    }
  }
  return counting.Take();
}

}  // namespace kivreport
