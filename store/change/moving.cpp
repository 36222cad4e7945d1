#include "store/change/moving.h"

#include "store/change/default_entries.h"
#include "store/change/transaction.h"
#include "store/list/index_lookup.h"
#include "store/list/listing.h"
#include "store/list/name_derivation.h"
#include "store/place/display_name.h"
#include "store/place/placing.h"

namespace kivstore {
namespace {

constexpr const char* kCopyEnding = ".copy";

// One end of a move: a class list, or with a class its student list.
struct MoveEnd {
  const SLoginNameObj* teacher;  // null: the selected one
  const SLoginNameObj* classEntry;
};

// kMoved: the folder has moved, and no index could be told.
enum class Outcome { kFailed, kMoved, kDone };

class EntryMove {
 public:
  EntryMove(SSite& site, const MoveEnd& source, const MoveEnd& destination, SLoginNameObj& entry,
            SLoginList& list)
      : site(site), source(source), destination(destination), entry(entry), list(list) {}

  // Under the new names.
  Outcome Run(const SString& first, const SString& last);

 private:
  bool IsOfClass() const { return source.classEntry == nullptr; }
  ListKind EntryListKind() const { return IsOfClass() ? ListKind::kClasses : ListKind::kStudents; }
  bool Prepare();
  bool AreStudentsFree() const;
  bool TakeLocks();
  bool HasRoom() const;
  bool MoveFolder();
  SString FinalName();
  bool CopyTo(SFileSpec& place, const SString& name);
  bool LockMovedFolder();

  bool Fail(FailureKind kind, const SFileSpec& spec) const;

  SSite& site;
  const MoveEnd& source;
  const MoveEnd& destination;
  SLoginNameObj& entry;
  SLoginList& list;
  int32_t index = -1;

  SFileSpec sourceFolder, destinationFolder, entryFolder;
  // Locks go in the reverse order of their taking.
  SLockFile sourceLock{site}, destinationLock{site}, entryLock{site};
};

void PlaceEnd(SSite& site, SFileSpec& spec, const MoveEnd& end) {
  if (end.teacher != nullptr) {
    site.SelectTeacher(end.teacher);
  }
  if (end.classEntry == nullptr) {
    PrepareClassList(site);
    ClassesFolder(site, spec);
    return;
  }
  SLoginNameObj group(*end.classEntry);
  PrepareStudentList(site, group);
  StudentsFolder(site, spec, group);
}

Outcome EntryMove::Run(const SString& first, const SString& last) {
  const SString oldFolder(entry.folderName);
  if (!Prepare() || !AreStudentsFree() || !TakeLocks() || !HasRoom() || !MoveFolder()) {
    return Outcome::kFailed;
  }
  if (!LockMovedFolder()) {
    return Outcome::kMoved;
  }
  EnsureEntry(site, destinationFolder, entry.folderName, first, last, kNoLimit, EntryListKind());
  list.RemoveAt(index);
  site.ForgetCountedClasses();
  WriteLogins(site, sourceFolder, list, oldFolder, EntryListKind());
  return Outcome::kDone;
}

bool EntryMove::Fail(FailureKind kind, const SFileSpec& spec) const {
  site.NoteFailure(kind, spec.GetPath(), EntryListKind());
  return false;
}

bool EntryMove::Prepare() {
  index = FindLogin(list, entry);
  PlaceEnd(site, sourceFolder, source);
  PlaceEnd(site, destinationFolder, destination);
  if (!IsFolderThere(site, sourceFolder)) {
    return Fail(FailureKind::kMissing, sourceFolder);
  }
  if (!IsFolderThere(site, destinationFolder)) {
    return Fail(FailureKind::kMissing, destinationFolder);
  }
  AimAtIndex(sourceLock, sourceFolder, ListKind::kClasses, true);
  AimAtIndex(destinationLock, destinationFolder, ListKind::kClasses, true);
  entryFolder = sourceFolder;
  if (index < 0 || !DownToEntry(entryFolder, entry) || !entryFolder.IsExistingFolder()) {
    return Fail(FailureKind::kNoEntry, entryFolder);
  }
  AimAtIndex(entryLock, entryFolder, EntryListKind(), true);
  return true;
}

// A snapshot and no reservation: each lock is let go at once.
bool EntryMove::AreStudentsFree() const {
  if (!IsOfClass()) {
    return true;
  }
  site.SelectTeacher(source.teacher);
  SLoginList students;
  LoadStudentList(site, students, entry, true, true);
  SFileSpec studentsFolder;
  StudentsFolder(site, studentsFolder, entry);
  for (const SLoginNameObj& student : students) {
    SFileSpec folder(studentsFolder);
    DownToEntry(folder, student);
    SLockFile lock(site);
    if (!LockIndex(lock, folder, ListKind::kStudents, true)) {
      return false;
    }
  }
  return true;
}

// The two lists in the order of their paths: of two opposite moves one goes through. Behind the
// locks the folder must still be the entry's.
bool EntryMove::TakeLocks() {
  const bool sourceFirst = sourceFolder.GetPath() < destinationFolder.GetPath();
  SLockFile& first = sourceFirst ? sourceLock : destinationLock;
  SLockFile& second = sourceFirst ? destinationLock : sourceLock;
  return first.Lock() && second.Lock() && entryLock.Lock() &&
         IsListStillThere(site, sourceLock, sourceFolder, ListKind::kClasses) &&
         IsListStillThere(site, destinationLock, destinationFolder, ListKind::kClasses) &&
         (IsEntryOf(sourceFolder, entry) || Fail(FailureKind::kMissing, entryFolder));
}

bool EntryMove::HasRoom() const {
  const int16_t limit = IsOfClass() ? kMaxClasses : kMaxStudents;
  return ReadIndexCount(destinationFolder) < limit || Fail(FailureKind::kFull, destinationFolder);
}

// The folder gets another name where the destination has one of its own already; none if somebody
// of the same name is there.
SString EntryMove::FinalName() {
  SLoginNameObj other(entry);
  if (IsNameThere(site, destinationFolder, other)) {
    return {};
  }
  SFileSpec namesake(destinationFolder);
  if (!DownToEntry(namesake, entry) || !namesake.Exists()) {
    return entry.folderName;
  }
  bool isThere = false;
  const SString derived =
      DeriveFolderName(destinationFolder, entry.firstName, entry.lastName, isThere);
  return isThere ? SString() : derived;
}

// A line that a death has left in the destination must not become this folder's.
bool EntryMove::MoveFolder() {
  const SString name = FinalName();
  if (name.IsEmpty()) {
    return Fail(FailureKind::kNameTaken, destinationFolder);
  }
  SFileSpec place(destinationFolder);
  place.Down(name);
  RemoveLine(site, destinationFolder, name, EntryListKind());
  EnsureLongName(site, entryFolder, entry, EntryListKind());
  entryLock.Unlock();  // its file lies in the folder that is to go
  const bool moved =
      entryFolder.RenameTo(place) ||
      (SFileSpec::LastFailure().error == SystemError::kNotSameDevice && CopyTo(place, name));
  if (moved) {
    entry.folderName = name;
  } else {
    site.NoteFileFailure(EntryListKind());
  }
  return moved;
}

// Across file systems: the copy is made beside the destination, where no listing looks, and appears
// whole; then the source goes.
bool EntryMove::CopyTo(SFileSpec& place, const SString& name) {
  const SString copyName = name + kCopyEnding;
  SFileSpec beside(destinationFolder);
  beside.Up();
  SFileSpec copy(beside);
  if (!copy.Down(copyName) || !copy.Delete(true) || !entryFolder.CopyTo(beside, copyName) ||
      !copy.Refresh() || !copy.RenameTo(place)) {
    copy.Delete(true);
    return false;
  }
  if (!entryFolder.Delete(true)) {
    site.NoteShortfall(EntryListKind());
  }
  return true;
}

bool EntryMove::LockMovedFolder() {
  SFileSpec moved(destinationFolder);
  return DownToEntry(moved, entry) && LockIndex(entryLock, moved, EntryListKind(), true);
}

}  // namespace

// Entries and names are copied first: the caller's may be the selected teacher or the list's own.
bool MoveClass(SSite& site, const SLoginNameObj& sourceTeacher,
               const SLoginNameObj& destinationTeacher, SLoginNameObj& classEntry, SLoginList& list,
               const SString& name) {
  const SLoginNameObj from(sourceTeacher);
  const SLoginNameObj to(destinationTeacher);
  const SString newName(name);
  const MoveEnd source = {&from, nullptr};
  const MoveEnd destination = {&to, nullptr};
  const Outcome outcome =
      EntryMove(site, source, destination, classEntry, list).Run(newName, SString());
  if (outcome == Outcome::kDone && site.GetOwner() != nullptr) {
    site.GetOwner()->OnClassMoved(DisplayName(from), DisplayName(to), newName);
  }
  site.SelectTeacher(&from);
  return outcome != Outcome::kFailed;
}

bool MoveStudent(SSite& site, const SLoginNameObj& sourceClass,
                 const SLoginNameObj& destinationClass, SLoginNameObj& student, SLoginList& list,
                 const SString& first, const SString& last) {
  const SString newFirst(first);
  const SString newLast(last);
  const MoveEnd source = {nullptr, &sourceClass};
  const MoveEnd destination = {nullptr, &destinationClass};
  const Outcome outcome =
      EntryMove(site, source, destination, student, list).Run(newFirst, newLast);
  if (outcome == Outcome::kDone && site.GetOwner() != nullptr) {
    site.GetOwner()->OnStudentMoved(DisplayName(sourceClass), DisplayName(destinationClass),
                                    newLast, newFirst, kNoTeacherName, kNoTeacherName);
  }
  return outcome != Outcome::kFailed;
}

bool MoveStudentAcross(SSite& site, const SLoginNameObj& sourceTeacher,
                       const SLoginNameObj& destinationTeacher, const SLoginNameObj& sourceClass,
                       const SLoginNameObj& destinationClass, SLoginNameObj& student,
                       SLoginList& list, const SString& first, const SString& last) {
  const SLoginNameObj from(sourceTeacher);
  const SLoginNameObj to(destinationTeacher);
  const SString newFirst(first);
  const SString newLast(last);
  const MoveEnd source = {&from, &sourceClass};
  const MoveEnd destination = {&to, &destinationClass};
  const Outcome outcome =
      EntryMove(site, source, destination, student, list).Run(newFirst, newLast);
  if (outcome == Outcome::kDone && site.GetOwner() != nullptr) {
    site.GetOwner()->OnStudentMoved(DisplayName(sourceClass), DisplayName(destinationClass),
                                    newLast, newFirst, DisplayName(from), DisplayName(to));
  }
  site.SelectTeacher(&from);
  return outcome != Outcome::kFailed;
}

}  // namespace kivstore
