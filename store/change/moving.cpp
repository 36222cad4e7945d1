#include "store/change/moving.h"

#include "foundation/application.h"
#include "foundation/site_mode.h"
#include "store/change/transaction.h"
#include "store/list/entries.h"
#include "store/list/index_file.h"
#include "store/list/listing.h"
#include "store/list/name_derivation.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

// One end of a move: a class list, or with a class its student list.
struct MoveEnd {
  const SLoginNameObj* teacher;  // null: the selected one
  const SLoginNameObj* classEntry;
};

// kMoved: the folder has moved, and no index could be told.
enum class Outcome { kFailed, kMoved, kDone };

class EntryMove {
 public:
  EntryMove(const MoveEnd& source, const MoveEnd& destination, SLoginNameObj& entry,
            SPtrArray& list)
      : source(source), destination(destination), entry(entry), list(list) {}

  // Under the new names.
  Outcome Run(const SString& first, const SString& last);

 private:
  bool IsOfClass() const { return source.classEntry == nullptr; }
  LockKind EntryLockKind() const { return IsOfClass() ? LockKind::kClasses : LockKind::kStudents; }
  bool Prepare();
  bool AreStudentsFree() const;
  bool TakeLocks();
  bool HasRoom() const;
  bool MoveFolder();
  bool CopyUnderNewName();
  bool LockMovedFolder();

  const MoveEnd& source;
  const MoveEnd& destination;
  SLoginNameObj& entry;
  SPtrArray& list;
  int32_t index = -1;

  SFileSpec sourceFolder, destinationFolder, entryFolder;
  // Locks go in the reverse order of their taking.
  SLockFile sourceLock, destinationLock, entryLock;
};

void PlaceEnd(SFileSpec& spec, const MoveEnd& end) {
  if (end.teacher != nullptr) {
    SelectTeacher(end.teacher);
  }
  if (end.classEntry != nullptr) {
    StudentsFolder(spec, *end.classEntry, false);
    return;
  }
  SString path;
  ClassesFolder(spec, path, false);
}

Outcome EntryMove::Run(const SString& first, const SString& last) {
  const SString oldFolder(entry.folderName);
  if (!Prepare() || !AreStudentsFree() || !TakeLocks() || !HasRoom() || !MoveFolder()) {
    return Outcome::kFailed;
  }
  if (!LockMovedFolder()) {
    return Outcome::kMoved;
  }
  EnsureEntry(destinationFolder, entry.folderName, first, last, kNoLimit);
  RemoveLoginAt(list, index);
  WriteLogins(sourceFolder, list, oldFolder);
  return Outcome::kDone;
}

bool EntryMove::Prepare() {
  index = FindLogin(list, entry);
  if (index < 0) {
    return false;
  }
  PlaceEnd(sourceFolder, source);
  PlaceEnd(destinationFolder, destination);
  if (!IsFolderThere(sourceFolder) || !IsFolderThere(destinationFolder)) {
    return false;
  }
  AimAtIndex(sourceLock, sourceFolder, LockKind::kClasses, true);
  AimAtIndex(destinationLock, destinationFolder, LockKind::kClasses, true);
  entryFolder = sourceFolder;
  if (!DownToEntry(entryFolder, entry) || !entryFolder.IsExistingFolder()) {
    return false;
  }
  AimAtIndex(entryLock, entryFolder, EntryLockKind(), true);
  return true;
}

// A snapshot and no reservation: each lock is let go at once.
bool EntryMove::AreStudentsFree() const {
  if (!IsOfClass()) {
    return true;
  }
  SelectTeacher(source.teacher);
  SLoginList students;
  LoadStudentList(students.Array(), entry, true, true);
  SFileSpec studentsFolder;
  StudentsFolder(studentsFolder, entry, false);
  for (int32_t i = 0; i < students.GetSize(); ++i) {
    SFileSpec folder(studentsFolder);
    DownToEntry(folder, *students.At(i));
    SLockFile lock;
    if (!LockIndex(lock, folder, LockKind::kStudents, true)) {
      return false;
    }
  }
  return true;
}

bool EntryMove::TakeLocks() {
  return sourceLock.Lock() && destinationLock.Lock() && entryLock.Lock();
}

bool EntryMove::HasRoom() const {
  const int16_t limit = IsOfClass() ? kMaxClasses : kMaxStudents;
  return limit < 0 || ReadIndexCount(destinationFolder) < limit;
}

bool EntryMove::MoveFolder() {
  entryLock.Unlock();  // its file lies in the folder that is to go
  SFileSpec namesake(destinationFolder);
  DownToEntry(namesake, entry);
  return namesake.Exists() ? CopyUnderNewName() : entryFolder.MoveTo(destinationFolder);
}

bool EntryMove::CopyUnderNewName() {
  bool isThere = false;
  const SString folder =
      DeriveFolderName(destinationFolder, entry.firstName, entry.lastName, isThere);
  if (!entryFolder.CopyTo(destinationFolder, folder)) {
    return false;
  }
  entry.folderName = folder;
  return entryFolder.Delete(true);
}

bool EntryMove::LockMovedFolder() {
  SFileSpec moved(destinationFolder);
  return DownToEntry(moved, entry) && LockIndex(entryLock, moved, EntryLockKind(), true);
}

bool IsMissing(const SLoginNameObj* a, const SLoginNameObj* b) {
  return a == nullptr || b == nullptr;
}

}  // namespace

// Entries and names are copied first: the caller's may be the selected teacher or the list's own.
bool MoveClass(const SLoginNameObj* sourceTeacher, const SLoginNameObj* destinationTeacher,
               SLoginNameObj* classEntry, SPtrArray* list, const SString& name) {
  if (IsMissing(sourceTeacher, destinationTeacher) || classEntry == nullptr || list == nullptr) {
    return false;
  }
  const SLoginNameObj from(*sourceTeacher);
  const SLoginNameObj to(*destinationTeacher);
  const SString newName(name);
  const MoveEnd source = {&from, nullptr};
  const MoveEnd destination = {&to, nullptr};
  const Outcome outcome =
      EntryMove(source, destination, *classEntry, *list).Run(newName, SString());
  if (outcome == Outcome::kDone && gApp != nullptr) {
    gApp->OnClassMoved(DisplayName(from), DisplayName(to), newName);
  }
  SelectTeacher(&from);
  return outcome != Outcome::kFailed;
}

bool MoveStudent(const SLoginNameObj* sourceClass, const SLoginNameObj* destinationClass,
                 SLoginNameObj* student, SPtrArray* list, const SString& first,
                 const SString& last) {
  if (IsMissing(sourceClass, destinationClass) || student == nullptr || list == nullptr) {
    return false;
  }
  const SString newFirst(first);
  const SString newLast(last);
  const MoveEnd source = {nullptr, sourceClass};
  const MoveEnd destination = {nullptr, destinationClass};
  const Outcome outcome = EntryMove(source, destination, *student, *list).Run(newFirst, newLast);
  if (outcome == Outcome::kDone && gApp != nullptr) {
    gApp->OnStudentMoved(DisplayName(*sourceClass), DisplayName(*destinationClass), newLast,
                         newFirst, kNoTeacherName, kNoTeacherName);
  }
  return outcome != Outcome::kFailed;
}

bool MoveStudentAcross(const SLoginNameObj* sourceTeacher, const SLoginNameObj* destinationTeacher,
                       const SLoginNameObj* sourceClass, const SLoginNameObj* destinationClass,
                       SLoginNameObj* student, SPtrArray* list, const SString& first,
                       const SString& last) {
  if (IsMissing(sourceTeacher, destinationTeacher) || IsMissing(sourceClass, destinationClass) ||
      student == nullptr || list == nullptr) {
    return false;
  }
  const SLoginNameObj from(*sourceTeacher);
  const SLoginNameObj to(*destinationTeacher);
  const SString newFirst(first);
  const SString newLast(last);
  const MoveEnd source = {&from, sourceClass};
  const MoveEnd destination = {&to, destinationClass};
  const Outcome outcome = EntryMove(source, destination, *student, *list).Run(newFirst, newLast);
  if (outcome == Outcome::kDone && gApp != nullptr) {
    gApp->OnStudentMoved(DisplayName(*sourceClass), DisplayName(*destinationClass), newLast,
                         newFirst, DisplayName(from), DisplayName(to));
  }
  SelectTeacher(&from);
  return outcome != Outcome::kFailed;
}

}  // namespace kivstore
