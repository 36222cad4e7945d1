#include "store/change/renaming.h"

#include "platform/base/bytes.h"
#include "store/change/default_entries.h"
#include "store/change/transaction.h"
#include "store/list/index_lookup.h"
#include "store/list/long_name.h"
#include "store/place/display_name.h"
#include "store/place/failure_report.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

using StepDown = bool (*)(SSite& site, SFileSpec& spec, const SLoginNameObj& entry);

// What differs between the levels.
struct RenameLevel {
  ListKind listLock;
  ListKind entryLock;
  // From the entry's folder to the one whose index lock keeps others out; whether it is there.
  StepDown goInside;
  bool staysInFolder;
};

// A teacher needs a classes folder: without one the default class is added.
bool GoToClasses(SSite& site, SFileSpec& spec, const SLoginNameObj& teacher) {
  DownToClasses(spec);
  if (IsKnownMissing(spec)) {
    const SLoginNameObj* const selected = site.GetCurrentTeacher();
    site.SelectTeacher(&teacher);
    SLoginNameObj defaultClass;
    MakeDefaultEntry(defaultClass);
    SString folder;
    AddClass(site, DisplayName(defaultClass), folder);
    // If a teacher was selected this is the object that has just been overwritten.
    site.SelectTeacher(selected);
    spec.Refresh();
  }
  return spec.IsExistingFolder();
}

bool GoToStudents(SSite&, SFileSpec& spec, const SLoginNameObj&) {
  return spec.Down(CachedText<kTextStudents>()) && spec.IsExistingFolder();
}

bool StayInFolder(SSite&, SFileSpec&, const SLoginNameObj&) {
  return true;
}

constexpr RenameLevel kRenameTeacher = {ListKind::kTeachers, ListKind::kClasses, GoToClasses,
                                        false};
constexpr RenameLevel kRenameClass = {ListKind::kClasses, ListKind::kClasses, GoToStudents, false};
constexpr RenameLevel kRenameStudent = {ListKind::kStudents, ListKind::kStudents, StayInFolder,
                                        true};

bool FailOnMissing(SSite& site, const RenameLevel& level, const SFileSpec& spec) {
  site.NoteFailure(FailureKind::kMissing, spec.GetPath(), level.listLock);
  return false;
}

bool FailOnEntry(SSite& site, const RenameLevel& level, const SFileSpec& spec) {
  site.NoteFailure(FailureKind::kNoEntry, spec.GetPath(), level.listLock);
  return false;
}

// From the list folder. The names are copies: the caller's may be the list's own.
bool RenameEntry(SSite& site, SFileSpec& spec, const SLoginNameObj& entry, SLoginList& list,
                 SString first, SString last, const RenameLevel& level) {
  const int32_t index = FindLogin(list, entry);
  if (index < 0) {
    return FailOnEntry(site, level, spec);
  }
  SLockFile listLock(site);
  if (!LockList(site, listLock, spec, level.listLock, false)) {
    return FailOnMissing(site, level, spec);
  }
  SFileSpec inside(spec);
  SLockFile entryLock(site);
  if (!IsEntryOf(spec, entry) || !DownToEntry(inside, entry) || !inside.IsExistingFolder()) {
    return FailOnEntry(site, level, inside);
  }
  if (!level.goInside(site, inside, entry) ||
      !LockIndex(entryLock, inside, level.entryLock, false)) {
    return FailOnMissing(site, level, inside);
  }
  if (!level.staysInFolder) {
    inside.Up();
  }
  EnsureLine(site, spec, entry, level.listLock);
  if (!WriteLongName(inside, first, last)) {
    site.NoteShortfall(level.listLock);
  }
  SLoginNameObj& renamed = list[index];
  renamed.firstName = first;
  renamed.lastName = last;
  WriteLogins(site, spec, list, renamed.folderName, level.listLock);
  return true;
}

SString TeacherForHook(const SSite& site) {
  const SLoginNameObj* const teacher = site.GetCurrentTeacher();
  const bool isNamed = site.GetSiteMode() == kSiteSharedTeachers && teacher != nullptr;
  return isNamed ? DisplayName(*teacher) : SString(kNoTeacherName);
}

bool FailToRename(SSite& site) {
  ReportFileFailure(site, kFailRename);
  return false;
}

SOurFileObj* FindFile(SFileList& files, const SString& longName) {
  for (SOurFileObj& file : files) {
    if (file.longName == longName) {
      return &file;
    }
  }
  return nullptr;
}

bool IsLongNameTaken(const SFileList& files, const SString& longName) {
  for (const SOurFileObj& file : files) {
    if (EqualBytesNoCase(file.longName.View(), longName.View())) {
      return true;
    }
  }
  return false;
}

}  // namespace

bool RenameTeacher(SSite& site, const SLoginNameObj& teacher, SLoginList& list,
                   const SString& newName) {
  if (!site.IsShared()) {
    return false;
  }
  const SString name(newName);
  const SString oldDisplay = DisplayName(teacher);
  PrepareTeacherList(site);
  SFileSpec spec;
  TeachersFolder(site, spec);
  if (!RenameEntry(site, spec, teacher, list, name, SString(), kRenameTeacher)) {
    return false;
  }
  if (site.GetOwner() != nullptr) {
    site.GetOwner()->OnTeacherRenamed(oldDisplay, name);
  }
  return true;
}

bool RenameClass(SSite& site, const SLoginNameObj& classEntry, SLoginList& list,
                 const SString& newName) {
  const SString name(newName);
  const SString oldDisplay = DisplayName(classEntry);
  PrepareClassList(site);
  SFileSpec spec;
  ClassesFolder(site, spec);
  if (!RenameEntry(site, spec, classEntry, list, name, SString(), kRenameClass)) {
    return false;
  }
  if (site.GetOwner() != nullptr) {
    site.GetOwner()->OnClassRenamed(oldDisplay, name, TeacherForHook(site));
  }
  return true;
}

bool RenameStudent(SSite& site, const SLoginNameObj& classEntry, const SLoginNameObj& student,
                   SLoginList& list, const SString& newFirst, const SString& newLast) {
  const SLoginNameObj before(student);
  const SLoginNameObj after(newFirst, newLast, SString());
  SLoginNameObj group(classEntry);
  PrepareStudentList(site, group);
  SFileSpec spec;
  StudentsFolder(site, spec, group);
  if (!RenameEntry(site, spec, student, list, newFirst, newLast, kRenameStudent)) {
    return false;
  }
  if (site.GetOwner() != nullptr) {
    site.GetOwner()->OnStudentRenamed(DisplayName(classEntry), before.lastName, before.firstName,
                                      after.lastName, after.firstName, TeacherForHook(site));
  }
  return true;
}

bool RenameUserFile(SSite& site, const SFileSpec& spec, const SString& oldName,
                    const SString& newName, bool lockIt) {
  SFileSpec folder(spec);
  if (!folder.IsExistingFolder()) {
    folder.Up();
  }
  SLockFile lock(site);
  if (!folder.IsExistingFolder() || (lockIt && !LockIndex(lock, folder, ListKind::kFiles, false))) {
    site.NoteFailure(FailureKind::kMissing, folder.GetPath(), ListKind::kFiles);
    return FailToRename(site);
  }
  SIndexObj index;
  ReadWholeIndex(folder, index);
  if (IsLongNameTaken(*index.files, newName)) {
    site.NoteFailure(FailureKind::kNameTaken, folder.GetPath(), ListKind::kFiles);
    return false;
  }
  if (SOurFileObj* const file = FindFile(*index.files, oldName)) {
    file->longName = newName;
  }
  if (WriteIndex(folder, index)) {
    return true;
  }
  site.NoteFileFailure(ListKind::kFiles);
  return FailToRename(site);
}

}  // namespace kivstore
