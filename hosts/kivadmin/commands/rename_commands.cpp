#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/layout_maker.h"
#include "hosts/kivadmin/rosters/roster_work.h"
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

// `rename` answers what the store does. The entry is one of the roster.
template <class Rename>
void RenameEntry(const Session& session, const Roster& roster, const SLoginNameObj& entry,
                 const PersonName& name, const std::string& level, Rename rename) {
  RequireFree(session, roster, name, level, &entry);
  const std::string was = session.Show(entry);
  if (!session.IsDryRun() && !rename()) {
    const kivstore::SFileSpec folder = FolderOf(roster, entry);
    throw session.WhyRefused("unable to rename " + level + ' ' + was, roster.folder, &folder);
  }
  session.Say("renamed " + level + ' ' + was + " to " +
              session.Show(SLoginNameObj(name.first, name.last, SString())));
}

// The store gives a teacher without a classes folder a default class; a complete one needs none.
void RenameTeacher(const CommonOptions& common, const RenameArguments& arguments) {
  Session session(common, Session::Access::kChange);
  RequireTeachers(session);
  const auto teachers = session.Teachers();
  const SLoginNameObj* const teacher = session.Find(*teachers, arguments.name, "teacher");
  const PersonName name{session.NewName(arguments.newName, "NEW"), SString()};
  RenameEntry(session, *teachers, *teacher, name, "teacher", [&] {
    LayoutMaker(session).CompleteEntry(teachers->folder, teacher->folderName,
                                       &LayoutMaker::CompleteTeacher);
    SString unused;
    return kivstore::RenameTeacher(teacher, &teachers->list.Array(), name.first, unused);
  });
}

void RenameClass(const CommonOptions& common, const RenameArguments& arguments) {
  Session session(common, Session::Access::kChange);
  session.ChooseTeacher(arguments.where.teacher);
  const auto classes = session.Classes();
  const SLoginNameObj* const group = session.Find(*classes, arguments.name, "class");
  const PersonName name{session.NewName(arguments.newName, "NEW"), SString()};
  RenameEntry(session, *classes, *group, name, "class", [&] {
    LayoutMaker(session).CompleteEntry(classes->folder, group->folderName,
                                       &LayoutMaker::CompleteClass);
    SString unused;
    return kivstore::RenameClass(group, &classes->list.Array(), name.first, unused);
  });
}

void RenameStudent(const CommonOptions& common, const RenameArguments& arguments) {
  Session session(common, Session::Access::kChange);
  session.ChooseTeacher(arguments.where.teacher);
  const SLoginNameObj group = session.FindClass(arguments.where.group);
  const auto students = session.Students(group);
  const SLoginNameObj* const student = session.Find(*students, arguments.name, "student");
  const PersonName name = NewPerson(session, arguments.newName, arguments.newLast);
  RenameEntry(session, *students, *student, name, "student", [&] {
    return kivstore::RenameStudent(&group, student, &students->list.Array(), name.first, name.last);
  });
}

using Action = void (*)(const CommonOptions&, const RenameArguments&);

CLI::App* AddOne(CLI::App& parent, CommonOptions& common, const char* level, Action action,
                 const std::shared_ptr<RenameArguments>& arguments) {
  CLI::App* const command =
      parent.add_subcommand(level, std::string("Give a ") + level + " another name");
  AddChangeArguments(*command, common);
  command->add_option("NAME", arguments->name, "The present name, or #N for its place")->required();
  command->callback([&common, arguments, action] { action(common, *arguments); });
  return command;
}

}  // namespace

void AddRenameCommands(CLI::App& app, CommonOptions& common) {
  CLI::App* const rename = app.add_subcommand("rename", "Rename a teacher, a class or a student");
  rename->require_subcommand(1);
  const auto arguments = std::make_shared<RenameArguments>();

  CLI::App* const teacher = AddOne(*rename, common, "teacher", RenameTeacher, arguments);
  teacher->add_option("NEW", arguments->newName, "The new name")->required();

  CLI::App* const group = AddOne(*rename, common, "class", RenameClass, arguments);
  group->add_option("NEW", arguments->newName, "The new name")->required();
  AddTeacherOption(*group, arguments->where);

  CLI::App* const student = AddOne(*rename, common, "student", RenameStudent, arguments);
  student->add_option("NEWFIRST", arguments->newName, "The new first name")->required();
  student->add_option("NEWLAST", arguments->newLast, "And last name; without it there is none");
  AddClassOption(*student, arguments->where)->required();
  AddTeacherOption(*student, arguments->where);
}

}  // namespace kivadmin
