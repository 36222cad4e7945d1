// `add`: a teacher, a class or a student.
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/roster_changes.h"

namespace kivadmin {
namespace {

struct AddArguments {
  EntryNames where;
  std::string name;
  std::string last;
};

void AddTeacher(const CommonOptions& common, const AddArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  RequireTeachers(session);
  const Roster teachers = Teachers(session);
  const auto added = EnterTeacher(session, teachers, session.NewName(arguments.name, "NAME"));
  session.Say("added teacher " + session.Show(added) + LikeText(session, teachers, added));
}

void AddClass(const CommonOptions& common, const AddArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.where.teacher);
  const Roster classes = Classes(session);
  const auto added = EnterClass(session, classes, session.NewName(arguments.name, "NAME"));
  session.Say("added class " + session.Show(added) + OfTeacher(session) +
              LikeText(session, classes, added));
}

void AddStudent(const CommonOptions& common, const AddArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.where.teacher);
  const auto group = FindClass(session, arguments.where.group);
  const Roster students = Students(session, group);
  const auto added =
      EnterStudent(session, students, NewPerson(session, arguments.name, arguments.last));
  session.Say("added student " + session.Show(added) + " to class " + session.Show(group) +
              OfTeacher(session) + LikeText(session, students, added));
}

}  // namespace

void AddAddCommands(const Command& app, CommonOptions& common) {
  const Command add = app.AddCommand("add", "Add a teacher, a class or a student");
  add.RequireCommand();

  const Command teacher = add.AddCommand("teacher", "Add a teacher to the store");
  AddArguments& ofTeacher = AddRun(teacher, common, AddTeacher);
  AddChangeArguments(teacher, common);
  teacher.AddOption("NAME", ofTeacher.name, "The new teacher's name").Require();

  const Command group = add.AddCommand("class", "Add a class to the store");
  AddArguments& ofClass = AddRun(group, common, AddClass);
  AddChangeArguments(group, common);
  group.AddOption("NAME", ofClass.name, "The new class's name").Require();
  AddTeacherOption(group, ofClass.where);

  const Command student = add.AddCommand("student", "Add a student to the store");
  AddArguments& ofStudent = AddRun(student, common, AddStudent);
  AddChangeArguments(student, common);
  student.AddOption("FIRST", ofStudent.name, "The new student's first name").Require();
  student.AddOption("LAST", ofStudent.last, "And last name");
  AddClassOption(student, ofStudent.where).Require();
  AddTeacherOption(student, ofStudent.where);
}

}  // namespace kivadmin
