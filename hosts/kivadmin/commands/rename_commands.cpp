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
  RenameEntry(session, teachers, teacher, {name, SString()}, "teacher", [&] {
    LayoutMaker(session).CompleteEntry(teachers.folder, teacher.folderName,
                                       &LayoutMaker::CompleteTeacher);
    return kivstore::RenameTeacher(session.Site(), teacher, teachers.list, name);
  });
}

void RenameClass(const CommonOptions& common, const RenameArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.where.teacher);
  Roster classes = Classes(session);
  const SLoginNameObj& group = Find(session, classes, arguments.name, "class");
  const SString name = session.NewName(arguments.newName, "NEW");
  RenameEntry(session, classes, group, {name, SString()}, "class", [&] {
    LayoutMaker(session).CompleteEntry(classes.folder, group.folderName,
                                       &LayoutMaker::CompleteClass);
    return kivstore::RenameClass(session.Site(), group, classes.list, name);
  });
}

void RenameStudent(const CommonOptions& common, const RenameArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.where.teacher);
  const SLoginNameObj group = FindClass(session, arguments.where.group);
  Roster students = Students(session, group);
  const SLoginNameObj& student = Find(session, students, arguments.name, "student");
  const PersonName name = NewPerson(session, arguments.newName, arguments.newLast);
  RenameEntry(session, students, student, name, "student", [&] {
    return kivstore::RenameStudent(session.Site(), group, student, students.list, name.first,
                                   name.last);
  });
}

RenameArguments& AddOne(CLI::App& command, CommonOptions& common, Run<RenameArguments> run) {
  RenameArguments& arguments = AddRun(command, common, run);
  AddChangeArguments(command, common);
  command.add_option("NAME", arguments.name, "The present name, or #N for its place")->required();
  return arguments;
}

}  // namespace

void AddRenameCommands(CLI::App& app, CommonOptions& common) {
  CLI::App* const rename = app.add_subcommand("rename", "Rename a teacher, a class or a student");
  rename->require_subcommand(1);

  CLI::App* const teacher = rename->add_subcommand("teacher", "Give a teacher another name");
  RenameArguments& ofTeacher = AddOne(*teacher, common, RenameTeacher);
  teacher->add_option("NEW", ofTeacher.newName, "The new name")->required();

  CLI::App* const group = rename->add_subcommand("class", "Give a class another name");
  RenameArguments& ofClass = AddOne(*group, common, RenameClass);
  group->add_option("NEW", ofClass.newName, "The new name")->required();
  AddTeacherOption(*group, ofClass.where);

  CLI::App* const student = rename->add_subcommand("student", "Give a student another name");
  RenameArguments& ofStudent = AddOne(*student, common, RenameStudent);
  student->add_option("NEWFIRST", ofStudent.newName, "The new first name")->required();
  student->add_option("NEWLAST", ofStudent.newLast, "And last name; without it there is none");
  AddClassOption(*student, ofStudent.where)->required();
  AddTeacherOption(*student, ofStudent.where);
}

}  // namespace kivadmin
