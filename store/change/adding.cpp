#include "store/change/adding.h"

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

// What differs between the levels; the numbers are those of the string table.
struct AddLevel {
  LockKind lockKind;
  int16_t limit;
  int word;
  int listFullText;
  int failureText;
  bool listsStudents;
  bool endsInFolder;
};

constexpr AddLevel kTeacherLevel = {
    LockKind::kTeachers,  kMaxTeachers, kTextTeacher, kTextTeacherListFull,
    kTextTeacherNotAdded, false,        false};
constexpr AddLevel kClassLevel = {LockKind::kClasses, kMaxClasses, kTextClass, kTextClassListFull,
                                  kTextClassNotAdded, true,        false};
constexpr AddLevel kStudentLevel = {
    LockKind::kStudents,  kMaxStudents, kTextStudent, kTextStudentListFull,
    kTextStudentNotAdded, false,        true};

bool FailPlainly(const AddLevel& level, const SString& display) {
  SString message;
  message.FormatResource(level.failureText, display.GetText());
  DropMessage(message);
  return false;
}

bool FailOnFullList(const AddLevel& level, const SString& display) {
  SString message;
  message.FormatResource(level.listFullText, display.GetText(), static_cast<long>(level.limit));
  DropMessage(message);
  return false;
}

bool FailOnFolder(const AddLevel& level, const SString& display, const SFileSpec& list) {
  SString message;
  message.Substitute(SString::FromResource(kTextFolderNotMade), SString::FromResource(level.word),
                     display, list.GetPath());
  DropMessage(message);
  return false;
}

void MakeStudentsFolder(SFileSpec spec) {
  if (spec.Down(CachedText<kTextStudents>())) {
    spec.CreateFolder(0);
  }
}

// From the list folder; the spec moves only where the level says so.
bool MakeEntryFolder(SFileSpec& spec, const SString& folder, const SString& first,
                     const SString& last, const AddLevel& level) {
  SFileSpec made(spec);
  if (!made.Down(folder) || !made.CreateFolder(0)) {
    return false;
  }
  WriteLongName(made, first, last);
  if (level.listsStudents) {
    MakeStudentsFolder(made);
  }
  if (level.endsInFolder) {
    spec = made;
  }
  return true;
}

bool AddEntryAt(SFileSpec& spec, const SString& first, const SString& last, SString& folderOut,
                const AddLevel& level) {
  const SString display = DisplayName(first, last);
  SLockFile lock;
  if (!IsFolderThere(spec) || !LockIndex(lock, spec, level.lockKind, false)) {
    return FailPlainly(level, display);
  }
  bool isThere = false;
  const SString folder = DeriveFolderName(spec, first, last, isThere);
  if (!isThere) {
    if (!EnsureEntry(spec, folder, first, last, level.limit)) {
      return FailOnFullList(level, display);
    }
    if (!MakeEntryFolder(spec, folder, first, last, level)) {
      return FailOnFolder(level, display, spec);
    }
  }
  folderOut = folder;
  return true;
}

}  // namespace

bool AddTeacher(const SString& name, SString& folderOut) {
  SFileSpec spec;
  TeachersFolder(spec);
  return spec.IsExistingFolder() && AddTeacherAt(spec, name, folderOut);
}

bool AddTeacher(const SLoginNameObj& teacher) {
  SString folder;
  return AddTeacher(teacher.firstName, folder);
}

bool AddTeacherAt(SFileSpec& spec, const SString& name, SString& folderOut) {
  return IsSharedSite() && AddEntryAt(spec, name, SString(), folderOut, kTeacherLevel);
}

bool AddClass(const SString& name, SString& folderOut) {
  SFileSpec spec;
  SString path;
  ClassesFolder(spec, path, false);
  return spec.IsExistingFolder() && AddClassAt(spec, name, folderOut);
}

bool AddClassAt(SFileSpec& spec, const SString& name, SString& folderOut) {
  return AddEntryAt(spec, name, SString(), folderOut, kClassLevel);
}

bool AddStudent(const SLoginNameObj& classEntry, const SString& first, const SString& last,
                SString& folderOut) {
  SFileSpec spec;
  StudentsFolder(spec, classEntry, false);
  return spec.IsExistingFolder() && AddStudentAt(spec, first, last, folderOut);
}

bool AddStudentAt(SFileSpec& spec, const SString& first, const SString& last, SString& folderOut) {
  return AddEntryAt(spec, first, last, folderOut, kStudentLevel);
}

bool CheckStudentName(const SLoginNameObj& classEntry, const SString& first, const SString& last,
                      SString& folderOut, SPtrArray* list) {
  SFileSpec spec;
  StudentsFolder(spec, classEntry, false);
  if (!IsFolderThere(spec)) {
    return false;
  }
  SFileSpec indexFile(spec);
  if (!indexFile.Down(CachedText<kTextIndexFile>())) {
    return true;
  }
  SLockFile lock;
  if (!LockIndex(lock, spec, LockKind::kStudents, false)) {
    return true;
  }
  bool isThere = false;
  folderOut = DeriveFolderName(spec, first, last, isThere);
  if (!isThere || list == nullptr) {
    return true;
  }
  // Somebody has added this student since the list was read.
  DeleteLogins(*list);
  ReadLogins(*list, indexFile, true);
  folderOut.Empty();
  return false;
}

}  // namespace kivstore
