#include "store/change/deleting.h"

#include "foundation/site_mode.h"
#include "platform/text_numbers.h"
#include "store/change/transaction.h"
#include "store/list/entries.h"
#include "store/list/listing.h"
#include "store/list/name_derivation.h"
#include "store/place/cached_text.h"
#include "store/place/failure_report.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

bool FailOnFolder(int word, const SLoginNameObj& entry, const SFileSpec& spec) {
  SString message;
  message.Substitute(SString::FromResource(kTextFolderNotDeleted), SString::FromResource(word),
                     DisplayName(entry), spec.GetPath());
  DropMessage(message);
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

bool LockMember(SLockFile& lock, const SFileSpec& folder, LockKind kind, bool standAlone,
                bool& stop) {
  lock.nested = !standAlone;
  if (!LockIndex(lock, folder, kind, true)) {
    stop = lock.cancelAll;
    return false;
  }
  return true;
}

// Takes the deleted entry out of the list, and out of its index too where nobody else will.
void Forget(const SFileSpec& listFolder, SPtrArray& list, const SLoginNameObj& entry,
            bool writeIndex) {
  const SString folder(entry.folderName);
  RemoveLoginAt(list, FindLogin(list, entry));
  if (writeIndex) {
    WriteLogins(listFolder, list, folder);
  }
}

// Deletes each entry of a list, going on past one that stays unless `stop` says otherwise. One that
// was gone already is still listed.
template <class DeleteOne>
bool DeleteEach(SPtrArray& list, const bool& stop, DeleteOne deleteOne) {
  bool deletedAll = true;
  int32_t i = 0;
  while (i < list.GetSize()) {
    const int32_t before = list.GetSize();
    if (!deleteOne(*LoginIn(list, i))) {
      deletedAll = false;
      if (stop) {
        break;
      }
    }
    i += list.GetSize() == before ? 1 : 0;
  }
  return deletedAll;
}

bool DeleteClassesOf(const SLoginNameObj& teacher) {
  SLoginNameObj* const selected = gCurrentTeacher;
  SelectTeacher(&teacher);
  SLoginList classes;
  LoadClassList(classes.Array(), false);
  bool stop = false;
  const bool deleted = DeleteEach(classes.Array(), stop, [&](const SLoginNameObj& entry) {
    return DeleteClass(&entry, &classes.Array(), false, stop);
  });
  // If a teacher was selected this is the object that has just been overwritten.
  SelectTeacher(selected);
  return deleted;
}

// The spec stands on the teacher's classes folder.
bool RemoveTeacherFolder(SFileSpec& spec, const SLoginNameObj& teacher) {
  SLockFile lock;
  if (!IsKnownMissing(spec)) {
    if (!LockIndex(lock, spec, LockKind::kClasses, true) || !DeleteClassesOf(teacher)) {
      return false;
    }
    RemoveFolder(spec, lock);
  }
  spec.Up();
  return spec.Delete(true);
}

bool DeleteStudentsOf(const SLoginNameObj& classEntry, bool& stop) {
  SLoginList students;
  LoadStudentList(students.Array(), classEntry, true, false);
  return DeleteEach(students.Array(), stop, [&](const SLoginNameObj& entry) {
    return DeleteStudent(&classEntry, &entry, &students.Array(), false, stop);
  });
}

}  // namespace

bool DeleteTeacher(const SLoginNameObj* teacher, SPtrArray* list) {
  if (teacher == nullptr || list == nullptr || !IsSharedSite()) {
    return false;
  }
  SFileSpec spec;
  TeachersFolder(spec);
  SLockFile listLock;
  if (!IsFolderThere(spec) || !LockIndex(listLock, spec, LockKind::kTeachers, true)) {
    return false;
  }
  const SFileSpec listFolder(spec);
  if (!DownToEntry(spec, *teacher) || !spec.IsExistingFolder()) {
    return false;
  }
  if (!spec.Down(ClassesName())) {
    return true;
  }
  if (!RemoveTeacherFolder(spec, *teacher)) {
    return FailOnFolder(kTextTeacher, *teacher, spec);
  }
  Forget(listFolder, *list, *teacher, true);
  return true;
}

bool DeleteClass(const SLoginNameObj* classEntry, SPtrArray* list, bool standAlone, bool& stop) {
  if (classEntry == nullptr || list == nullptr) {
    return false;
  }
  SFileSpec spec;
  SString path;
  ClassesFolder(spec, path, false);
  SLockFile listLock;
  if (!IsFolderThere(spec) ||
      (standAlone && !LockIndex(listLock, spec, LockKind::kClasses, true))) {
    return false;
  }
  const SFileSpec listFolder(spec);
  if (!DownToEntry(spec, *classEntry) || !spec.IsExistingFolder() ||
      !spec.Down(CachedText<kTextStudents>()) || !spec.IsExistingFolder()) {
    return false;
  }
  SLockFile studentsLock;
  if (!LockMember(studentsLock, spec, LockKind::kClasses, standAlone, stop)) {
    return false;
  }
  spec.Up();
  if (!DeleteStudentsOf(*classEntry, stop)) {
    return false;
  }
  if (!RemoveFolder(spec, studentsLock)) {
    stop |= !standAlone;
    return FailOnFolder(kTextClass, *classEntry, spec);
  }
  Forget(listFolder, *list, *classEntry, standAlone);
  return true;
}

bool DeleteStudent(const SLoginNameObj* classEntry, const SLoginNameObj* student, SPtrArray* list,
                   bool standAlone, bool& stop) {
  stop = false;
  if (classEntry == nullptr || student == nullptr || list == nullptr) {
    return false;
  }
  SFileSpec spec;
  StudentsFolder(spec, *classEntry, false);
  SLockFile listLock;
  if (!IsFolderThere(spec) ||
      (standAlone && !LockIndex(listLock, spec, LockKind::kClasses, true))) {
    return false;
  }
  const SFileSpec listFolder(spec);
  if (!DownToEntry(spec, *student)) {
    return false;
  }
  if (!spec.IsExistingFolder()) {
    return spec.Exists() || IsKnownMissing(spec);
  }
  SLockFile folderLock;
  if (!LockMember(folderLock, spec, LockKind::kStudents, standAlone, stop)) {
    return false;
  }
  if (!RemoveFolder(spec, folderLock)) {
    stop |= !standAlone;
    return FailOnFolder(kTextStudent, *student, spec);
  }
  Forget(listFolder, *list, *student, standAlone);
  return true;
}

}  // namespace kivstore
