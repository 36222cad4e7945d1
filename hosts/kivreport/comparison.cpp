#include "hosts/kivreport/comparison.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

#include "hosts/common/host_error.h"
#include "hosts/kivreport/matching.h"

namespace kivreport {
namespace {

std::string PlaceText(const KeptStudent& kept) {
  return kept.teacher.empty() ? kept.group : kept.teacher + ", " + kept.group;
}

// Calls function(teacher, class, student) in order.
template <class AnyReport, class Function>
void ForEachStudent(AnyReport& report, Function function) {
  for (auto& teacher : report.teachers) {
    for (auto& group : teacher.classes) {
      for (auto& student : group.students) {
        function(teacher, group, student);
      }
    }
  }
}

Change Unsure(const char* why) {
  return {Change::kUnsure, {}, why};
}

Change ChangeOf(const Student& student, const Match& match, const KeptReport& before) {
  switch (match.kind) {
    case Match::kSeveralThere:
      return Unsure("several of this name in the class");
    case Match::kSeveralElsewhere:
      return Unsure("may be one of this name from another class");
    case Match::kNone:
      return before.isPart        ? Unsure("the older report tells of a part only")
             : !before.isComplete ? Unsure("the older report could not read everything")
                                  : Change{Change::kNew, {}, ""};
    case Match::kSamePlace:
    case Match::kOtherPlace:
      break;
  }
  Change change;
  if (student.progress && match.kept->mission) {
    change.missions = student.progress->currentMission - *match.kept->mission;
  }
  if (match.kind == Match::kOtherPlace) {
    change.kind = Change::kOtherClass;
    change.note = "was in " + PlaceText(*match.kept);
  }
  return change;
}

template <class Entries>
auto FindNamed(const Entries& entries, const std::string& name) {
  return std::find_if(entries.begin(), entries.end(),
                      [&](const auto& entry) { return entry.name == name; });
}

// Of the older report's places, those that this report tells of and has read.
class Scope {
 public:
  Scope(const Report& report, const Selection& selection) : report(report), selection(selection) {}

  bool IsLimited() const { return !selection.teacher.IsAll() || !selection.group.IsAll(); }

  bool Has(const KeptStudent& kept) const {
    const auto teacher = FindNamed(report.teachers, kept.teacher);
    if (teacher == report.teachers.end()) {
      return selection.teacher.IsAll() && selection.group.IsAll() && !report.unread;
    }
    const auto group = FindNamed(teacher->classes, kept.group);
    if (group == teacher->classes.end()) {
      return selection.group.IsAll() && !teacher->unread;
    }
    return !group->unread;
  }

 private:
  const Report& report;
  const Selection& selection;
};

std::vector<Departed> DepartedOf(const Matching& matching, const Scope& scope) {
  std::vector<Departed> left;
  for (const auto& [kept, mayBeElsewhere] : matching.ListUnmatched()) {
    if (scope.Has(*kept)) {
      const char* const note = mayBeElsewhere      ? "may be one of this name in another class"
                               : scope.IsLimited() ? "may have gone to another class"
                                                   : "";
      left.push_back({kept->teacher, kept->group, kept->name, kept->mission, note});
    }
  }
  return left;
}

template <class Function>
void ForEachClass(Report& report, Function function) {
  for (Teacher& teacher : report.teachers) {
    for (Class& group : teacher.classes) {
      function(teacher, group);
    }
  }
}

void AddMedian(Class& group, size_t at, const std::vector<int>& missions) {
  if (const auto median = Median(missions)) {
    group.history.push_back({at, *median, missions.size()});
  }
}

// By teacher and class.
using MissionsByPlace = std::map<std::pair<std::string, std::string>, std::vector<int>>;

void AddMedians(Report& report, size_t at, const KeptReport& before) {
  MissionsByPlace missions;
  for (const KeptStudent& kept : before.students) {
    if (kept.mission) {
      missions[{kept.teacher, kept.group}].push_back(*kept.mission);
    }
  }
  ForEachClass(report, [&](const Teacher& teacher, Class& group) {
    AddMedian(group, at, missions[{teacher.name, group.name}]);
  });
}

// A class of which only some students are told has no median.
void AddKept(Report& report, const KeptReport& before) {
  const size_t at = report.times.size();
  report.times.push_back(before.when);
  if (!before.lacksStudents) {
    AddMedians(report, at, before);
  }
  const Matching matching(report, before);
  auto match = matching.GetMatches().begin();
  ForEachStudent(report, [&](const Teacher&, const Class&, Student& student) {
    if (match->kept != nullptr && match->kept->mission) {
      student.history.push_back({at, *match->kept->mission});
    }
    ++match;
  });
}

void AddPresent(Report& report) {
  const size_t at = report.times.size();
  report.times.push_back(report.when);
  ForEachClass(report, [&](const Teacher&, Class& group) {
    std::vector<int> missions;
    for (Student& student : group.students) {
      if (student.progress) {
        missions.push_back(student.progress->currentMission);
        student.history.push_back({at, missions.back()});
      }
    }
    AddMedian(group, at, missions);
  });
}

template <class Points>
void Renumber(Points& points, const std::vector<size_t>& places) {
  for (auto& point : points) {
    point.at = places[point.at];
  }
  std::sort(points.begin(), points.end(), [](const auto& a, const auto& b) { return a.at < b.at; });
}

// Files come in any order.
void SortByTime(Report& report) {
  std::vector<size_t> order(report.times.size()), places(order.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](size_t a, size_t b) { return report.times[a] < report.times[b]; });
  std::vector<std::string> times;
  for (size_t place = 0; place < order.size(); ++place) {
    places[order[place]] = place;
    times.push_back(report.times[order[place]]);
  }
  report.times = std::move(times);
  ForEachClass(report, [&](const Teacher&, Class& group) {
    Renumber(group.history, places);
    for (Student& student : group.students) {
      Renumber(student.history, places);
    }
  });
}

}  // namespace

void CompareWith(Report& report, const KeptReport& before, const std::string& file,
                 const Selection& selection) {
  const Matching matching(report, before);
  auto match = matching.GetMatches().begin();
  ForEachStudent(report, [&](const Teacher&, const Class&, Student& student) {
    student.change = ChangeOf(student, *match++, before);
  });
  report.since = Since{before.when, file, DepartedOf(matching, Scope(report, selection))};
}

void AddHistory(Report& report, const std::string& folder, std::vector<std::string>& passed) {
  for (const std::string& path : ListKeptReports(folder)) {
    try {
      const KeptReport before = ReadKeptReport(path);
      if (before.when.empty()) {
        passed.push_back(path +
                         ": does not tell when it was written; put the date into its name, "
                         "as in kept-2026-09-01.json");
      } else {
        AddKept(report, before);
      }
    } catch (const kivhost::HostError& none) {
      passed.emplace_back(none.what());
    }
  }
  AddPresent(report);
  SortByTime(report);
}

}  // namespace kivreport
