#include "hosts/kivreport/model.h"

#include <algorithm>

namespace kivreport {

size_t Report::CountStudents() const {
  size_t count = 0;
  for (const Teacher& teacher : teachers) {
    for (const Class& group : teacher.classes) {
      count += group.students.size();
    }
  }
  return count;
}

size_t Report::CountClasses() const {
  size_t count = 0;
  for (const Teacher& teacher : teachers) {
    count += teacher.classes.size();
  }
  return count;
}

std::vector<UnreadPlace> ListUnread(const Report& report) {
  std::vector<UnreadPlace> places;
  const auto note = [&](const std::optional<Unread>& unread, const std::string& teacher,
                        const std::string& group, const std::string& student) {
    if (unread) {
      places.push_back({teacher, group, student, &*unread});
    }
  };
  note(report.unread, "", "", "");
  for (const Teacher& teacher : report.teachers) {
    note(teacher.unread, teacher.name, "", "");
    for (const Class& group : teacher.classes) {
      note(group.unread, teacher.name, group.name, "");
      for (const Student& student : group.students) {
        note(student.unread, teacher.name, group.name, student.name);
      }
    }
  }
  return places;
}

std::vector<std::string> ReasonsOf(const Report& report) {
  std::vector<std::string> reasons;
  for (const UnreadPlace& place : ListUnread(report)) {
    if (std::find(reasons.begin(), reasons.end(), place.unread->reason) == reasons.end()) {
      reasons.push_back(place.unread->reason);
    }
  }
  return reasons;
}

}  // namespace kivreport
