#include "store/change/renaming.h"

#include "foundation/application.h"
#include "foundation/site_mode.h"
#include "platform/base/bytes.h"
#include "platform/text_numbers.h"
#include "store/change/adding.h"
#include "store/change/transaction.h"
#include "store/list/entries.h"
#include "store/list/name_derivation.h"
#include "store/place/cached_text.h"
#include "store/place/failure_report.h"
#include "store/place/layout.h"

namespace kivstore {
namespace {

using StepDown = bool (*)(SFileSpec& spec, const SLoginNameObj& entry);

// What differs between the levels.
struct RenameLevel {
  LockKind listLock;
  LockKind entryLock;
  // From the entry's folder to the one whose index lock keeps others out; whether it is there.
  StepDown goInside;
  bool staysInFolder;
};

// A teacher needs a classes folder: without one the default class is added.
bool GoToClasses(SFileSpec& spec, const SLoginNameObj& teacher) {
  spec.Down(ClassesName());
  if (IsKnownMissing(spec)) {
    SLoginNameObj* const selected = gCurrentTeacher;
    SelectTeacher(&teacher);
    SLoginNameObj defaultClass;
    MakeDefaultEntry(defaultClass);
    SString folder;
    AddClass(DisplayName(defaultClass), folder);
    // If a teacher was selected this is the object that has just been overwritten.
    SelectTeacher(selected);
    spec.Refresh();
  }
  return spec.IsExistingFolder();
}

bool GoToStudents(SFileSpec& spec, const SLoginNameObj&) {
  return spec.Down(CachedText<kTextStudents>()) && spec.IsExistingFolder();
}

bool StayInFolder(SFileSpec& spec, const SLoginNameObj&) {
  return spec.IsExistingFolder();
}

constexpr RenameLevel kTeacherLevel = {LockKind::kTeachers, LockKind::kClasses, GoToClasses, false};
constexpr RenameLevel kClassLevel = {LockKind::kClasses, LockKind::kClasses, GoToStudents, false};
constexpr RenameLevel kStudentLevel = {LockKind::kStudents, LockKind::kStudents, StayInFolder,
                                       true};

// From the list folder. The names are copies: the caller's may be the list's own.
bool RenameEntry(SFileSpec& spec, const SLoginNameObj& entry, SPtrArray& list, SString first,
                 SString last, const RenameLevel& level) {
  const int32_t index = FindLogin(list, entry);
  SLockFile listLock;
  if (index < 0 || !IsFolderThere(spec) || !LockIndex(listLock, spec, level.listLock, false)) {
    return false;
  }
  SFileSpec inside(spec);
  SLockFile entryLock;
  if (!DownToEntry(inside, entry) || !level.goInside(inside, entry) ||
      !LockIndex(entryLock, inside, level.entryLock, false)) {
    return false;
  }
  if (!level.staysInFolder) {
    inside.Up();
  }
  WriteLongName(inside, first, last);
  SLoginNameObj& renamed = *LoginIn(list, index);
  renamed.firstName = first;
  renamed.lastName = last;
  WriteLogins(spec, list, renamed.folderName);
  return true;
}

SString TeacherForHook() {
  const bool isNamed = gSiteMode == kSiteSharedTeachers && gCurrentTeacher != nullptr;
  return isNamed ? DisplayName(*gCurrentTeacher) : SString(kNoTeacherName);
}

bool FailToRename() {
  ReportFileFailure(kFailRename);
  return false;
}

SOurFileObj* FindFile(const SPtrArray& files, const SString& longName) {
  for (int32_t i = 0; i < files.GetSize(); ++i) {
    if (FileIn(files, i)->longName == longName) {
      return FileIn(files, i);
    }
  }
  return nullptr;
}

bool IsLongNameTaken(const SPtrArray& files, const SString& longName) {
  for (int32_t i = 0; i < files.GetSize(); ++i) {
    if (EqualBytesNoCase(FileIn(files, i)->longName.View(), longName.View())) {
      return true;
    }
  }
  return false;
}

}  // namespace

bool RenameTeacher(const SLoginNameObj* teacher, SPtrArray* list, const SString& newName,
                   SString& folderOut) {
  const SString name(newName);
  folderOut.Empty();
  if (teacher == nullptr || list == nullptr || !IsSharedSite()) {
    return false;
  }
  const SString oldDisplay = DisplayName(*teacher);
  SFileSpec spec;
  TeachersFolder(spec);
  if (!RenameEntry(spec, *teacher, *list, name, SString(), kTeacherLevel)) {
    return false;
  }
  if (gApp != nullptr) {
    gApp->OnTeacherRenamed(oldDisplay, name);
  }
  return true;
}

bool RenameClass(const SLoginNameObj* classEntry, SPtrArray* list, const SString& newName,
                 SString& folderOut) {
  const SString name(newName);
  folderOut.Empty();
  if (classEntry == nullptr || list == nullptr) {
    return false;
  }
  const SString oldDisplay = DisplayName(*classEntry);
  SFileSpec spec;
  SString path;
  ClassesFolder(spec, path, false);
  if (!RenameEntry(spec, *classEntry, *list, name, SString(), kClassLevel)) {
    return false;
  }
  if (gApp != nullptr) {
    gApp->OnClassRenamed(oldDisplay, name, TeacherForHook());
  }
  return true;
}

bool RenameStudent(const SLoginNameObj* classEntry, const SLoginNameObj* student, SPtrArray* list,
                   const SString& newFirst, const SString& newLast) {
  if (classEntry == nullptr || student == nullptr || list == nullptr) {
    return false;
  }
  const SLoginNameObj before(*student);
  const SLoginNameObj after(newFirst, newLast, SString());
  SFileSpec spec;
  StudentsFolder(spec, *classEntry, false);
  if (!RenameEntry(spec, *student, *list, newFirst, newLast, kStudentLevel)) {
    return false;
  }
  if (gApp != nullptr) {
    gApp->OnStudentRenamed(DisplayName(*classEntry), before.lastName, before.firstName,
                           after.lastName, after.firstName, TeacherForHook());
  }
  return true;
}

bool RenameUserFile(const SFileSpec& spec, const SString& oldName, const SString& newName,
                    bool lockIt) {
  SFileSpec folder(spec);
  if (!folder.IsExistingFolder()) {
    folder.Up();
  }
  SLockFile lock;
  if (!folder.IsExistingFolder() || (lockIt && !LockIndex(lock, folder, LockKind::kFiles, false))) {
    return FailToRename();
  }
  SIndexObj index;
  ReadWholeIndex(folder, index);
  if (index.files == nullptr) {
    return true;
  }
  if (IsLongNameTaken(*index.files, newName)) {
    return false;
  }
  if (SOurFileObj* const file = FindFile(*index.files, oldName)) {
    file->longName = newName;
  }
  return WriteIndex(folder, index) || FailToRename();
}

}  // namespace kivstore
