// `move`: a class to another teacher, a student to another class.
#include <tuple>

#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/commands/plan_arguments.h"
#include "hosts/kivadmin/plans/entry_plan.h"
#include "hosts/kivadmin/roster_files/named_columns.h"
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
  std::string file;  // in place of a name
  PlanArguments plan;
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
  const std::string done = MoveEntry(
      session, destinationClasses, group, "class", "teacher " + session.Show(destination), [&] {
        const kivstore::SString name = group.firstName;
        return kivstore::MoveClass(session.Site(), source, destination, group, classes.list, name);
      });
  if (!session.IsDryRun()) {
    session.Site().SelectTeacher(&destination);
    LayoutMaker(session).CompleteDefaultClass();
  }
  session.Say(done);
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

std::vector<MoveWish> ReadMoves(const MoveArguments& arguments) {
  std::vector<MoveWish> wishes;
  const auto orElse = [](const std::string& told, const std::string& otherwise) {
    return told.empty() ? otherwise : told;
  };
  for (const NamedRow& row :
       ReadNamedColumns(arguments.file, {{"teacher", false},
                                         {"class", arguments.from.group.empty()},
                                         {"first_name", true},
                                         {"last_name", false},
                                         {"to_teacher", false},
                                         {"to_class", arguments.to.group.empty()}})) {
    const auto& [teacher, group, first, last, toTeacher, toGroup] = std::tie(
        row.fields[0], row.fields[1], row.fields[2], row.fields[3], row.fields[4], row.fields[5]);
    MoveWish& wish = wishes.emplace_back();
    wish.from.number = row.number;
    wish.from.teacher = orElse(teacher, arguments.from.teacher);
    wish.from.group = orElse(group, arguments.from.group);
    wish.from.first = first;
    wish.from.last = last;
    wish.to.teacher = orElse(toTeacher, arguments.to.teacher);
    wish.to.group = orElse(toGroup, arguments.to.group);
  }
  return wishes;
}

void MoveMany(const CommonOptions& common, const MoveArguments& arguments) {
  const std::vector<MoveWish> wishes = ReadMoves(arguments);
  const Session session(common, Session::Access::kChange);
  School school(session);
  Plan plan = PlanMoves(session, school, wishes);
  RunPlan(session, school, plan, {.verb = "moved by", .name = kivhost::NameOfFile(arguments.file)},
          arguments.plan);
}

void MoveStudent(const CommonOptions& common, const MoveArguments& arguments) {
  if (!arguments.file.empty()) {
    MoveMany(common, arguments);
    return;
  }
  NeedName(arguments.name);
  NeedClass(arguments.from.group);
  if (arguments.to.group.empty()) {
    throw HostError(kWrongUsage, "--to-class is wanted");
  }
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
  session.Say(
      MoveEntry(session, destination, student, "student", "class " + session.Show(to.group), [&] {
        const auto place = [&](const Place& one) {
          return ClassPlace{session.HasTeachers() ? &one.teacher : nullptr, one.group};
        };
        return MoveStudentBetween(session, place(from), place(to), student, students.list);
      }));
}

}  // namespace

void AddMoveCommands(const Command& app, CommonOptions& common) {
  const Command move = app.AddCommand("move", "Move a class or a student");
  move.RequireCommand();

  const Command group = move.AddCommand("class", "Move a class to another teacher");
  MoveArguments& ofClass = AddRun(group, common, MoveClass);
  AddChangeArguments(group, common);
  group.AddOption("NAME", ofClass.name, "The class: a name, or #N for its place").Require();
  group.AddOption("-t,--teacher", ofClass.from.teacher, "The teacher it is of").Require();
  group.AddOption("--to-teacher", ofClass.to.teacher, "The teacher it goes to").Require();

  const Command student = move.AddCommand("student", "Move a student to another class");
  MoveArguments& ofStudent = AddRun(student, common, MoveStudent);
  AddPlanArguments(student, common, ofStudent.plan);
  student.AddOption("NAME", ofStudent.name, "The student: a name, or #N for its place");
  AddClassOption(student, ofStudent.from);
  student.AddOption("--to-class", ofStudent.to.group, "The class the student goes to");
  AddTeacherOption(student, ofStudent.from);
  student.AddOption("--to-teacher", ofStudent.to.teacher,
                    "The teacher of that class; without it the same teacher");
  student
      .AddOption(
          "--from-file", ofStudent.file,
          "Instead of NAME: a table with first_name, last_name and, unless the options above\n"
          "tell it of all, teacher, class, to_teacher, to_class")
      .Takes("FILE");
}

}  // namespace kivadmin
