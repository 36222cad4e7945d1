// The lists of a store, and the entries in them that a command line names.
#pragma once

#include <string>

#include "hosts/kivadmin/session/session.h"
#include "store/list/entries.h"

namespace kivadmin {

// A list with the folder it stands in.
struct Roster {
  kivstore::SFileSpec folder;
  kivstore::SLoginList list;

  bool IsFull() const { return list.GetSize() >= kivstore::kMaxStudents; }
};

// The folders of the lists below the top one. One that is missing is made, if this session may; the
// rules that fill an empty store are not run.
kivstore::SFileSpec ClassesFolder(const Session& session);  // of the selected teacher
kivstore::SFileSpec StudentsFolder(const Session& session,
                                   const kivstore::SLoginNameObj& classEntry);

// Under its lock, repaired as by any listing.
Roster Teachers(const Session& session);
Roster Classes(const Session& session);  // of the selected teacher
Roster Students(const Session& session, const kivstore::SLoginNameObj& classEntry);

// The entry that a NAME of the command line means: a display name, letter case ignored where nobody
// has it to the letter, or #N for its place. `level` is "teacher", "class" or "student", for the
// error.
kivstore::SLoginNameObj& Find(const Session& session, Roster& roster, const std::string& name,
                              const std::string& level);
// Null if the list has no such display name.
const kivstore::SLoginNameObj* FindName(const Roster& roster, const kivstore::SString& first,
                                        const kivstore::SString& last);

// "; there is "Jürgen" too" for "JÜRGEN": whom a person would take for the same, and the store does
// not. Empty if there is nobody like that.
std::string LikeText(const Session& session, const Roster& roster,
                     const kivstore::SLoginNameObj& entry);

// Selects the teacher for what follows. Without a name the only one there is; in a store without
// teachers a name is wrong usage, and nobody is selected.
void ChooseTeacher(const Session& session, const std::string& name);
kivstore::SLoginNameObj FindTeacher(const Session& session, const std::string& name);
kivstore::SLoginNameObj FindClass(const Session& session, const std::string& name);
kivstore::SLoginNameObj FindStudent(const Session& session,
                                    const kivstore::SLoginNameObj& classEntry,
                                    const std::string& name);
// Throws wrong usage in a store without teachers.
void RequireTeachers(const Session& session);

// "teacher "X"" of the selected one; empty in a store without teachers.
std::string TeacherText(const Session& session);
// " of teacher "X"" for the line of what was done; empty in a store without teachers.
std::string OfTeacher(const Session& session);

}  // namespace kivadmin
