#include "hosts/kivadmin/plans/roster_plan.h"

#include <algorithm>
#include <set>

#include "hosts/kivadmin/plans/class_plan.h"
#include "store/list/name_derivation.h"
#include "store/place/display_name.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;
using kivstore::SString;

// A student of the file whom the class does not have.
struct Wanted {
  const RosterLine* line;
  SchoolClass* group;
  PersonName name;
  std::string display;
};

// A student of the store whom no line names where he is.
struct Unnamed {
  SchoolClass* group;
  SLoginNameObj* student;
  bool isMeant = false;  // moves, or might
};

class RosterPlanner {
 public:
  RosterPlanner(const Session& session, School& school, const RosterFile& roster,
                const RosterWish& wish)
      : session(session), school(school), roster(roster), wish(wish) {}

  Plan Run();

 private:
  void TakeLine(const RosterLine& line);
  SchoolTeacher& TakeTeacher(const RosterLine& line);
  SchoolClass& TakeClass(SchoolTeacher& teacher, const RosterLine& line);
  void TakeStudent(const RosterLine& line, SchoolClass& group, PersonName name);
  PersonName TwinName(const RosterLine& line, SchoolClass& group, const PersonName& name);
  void MatchMoves();
  void MatchName(const std::vector<Wanted*>& here, const std::vector<Unnamed*>& there);
  void FindUnnamed();
  void Add(const Wanted& one);
  void Move(const Wanted& one, Unnamed& from);
  void RemoveUnnamed();
  void RemoveOf(SchoolClass& group, const std::vector<Unnamed*>& those);
  void Refuse(const RosterLine& line, const std::string& why, bool isOfList = false);

  const Session& session;
  School& school;
  const RosterFile& roster;
  const RosterWish& wish;
  Plan plan;
  std::vector<Wanted> wanted;
  std::vector<Unnamed> unnamed;
  std::set<const SLoginNameObj*> named;  // students of the store
  std::set<const SchoolClass*> namedClasses;
  std::map<std::pair<const SchoolClass*, std::string>, const RosterLine*> seen;
  std::map<std::string, size_t> listFaults;  // the place of each in `refused`
};

Plan RosterPlanner::Run() {
  plan.lines = roster.lines.size() + roster.refused.size();
  plan.notes = roster.notes;
  PlanRenames(session, school, wish.renames, plan);
  for (const RefusedLine& line : roster.refused) {
    plan.refused.push_back({line.number, line.file, line.why});
  }
  for (const RosterLine& line : roster.lines) {
    try {
      TakeLine(line);
    } catch (const UnreadList& fault) {
      if (wish.moves) {
        throw;
      }
      Refuse(line, fault.what(), true);
    } catch (const HostError& error) {
      Refuse(line, error.what());
    }
  }
  MatchMoves();
  if (wish.removesMissing) {
    RemoveUnnamed();
  } else {
    plan.left = static_cast<size_t>(std::count_if(unnamed.begin(), unnamed.end(),
                                                  [](const Unnamed& one) { return !one.isMeant; }));
  }
  plan.Sort();
  std::stable_sort(plan.refused.begin(), plan.refused.end(),
                   [](const PlanRefusal& a, const PlanRefusal& b) { return a.line < b.line; });
  return std::move(plan);
}

// A list that cannot be read is told once, at the first line that asks for it.
void RosterPlanner::Refuse(const RosterLine& line, const std::string& why, bool isOfList) {
  if (isOfList) {
    const auto [known, isNew] = listFaults.emplace(why, plan.refused.size());
    if (!isNew) {
      ++plan.refused[known->second].lines;
      return;
    }
  }
  plan.refused.push_back({line.number, line.file, why});
}

// Nothing of a line is planned whose student could not be.
void RosterPlanner::TakeLine(const RosterLine& line) {
  std::optional<PersonName> person;
  if (!line.first.empty() || !line.last.empty()) {
    person = NewPerson(session, line.first, line.last);
  }
  if (!line.group.empty() || person) {
    session.NewName(line.group, "class");
  }
  const size_t before = plan.steps.size();
  SchoolTeacher& teacher = TakeTeacher(line);
  if (!line.group.empty()) {
    SchoolClass& group = TakeClass(teacher, line);
    namedClasses.insert(&group);
    if (person) {
      TakeStudent(line, group, *person);
      return;
    }
  }
  plan.there += plan.steps.size() == before;
}

SchoolTeacher& RosterPlanner::TakeTeacher(const RosterLine& line) {
  if (!session.HasTeachers() && !line.teacher.empty()) {
    RequireTeachers(session);
  }
  const SString name = session.HasTeachers() ? session.NewName(line.teacher, "teacher") : SString();
  if (SchoolTeacher* const known = school.FindTeacher(line.teacher)) {
    return *known;
  }
  if (school.GetTeachers().size() >= kivstore::kMaxTeachers) {
    throw HostError(kRefused, "full: the store has " + std::to_string(kivstore::kMaxTeachers) +
                                  " teachers already");
  }
  SchoolTeacher& teacher = school.PlanTeacher(name);
  plan.steps.push_back({.kind = PlanStep::kAddTeacher,
                        .line = line.number,
                        .file = line.file,
                        .who = teacher.name,
                        .teacher = &teacher});
  return teacher;
}

SchoolClass& RosterPlanner::TakeClass(SchoolTeacher& teacher, const RosterLine& line) {
  const SString name = session.NewName(line.group, "class");
  if (SchoolClass* const known = school.FindClass(teacher, line.group)) {
    return *known;
  }
  if (school.GetClasses(teacher).size() >= kivstore::kMaxClasses) {
    throw HostError(kRefused, "full: " + teacher.name + " has " +
                                  std::to_string(kivstore::kMaxClasses) + " classes already");
  }
  SchoolClass& group = school.PlanClass(teacher, name);
  plan.steps.push_back({.kind = PlanStep::kAddClass,
                        .line = line.number,
                        .file = line.file,
                        .who = group.name,
                        .group = &group,
                        .teacher = &teacher,
                        .at = teacher.name});
  return group;
}

void RosterPlanner::TakeStudent(const RosterLine& line, SchoolClass& group, PersonName name) {
  const auto display = [&] { return session.Show(kivstore::DisplayName(name.first, name.last)); };
  const auto [first, isNew] = seen.emplace(std::pair(&group, NameKey(display())), &line);
  if (!isNew) {
    name = TwinName(line, group, name);
    seen.emplace(std::pair(&group, NameKey(display())), &line);
  }
  const std::vector<SLoginNameObj*> found = school.FindStudents(group, display());
  named.insert(found.begin(), found.end());
  if (found.empty()) {
    wanted.push_back({&line, &group, name, display()});
  } else {
    ++plan.there;
  }
}

// As the store tells names apart: by another character at the end.
PersonName RosterPlanner::TwinName(const RosterLine& line, SchoolClass& group,
                                   const PersonName& name) {
  const std::string shown = session.Show(kivstore::DisplayName(name.first, name.last));
  const RosterLine* const other = seen.at({&group, NameKey(shown)});
  const std::string twin = '"' + shown + "\" stands in line " + std::to_string(other->number) +
                           " too, of the same class";
  if (!wish.keepsTwins) {
    throw HostError(kRefused, twin + ": if they are two, --twins=keep adds both");
  }
  PersonName varied = name;
  SString& end = varied.last.IsEmpty() ? varied.first : varied.last;
  int position = end.GetLength() - 1;
  for (int digit = -1; position >= 0;) {
    kivstore::NextVariant(end, position, digit);
    const std::string tried = session.Show(kivstore::DisplayName(varied.first, varied.last));
    if (!seen.contains({&group, NameKey(tried)})) {
      plan.notes.push_back("line " + std::to_string(line.number) + ": " + twin +
                           "; this one is \"" + tried + '"');
      return varied;
    }
  }
  throw HostError(kRefused, twin + ", and no name is left to tell them apart");
}

// Of a store that is only added to, what no line names is nobody's business, and not read.
void RosterPlanner::MatchMoves() {
  if (wish.moves) {
    FindUnnamed();
  }
  std::map<std::string, std::pair<std::vector<Wanted*>, std::vector<Unnamed*>>> byName;
  std::vector<std::string> order;
  for (Wanted& one : wanted) {
    const std::string key = NameKey(one.display);
    auto& here = byName[key].first;
    if (here.empty()) {
      order.push_back(key);
    }
    here.push_back(&one);
  }
  for (Unnamed& one : unnamed) {
    const auto found = byName.find(NameKey(DisplayText(session, *one.student)));
    if (found != byName.end()) {
      found->second.second.push_back(&one);
    }
  }
  for (const std::string& key : order) {
    MatchName(byName[key].first, byName[key].second);
  }
}

void RosterPlanner::FindUnnamed() {
  for (const auto& teacher : school.GetTeachers()) {
    for (const auto& group : school.GetClasses(*teacher)) {
      for (SLoginNameObj& student : school.GetStudents(*group).list) {
        if (!named.contains(&student)) {
          unnamed.push_back({group.get(), &student});
        }
      }
    }
  }
}

void RosterPlanner::MatchName(const std::vector<Wanted*>& here,
                              const std::vector<Unnamed*>& there) {
  if (there.empty()) {
    std::for_each(here.begin(), here.end(), [&](const Wanted* one) { Add(*one); });
    return;
  }
  if (here.size() == 1 && there.size() == 1) {
    Move(*here[0], *there[0]);
    return;
  }
  std::string places;
  for (Unnamed* const one : there) {
    one->isMeant = true;
    places += (places.empty() ? "" : " and ") + Text(*one->group);
  }
  for (const Wanted* const one : here) {
    Refuse(*one->line, "\"" + one->display + "\" may be who is in " + places +
                           ", which cannot be told: move or add that one by hand");
  }
}

void RosterPlanner::Add(const Wanted& one) {
  if (one.group->IsFull()) {
    Refuse(*one.line,
           "full: the class has " + std::to_string(kivstore::kMaxStudents) + " students already");
    return;
  }
  ++one.group->planned;
  plan.steps.push_back({.kind = PlanStep::kAddStudent,
                        .line = one.line->number,
                        .file = one.line->file,
                        .who = one.display,
                        .group = one.group,
                        .teacher = one.group->teacher,
                        .name = one.name,
                        .at = Text(*one.group)});
}

void RosterPlanner::Move(const Wanted& one, Unnamed& from) {
  from.isMeant = true;
  ++one.group->planned;
  --from.group->planned;
  plan.steps.push_back({.kind = PlanStep::kMoveStudent,
                        .line = one.line->number,
                        .file = one.line->file,
                        .who = DisplayText(session, *from.student),
                        .group = from.group,
                        .teacher = from.group->teacher,
                        .to = one.group,
                        .toTeacher = one.group->teacher,
                        .student = from.student,
                        .at = Text(*from.group),
                        .target = Text(*one.group)});
}

void RosterPlanner::RemoveUnnamed() {
  std::map<SchoolClass*, std::vector<Unnamed*>> byClass;
  std::vector<SchoolClass*> order;
  for (Unnamed& one : unnamed) {
    if (one.isMeant) {
      continue;
    }
    std::vector<Unnamed*>& those = byClass[one.group];
    if (those.empty()) {
      order.push_back(one.group);
    }
    those.push_back(&one);
  }
  for (SchoolClass* const group : order) {
    RemoveOf(*group, byClass[group]);
  }
}

// A class that the file does not have goes with all who are left in it, and comes back with them.
void RosterPlanner::RemoveOf(SchoolClass& group, const std::vector<Unnamed*>& those) {
  const auto staying = group.students.list.GetSize() + group.planned;
  if (!namedClasses.contains(&group) && staying == static_cast<int>(those.size())) {
    plan.steps.push_back({.kind = PlanStep::kRemoveClass,
                          .who = group.name,
                          .group = &group,
                          .teacher = group.teacher,
                          .at = group.teacher->name,
                          .students = staying});
    return;
  }
  for (Unnamed* const one : those) {
    plan.steps.push_back({.kind = PlanStep::kRemoveStudent,
                          .who = DisplayText(session, *one->student),
                          .group = &group,
                          .teacher = group.teacher,
                          .student = one->student,
                          .at = Text(group)});
  }
}

}  // namespace

Plan PlanRoster(const Session& session, School& school, const RosterFile& roster,
                const RosterWish& wish) {
  return RosterPlanner(session, school, roster, wish).Run();
}

}  // namespace kivadmin
