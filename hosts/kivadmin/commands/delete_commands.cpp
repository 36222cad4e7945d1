// `delete`: a teacher, a class or a student, with all that belongs to it.
#include <iostream>

#include "hosts/common/console.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/roster_changes.h"
#include "store/change/deleting.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;

struct DeleteArguments {
  EntryNames where;
  std::string name;
  bool yes = false;
};

void Confirm(const Session& session, const DeleteArguments& arguments, const SLoginNameObj& entry,
             const char* level) {
  if (arguments.yes || session.IsDryRun()) {
    return;
  }
  const std::string what = std::string(level) + ' ' + session.Show(entry);
  if (!kivhost::InputIsTerminal()) {
    throw HostError(kWrongUsage, "delete " + what + ": not without --yes");
  }
  std::cerr << "Delete " << what << " and all that belongs to it? [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  if (answer != "y" && answer != "Y" && answer != "yes") {
    throw HostError(kRefused, "nothing deleted");
  }
}

void DeleteTeacher(const CommonOptions& common, const DeleteArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  RequireTeachers(session);
  Roster teachers = Teachers(session);
  const SLoginNameObj& teacher = Find(session, teachers, arguments.name, "teacher");
  Confirm(session, arguments, teacher, "teacher");
  DeleteEntry(session, teacher, "teacher",
              [&] { return kivstore::DeleteTeacher(session.Site(), teacher, teachers.list); });
}

void DeleteClass(const CommonOptions& common, const DeleteArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.where.teacher);
  Roster classes = Classes(session);
  const SLoginNameObj& group = Find(session, classes, arguments.name, "class");
  Confirm(session, arguments, group, "class");
  bool stop = false;
  DeleteEntry(session, group, "class", [&] {
    return kivstore::DeleteClass(session.Site(), group, classes.list, true, stop);
  });
}

void DeleteStudent(const CommonOptions& common, const DeleteArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.where.teacher);
  const SLoginNameObj group = FindClass(session, arguments.where.group);
  Roster students = Students(session, group);
  const SLoginNameObj& student = Find(session, students, arguments.name, "student");
  Confirm(session, arguments, student, "student");
  bool stop = false;
  DeleteEntry(session, student, "student", [&] {
    return kivstore::DeleteStudent(session.Site(), group, student, students.list, true, stop);
  });
}

DeleteArguments& AddOne(const Command& command, CommonOptions& common, Run<DeleteArguments> run) {
  DeleteArguments& arguments = AddRun(command, common, run);
  AddChangeArguments(command, common);
  command.AddOption("NAME", arguments.name, "The name, or #N for its place").Require();
  command.AddFlag("--yes", arguments.yes, "Do not ask");
  return arguments;
}

}  // namespace

void AddDeleteCommands(const Command& app, CommonOptions& common) {
  const Command remove = app.AddCommand(
      "delete",
      "Delete a teacher, a class or a student; asks first, without a terminal needs --yes");
  remove.RequireCommand();

  const Command teacher = remove.AddCommand("teacher", "Delete a teacher with all classes");
  AddOne(teacher, common, DeleteTeacher);

  const Command group = remove.AddCommand("class", "Delete a class with all students");
  DeleteArguments& ofClass = AddOne(group, common, DeleteClass);
  AddTeacherOption(group, ofClass.where);

  const Command student = remove.AddCommand("student", "Delete a student with options and games");
  DeleteArguments& ofStudent = AddOne(student, common, DeleteStudent);
  AddClassOption(student, ofStudent.where).Require();
  AddTeacherOption(student, ofStudent.where);
}

}  // namespace kivadmin
