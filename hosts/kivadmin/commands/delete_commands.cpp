// `delete`: a teacher, a class or a student, with all that belongs to it.
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/commands/confirmation.h"
#include "hosts/kivadmin/commands/plan_arguments.h"
#include "hosts/kivadmin/plans/entry_plan.h"
#include "hosts/kivadmin/rosters/belongings.h"
#include "hosts/kivadmin/rosters/deleted_entries.h"

namespace kivadmin {
namespace {

using kivstore::ListKind;
using kivstore::SLoginNameObj;

struct DeleteArguments {
  EntryNames where;
  std::string name;
  std::string file;  // in place of a name
  bool purge = false;
  PlanArguments plan;
};

void Delete(const Session& session, const DeleteArguments& arguments, const EntryToDelete& what,
            const Belongings& belongings) {
  const std::string text = what.level + ' ' + session.Show(what.entry) + ": " + TextOf(belongings);
  if (!session.IsDryRun()) {
    Confirm((arguments.purge ? "delete for good " : "delete ") + text, arguments.plan.yes);
  }
  const DeletedEntry deleted = SetAside(session, what);
  if (arguments.purge) {
    Purge(session, deleted);
  }
  session.Say("deleted " + text + (arguments.purge ? "" : "; kivadmin undelete brings it back"));
}

void DeleteTeacher(const CommonOptions& common, const DeleteArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  RequireTeachers(session);
  Roster teachers = Teachers(session);
  const SLoginNameObj& teacher = Find(session, teachers, arguments.name, "teacher");
  session.Site().SelectTeacher(&teacher);
  Delete(session, arguments, {teachers, ListKind::kTeachers, teacher, "teacher", ""},
         OfAllClasses(session));
}

// Those whom a file names: students, or classes.
void DeleteMany(const CommonOptions& common, const DeleteArguments& arguments, bool ofClasses) {
  if (!arguments.name.empty() || arguments.purge) {
    throw HostError(kWrongUsage, "--from-file: not with a NAME nor with --purge");
  }
  RosterFormat format;
  format.teacher = arguments.where.teacher;
  format.group = arguments.where.group;
  RosterFile roster = ReadRosterFile(arguments.file, format);
  const Session session(common, Session::Access::kChange);
  FitToStore(roster, session.HasTeachers());
  School school(session);
  Plan plan = PlanRemovals(session, school, roster, ofClasses);
  RunPlan(session, school, plan,
          {.verb = "deleted by", .name = roster.name, .readAs = roster.readAs}, arguments.plan);
}

void DeleteClass(const CommonOptions& common, const DeleteArguments& arguments) {
  if (!arguments.file.empty()) {
    DeleteMany(common, arguments, true);
    return;
  }
  NeedName(arguments.name);
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.where.teacher);
  Roster classes = Classes(session);
  const SLoginNameObj& group = Find(session, classes, arguments.name, "class");
  Delete(session, arguments, {classes, ListKind::kClasses, group, "class", TeacherText(session)},
         OfClass(session, group));
}

void DeleteStudent(const CommonOptions& common, const DeleteArguments& arguments) {
  if (!arguments.file.empty()) {
    DeleteMany(common, arguments, false);
    return;
  }
  NeedName(arguments.name);
  NeedClass(arguments.where.group);
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.where.teacher);
  const SLoginNameObj group = FindClass(session, arguments.where.group);
  Roster students = Students(session, group);
  const SLoginNameObj& student = Find(session, students, arguments.name, "student");
  Delete(session, arguments,
         {students, ListKind::kStudents, student, "student",
          "class " + session.Show(group) + OfTeacher(session)},
         OfStudent(session, students.folder, student));
}

DeleteArguments& AddOne(const Command& command, CommonOptions& common, Run<DeleteArguments> run,
                        bool needsName) {
  DeleteArguments& arguments = AddRun(command, common, run);
  AddPlanArguments(command, common, arguments.plan);
  const CommandOption name =
      command.AddOption("NAME", arguments.name, "The name, or #N for its place");
  if (needsName) {
    name.Require();
  }
  command.AddFlag("--purge", arguments.purge, "For good: undelete cannot bring it back");
  return arguments;
}

void AddFromFile(const Command& command, DeleteArguments& arguments, const char* help) {
  command.AddOption("--from-file", arguments.file, help).Takes("FILE");
}

}  // namespace

void AddDeleteCommands(const Command& app, CommonOptions& common) {
  const Command remove = app.AddCommand(
      "delete",
      "Delete a teacher, a class or a student; asks first, without a terminal needs --yes.\n"
      "It is kept in the folder Deleted of the data root until kivadmin purge.");
  remove.RequireCommand();

  const Command teacher = remove.AddCommand("teacher", "Delete a teacher with all classes");
  AddOne(teacher, common, DeleteTeacher, true);

  const Command group = remove.AddCommand("class", "Delete a class with all students");
  DeleteArguments& ofClass = AddOne(group, common, DeleteClass, false);
  AddTeacherOption(group, ofClass.where);
  AddFromFile(group, ofClass, "Instead of NAME: the classes of a table with teacher and class");

  const Command student = remove.AddCommand("student", "Delete a student with options and games");
  DeleteArguments& ofStudent = AddOne(student, common, DeleteStudent, false);
  AddClassOption(student, ofStudent.where);
  AddTeacherOption(student, ofStudent.where);
  AddFromFile(student, ofStudent,
              "Instead of NAME: the students of a roster file, as import takes it");
}

}  // namespace kivadmin
