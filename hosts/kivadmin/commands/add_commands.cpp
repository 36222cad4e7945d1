#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/roster_work.h"

namespace kivadmin {
namespace {

struct AddArguments {
  EntryNames where;
  std::string name;
  std::string last;
};

void AddTeacher(const CommonOptions& common, const AddArguments& arguments) {
  Session session(common, Session::Access::kChange);
  RequireTeachers(session);
  const auto teachers = session.Teachers();
  const kivstore::SLoginNameObj added =
      EnterTeacher(session, *teachers, session.NewName(arguments.name, "NAME"));
  session.Say("added teacher " + session.Show(added));
}

void AddClass(const CommonOptions& common, const AddArguments& arguments) {
  Session session(common, Session::Access::kChange);
  session.ChooseTeacher(arguments.where.teacher);
  const auto classes = session.Classes();
  const kivstore::SLoginNameObj added =
      EnterClass(session, *classes, session.NewName(arguments.name, "NAME"));
  session.Say("added class " + session.Show(added) + OfTeacher(session));
}

void AddStudent(const CommonOptions& common, const AddArguments& arguments) {
  Session session(common, Session::Access::kChange);
  session.ChooseTeacher(arguments.where.teacher);
  const kivstore::SLoginNameObj group = session.FindClass(arguments.where.group);
  const auto students = session.Students(group);
  const PersonName name = NewPerson(session, arguments.name, arguments.last);
  const kivstore::SLoginNameObj added = EnterStudent(session, *students, group, name);
  session.Say("added student " + session.Show(added) + " to class " + session.Show(group) +
              OfTeacher(session));
}

using Action = void (*)(const CommonOptions&, const AddArguments&);

CLI::App* AddOne(CLI::App& parent, CommonOptions& common, const char* level, Action action,
                 const std::shared_ptr<AddArguments>& arguments) {
  CLI::App* const command =
      parent.add_subcommand(level, std::string("Add a ") + level + " to the store");
  AddChangeArguments(*command, common);
  command->callback([&common, arguments, action] { action(common, *arguments); });
  return command;
}

}  // namespace

void AddAddCommands(CLI::App& app, CommonOptions& common) {
  CLI::App* const add = app.add_subcommand("add", "Add a teacher, a class or a student");
  add->require_subcommand(1);
  const auto arguments = std::make_shared<AddArguments>();

  CLI::App* const teacher = AddOne(*add, common, "teacher", AddTeacher, arguments);
  teacher->add_option("NAME", arguments->name, "The new teacher's name")->required();

  CLI::App* const group = AddOne(*add, common, "class", AddClass, arguments);
  group->add_option("NAME", arguments->name, "The new class's name")->required();
  AddTeacherOption(*group, arguments->where);

  CLI::App* const student = AddOne(*add, common, "student", AddStudent, arguments);
  student->add_option("FIRST", arguments->name, "The new student's first name")->required();
  student->add_option("LAST", arguments->last, "And last name");
  AddClassOption(*student, arguments->where)->required();
  AddTeacherOption(*student, arguments->where);
}

}  // namespace kivadmin
