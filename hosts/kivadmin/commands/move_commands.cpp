// `move`: a class to another teacher, a student to another class.
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/layout_maker.h"
#include "hosts/kivadmin/rosters/roster_changes.h"
#include "store/change/moving.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;

struct MoveArguments {
  EntryNames from;
  EntryNames to;
  std::string name;
};

bool IsSame(const SLoginNameObj& a, const SLoginNameObj& b) {
  return kivhost::EqualNoCase(a.folderName.View(), b.folderName.View());
}

void RequireOther(const SLoginNameObj& from, const SLoginNameObj& to, const char* option) {
  if (IsSame(from, to)) {
    throw HostError(kWrongUsage, std::string(option) + ": it is there already");
  }
}

// The destination's classes folder is complete before, and the default class that the store gives
// an empty one afterwards.
void MoveClass(const CommonOptions& common, const MoveArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  RequireTeachers(session);
  const SLoginNameObj source = FindTeacher(session, arguments.from.teacher);
  const SLoginNameObj destination = FindTeacher(session, arguments.to.teacher);
  RequireOther(source, destination, "--to-teacher");
  session.Site().SelectTeacher(&destination);
  const Roster destinationClasses = Classes(session);
  session.Site().SelectTeacher(&source);
  Roster classes = Classes(session);
  SLoginNameObj& group = Find(session, classes, arguments.name, "class");
  MoveEntry(
      session, destinationClasses, group, "class", "teacher " + session.Show(destination), [&] {
        const kivstore::SString name = group.firstName;
        return kivstore::MoveClass(session.Site(), source, destination, group, classes.list, name);
      });
  if (!session.IsDryRun()) {
    session.Site().SelectTeacher(&destination);
    LayoutMaker(session).CompleteDefaultClass();
  }
}

// A class and whose it is; nobody's in a store without teachers.
struct Place {
  SLoginNameObj teacher;
  SLoginNameObj group;
};

Place FindPlace(const Session& session, const EntryNames& names) {
  ChooseTeacher(session, names.teacher);
  const SLoginNameObj* const teacher = session.Site().GetCurrentTeacher();
  return {teacher != nullptr ? *teacher : SLoginNameObj(), FindClass(session, names.group)};
}

bool MoveBetween(const Session& session, const Place& from, const Place& to, SLoginNameObj& student,
                 kivstore::SLoginList& students) {
  const SLoginNameObj who(student);
  if (IsSame(from.teacher, to.teacher)) {
    return kivstore::MoveStudent(session.Site(), from.group, to.group, student, students,
                                 who.firstName, who.lastName);
  }
  return kivstore::MoveStudentAcross(session.Site(), from.teacher, to.teacher, from.group, to.group,
                                     student, students, who.firstName, who.lastName);
}

void MoveStudent(const CommonOptions& common, const MoveArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  EntryNames toNames = arguments.to;
  if (toNames.teacher.empty()) {
    toNames.teacher = arguments.from.teacher;
  }
  const Place to = FindPlace(session, toNames);
  const Roster destination = Students(session, to.group);
  const Place from = FindPlace(session, arguments.from);
  if (IsSame(from.teacher, to.teacher)) {
    RequireOther(from.group, to.group, "--to-class");
  }
  Roster students = Students(session, from.group);
  SLoginNameObj& student = Find(session, students, arguments.name, "student");
  MoveEntry(session, destination, student, "student", "class " + session.Show(to.group),
            [&] { return MoveBetween(session, from, to, student, students.list); });
}

}  // namespace

void AddMoveCommands(const Command& app, CommonOptions& common) {
  const Command move = app.AddCommand("move", "Move a class or a student");
  move.RequireCommand();

  const Command group = move.AddCommand("class", "Move a class to another teacher");
  MoveArguments& ofClass = AddRun(group, common, MoveClass);
  AddChangeArguments(group, common);
  group.AddOption("NAME", ofClass.name, "The class: a name, or #N for its place").Require();
  group.AddOption("--teacher", ofClass.from.teacher, "The teacher it is of").Require();
  group.AddOption("--to-teacher", ofClass.to.teacher, "The teacher it goes to").Require();

  const Command student = move.AddCommand("student", "Move a student to another class");
  MoveArguments& ofStudent = AddRun(student, common, MoveStudent);
  AddChangeArguments(student, common);
  student.AddOption("NAME", ofStudent.name, "The student: a name, or #N for its place").Require();
  AddClassOption(student, ofStudent.from).Require();
  student.AddOption("--to-class", ofStudent.to.group, "The class the student goes to").Require();
  AddTeacherOption(student, ofStudent.from);
  student.AddOption("--to-teacher", ofStudent.to.teacher,
                    "The teacher of that class; without it the same teacher");
}

}  // namespace kivadmin
