#include "hosts/kivadmin/rosters/roster_lines.h"

#include "hosts/kivadmin/rosters/rosters.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;

RosterLine LineOf(const std::string& teacher, const std::string& group, const std::string& first,
                  const std::string& last) {
  RosterLine line;
  line.teacher = teacher;
  line.group = group;
  line.first = first;
  line.last = last;
  return line;
}

void AddStudents(const Session& session, const std::string& teacher, const SLoginNameObj& group,
                 std::vector<RosterLine>& lines) {
  const std::string name = session.Show(group.firstName);
  const Roster students = Students(session, group);
  if (students.list.IsEmpty()) {
    lines.push_back(LineOf(teacher, name, "", ""));
  }
  for (const SLoginNameObj& student : students.list) {
    lines.push_back(
        LineOf(teacher, name, session.Show(student.firstName), session.Show(student.lastName)));
  }
}

// Of the selected teacher.
void AddClasses(const Session& session, const std::string& teacher,
                std::vector<RosterLine>& lines) {
  const Roster classes = Classes(session);
  if (classes.list.IsEmpty() && !teacher.empty()) {
    lines.push_back(LineOf(teacher, "", "", ""));
  }
  for (const SLoginNameObj& group : classes.list) {
    AddStudents(session, teacher, group, lines);
  }
}

}  // namespace

std::vector<RosterLine> RosterLines(const Session& session) {
  std::vector<RosterLine> lines;
  if (!session.HasTeachers()) {
    AddClasses(session, "", lines);
    return lines;
  }
  const Roster teachers = Teachers(session);
  for (const SLoginNameObj& teacher : teachers.list) {
    session.Site().SelectTeacher(&teacher);
    AddClasses(session, session.Show(teacher.firstName), lines);
  }
  return lines;
}

}  // namespace kivadmin
