#include "hosts/kivadmin/plans/class_plan.h"

#include <algorithm>

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;
using kivstore::SString;

HostError NoClass(const std::string& name, const std::string& teacher) {
  return {kRefused,
          "no class \"" + name + '"' + (teacher.empty() ? "" : " of teacher \"" + teacher + '"')};
}

struct WantedRename {
  explicit WantedRename(const std::string& text);

  std::string teacher, from, to;
};

WantedRename::WantedRename(const std::string& text) {
  const size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0 || equals + 1 == text.size()) {
    throw HostError(kWrongUsage, "--rename-class " + text + ": OLD=NEW is wanted");
  }
  from = text.substr(0, equals);
  to = text.substr(equals + 1);
  if (const size_t slash = from.find('/'); slash != std::string::npos) {
    teacher = from.substr(0, slash);
    from.erase(0, slash + 1);
  }
}

// A class may have a stroke in its name: the whole is tried first.
SchoolClass& FindRenamed(School& school, const WantedRename& rename) {
  std::vector<SchoolClass*> found;
  for (const auto& teacher : school.GetTeachers()) {
    SchoolClass* const whole = rename.teacher.empty()
                                   ? school.FindClass(*teacher, rename.from)
                                   : school.FindClass(*teacher, rename.teacher + '/' + rename.from);
    SchoolClass* const part = whole == nullptr && NameKey(teacher->name) == NameKey(rename.teacher)
                                  ? school.FindClass(*teacher, rename.from)
                                  : nullptr;
    if (whole != nullptr || part != nullptr) {
      found.push_back(whole != nullptr ? whole : part);
    }
  }
  if (found.empty()) {
    throw NoClass(rename.from, rename.teacher);
  }
  if (found.size() > 1) {
    throw HostError(kRefused, "more than one class \"" + rename.from +
                                  "\": say whose, --rename-class \"TEACHER/" + rename.from + '=' +
                                  rename.to + '"');
  }
  return *found[0];
}

PlanStep RenameStep(const Session& session, School& school, SchoolClass& group,
                    const std::string& name) {
  PlanStep step{.kind = PlanStep::kRenameClass,
                .who = group.name,
                .group = &group,
                .teacher = group.teacher,
                .name = {session.NewName(name, "class"), SString()},
                .at = group.teacher->name,
                .target = name};
  school.PlanPlace(group, group.teacher, name);
  return step;
}

class PromotionPlanner {
 public:
  PromotionPlanner(const Session& session, School& school) : session(session), school(school) {}

  Plan Run(const std::vector<Promotion>& promotions);

 private:
  struct Way {
    const Promotion* row;
    SchoolClass* group;
    SchoolTeacher* teacher;  // null: leaves school
  };

  Way Find(const Promotion& row);
  SchoolTeacher& TakeTeacher(const Promotion& row);
  // Whoever has the name that it wants; null if nobody has.
  SchoolClass* InTheWay(const Way& way);
  bool IsWaiting(const SchoolClass* group) const;
  bool TakeFree();
  bool TakeIntoOther();
  void LendName();
  bool IsLast(const Way& way) const;
  void ComeAhead(const SchoolTeacher& teacher);
  void Leave(const Way& way);
  void Go(const Way& way);
  void Travel(const Way& way);
  void Rename(const Way& way, const std::string& name);
  std::string NameForTheWay(const Way& way) const;
  std::string FreeName(const SchoolTeacher& teacher, std::string name) const;
  void Merge(const Way& way, SchoolClass& into);
  PlanStep StepOf(PlanStep::Kind kind, const Way& way) const;

  const Session& session;
  School& school;
  Plan plan;
  std::vector<Way> ways;  // still to be planned
};

Plan PromotionPlanner::Run(const std::vector<Promotion>& promotions) {
  plan.lines = promotions.size();
  for (const Promotion& row : promotions) {
    try {
      ways.push_back(Find(row));
    } catch (const HostError& error) {
      plan.refused.push_back({row.line, "", error.what()});
    }
  }
  // A class that could not go may be in another's way: then its students would come into a class
  // that should have gone.
  if (!plan.refused.empty()) {
    plan.steps.clear();
    return std::move(plan);
  }
  while (!ways.empty()) {
    if (!TakeFree() && !TakeIntoOther()) {
      LendName();
    }
  }
  return std::move(plan);
}

PromotionPlanner::Way PromotionPlanner::Find(const Promotion& row) {
  SchoolTeacher* const teacher = school.FindTeacher(row.fromTeacher);
  SchoolClass* const group =
      teacher != nullptr ? school.FindClass(*teacher, row.fromGroup) : nullptr;
  if (group == nullptr) {
    throw NoClass(row.fromGroup, row.fromTeacher);
  }
  if (IsWaiting(group)) {
    throw HostError(kRefused, "class " + Text(*group) + " stands in a line above too");
  }
  school.GetStudents(*group);
  if (row.toGroup.empty()) {
    return {&row, group, nullptr};
  }
  session.NewName(row.toGroup, "class");
  return {&row, group, &TakeTeacher(row)};
}

SchoolTeacher& PromotionPlanner::TakeTeacher(const Promotion& row) {
  const std::string& name = row.toTeacher.empty() ? row.fromTeacher : row.toTeacher;
  if (SchoolTeacher* const known = school.FindTeacher(name)) {
    school.GetClasses(*known);
    return *known;
  }
  RequireTeachers(session);
  SchoolTeacher& teacher = school.PlanTeacher(session.NewName(name, "teacher"));
  plan.steps.push_back(
      {.kind = PlanStep::kAddTeacher, .line = row.line, .who = teacher.name, .teacher = &teacher});
  return teacher;
}

SchoolClass* PromotionPlanner::InTheWay(const Way& way) {
  return way.teacher != nullptr ? school.FindClass(*way.teacher, way.row->toGroup) : nullptr;
}

bool PromotionPlanner::IsWaiting(const SchoolClass* group) const {
  return std::any_of(ways.begin(), ways.end(), [&](const Way& way) { return way.group == group; });
}

// One whose new name nobody has, or that has it already.
bool PromotionPlanner::TakeFree() {
  for (size_t i = 0; i < ways.size(); ++i) {
    const Way way = ways[i];
    const SchoolClass* const other = InTheWay(way);
    if (other != nullptr && other != way.group) {
      continue;
    }
    ways.erase(ways.begin() + static_cast<std::ptrdiff_t>(i));
    if (way.teacher == nullptr) {
      Leave(way);
    } else if (other == way.group && way.group->name == way.row->toGroup) {
      ++plan.there;
    } else {
      Go(way);
    }
    return true;
  }
  return false;
}

bool PromotionPlanner::TakeIntoOther() {
  for (size_t i = 0; i < ways.size(); ++i) {
    const Way way = ways[i];
    SchoolClass* const other = InTheWay(way);
    if (!IsWaiting(other)) {
      ways.erase(ways.begin() + static_cast<std::ptrdiff_t>(i));
      Merge(way, *other);
      return true;
    }
  }
  return false;
}

std::string PromotionPlanner::FreeName(const SchoolTeacher& teacher, std::string name) const {
  while (teacher.byName.contains(NameKey(name))) {
    name += '~';
  }
  return name;
}

// Each waits for another, in a ring or for one: who is in the first one's way takes another name
// for the while.
void PromotionPlanner::LendName() {
  SchoolClass& group = *InTheWay(ways[0]);
  plan.steps.push_back(
      RenameStep(session, school, group, FreeName(*group.teacher, group.name + '~')));
}

PlanStep PromotionPlanner::StepOf(PlanStep::Kind kind, const Way& way) const {
  return {.kind = kind,
          .line = way.row->line,
          .who = way.group->name,
          .group = way.group,
          .teacher = way.group->teacher,
          .toTeacher = way.teacher,
          .at = way.group->teacher->name,
          .students = way.group->students.list.GetSize()};
}

bool PromotionPlanner::IsLast(const Way& way) const {
  return way.group->teacher->byName.size() == 1;
}

void PromotionPlanner::ComeAhead(const SchoolTeacher& teacher) {
  for (const Way& way : ways) {
    if (way.teacher == &teacher) {
      Travel(way);
      return;
    }
  }
}

// A teacher without a class would get the default one: somebody who comes does so first.
void PromotionPlanner::Leave(const Way& way) {
  if (IsLast(way)) {
    ComeAhead(*way.group->teacher);
  }
  plan.steps.push_back(StepOf(PlanStep::kRemoveClass, way));
  school.PlanPlace(*way.group, nullptr, "");
}

void PromotionPlanner::Rename(const Way& way, const std::string& name) {
  if (way.group->name != name) {
    plan.steps.push_back(RenameStep(session, school, *way.group, name));
    plan.steps.back().line = way.row->line;
  }
}

void PromotionPlanner::Travel(const Way& way) {
  SchoolClass& group = *way.group;
  if (way.teacher == group.teacher) {
    return;
  }
  Rename(way, NameForTheWay(way));
  PlanStep step = StepOf(PlanStep::kMoveClass, way);
  step.target = group.name + ", " + way.teacher->name;
  plan.steps.push_back(step);
  school.PlanPlace(group, way.teacher, group.name);
}

void PromotionPlanner::Go(const Way& way) {
  Travel(way);
  Rename(way, way.row->toGroup);
}

// A class moves under its name, which has to be free where it comes.
std::string PromotionPlanner::NameForTheWay(const Way& way) const {
  const auto isFree = [&](const SchoolTeacher& teacher, const std::string& tried) {
    const auto found = teacher.byName.find(NameKey(tried));
    return found == teacher.byName.end() || found->second == way.group;
  };
  std::string tried = isFree(*way.teacher, way.group->name) ? way.group->name : way.row->toGroup;
  while (!isFree(*way.teacher, tried) || !isFree(*way.group->teacher, tried)) {
    tried += '~';
  }
  return tried;
}

void PromotionPlanner::Merge(const Way& way, SchoolClass& into) {
  school.GetStudents(into);
  for (SLoginNameObj& student : way.group->students.list) {
    PlanStep step = StepOf(PlanStep::kMoveStudent, way);
    step.who = DisplayText(session, student);
    step.to = &into;
    step.student = &student;
    step.at = Text(*way.group);
    step.target = Text(into);
    plan.steps.push_back(step);
  }
  PlanStep step = StepOf(PlanStep::kRemoveClass, way);
  step.students = 0;
  plan.steps.push_back(step);
  school.PlanPlace(*way.group, nullptr, "");
}

}  // namespace

void PlanRenames(const Session& session, School& school, const std::vector<std::string>& renames,
                 Plan& plan) {
  for (const std::string& text : renames) {
    const WantedRename rename(text);
    SchoolClass& group = FindRenamed(school, rename);
    const SchoolClass* const other = school.FindClass(*group.teacher, rename.to);
    if (other != nullptr && other != &group) {
      throw HostError(kRefused,
                      "--rename-class " + text + ": there is a class " + Text(*other) + " already");
    }
    plan.steps.push_back(RenameStep(session, school, group, rename.to));
  }
}

Plan PlanPromotions(const Session& session, School& school,
                    const std::vector<Promotion>& promotions) {
  return PromotionPlanner(session, school).Run(promotions);
}

}  // namespace kivadmin
