#include "hosts/kivadmin/rosters/roster_work.h"

#include "foundation/site_mode.h"
#include "hosts/kivadmin/rosters/layout_maker.h"
#include "store/change/adding.h"
#include "store/list/name_derivation.h"
#include "store/place/layout.h"

namespace kivadmin {

using namespace kivstore;

namespace {

void RequireAddable(const Session& session, const Roster& roster, const PersonName& name,
                    const std::string& level) {
  RequireFree(session, roster, name, level);
  RequireRoom(session, roster);
}

std::string CannotAdd(const Session& session, const PersonName& name, const char* level) {
  return std::string("unable to add ") + level + " \"" +
         session.Show(DisplayName(name.first, name.last)) + '"';
}

// `add` answers what the store does, and gives the folder's name.
template <class Add>
SLoginNameObj Enter(const Session& session, const Roster& roster, const PersonName& name,
                    const char* level, LayoutMaker::Complete complete, Add add) {
  RequireAddable(session, roster, name, level);
  SLoginNameObj entry(name.first, name.last, SString());
  if (session.IsDryRun()) {
    return entry;
  }
  if (!add(entry.folderName)) {
    throw session.WhyRefused(CannotAdd(session, name, level), roster.folder);
  }
  LayoutMaker(session).CompleteEntry(roster.folder, entry.folderName, complete);
  return entry;
}

}  // namespace

PersonName NewPerson(const Session& session, const std::string& first, const std::string& last) {
  return {session.NewName(first, "first name"),
          last.empty() ? SString() : session.NewName(last, "last name")};
}

void RequireTeachers(const Session& session) {
  if (!session.HasTeachers()) {
    throw AdminError{kWrongUsage, std::string("a store of the kind ") + NameOf(session.Kind()) +
                                      " has no teachers"};
  }
}

void RequireFree(const Session& session, const Roster& roster, const PersonName& name,
                 const std::string& level, const SLoginNameObj* self) {
  const SLoginNameObj* const owner = Session::FindName(roster, name.first, name.last);
  if (owner != nullptr && owner != self) {
    throw AdminError{kRefused,
                     "name taken: there is a " + level + ' ' + session.Show(*owner) + " already"};
  }
}

void RequireRoom(const Session& session, const Roster& roster) {
  if (roster.IsFull()) {
    throw AdminError{kRefused, "full: the list in " + session.Show(roster.folder) + " has " +
                                   std::to_string(roster.list.GetSize()) + " entries already"};
  }
}

SLoginNameObj EnterTeacher(const Session& session, const Roster& teachers, const SString& name) {
  return Enter(session, teachers, {name, SString()}, "teacher", &LayoutMaker::CompleteTeacher,
               [&](SString& folder) { return AddTeacher(name, folder); });
}

// Not by way of placing the classes folder, which gives an empty list a default class first.
SLoginNameObj EnterClass(const Session& session, const Roster& classes, const SString& name) {
  return Enter(session, classes, {name, SString()}, "class", &LayoutMaker::CompleteClass,
               [&](SString& folder) {
                 SFileSpec spec(classes.folder);
                 return AddClassAt(spec, name, folder);
               });
}

SLoginNameObj EnterStudent(const Session& session, const Roster& students,
                           const SLoginNameObj& group, const PersonName& name) {
  return Enter(session, students, name, "student", &LayoutMaker::CompleteStudent,
               [&](SString& folder) { return AddStudent(group, name.first, name.last, folder); });
}

std::string OfTeacher(const Session& session) {
  return session.HasTeachers() && gCurrentTeacher != nullptr
             ? " of teacher " + session.Show(*gCurrentTeacher)
             : "";
}

SFileSpec FolderOf(const Roster& roster, const SLoginNameObj& entry) {
  SFileSpec spec(roster.folder);
  DownToEntry(spec, entry);
  return spec;
}

}  // namespace kivadmin
