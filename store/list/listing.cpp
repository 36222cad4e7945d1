#include "store/list/listing.h"

#include "store/list/index_file.h"
#include "store/list/reconcile.h"
#include "store/lock/lock_file.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

// The opening of the index is look enough.
bool DownToIndex(SFileSpec& spec) {
  return spec.DownAssumed(CachedText<kTextIndexFile>().GetText());
}

bool ReadLogins(SFileSpec folder, SIndexObj& index) {
  index.NeedLogins();
  return DownToIndex(folder) && ReadIndex(folder, index);
}

void Repair(SSite& site, const SFileSpec& folder, SIndexObj& index, ListKind kind, bool reconcile) {
  const bool isWhole = !reconcile || ReconcileLogins(site, folder, index);
  if (!isWhole || index.incomplete) {
    site.NoteFileFailure(kind);
  }
}

int32_t CountUnderLock(SSite& site, const SFileSpec& spec) {
  SLockFile lock(site);
  return LockIndex(lock, spec, ListKind::kClasses, false) ? ReadIndexCount(spec) : 0;
}

}  // namespace

void LoadTeacherList(SSite& site, SLoginList& list) {
  SFileSpec spec;
  TeachersFolder(site, spec);
  LoadLoginsAt(site, list, spec, ListKind::kTeachers, true, true);
}

void LoadClassList(SSite& site, SLoginList& list, bool lockIt) {
  SFileSpec spec;
  ClassesFolder(site, spec);
  LoadLoginsAt(site, list, spec, ListKind::kClasses, true, lockIt);
}

void LoadStudentList(SSite& site, SLoginList& list, const SLoginNameObj& classEntry, bool reconcile,
                     bool lockIt) {
  SFileSpec spec;
  StudentsFolder(site, spec, classEntry);
  LoadLoginsAt(site, list, spec, ListKind::kStudents, reconcile, lockIt);
}

void LoadLoginsAt(SSite& site, SLoginList& list, const SFileSpec& folder, ListKind kind,
                  bool reconcile, bool lockIt) {
  if (!folder.IsExistingFolder()) {
    site.NoteFailure(FailureKind::kMissing, folder.GetPath(), kind);
    return;
  }
  SLockFile lock(site);
  if (lockIt && !LockIndex(lock, folder, kind, false)) {
    return;
  }
  SIndexObj index;
  const bool isTrusted = ReadLogins(folder, index) && !reconcile && !index.torn;
  Repair(site, folder, index, kind, !isTrusted);
  index.MoveLoginsTo(list);
}

bool LoadCountedLogins(SSite& site, SLoginList& list, const SFileSpec& folder, ListKind kind) {
  SLockFile lock(site);
  if (!folder.IsExistingFolder() || !LockIndex(lock, folder, kind, false)) {
    return false;
  }
  SIndexObj index;
  if (!ReadLogins(folder, index) || index.logins->IsEmpty()) {
    return false;
  }
  Repair(site, folder, index, kind, true);
  index.MoveLoginsTo(list);
  return true;
}

void LoadFileList(SSite& site, SFileList& list, const SLoginNameObj* classEntry,
                  const SLoginNameObj* student, const SString& extension) {
  SFileSpec spec;
  EntryFolder(site, spec, classEntry, student);
  if (classEntry != nullptr && student == nullptr) {
    spec.Down(CachedText<kTextStudents>());
  }
  LoadFileListAt(site, list, spec, extension, false);
}

void LoadFileListAt(SSite& site, SFileList& list, SFileSpec spec, const SString& extension,
                    bool lockIt) {
  if (!spec.IsExistingFolder()) {
    spec.Up();
  }
  SLockFile lock(site);
  if ((lockIt && !LockIndex(lock, spec, ListKind::kFiles, false)) || !DownToIndex(spec)) {
    return;
  }
  SIndexObj index;
  index.NeedFiles();
  ReadIndex(spec, index);
  ReconcileFiles(spec, index, extension);
  index.MoveFilesOf(list, extension);
}

int32_t CountTeachers(SSite& site) {
  SFileSpec spec;
  TeachersFolder(site, spec);
  return CountUnderLock(site, spec);
}

int32_t CountEntries(SSite& site, const SLoginNameObj* classEntry) {
  SFileSpec spec;
  if (classEntry != nullptr) {
    StudentsFolder(site, spec, *classEntry);
  } else {
    ClassesFolder(site, spec);
  }
  return CountUnderLock(site, spec);
}

}  // namespace kivstore
