#include "hosts/kivadmin/rosters/deleted_entries.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "foundation/files/file_finder.h"
#include "hosts/common/console.h"
#include "hosts/common/progress_bar.h"
#include "hosts/common/store_text.h"
#include "hosts/kivadmin/session/who_and_when.h"
#include "platform/platform.h"
#include "store/change/setting_aside.h"
#include "store/place/display_name.h"

namespace kivadmin {
namespace {

using namespace kivstore;

constexpr const char* kDeletedFolder = "Deleted";
constexpr const char* kNoteFile = "deleted.txt";
constexpr size_t kLongestNote = 1 << 16;

SFileSpec DeletedFolder(const Session& session) {
  SFileSpec spec = session.TopFolder();
  spec.Up();
  spec.Down(kDeletedFolder);
  return spec;
}

void NeedFolder(const Session& session, SFileSpec& spec) {
  session.Need("make the folder", spec, [&] { return spec.EnsureFolder(); });
}

// A subfolder of its own for each delete, also of two within a second.
SFileSpec NewPlace(const Session& session, const SString& folderName) {
  SFileSpec deleted = DeletedFolder(session);
  NeedFolder(session, deleted);
  const SString stem = SString(TimeText("%Y%m%d-%H%M%S-", 0).c_str()) + folderName;
  SFileSpec place(deleted);
  place.Down(stem);
  session.Need("make the folder", place, [&] {
    for (int again = 2; !place.CreateFolder(0); ++again) {
      if (!place.Refresh()) {
        return false;
      }
      place = deleted;
      place.Down(stem + SString(("-" + std::to_string(again)).c_str()));
    }
    return true;
  });
  return place;
}

// The folder of the list below the classes folder, as the library writes it.
std::string ListBelowTop(const Session& session, const SFileSpec& list) {
  const std::string_view top = session.TopFolder().GetPath().View();
  return std::string(
      list.GetPath().View().substr(std::min(top.size(), list.GetPath().View().size())));
}

DeletedEntry NoteFor(const Session& session, const EntryToDelete& what) {
  DeletedEntry deleted;
  deleted.level = what.level;
  deleted.name = session.Show(DisplayName(what.entry));
  deleted.of = what.of;
  deleted.list = ListBelowTop(session, what.roster.folder);
  deleted.when = WhenDeleted(0);
  deleted.by = UserName();
  return deleted;
}

// Also the folder of all that was deleted, if there is nothing else.
void TakeAway(const Session& session, DeletedEntry& deleted) {
  deleted.place.Delete(true);
  std::error_code isInUse;
  std::filesystem::remove(session.Show(DeletedFolder(session)), isInUse);
}

SFileSpec NoteOf(const DeletedEntry& deleted) {
  SFileSpec note(deleted.place);
  note.Down(kNoteFile);
  return note;
}

void WriteNote(const DeletedEntry& deleted) {
  kivhost::WriteStoreText(NoteOf(deleted), "level=" + deleted.level + "\nname=" + deleted.name +
                                               "\nof=" + deleted.of + "\nlist=" + deleted.list +
                                               "\nwhen=" + deleted.when + "\nby=" + deleted.by +
                                               '\n');
}

void TakeLine(DeletedEntry& deleted, const std::string& line) {
  const size_t equals = std::min(line.find('='), line.size());
  const std::string key = line.substr(0, equals);
  const std::string value = equals < line.size() ? line.substr(equals + 1) : "";
  std::string* const target = key == "level"  ? &deleted.level
                              : key == "name" ? &deleted.name
                              : key == "of"   ? &deleted.of
                              : key == "list" ? &deleted.list
                              : key == "when" ? &deleted.when
                              : key == "by"   ? &deleted.by
                                              : nullptr;
  if (target != nullptr) {
    *target = value;
  }
}

// By the form of its name: 20261121-235501-AnnLee.
bool IsPlaceOfDelete(const SFileSpec& place) {
  constexpr std::string_view kForm = "dddddddd-dddddd-";
  const std::string_view name = place.GetFileName().View();
  return name.size() > kForm.size() &&
         std::equal(kForm.begin(), kForm.end(), name.begin(), [](char form, char c) {
           return form == 'd' ? c >= '0' && c <= '9' : c == form;
         });
}

// In the form of DeletedEntry::when.
std::string WhenByName(const SFileSpec& place) {
  const std::string name(place.GetFileName().View());
  const auto part = [&](size_t at, size_t count) { return name.substr(at, count); };
  return part(0, 4) + '-' + part(4, 2) + '-' + part(6, 2) + ' ' + part(9, 2) + ':' + part(11, 2) +
         ':' + part(13, 2);
}

// One that has no note yet, or none any more, is as old as its name says: it may be a delete that
// is on its way just now.
void ReadNote(DeletedEntry& deleted) {
  const SFileSpec note = NoteOf(deleted);
  deleted.when = WhenByName(deleted.place);
  if (!note.IsExistingFile()) {
    return;
  }
  std::istringstream text(kivhost::ReadStoreText(note, kLongestNote, "a note of a delete"));
  for (std::string line; std::getline(text, line);) {
    TakeLine(deleted, line);
  }
}

void FindFolder(DeletedEntry& deleted) {
  SFileFinder finder(deleted.place, SFileFinder::kVisibleFolders);
  finder.Next(deleted.folder);
}

ListKind KindOfLevel(const DeletedEntry& deleted) {
  return deleted.level == "student"   ? ListKind::kStudents
         : deleted.level == "teacher" ? ListKind::kTeachers
                                      : ListKind::kClasses;
}

// Where its list is now; a note that leads out of the store leads nowhere.
SFileSpec ListOf(const Session& session, const DeletedEntry& deleted) {
  const SFileSpec top = session.TopFolder();
  const SFileSpec list(top.GetPath() + SString(deleted.list.c_str()));
  const bool isBelow = list.GetPath().View().starts_with(top.GetPath().View());
  const HostError isGone(
      kRefused, "the list of " + deleted.Text() + " is not there: " + session.Show(top) +
                    kivhost::FromLibraryPath(deleted.list) + "; put back what it was in first");
  if (!isBelow) {
    throw isGone;
  }
  if (!list.IsExistingFolder()) {
    throw session.NoFolder(list, isGone);
  }
  return list;
}

// The folders of a tree, each ahead of those in it.
void CollectFolders(const SFileSpec& folder, std::vector<SFileSpec>& all) {
  SFileFinder finder(folder, SFileFinder::kVisibleFolders);
  for (SFileSpec below; finder.Next(below);) {
    all.push_back(below);
    CollectFolders(below, all);
  }
}

// A note is held for the moment that somebody lists what was deleted.
bool DeletePatiently(SFileSpec& note) {
  constexpr int kTries = 500;  // a millisecond each
  for (int i = 1; !note.Delete(false); ++i) {
    if (SFileSpec::LastFailure().error != SystemError::kSharingViolation || i == kTries) {
      return false;
    }
    Platform().clock->Pause();
  }
  return true;
}

// The note first: from then on it is no longer offered, since some of it may be gone. Then members
// ahead of what they are in; a teacher's take as long as there are students.
void RemovePlace(const Session& session, const DeletedEntry& deleted) {
  SFileSpec note = NoteOf(deleted);
  session.Need("remove", note, [&] { return DeletePatiently(note); });
  std::vector<SFileSpec> folders{deleted.place};
  CollectFolders(deleted.place, folders);
  kivhost::ProgressBar bar("folders", folders.size(), false);
  for (; !folders.empty(); folders.pop_back()) {
    session.Need("remove", folders.back(), [&] { return folders.back().Delete(true); });
    bar.Advance();
  }
}

// Where what was asked for is done, and only the rest stays.
void RemoveRest(const Session& session, const DeletedEntry& deleted, const std::string& done) {
  try {
    RemovePlace(session, deleted);
  } catch (const HostError& error) {
    throw HostError(kNoStore, done + ", but not all of it is removed: " + error.what() +
                                  "; kivadmin purge removes the rest");
  }
}

}  // namespace

std::string WhenDeleted(long daysAgo) {
  return TimeText("%Y-%m-%d %H:%M:%S", daysAgo);
}

std::string DeletedEntry::Text() const {
  return level + " \"" + name + '"' + (of.empty() ? "" : " of " + of);
}

DeletedEntry LayAmongDeleted(const Session& session, const EntryToDelete& what,
                             const FillFolder& fill) {
  DeletedEntry deleted = NoteFor(session, what);
  deleted.place = NewPlace(session, what.entry.folderName);
  deleted.folder = deleted.place;
  deleted.folder.Down(what.entry.folderName);
  try {
    fill(deleted.folder);
    WriteNote(deleted);
  } catch (const HostError&) {
    TakeAway(session, deleted);
    throw;
  }
  deleted.folder.Refresh();
  return deleted;
}

DeletedEntry SetAside(const Session& session, const EntryToDelete& what) {
  DeletedEntry deleted = NoteFor(session, what);
  if (session.IsDryRun()) {
    return deleted;
  }
  deleted.place = NewPlace(session, what.entry.folderName);
  WriteNote(deleted);
  deleted.folder = deleted.place;
  deleted.folder.Down(what.entry.folderName);
  try {
    session.Change("delete " + what.level + ' ' + session.Show(what.entry), [&] {
      return kivstore::SetAside(session.Site(), what.roster.folder, what.kind, what.entry,
                                deleted.folder);
    });
  } catch (const HostError&) {
    TakeAway(session, deleted);
    throw;
  }
  deleted.folder.Refresh();
  return deleted;
}

std::vector<DeletedEntry> ListDeleted(const Session& session) {
  std::vector<DeletedEntry> all;
  SFileSpec folder = DeletedFolder(session);
  session.Need("look at what was deleted", folder,
               [&] { return !folder.Exists() || folder.IsFolder(); });
  SFileFinder finder(folder, SFileFinder::kVisibleFolders);
  for (DeletedEntry deleted; finder.Next(deleted.place); deleted = {}) {
    if (IsPlaceOfDelete(deleted.place)) {
      ReadNote(deleted);
      FindFolder(deleted);
      all.push_back(deleted);
    }
  }
  std::sort(all.begin(), all.end(), [](const DeletedEntry& a, const DeletedEntry& b) {
    return a.place.GetFileName().View() > b.place.GetFileName().View();
  });
  return all;
}

SLoginNameObj PutBack(const Session& session, const DeletedEntry& deleted) {
  const SFileSpec list = ListOf(session, deleted);
  SLoginNameObj entry;
  session.Change("put back " + deleted.Text(), [&] {
    const bool isBack = kivstore::PutBack(
        session.Site(), list, KindOfLevel(deleted), deleted.folder,
        [&](const SLoginNameObj& owner) {
          return session.Show(DisplayName(owner)) == deleted.name;
        },
        entry);
    if (session.Site().GetFailure().kind == FailureKind::kNameTaken) {
      throw HostError(kRefused, "unable to put back " + deleted.Text() + ": " + session.Show(list) +
                                    " has that name already; rename the one there first");
    }
    return isBack;
  });
  if (!session.IsDryRun()) {
    RemoveRest(session, deleted, "put back " + deleted.Text());
  }
  return entry;
}

void Purge(const Session& session, const DeletedEntry& deleted) {
  if (!session.IsDryRun()) {
    RemoveRest(session, deleted, "deleted " + deleted.Text());
  }
}

}  // namespace kivadmin
