#include "store/change/deleting.h"

#include "store/change/default_entries.h"
#include "store/change/transaction.h"
#include "store/list/index_lookup.h"
#include "store/list/listing.h"
#include "store/place/display_name.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

bool FailOnFolder(SSite& site, ListKind list, TextNumber word, const SLoginNameObj& entry,
                  const SFileSpec& spec) {
  site.NoteFileFailure(list);
  SString text;
  text.Substitute(SString::FromResource(kTextFolderNotDeleted), SString::FromResource(word),
                  DisplayName(entry), spec.GetPath());
  site.TellFailure(text);
  return false;
}

bool FailOnMissing(SSite& site, ListKind list, const SFileSpec& spec) {
  site.NoteFailure(FailureKind::kMissing, spec.GetPath(), list);
  return false;
}

bool FailOnEntry(SSite& site, ListKind list, const SFileSpec& spec) {
  site.NoteFailure(FailureKind::kNoEntry, spec.GetPath(), list);
  return false;
}

// The first try cannot remove this operation's own lock file, the second can.
bool RemoveFolder(SFileSpec& spec, SLockFile& lock) {
  if (spec.Delete(true)) {
    return true;
  }
  lock.Unlock();
  return spec.Delete(true);
}

// Takes the deleted entry out of the list, and out of its index too where nobody else will.
void Forget(SSite& site, const SFileSpec& listFolder, SLoginList& list, const SLoginNameObj& entry,
            bool writeIndex, ListKind kind) {
  const SString folder(entry.folderName);
  if (const int32_t index = FindLogin(list, entry); index >= 0) {
    list.RemoveAt(index);
  }
  site.ForgetCountedClasses();
  if (writeIndex) {
    WriteLogins(site, listFolder, list, folder, kind);
  }
}

// Deletes each entry of a list, going on past one that stays unless `stop` says otherwise. One that
// was gone already is still listed.
template <class DeleteOne>
bool DeleteEach(SLoginList& list, const bool& stop, DeleteOne deleteOne) {
  bool deletedAll = true;
  int32_t i = 0;
  while (i < list.GetSize()) {
    const int32_t before = list.GetSize();
    if (!deleteOne(list[i])) {
      deletedAll = false;
      if (stop) {
        break;
      }
    }
    i += list.GetSize() == before ? 1 : 0;
  }
  return deletedAll;
}

bool DeleteClassesOf(SSite& site, const SLoginNameObj& teacher) {
  const SLoginNameObj* const selected = site.GetCurrentTeacher();
  site.SelectTeacher(&teacher);
  SLoginList classes;
  LoadClassList(site, classes, false);
  bool stop = false;
  const bool deleted = DeleteEach(classes, stop, [&](const SLoginNameObj& entry) {
    return DeleteClass(site, entry, classes, false, stop);
  });
  // If a teacher was selected this is the object that has just been overwritten.
  site.SelectTeacher(selected);
  return deleted;
}

// The spec stands on the teacher's classes folder.
bool RemoveTeacherFolder(SSite& site, SFileSpec& spec, const SLoginNameObj& teacher) {
  SLockFile lock(site);
  if (!IsKnownMissing(spec)) {
    if (!LockIndex(lock, spec, ListKind::kClasses, true) || !DeleteClassesOf(site, teacher)) {
      return false;
    }
    RemoveFolder(spec, lock);
  }
  spec.Up();
  return spec.Delete(true);
}

bool DeleteStudentsOf(SSite& site, const SLoginNameObj& classEntry, bool& stop) {
  SLoginList students;
  LoadStudentList(site, students, classEntry, true, false);
  return DeleteEach(students, stop, [&](const SLoginNameObj& entry) {
    return DeleteStudent(site, classEntry, entry, students, false, stop);
  });
}

}  // namespace

bool DeleteTeacher(SSite& site, const SLoginNameObj& teacher, SLoginList& list) {
  if (!site.IsShared()) {
    return false;
  }
  PrepareTeacherList(site);
  SFileSpec spec;
  TeachersFolder(site, spec);
  SLockFile listLock(site);
  if (!LockList(site, listLock, spec, ListKind::kTeachers, true)) {
    return FailOnMissing(site, ListKind::kTeachers, spec);
  }
  const SFileSpec listFolder(spec);
  if (!IsEntryOf(listFolder, teacher) || !DownToEntry(spec, teacher) || !spec.IsExistingFolder()) {
    return FailOnEntry(site, ListKind::kTeachers, spec);
  }
  if (!DownToClasses(spec)) {
    return true;
  }
  if (!RemoveTeacherFolder(site, spec, teacher)) {
    return FailOnFolder(site, ListKind::kTeachers, kTextTeacher, teacher, spec);
  }
  Forget(site, listFolder, list, teacher, true, ListKind::kTeachers);
  return true;
}

bool DeleteClass(SSite& site, const SLoginNameObj& classEntry, SLoginList& list, bool standAlone,
                 bool& stop) {
  if (standAlone) {
    PrepareClassList(site);
  }
  SFileSpec spec;
  ClassesFolder(site, spec);
  SLockFile listLock(site);
  if (standAlone ? !LockList(site, listLock, spec, ListKind::kClasses, true)
                 : !IsFolderThere(site, spec)) {
    return FailOnMissing(site, ListKind::kClasses, spec);
  }
  const SFileSpec listFolder(spec);
  if ((standAlone && !IsEntryOf(listFolder, classEntry)) || !DownToEntry(spec, classEntry) ||
      !spec.IsExistingFolder()) {
    return FailOnEntry(site, ListKind::kClasses, spec);
  }
  if (!spec.Down(CachedText<kTextStudents>()) || !spec.IsExistingFolder()) {
    return FailOnMissing(site, ListKind::kClasses, spec);
  }
  SLockFile studentsLock(site);
  if (!LockIndex(studentsLock, spec, ListKind::kClasses, true)) {
    return false;
  }
  spec.Up();
  if (!DeleteStudentsOf(site, classEntry, stop)) {
    return false;
  }
  if (!RemoveFolder(spec, studentsLock)) {
    stop |= !standAlone;
    return FailOnFolder(site, ListKind::kClasses, kTextClass, classEntry, spec);
  }
  Forget(site, listFolder, list, classEntry, standAlone, ListKind::kClasses);
  return true;
}

bool DeleteStudent(SSite& site, const SLoginNameObj& classEntry, const SLoginNameObj& student,
                   SLoginList& list, bool standAlone, bool& stop) {
  stop = false;
  SLoginNameObj group(classEntry);
  if (standAlone) {
    PrepareStudentList(site, group);
  }
  SFileSpec spec;
  StudentsFolder(site, spec, group);
  SLockFile listLock(site);
  if (standAlone ? !LockList(site, listLock, spec, ListKind::kClasses, true)
                 : !IsFolderThere(site, spec)) {
    return FailOnMissing(site, ListKind::kStudents, spec);
  }
  const SFileSpec listFolder(spec);
  if ((standAlone && !IsEntryOf(listFolder, student)) || !DownToEntry(spec, student)) {
    return FailOnEntry(site, ListKind::kStudents, spec);
  }
  if (!spec.IsExistingFolder()) {
    return spec.Exists() || IsKnownMissing(spec);
  }
  SLockFile folderLock(site);
  if (!LockIndex(folderLock, spec, ListKind::kStudents, true)) {
    return false;
  }
  if (!RemoveFolder(spec, folderLock)) {
    stop |= !standAlone;
    return FailOnFolder(site, ListKind::kStudents, kTextStudent, student, spec);
  }
  Forget(site, listFolder, list, student, standAlone, ListKind::kStudents);
  return true;
}

}  // namespace kivstore
