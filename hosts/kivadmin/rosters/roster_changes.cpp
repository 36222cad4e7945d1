#include "hosts/kivadmin/rosters/roster_changes.h"

#include <memory>

#include "foundation/time/ticks.h"
#include "hosts/kivadmin/rosters/layout_maker.h"
#include "store/change/adding.h"
#include "store/change/moving.h"
#include "store/change/renaming.h"
#include "store/place/display_name.h"

namespace kivadmin {
namespace {

using namespace kivstore;

// Nobody but `self` has this display name.
void RequireFree(const Session& session, const Roster& roster, const PersonName& name,
                 const std::string& level, const SLoginNameObj* self = nullptr) {
  const SLoginNameObj* const owner = FindName(roster, name.first, name.last);
  if (owner != nullptr && owner != self) {
    throw HostError(kRefused,
                    "name taken: there is a " + level + ' ' + session.Show(*owner) + " already");
  }
}

void RequireRoom(const Session& session, const Roster& roster) {
  if (roster.IsFull()) {
    throw HostError(kRefused, "full: the list in " + session.Show(roster.folder) + " has " +
                                  std::to_string(roster.list.GetSize()) + " entries already");
  }
}

using AddAt = bool (*)(SSite& site, SFileSpec& spec, const PersonName& name, SString& folderOut,
                       const FillFolder& fill);

// What differs between the levels.
struct Level {
  const char* name;
  LayoutMaker::Complete complete;
  AddAt add;
};

constexpr Level kTeacherLevel = {
    "teacher", &LayoutMaker::CompleteTeacher,
    [](SSite& site, SFileSpec& spec, const PersonName& name, SString& folderOut,
       const FillFolder& fill) { return AddTeacherAt(site, spec, name.first, folderOut, fill); }};
constexpr Level kClassLevel = {
    "class", &LayoutMaker::CompleteClass,
    [](SSite& site, SFileSpec& spec, const PersonName& name, SString& folderOut,
       const FillFolder& fill) { return AddClassAt(site, spec, name.first, folderOut, fill); }};
constexpr Level kStudentLevel = {"student", &LayoutMaker::CompleteStudent,
                                 [](SSite& site, SFileSpec& spec, const PersonName& name,
                                    SString& folderOut, const FillFolder& fill) {
                                   return AddStudentAt(site, spec, name.first, name.last, folderOut,
                                                       fill);
                                 }};

SLoginNameObj Enter(const Session& session, const Roster& roster, const PersonName& name,
                    const Level& level) {
  RequireFreeAndRoom(session, roster, name, level.name);
  SLoginNameObj entry(name.first, name.last, SString());
  session.Change(std::string("add ") + level.name + ' ' + session.Show(entry), [&] {
    SFileSpec spec(roster.folder);
    return level.add(session.Site(), spec, name, entry.folderName, [&](const SFileSpec& folder) {
      (LayoutMaker(session).*level.complete)(folder);
    });
  });
  return entry;
}

}  // namespace

PersonName NewPerson(const Session& session, const std::string& first, const std::string& last) {
  return {session.NewName(first, "first name"),
          last.empty() ? SString() : session.NewName(last, "last name")};
}

SLoginNameObj EnterTeacher(const Session& session, const Roster& teachers, const SString& name) {
  return Enter(session, teachers, {name, SString()}, kTeacherLevel);
}

SLoginNameObj EnterClass(const Session& session, const Roster& classes, const SString& name) {
  return Enter(session, classes, {name, SString()}, kClassLevel);
}

SLoginNameObj EnterStudent(const Session& session, const Roster& students, const PersonName& name) {
  return Enter(session, students, name, kStudentLevel);
}

namespace {

// Between two holds of a list, for whoever waits for it: their next try may be so far away.
constexpr int32_t kForOthers = 1000;  // ticks

}  // namespace

void EnterStudents(const Session& session, const SLoginNameObj& classEntry,
                   std::vector<SNewcomer>& newcomers, const std::function<void()>& advance) {
  const SFileSpec folder = StudentsFolder(session, classEntry);
  const std::vector<NewFile> besides = LayoutMaker(session).FilesOfStudent();
  for (size_t done = 0; done < newcomers.size();) {
    session.Change("add students to class " + session.Show(classEntry),
                   [&] { return AddStudentsAt(session.Site(), folder, newcomers, besides); });
    for (; done < newcomers.size() && newcomers[done].outcome != SNewcomer::kWaiting; ++done) {
      advance();
    }
    if (done < newcomers.size()) {
      WaitTicks(kForOthers);
    }
  }
}

void RequireFreeAndRoom(const Session& session, const Roster& roster, const PersonName& name,
                        const std::string& level) {
  RequireFree(session, roster, name, level);
  RequireRoom(session, roster);
}

std::string RenameEntry(const Session& session, const Roster& roster, const SLoginNameObj& entry,
                        const PersonName& newName, const std::string& level,
                        const Operation& rename) {
  RequireFree(session, roster, newName, level, &entry);
  const std::string what = level + ' ' + session.Show(entry);
  session.Change("rename " + what, rename);
  return "renamed " + what + " to " +
         session.Show(SLoginNameObj(newName.first, newName.last, SString()));
}

std::string MoveEntry(const Session& session, const Roster& destination, const SLoginNameObj& entry,
                      const std::string& level, const std::string& to, const Operation& move) {
  RequireFreeAndRoom(session, destination, {entry.firstName, entry.lastName}, level);
  const std::string what = level + ' ' + session.Show(entry);
  session.Change("move " + what, move);
  return "moved " + what + " to " + to;
}

bool RenameClassOf(const Session& session, const Roster& classes, const SLoginNameObj& group,
                   SLoginList& list, const SString& name) {
  LayoutMaker(session).CompleteEntry(classes.folder, group.folderName, &LayoutMaker::CompleteClass);
  return RenameClass(session.Site(), group, list, name);
}

bool MoveStudentBetween(const Session& session, const ClassPlace& from, const ClassPlace& to,
                        SLoginNameObj& student, SLoginList& list) {
  const SLoginNameObj who(student);
  SSite& site = session.Site();
  if (from.teacher == nullptr || IsInFolder(*from.teacher, to.teacher->folderName)) {
    site.SelectTeacher(from.teacher);
    return MoveStudent(site, from.group, to.group, student, list, who.firstName, who.lastName);
  }
  return MoveStudentAcross(site, *from.teacher, *to.teacher, from.group, to.group, student, list,
                           who.firstName, who.lastName);
}

}  // namespace kivadmin
