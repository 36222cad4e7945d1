#include <iostream>
#include <string>

#include "hosts/common/console.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/roster_work.h"
#include "store/change/deleting.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;

struct DeleteArguments {
  EntryNames where;
  std::string name;
  bool yes = false;
};

void Confirm(const Session& session, const DeleteArguments& arguments, const std::string& what) {
  if (arguments.yes || session.IsDryRun()) {
    return;
  }
  if (!kivhost::InputIsTerminal()) {
    throw AdminError{kWrongUsage, "delete " + what + ": not without --yes"};
  }
  std::cerr << "Delete " << what << " and all that belongs to it? [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  if (answer != "y" && answer != "Y" && answer != "yes") {
    throw AdminError{kRefused, "nothing deleted"};
  }
}

// `remove` answers what the store does. The entry is one of the roster, which may lose it.
template <class Remove>
void DeleteEntry(const Session& session, const DeleteArguments& arguments, const Roster& roster,
                 const SLoginNameObj& entry, const std::string& level, Remove remove) {
  const std::string what = level + ' ' + session.Show(entry);
  Confirm(session, arguments, what);
  const kivstore::SFileSpec folder = FolderOf(roster, entry);
  if (!session.IsDryRun() && !remove()) {
    throw session.WhyRefused("unable to delete " + what, roster.folder, &folder);
  }
  session.Say("deleted " + what);
}

void DeleteTeacher(const CommonOptions& common, const DeleteArguments& arguments) {
  Session session(common, Session::Access::kChange);
  RequireTeachers(session);
  const auto teachers = session.Teachers();
  const SLoginNameObj* const teacher = session.Find(*teachers, arguments.name, "teacher");
  DeleteEntry(session, arguments, *teachers, *teacher, "teacher",
              [&] { return kivstore::DeleteTeacher(teacher, &teachers->list.Array()); });
}

void DeleteClass(const CommonOptions& common, const DeleteArguments& arguments) {
  Session session(common, Session::Access::kChange);
  session.ChooseTeacher(arguments.where.teacher);
  const auto classes = session.Classes();
  const SLoginNameObj* const group = session.Find(*classes, arguments.name, "class");
  bool stop = false;
  DeleteEntry(session, arguments, *classes, *group, "class",
              [&] { return kivstore::DeleteClass(group, &classes->list.Array(), true, stop); });
}

void DeleteStudent(const CommonOptions& common, const DeleteArguments& arguments) {
  Session session(common, Session::Access::kChange);
  session.ChooseTeacher(arguments.where.teacher);
  const SLoginNameObj group = session.FindClass(arguments.where.group);
  const auto students = session.Students(group);
  const SLoginNameObj* const student = session.Find(*students, arguments.name, "student");
  bool stop = false;
  DeleteEntry(session, arguments, *students, *student, "student", [&] {
    return kivstore::DeleteStudent(&group, student, &students->list.Array(), true, stop);
  });
}

using Action = void (*)(const CommonOptions&, const DeleteArguments&);

CLI::App* AddOne(CLI::App& parent, CommonOptions& common, const char* level, Action action,
                 const std::shared_ptr<DeleteArguments>& arguments) {
  CLI::App* const command = parent.add_subcommand(
      level, std::string("Delete a ") + level + " with all that belongs to it");
  AddChangeArguments(*command, common);
  command->add_option("NAME", arguments->name, "The name, or #N for its place")->required();
  command->add_flag("--yes", arguments->yes, "Do not ask");
  command->callback([&common, arguments, action] { action(common, *arguments); });
  return command;
}

}  // namespace

void AddDeleteCommands(CLI::App& app, CommonOptions& common) {
  CLI::App* const remove = app.add_subcommand(
      "delete",
      "Delete a teacher, a class or a student; asks first, without a terminal needs --yes");
  remove->require_subcommand(1);
  const auto arguments = std::make_shared<DeleteArguments>();

  AddOne(*remove, common, "teacher", DeleteTeacher, arguments);
  CLI::App* const group = AddOne(*remove, common, "class", DeleteClass, arguments);
  AddTeacherOption(*group, arguments->where);
  CLI::App* const student = AddOne(*remove, common, "student", DeleteStudent, arguments);
  AddClassOption(*student, arguments->where)->required();
  AddTeacherOption(*student, arguments->where);
}

}  // namespace kivadmin
