#include "hosts/kivadmin/plans/plan_deed.h"

#include <algorithm>
#include <map>

#include "hosts/common/counted.h"
#include "hosts/common/interruption.h"
#include "hosts/common/progress_bar.h"
#include "hosts/kivadmin/rosters/deleted_entries.h"
#include "hosts/kivadmin/rosters/layout_maker.h"
#include "store/change/adding_many.h"
#include "store/change/moving.h"
#include "store/place/display_name.h"

namespace kivadmin {
namespace {

using kivstore::ListKind;
using kivstore::SLoginNameObj;
using kivstore::SNewcomer;

class PlanDeed {
 public:
  PlanDeed(const Session& session, School& school, Plan& plan)
      : session(session), school(school), plan(plan) {}

  void Run();

 private:
  void Do(PlanStep& step);
  void AddTeacher(PlanStep& step);
  void AddClass(PlanStep& step);
  void AddStudents(SchoolClass& group, std::vector<PlanStep*>& steps,
                   const std::function<void()>& advance);
  void RenameClass(PlanStep& step);
  void MoveClass(PlanStep& step);
  void MoveStudent(PlanStep& step);
  void RemoveStudent(PlanStep& step);
  void RemoveClass(PlanStep& step);

  // An entry of the plan in its list of this moment.
  static SLoginNameObj& FindNow(Roster& roster, const SLoginNameObj& entry);
  const SLoginNameObj* EntryOf(const SchoolTeacher& teacher) const;
  std::string OfTeacherText(const SchoolTeacher& teacher) const;

  const Session& session;
  School& school;
  Plan& plan;
};

void PlanDeed::Run() {
  kivhost::ProgressBar bar("entries", plan.steps.size(), false);
  const kivhost::Interruption interruption;
  const auto advance = [&] { bar.Advance(); };
  std::map<SchoolClass*, std::vector<PlanStep*>> newcomers;
  std::vector<SchoolClass*> order;
  const auto addWaiting = [&] {
    for (SchoolClass* const group : order) {
      if (interruption.IsAsked()) {
        return;
      }
      AddStudents(*group, newcomers[group], advance);
    }
    newcomers.clear();
    order.clear();
  };
  for (PlanStep& step : plan.steps) {
    if (step.kind == PlanStep::kAddStudent) {
      std::vector<PlanStep*>& those = newcomers[step.group];
      if (those.empty()) {
        order.push_back(step.group);
      }
      those.push_back(&step);
      continue;
    }
    addWaiting();
    if (interruption.IsAsked()) {
      return;
    }
    Do(step);
    advance();
  }
  addWaiting();
}

void PlanDeed::Do(PlanStep& step) {
  using Way = void (PlanDeed::*)(PlanStep&);
  static constexpr Way kWays[PlanStep::kKinds] = {&PlanDeed::RenameClass,   &PlanDeed::AddTeacher,
                                                  &PlanDeed::AddClass,      &PlanDeed::MoveClass,
                                                  &PlanDeed::MoveStudent,   nullptr,
                                                  &PlanDeed::RemoveStudent, &PlanDeed::RemoveClass};
  try {
    (this->*kWays[step.kind])(step);
    step.outcome = PlanStep::kDone;
  } catch (const HostError& error) {
    step.outcome = PlanStep::kFailed;
    step.why = error.what();
  }
}

const SLoginNameObj* PlanDeed::EntryOf(const SchoolTeacher& teacher) const {
  return teacher.name.empty() ? nullptr : &teacher.entry;
}

std::string PlanDeed::OfTeacherText(const SchoolTeacher& teacher) const {
  return teacher.name.empty() ? "" : "teacher \"" + teacher.name + '"';
}

SLoginNameObj& PlanDeed::FindNow(Roster& roster, const SLoginNameObj& entry) {
  for (SLoginNameObj& one : roster.list) {
    if (IsInFolder(one, entry.folderName) && CompareDisplayNames(one, entry) == 0) {
      return one;
    }
  }
  throw HostError(kRefused, "not there any more");
}

void PlanDeed::AddTeacher(PlanStep& step) {
  step.teacher->entry =
      EnterTeacher(session, school.GetTeacherList(), step.teacher->entry.firstName);
}

void PlanDeed::AddClass(PlanStep& step) {
  if (step.teacher->IsPlanned()) {
    throw HostError(kRefused, OfTeacherText(*step.teacher) + " is not there");
  }
  school.Select(*step.teacher);
  step.group->entry = EnterClass(session, Classes(session), step.group->entry.firstName);
}

void PlanDeed::AddStudents(SchoolClass& group, std::vector<PlanStep*>& steps,
                           const std::function<void()>& advance) {
  std::vector<SNewcomer> newcomers;
  newcomers.reserve(steps.size());
  for (const PlanStep* const step : steps) {
    newcomers.push_back({step->name.first, step->name.last});
  }
  std::string why;
  try {
    if (group.IsPlanned()) {
      throw HostError(kRefused, "class " + Text(group) + " is not there");
    }
    school.Select(*group.teacher);
    EnterStudents(session, group.entry, newcomers, advance);
  } catch (const HostError& error) {
    why = error.what();
  }
  for (size_t i = 0; i < steps.size(); ++i) {
    const SNewcomer::Outcome outcome = newcomers[i].outcome;
    steps[i]->outcome = outcome == SNewcomer::kAdded   ? PlanStep::kDone
                        : outcome == SNewcomer::kThere ? PlanStep::kThere
                                                       : PlanStep::kFailed;
    steps[i]->why =
        outcome == SNewcomer::kFull
            ? "full: the class has " + std::to_string(kivstore::kMaxStudents) + " students already"
            : why;
  }
}

void PlanDeed::RenameClass(PlanStep& step) {
  school.Select(*step.teacher);
  Roster classes = Classes(session);
  const SLoginNameObj& entry = FindNow(classes, step.group->entry);
  RenameEntry(session, classes, entry, step.name, "class", [&] {
    return RenameClassOf(session, classes, entry, classes.list, step.name.first);
  });
  step.group->entry.firstName = step.name.first;
}

// The folder may get another name where it comes.
void PlanDeed::MoveClass(PlanStep& step) {
  if (step.toTeacher->IsPlanned()) {
    throw HostError(kRefused, OfTeacherText(*step.toTeacher) + " is not there");
  }
  school.Select(*step.toTeacher);
  const Roster destination = Classes(session);
  school.Select(*step.teacher);
  Roster classes = Classes(session);
  SLoginNameObj& entry = FindNow(classes, step.group->entry);
  const kivstore::SString name = entry.firstName;
  RequireFreeAndRoom(session, destination, {name, kivstore::SString()}, "class");
  session.Change("move class " + session.Show(entry), [&] {
    return kivstore::MoveClass(session.Site(), step.teacher->entry, step.toTeacher->entry, entry,
                               classes.list, name);
  });
  school.Select(*step.toTeacher);
  LayoutMaker(session).CompleteDefaultClass();
  step.group->entry = *FindName(Classes(session), name, kivstore::SString());
}

void PlanDeed::MoveStudent(PlanStep& step) {
  if (step.to->IsPlanned()) {
    throw HostError(kRefused, "class " + Text(*step.to) + " is not there");
  }
  school.Select(*step.teacher);
  Roster students = Students(session, step.group->entry);
  SLoginNameObj& student = FindNow(students, *step.student);
  session.Change("move student " + session.Show(student), [&] {
    return MoveStudentBetween(session, {EntryOf(*step.teacher), step.group->entry},
                              {EntryOf(*step.toTeacher), step.to->entry}, student, students.list);
  });
}

void PlanDeed::RemoveStudent(PlanStep& step) {
  school.Select(*step.teacher);
  SetAside(session, {step.group->students, ListKind::kStudents, *step.student, "student",
                     "class " + session.Show(step.group->entry) + OfTeacher(session)});
}

// With those whom the plan has told, and nobody else.
void PlanDeed::RemoveClass(PlanStep& step) {
  school.Select(*step.teacher);
  Roster classes = Classes(session);
  const SLoginNameObj& entry = FindNow(classes, step.group->entry);
  const int32_t now = Students(session, entry).list.GetSize();
  if (now != step.students) {
    throw HostError(kRefused, "the class stays: it has " +
                                  kivhost::Counted(static_cast<size_t>(now), "student") +
                                  " now, and not " + std::to_string(step.students));
  }
  SetAside(session, {classes, ListKind::kClasses, entry, "class", TeacherText(session)});
}

}  // namespace

void CarryOut(const Session& session, School& school, Plan& plan) {
  if (session.IsDryRun()) {
    for (PlanStep& step : plan.steps) {
      step.outcome = PlanStep::kDone;
    }
    return;
  }
  PlanDeed(session, school, plan).Run();
}

}  // namespace kivadmin
