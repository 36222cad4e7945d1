// What the commands on entries share: the tests that say why a store refuses, and adding one entry
// with all that belongs to it.
#pragma once

#include <string>

#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

// A person's name in the store's bytes; the last name may be empty.
struct PersonName {
  kivstore::SString first;
  kivstore::SString last;
};

PersonName NewPerson(const Session& session, const std::string& first, const std::string& last);

// Throws wrong usage in a store without teachers.
void RequireTeachers(const Session& session);
// Throws if another entry than `self` has this display name. `level` is for the error.
void RequireFree(const Session& session, const Roster& roster, const PersonName& name,
                 const std::string& level, const kivstore::SLoginNameObj* self = nullptr);
void RequireRoom(const Session& session, const Roster& roster);

// Each adds an entry that the list of the roster, as loaded, does not have yet, and makes what the
// entry's folder needs beside it; the roster stays as it was. In a dry run everything is tested and
// nothing added.
kivstore::SLoginNameObj EnterTeacher(const Session& session, const Roster& teachers,
                                     const kivstore::SString& name);
kivstore::SLoginNameObj EnterClass(const Session& session, const Roster& classes,
                                   const kivstore::SString& name);
kivstore::SLoginNameObj EnterStudent(const Session& session, const Roster& students,
                                     const kivstore::SLoginNameObj& group, const PersonName& name);

// " of teacher "X"" for the line of what was done; empty in a store without teachers.
std::string OfTeacher(const Session& session);

// The folder of an entry of the roster.
kivstore::SFileSpec FolderOf(const Roster& roster, const kivstore::SLoginNameObj& entry);

}  // namespace kivadmin
