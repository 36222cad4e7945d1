#include "foundation/site_mode.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/layout_maker.h"
#include "hosts/kivadmin/rosters/roster_work.h"
#include "store/change/moving.h"

namespace kivadmin {
namespace {

using kivstore::SFileSpec;
using kivstore::SLoginNameObj;
using kivstore::SString;

struct MoveArguments {
  EntryNames from;
  EntryNames to;
  std::string name;
};

// A lock or a held file of the destination refuses as well as one of the source.
AdminError WhyNotMoved(const Session& session, const std::string& what, const Roster& source,
                       const SFileSpec& entryFolder, const Roster& destination) {
  const AdminError ofSource = session.WhyRefused(what, source.folder, &entryFolder);
  return ofSource.exitCode == kRefused ? ofSource : session.WhyRefused(what, destination.folder);
}

// The entry is one of the source; `move` answers what the store does.
template <class Move>
void MoveEntry(const Session& session, const Roster& source, const Roster& destination,
               const SLoginNameObj& entry, const std::string& level, const std::string& to,
               Move move) {
  const PersonName name{entry.firstName, entry.lastName};
  RequireFree(session, destination, name, level);
  RequireRoom(session, destination);
  const std::string what = level + ' ' + session.Show(entry);
  const SFileSpec folder = FolderOf(source, entry);
  if (!session.IsDryRun() && !move(name)) {
    throw WhyNotMoved(session, "unable to move " + what, source, folder, destination);
  }
  session.Say("moved " + what + " to " + to);
}

void RequireOther(const SLoginNameObj& from, const SLoginNameObj& to, const char* option) {
  if (kivhost::EqualNoCase(from.folderName.View(), to.folderName.View())) {
    throw AdminError{kWrongUsage, std::string(option) + ": it is there already"};
  }
}

// The destination's classes folder is complete before, and the default class that the store gives
// an empty one afterwards.
void MoveClass(const CommonOptions& common, const MoveArguments& arguments) {
  Session session(common, Session::Access::kChange);
  RequireTeachers(session);
  const SLoginNameObj source = session.FindTeacher(arguments.from.teacher);
  const SLoginNameObj destination = session.FindTeacher(arguments.to.teacher);
  RequireOther(source, destination, "--to-teacher");
  SelectTeacher(&destination);
  const auto destinationClasses = session.Classes();
  SelectTeacher(&source);
  const auto classes = session.Classes();
  SLoginNameObj* const group = session.Find(*classes, arguments.name, "class");
  MoveEntry(session, *classes, *destinationClasses, *group, "class",
            "teacher " + session.Show(destination), [&](const PersonName& name) {
              return kivstore::MoveClass(&source, &destination, group, &classes->list.Array(),
                                         name.first);
            });
  if (!session.IsDryRun()) {
    SelectTeacher(&destination);
    LayoutMaker(session).CompleteDefaultClass();
  }
}

struct Place {
  SLoginNameObj teacher;
  SLoginNameObj group;
};

Place FindPlace(Session& session, const EntryNames& names) {
  session.ChooseTeacher(names.teacher);
  Place place;
  if (kivstore::gCurrentTeacher != nullptr) {
    place.teacher = *kivstore::gCurrentTeacher;
  }
  place.group = session.FindClass(names.group);
  return place;
}

bool IsSameTeacher(const Place& a, const Place& b) {
  return kivhost::EqualNoCase(a.teacher.folderName.View(), b.teacher.folderName.View());
}

bool MoveBetween(const Place& from, const Place& to, SLoginNameObj* student, Roster& students,
                 const PersonName& name) {
  kivstore::SPtrArray* const list = &students.list.Array();
  if (IsSameTeacher(from, to)) {
    return kivstore::MoveStudent(&from.group, &to.group, student, list, name.first, name.last);
  }
  return kivstore::MoveStudentAcross(&from.teacher, &to.teacher, &from.group, &to.group, student,
                                     list, name.first, name.last);
}

void MoveStudent(const CommonOptions& common, const MoveArguments& arguments) {
  Session session(common, Session::Access::kChange);
  EntryNames toNames = arguments.to;
  if (toNames.teacher.empty()) {
    toNames.teacher = arguments.from.teacher;
  }
  const Place to = FindPlace(session, toNames);
  const auto destination = session.Students(to.group);
  const Place from = FindPlace(session, arguments.from);
  if (IsSameTeacher(from, to)) {
    RequireOther(from.group, to.group, "--to-class");
  }
  const auto students = session.Students(from.group);
  SLoginNameObj* const student = session.Find(*students, arguments.name, "student");
  MoveEntry(
      session, *students, *destination, *student, "student", "class " + session.Show(to.group),
      [&](const PersonName& name) { return MoveBetween(from, to, student, *students, name); });
}

}  // namespace

void AddMoveCommands(CLI::App& app, CommonOptions& common) {
  CLI::App* const move = app.add_subcommand("move", "Move a class or a student");
  move->require_subcommand(1);
  const auto arguments = std::make_shared<MoveArguments>();

  CLI::App* const group = move->add_subcommand("class", "Move a class to another teacher");
  AddChangeArguments(*group, common);
  group->add_option("NAME", arguments->name, "The class: a name, or #N for its place")->required();
  group->add_option("--teacher", arguments->from.teacher, "The teacher it is of")->required();
  group->add_option("--to-teacher", arguments->to.teacher, "The teacher it goes to")->required();
  group->callback([&common, arguments] { MoveClass(common, *arguments); });

  CLI::App* const student = move->add_subcommand("student", "Move a student to another class");
  AddChangeArguments(*student, common);
  student->add_option("NAME", arguments->name, "The student: a name, or #N for its place")
      ->required();
  AddClassOption(*student, arguments->from)->required();
  student->add_option("--to-class", arguments->to.group, "The class the student goes to")
      ->required();
  AddTeacherOption(*student, arguments->from);
  student->add_option("--to-teacher", arguments->to.teacher,
                      "The teacher of that class; without it the same teacher");
  student->callback([&common, arguments] { MoveStudent(common, *arguments); });
}

}  // namespace kivadmin
