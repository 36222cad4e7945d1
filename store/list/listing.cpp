#include "store/list/listing.h"

#include "platform/text_numbers.h"
#include "store/change/transaction.h"
#include "store/place/cached_text.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

// The opening of the index is look enough.
bool DownToIndex(SFileSpec& spec) {
  return spec.DownAssumed(CachedText<kTextIndexFile>().GetText());
}

// From the list folder.
void LoadLogins(SPtrArray& list, SFileSpec& spec, LockKind kind, bool reconcile, bool lockIt) {
  SLockFile lock;
  if ((!lockIt || LockIndex(lock, spec, kind, false)) && DownToIndex(spec)) {
    ReadLogins(list, spec, reconcile);
  }
}

int32_t CountUnderLock(const SFileSpec& spec) {
  SLockFile lock;
  return LockIndex(lock, spec, LockKind::kClasses, false) ? ReadIndexCount(spec) : 0;
}

}  // namespace

void ReadLogins(SPtrArray& list, SFileSpec& indexFile, bool reconcile) {
  SFileSpec& spec = indexFile;
  SIndexObj index;
  index.NeedLogins();
  index.ownsLogins = false;
  if (!ReadIndex(spec, &index) || reconcile) {
    ReconcileLogins(spec, &index);
  }
  index.MoveLoginsTo(&list);
}

void LoadTeacherList(SPtrArray& list) {
  SFileSpec spec;
  TeachersFolder(spec);
  LoadLogins(list, spec, LockKind::kTeachers, true, true);
}

void LoadClassList(SPtrArray& list, bool lockIt) {
  SFileSpec spec;
  SString path;
  ClassesFolder(spec, path, false);
  LoadLogins(list, spec, LockKind::kClasses, true, lockIt);
}

void LoadStudentList(SPtrArray& list, const SLoginNameObj& classEntry, bool reconcile,
                     bool lockIt) {
  SFileSpec spec;
  StudentsFolder(spec, classEntry, false);
  LoadLogins(list, spec, LockKind::kStudents, reconcile, lockIt);
}

void LoadFileList(SPtrArray& list, const SLoginNameObj* classEntry, const SLoginNameObj* student,
                  const SString& extension, bool removable) {
  SFileSpec spec;
  EntryFolder(spec, classEntry, student, removable, true);
  if (classEntry != nullptr && student == nullptr) {
    spec.Down(CachedText<kTextStudents>());
  }
  LoadFileListAt(list, spec, extension, false);
}

void LoadFileListAt(SPtrArray& list, SFileSpec spec, const SString& extension, bool lockIt) {
  if (!spec.IsExistingFolder()) {
    spec.Up();
  }
  SLockFile lock;
  if ((lockIt && !LockIndex(lock, spec, LockKind::kFiles, false)) || !DownToIndex(spec)) {
    return;
  }
  SIndexObj index;
  index.NeedFiles();
  index.ownsFiles = false;
  ReadIndex(spec, &index);
  ReconcileFiles(spec, &index, extension);
  index.MoveFilesOf(&list, extension);
}

int32_t CountTeachers() {
  SFileSpec spec;
  TeachersFolder(spec);
  return CountUnderLock(spec);
}

int32_t CountEntries(const SLoginNameObj* classEntry, bool siblings) {
  SFileSpec spec;
  EntryFolder(spec, classEntry, nullptr, false, false);
  if (classEntry == nullptr) {
    return CountUnderLock(spec);
  }
  const bool placed = siblings ? spec.Up() : spec.Down(CachedText<kTextStudents>());
  return placed ? CountUnderLock(spec) : 0;
}

}  // namespace kivstore
