// What was deleted and can come back: `Deleted/` in the data root, beside the classes folder, where
// no listing looks. One subfolder a delete:
//
//   Deleted/20261121-235501-AnnLee/
//     deleted.txt      what it was, from where, when and by whom
//     AnnLee/          the entry's folder as it was
//
// deleted.txt is UTF-8, a line each, ended by a line feed: level=student, name=Ann Lee,
// of=class "5a" of teacher "Ms Hill", list=MsHill\Classes.zep\5a\Students (the folder of its list
// below the classes folder), when=2026-11-21 23:55:01 in local time, by=the user's name.
//
// deleted.txt is there before the entry's folder comes, and the first to go when it is purged. A
// subfolder that lacks either is what a death on the way has left: nothing that could come back.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hosts/kivadmin/rosters/rosters.h"

namespace kivadmin {

// An entry on its way out of a list: where it is, in the words that are shown.
struct EntryToDelete {
  const Roster& roster;
  kivstore::ListKind kind;
  const kivstore::SLoginNameObj& entry;
  std::string level;
  std::string of;  // "class "5a" of teacher "Ms Hill""; empty at the top
};

struct DeletedEntry {
  kivstore::SFileSpec place;   // its subfolder of Deleted
  kivstore::SFileSpec folder;  // its own
  std::string level, name, of, list, when, by;

  bool CanComeBack() const { return folder.Exists() && !level.empty(); }
  // student "Ann Lee" of class "5a"
  std::string Text() const;
};

// Now, or so many days ago, in the form of DeletedEntry::when, which sorts by time.
std::string WhenDeleted(long daysAgo);

// One that comes from elsewhere is laid among what was deleted, for PutBack to take it from there:
// `fill` makes its folder, at the place it is given. It can come back only once all of it is there,
// and what fails leaves nothing. Not in a dry run.
using FillFolder = std::function<void(const kivstore::SFileSpec& folder)>;
DeletedEntry LayAmongDeleted(const Session& session, const EntryToDelete& what,
                             const FillFolder& fill);
// Unless somebody uses it: then nothing is changed. Nothing in a dry run.
DeletedEntry SetAside(const Session& session, const EntryToDelete& what);
// Newest first.
std::vector<DeletedEntry> ListDeleted(const Session& session);
// Into its list, if that is there; answers the entry as it is listed now.
kivstore::SLoginNameObj PutBack(const Session& session, const DeletedEntry& deleted);
// For good.
void Purge(const Session& session, const DeletedEntry& deleted);

}  // namespace kivadmin
