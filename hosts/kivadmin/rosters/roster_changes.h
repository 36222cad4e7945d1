// Changes of a roster: each is tested first, so that a refusal is told in words, and told in one
// line when it is done. In a dry run everything is tested and nothing changes.
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

// The students that come into one class of the selected teacher, each with what came of it; in a
// dry run what would. `advance` is called for each. Throws where the list cannot be worked on or
// somebody could not be added: whoever waits then is not.
void EnterStudents(const Session& session, const kivstore::SLoginNameObj& classEntry,
                   std::vector<kivstore::SNewcomer>& newcomers,
                   const std::function<void()>& advance);

// What the store answers to the operation itself.
using Operation = std::function<bool()>;

// The entry is one of the roster; the operation takes it out of it or changes it there. `level` is
// "teacher", "class" or "student".
void RenameEntry(const Session& session, const Roster& roster, const kivstore::SLoginNameObj& entry,
                 const PersonName& newName, const std::string& level, const Operation& rename);
void MoveEntry(const Session& session, const Roster& destination,
               const kivstore::SLoginNameObj& entry, const std::string& level,
               const std::string& to, const Operation& move);

}  // namespace kivadmin
