#include "hosts/kivreport/selection.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <utility>

#include "hosts/common/counted.h"
#include "hosts/common/host_error.h"
#include "hosts/common/nearest.h"
#include "hosts/common/unicode.h"
#include "hosts/kivreport/cells.h"

namespace kivreport {
namespace {

constexpr size_t kMostNames = 10;  // in a message

using Names = std::vector<std::string>;

// Names of several lists may be the same.
Names Unique(const Names& names) {
  Names unique;
  for (const std::string& name : names) {
    if (std::find(unique.begin(), unique.end(), name) == unique.end()) {
      unique.push_back(name);
    }
    if (unique.size() > kMostNames * 10) {
      break;
    }
  }
  return unique;
}

std::string ThereAre(const Names& names) {
  std::string text = names.size() == 1 ? "; there is: " : "; there are: ";
  for (size_t i = 0; i < std::min(names.size(), kMostNames); ++i) {
    text += (i == 0 ? "" : ", ") + Printable(names[i]);
  }
  const size_t more = names.size() - std::min(names.size(), kMostNames);
  return text + (more > 0 ? " and " + std::to_string(more) + " more" : "");
}

std::string Named(const char* kind, const Selector& wanted) {
  const bool isPlace = wanted.Text().starts_with('#');
  return "no " + std::string(kind) + (isPlace ? " " + wanted.Text() : " \"" + wanted.Text() + '"');
}

std::string MissingFrom(const char* kind, const Selector& wanted, const Names& names) {
  return Named(kind, wanted) + ThereAre(Unique(names));
}

std::string MissingStudent(const Selector& wanted, const Names& names) {
  Names folded;
  std::transform(names.begin(), names.end(), std::back_inserter(folded), kivhost::FoldCase);
  const auto found = std::find(folded.begin(), folded.end(),
                               kivhost::Nearest(kivhost::FoldCase(wanted.Text()), folded));
  const std::string near =
      found != folded.end() ? names[static_cast<size_t>(found - folded.begin())] : "";
  return Named("student", wanted) + (near.empty()
                                         ? " among " + kivhost::Counted(names.size(), "student")
                                         : "; did you mean \"" + Printable(near) + "\"?");
}

std::string MissionsText(const Selection& selection) {
  const auto number = [](const std::optional<int>& mission) { return std::to_string(*mission); };
  if (!selection.highestMission) {
    return "at mission " + number(selection.lowestMission) + " or above";
  }
  if (!selection.lowestMission) {
    return "at mission " + number(selection.highestMission) + " or below";
  }
  return "at missions " + number(selection.lowestMission) + " to " +
         number(selection.highestMission);
}

bool IsTaken(const Student& student, size_t number, const Selection& selection) {
  return selection.student.Takes(student.name, number) &&
         (!student.progress || selection.TakesMission(student.progress->currentMission));
}

using SortKey = std::pair<int, std::string>;

SortKey SortKeyOf(const Student& student, Sort sort) {
  const int unknown = std::numeric_limits<int>::max();
  const int mission = student.progress ? student.progress->currentMission : unknown;
  return {sort == Sort::kMission ? mission : 0, kivhost::FoldAccents(student.name)};
}

void SortBy(std::vector<Student>& students, Sort sort) {
  std::vector<std::pair<SortKey, Student>> keyed;
  for (Student& student : students) {
    SortKey key = SortKeyOf(student, sort);
    keyed.emplace_back(std::move(key), std::move(student));
  }
  std::stable_sort(keyed.begin(), keyed.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::transform(keyed.begin(), keyed.end(), students.begin(),
                 [](auto& entry) { return std::move(entry.second); });
}

void LeaveOut(std::vector<Student>& students, const Selection& selection) {
  std::vector<Student> taken;
  for (size_t i = 0; i < students.size(); ++i) {
    if (IsTaken(students[i], i + 1, selection)) {
      taken.push_back(std::move(students[i]));
    }
  }
  students = std::move(taken);
}

void LeaveOutEmpty(Report& report) {
  for (Teacher& teacher : report.teachers) {
    std::erase_if(teacher.classes,
                  [](const Class& group) { return group.students.empty() && !group.unread; });
  }
  if (report.network) {
    std::erase_if(report.teachers, [](const Teacher& teacher) {
      return teacher.classes.empty() && !teacher.unread;
    });
  }
}

void LeaveOutDeparted(std::vector<Departed>& left, const Selection& selection) {
  std::erase_if(left, [&](const Departed& student) {
    return !selection.student.TakesName(student.name) ||
           (student.mission && !selection.TakesMission(*student.mission));
  });
}

}  // namespace

Selector::Selector(const std::string& text) : text(text), folded(kivhost::FoldCase(text)) {
  if (text.empty() || text[0] != '#') {
    return;
  }
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 1, end, place);
  if (error != std::errc() || stop != end || place < 1) {
    throw kivhost::HostError(kivhost::kWrongUsage,
                             text + ": a place in a list is # and a number from 1, as in #2");
  }
}

bool Selector::Takes(const std::string& name, size_t number) const {
  return place > 0 ? number == place : TakesName(name);
}

bool Selector::TakesName(const std::string& name) const {
  return IsAll() || (place == 0 && kivhost::FoldCase(name) == folded);
}

bool Selection::TakesMission(int mission) const {
  return mission >= lowestMission.value_or(mission) && mission <= highestMission.value_or(mission);
}

void Arrange(Class& group, const Selection& selection, Sought& sought) {
  if (!selection.student.IsAll()) {
    for (const Student& student : group.students) {
      sought.students.push_back(student.name);
    }
  }
  if (selection.LimitsStudents()) {
    LeaveOut(group.students, selection);
  }
  if (selection.sort != Sort::kStore) {
    SortBy(group.students, selection.sort);
  }
  sought.studentsTaken += group.students.size();
}

void Arrange(Report& report, const Selection& selection, Sought& sought) {
  for (Teacher& teacher : report.teachers) {
    for (Class& group : teacher.classes) {
      Arrange(group, selection, sought);
    }
  }
  if (selection.LimitsStudents()) {
    LeaveOutEmpty(report);
  }
  if (report.since) {
    LeaveOutDeparted(report.since->left, selection);
  }
}

std::string NothingText(const Selection& selection, const Sought& sought) {
  if (sought.hasTeachers && sought.teachersTaken == 0) {
    return sought.teachers.empty() ? "no teachers yet"
                                   : MissingFrom("teacher", selection.teacher, sought.teachers);
  }
  if (sought.classesTaken == 0) {
    return !sought.classes.empty()     ? MissingFrom("class", selection.group, sought.classes)
           : selection.teacher.IsAll() ? "no classes yet"
                                       : "no classes of teacher " + selection.teacher.Text();
  }
  return selection.student.IsAll() ? "no student " + MissionsText(selection)
                                   : MissingStudent(selection.student, sought.students);
}

}  // namespace kivreport
