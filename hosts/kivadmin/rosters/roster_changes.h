// Changes of a roster: each is tested first, so that a refusal is told in words. In a dry run
// everything is tested and nothing changes.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hosts/kivadmin/rosters/rosters.h"
#include "store/change/adding_many.h"

namespace kivadmin {

// A person's name in the store's bytes; the last name may be empty.
struct PersonName {
  kivstore::SString first;
  kivstore::SString last;
};

PersonName NewPerson(const Session& session, const std::string& first, const std::string& last);

// Each adds an entry that the roster, as loaded, does not have yet, and makes what the entry's
// folder needs beside it; the roster stays as it was, and nothing is told.
kivstore::SLoginNameObj EnterTeacher(const Session& session, const Roster& teachers,
                                     const kivstore::SString& name);
kivstore::SLoginNameObj EnterClass(const Session& session, const Roster& classes,
                                   const kivstore::SString& name);
kivstore::SLoginNameObj EnterStudent(const Session& session, const Roster& students,
                                     const PersonName& name);

// The students that come into one class of the selected teacher, each with what came of it; not in
// a dry run. `advance` is called for each. Throws where the list cannot be worked on or
// somebody could not be added: whoever waits then is not.
void EnterStudents(const Session& session, const kivstore::SLoginNameObj& classEntry,
                   std::vector<kivstore::SNewcomer>& newcomers,
                   const std::function<void()>& advance);

// Throws if somebody in the roster has the name, or nobody else finds room.
void RequireFreeAndRoom(const Session& session, const Roster& roster, const PersonName& name,
                        const std::string& level);

// What the store answers to the operation itself.
using Operation = std::function<bool()>;

// The entry is one of the roster; the operation takes it out of it or changes it there. `level` is
// "teacher", "class" or "student". Each answers the line of what was done.
std::string RenameEntry(const Session& session, const Roster& roster,
                        const kivstore::SLoginNameObj& entry, const PersonName& newName,
                        const std::string& level, const Operation& rename);
std::string MoveEntry(const Session& session, const Roster& destination,
                      const kivstore::SLoginNameObj& entry, const std::string& level,
                      const std::string& to, const Operation& move);

// A class and whose it is; null in a store without teachers.
struct ClassPlace {
  const kivstore::SLoginNameObj* teacher;
  const kivstore::SLoginNameObj& group;
};

// The store's own operations, in a dry run too. The entry is one of the list, as loaded, and leaves
// it.
bool RenameClassOf(const Session& session, const Roster& classes,
                   const kivstore::SLoginNameObj& group, kivstore::SLoginList& list,
                   const kivstore::SString& name);
bool MoveStudentBetween(const Session& session, const ClassPlace& from, const ClassPlace& to,
                        kivstore::SLoginNameObj& student, kivstore::SLoginList& list);

}  // namespace kivadmin
