// `rename`: a teacher, a class or a student.
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/layout_maker.h"
#include "hosts/kivadmin/rosters/roster_changes.h"
#include "store/change/renaming.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;
using kivstore::SString;

struct RenameArguments {
  EntryNames where;
  std::string name;
  std::string newName;
  std::string newLast;
};

// The store gives a teacher without a classes folder a default class; a complete one needs none.
void RenameTeacher(const CommonOptions& common, const RenameArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  RequireTeachers(session);
  Roster teachers = Teachers(session);
  const SLoginNameObj& teacher = Find(session, teachers, arguments.name, "teacher");
  const SString name = session.NewName(arguments.newName, "NEW");
  session.Say(RenameEntry(session, teachers, teacher, {name, SString()}, "teacher", [&] {
    LayoutMaker(session).CompleteEntry(teachers.folder, teacher.folderName,
                                       &LayoutMaker::CompleteTeacher);
    return kivstore::RenameTeacher(session.Site(), teacher, teachers.list, name);
  }));
}

void RenameClass(const CommonOptions& common, const RenameArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.where.teacher);
  Roster classes = Classes(session);
  const SLoginNameObj& group = Find(session, classes, arguments.name, "class");
  const SString name = session.NewName(arguments.newName, "NEW");
  session.Say(RenameEntry(session, classes, group, {name, SString()}, "class", [&] {
    return RenameClassOf(session, classes, group, classes.list, name);
  }));
}

void RenameStudent(const CommonOptions& common, const RenameArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.where.teacher);
  const SLoginNameObj group = FindClass(session, arguments.where.group);
  Roster students = Students(session, group);
  const SLoginNameObj& student = Find(session, students, arguments.name, "student");
  const PersonName name = NewPerson(session, arguments.newName, arguments.newLast);
  session.Say(RenameEntry(session, students, student, name, "student", [&] {
    return kivstore::RenameStudent(session.Site(), group, student, students.list, name.first,
                                   name.last);
  }));
}

RenameArguments& AddOne(const Command& command, CommonOptions& common, Run<RenameArguments> run) {
  RenameArguments& arguments = AddRun(command, common, run);
  AddChangeArguments(command, common);
  command.AddOption("NAME", arguments.name, "The present name, or #N for its place").Require();
  return arguments;
}

}  // namespace

void AddRenameCommands(const Command& app, CommonOptions& common) {
  const Command rename = app.AddCommand("rename", "Rename a teacher, a class or a student");
  rename.RequireCommand();

  const Command teacher = rename.AddCommand("teacher", "Give a teacher another name");
  RenameArguments& ofTeacher = AddOne(teacher, common, RenameTeacher);
  teacher.AddOption("NEW", ofTeacher.newName, "The new name").Require();

  const Command group = rename.AddCommand("class", "Give a class another name");
  RenameArguments& ofClass = AddOne(group, common, RenameClass);
  group.AddOption("NEW", ofClass.newName, "The new name").Require();
  AddTeacherOption(group, ofClass.where);

  const Command student = rename.AddCommand("student", "Give a student another name");
  RenameArguments& ofStudent = AddOne(student, common, RenameStudent);
  student.AddOption("NEWFIRST", ofStudent.newName, "The new first name").Require();
  student.AddOption("NEWLAST", ofStudent.newLast, "And last name; without it there is none");
  AddClassOption(student, ofStudent.where).Require();
  AddTeacherOption(student, ofStudent.where);
}

}  // namespace kivadmin
