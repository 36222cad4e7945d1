#include "hosts/kivadmin/plans/entry_plan.h"

#include <functional>
#include <set>

#include "store/place/display_name.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;
using kivstore::SString;

std::string Quoted(const std::string& name) {
  return '"' + name + '"';
}

class EntryPlanner {
 public:
  EntryPlanner(const Session& session, School& school) : session(session), school(school) {}

  // Plans one line; what it throws is told with the line.
  void Try(const RosterLine& line, const std::function<void()>& take);
  Plan Take() { return std::move(plan); }

  SchoolClass& FindClass(const RosterLine& line);
  SLoginNameObj& FindStudent(SchoolClass& group, const RosterLine& line);
  void Move(const MoveWish& wish);
  void RemoveStudent(const RosterLine& line);
  void RemoveClass(const RosterLine& line);
  void NoteRefused(const RosterFile& roster);

 private:
  const Session& session;
  School& school;
  Plan plan;
  std::set<const void*> taken;  // entries of the store
};

void EntryPlanner::Try(const RosterLine& line, const std::function<void()>& take) {
  ++plan.lines;
  try {
    take();
  } catch (const HostError& error) {
    plan.refused.push_back({line.number, line.file, error.what()});
  }
}

SchoolClass& EntryPlanner::FindClass(const RosterLine& line) {
  SchoolTeacher* const teacher = school.FindTeacher(line.teacher);
  if (teacher == nullptr) {
    throw HostError(kRefused, line.teacher.empty() ? "no teacher is told"
                                                   : "no teacher " + Quoted(line.teacher));
  }
  SchoolClass* const group = school.FindClass(*teacher, line.group);
  if (group == nullptr) {
    throw HostError(kRefused,
                    "no class " + Quoted(line.group) +
                        (line.teacher.empty() ? "" : " of teacher " + Quoted(line.teacher)));
  }
  school.GetStudents(*group);
  return *group;
}

SLoginNameObj& EntryPlanner::FindStudent(SchoolClass& group, const RosterLine& line) {
  const PersonName name = NewPerson(session, line.first, line.last);
  const std::string display = session.Show(kivstore::DisplayName(name.first, name.last));
  const std::vector<SLoginNameObj*> found = school.FindStudents(group, display);
  if (found.empty()) {
    throw HostError(kRefused, "no student " + Quoted(display) + " in class " + Text(group));
  }
  if (found.size() > 1) {
    throw HostError(kRefused, "more than one student " + Quoted(display) + " in class " +
                                  Text(group) + ": to be done one by one, by #N");
  }
  if (!taken.insert(found[0]).second) {
    throw HostError(kRefused, "student " + Quoted(display) + " stands in a line above too");
  }
  return *found[0];
}

void EntryPlanner::Move(const MoveWish& wish) {
  SchoolClass& from = FindClass(wish.from);
  RosterLine target = wish.to;
  if (target.teacher.empty()) {
    target.teacher = wish.from.teacher;
  }
  SchoolClass& to = FindClass(target);
  SLoginNameObj& student = FindStudent(from, wish.from);
  const std::string who = DisplayText(session, student);
  if (&from == &to) {
    ++plan.there;
    return;
  }
  if (!school.FindStudents(to, who).empty()) {
    throw HostError(kRefused, "name taken: there is a student " + Quoted(who) + " in class " +
                                  Text(to) + " already");
  }
  if (to.IsFull()) {
    throw HostError(kRefused, "full: class " + Text(to) + " has " +
                                  std::to_string(kivstore::kMaxStudents) + " students already");
  }
  ++to.planned;
  --from.planned;
  plan.steps.push_back({.kind = PlanStep::kMoveStudent,
                        .line = wish.from.number,
                        .who = who,
                        .group = &from,
                        .teacher = from.teacher,
                        .to = &to,
                        .toTeacher = to.teacher,
                        .student = &student,
                        .at = Text(from),
                        .target = Text(to)});
}

void EntryPlanner::RemoveStudent(const RosterLine& line) {
  if (line.first.empty() && line.last.empty()) {
    throw HostError(kRefused, "no student is told");
  }
  SchoolClass& group = FindClass(line);
  SLoginNameObj& student = FindStudent(group, line);
  plan.steps.push_back({.kind = PlanStep::kRemoveStudent,
                        .line = line.number,
                        .file = line.file,
                        .who = DisplayText(session, student),
                        .group = &group,
                        .teacher = group.teacher,
                        .student = &student,
                        .at = Text(group)});
}

void EntryPlanner::RemoveClass(const RosterLine& line) {
  if (!line.first.empty() || !line.last.empty()) {
    throw HostError(kRefused, "tells a student, and classes are to be deleted");
  }
  SchoolClass& group = FindClass(line);
  if (!taken.insert(&group).second) {
    throw HostError(kRefused, "class " + Text(group) + " stands in a line above too");
  }
  plan.steps.push_back({.kind = PlanStep::kRemoveClass,
                        .line = line.number,
                        .file = line.file,
                        .who = group.name,
                        .group = &group,
                        .teacher = group.teacher,
                        .at = group.teacher->name,
                        .students = group.students.list.GetSize()});
}

void EntryPlanner::NoteRefused(const RosterFile& roster) {
  for (const RefusedLine& line : roster.refused) {
    ++plan.lines;
    plan.refused.push_back({line.number, line.file, line.why});
  }
}

}  // namespace

Plan PlanMoves(const Session& session, School& school, const std::vector<MoveWish>& wishes) {
  EntryPlanner planner(session, school);
  for (const MoveWish& wish : wishes) {
    planner.Try(wish.from, [&] { planner.Move(wish); });
  }
  return planner.Take();
}

Plan PlanRemovals(const Session& session, School& school, const RosterFile& roster,
                  bool ofClasses) {
  EntryPlanner planner(session, school);
  planner.NoteRefused(roster);
  for (const RosterLine& line : roster.lines) {
    planner.Try(line, [&] { ofClasses ? planner.RemoveClass(line) : planner.RemoveStudent(line); });
  }
  return planner.Take();
}

}  // namespace kivadmin
