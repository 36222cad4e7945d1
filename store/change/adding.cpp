#include "store/change/adding.h"

#include "store/change/default_entries.h"
#include "store/change/transaction.h"
#include "store/list/index_lookup.h"
#include "store/list/listing.h"
#include "store/list/long_name.h"
#include "store/list/name_derivation.h"
#include "store/place/display_name.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

// What differs between the levels; the numbers are those of the string table.
struct AddLevel {
  ListKind list;
  int16_t limit;
  TextNumber word;
  TextNumber listFullText;
  TextNumber failureText;
  bool listsStudents;
  bool endsInFolder;
};

constexpr AddLevel kAddTeacher = {
    ListKind::kTeachers,  kMaxTeachers, kTextTeacher, kTextTeacherListFull,
    kTextTeacherNotAdded, false,        false};
constexpr AddLevel kAddClass = {ListKind::kClasses, kMaxClasses, kTextClass, kTextClassListFull,
                                kTextClassNotAdded, true,        false};
constexpr AddLevel kAddStudent = {
    ListKind::kStudents,  kMaxStudents, kTextStudent, kTextStudentListFull,
    kTextStudentNotAdded, false,        true};

bool FailPlainly(SSite& site, const AddLevel& level, const SString& display,
                 const SFileSpec& list) {
  site.NoteFailure(FailureKind::kMissing, list.GetPath(), level.list);
  SString text;
  text.FormatResource(level.failureText, display.GetText());
  site.TellFailure(text);
  return false;
}

bool FailOnFullList(SSite& site, const AddLevel& level, const SString& display,
                    const SFileSpec& list) {
  site.NoteFailure(FailureKind::kFull, list.GetPath(), level.list);
  SString text;
  text.FormatResource(level.listFullText, display.GetText(), static_cast<long>(level.limit));
  site.TellFailure(text);
  return false;
}

bool FailOnFolder(SSite& site, const AddLevel& level, const SString& display,
                  const SFileSpec& list) {
  site.NoteFileFailure(level.list);
  SString text;
  text.Substitute(SString::FromResource(kTextFolderNotMade), SString::FromResource(level.word),
                  display, list.GetPath());
  site.TellFailure(text);
  return false;
}

void MakeStudentsFolder(SFileSpec spec) {
  if (spec.Down(CachedText<kTextStudents>())) {
    spec.CreateFolder(0);
  }
}

// From the list folder; the spec moves only where the level says so. The folder appears in the list
// whole, with its name in it.
bool MakeEntryFolder(SSite& site, SFileSpec& spec, const SLoginNameObj& entry,
                     const AddLevel& level, const FillFolder& fill) {
  SFileSpec place(spec);
  SFileSpec made = PlaceToMake(spec, entry.folderName);
  if (!place.Down(entry.folderName) || !made.CreateFolder(0)) {
    return false;
  }
  if (!WriteLongName(made, entry.firstName, entry.lastName)) {
    site.NoteShortfall(level.list);
  }
  if (level.listsStudents) {
    MakeStudentsFolder(made);
  }
  if (fill) {
    fill(made);
  }
  if (!made.RenameTo(place)) {
    made.Delete(true);
    return false;
  }
  if (level.endsInFolder) {
    spec = made;
  }
  return true;
}

bool AddEntryAt(SSite& site, SFileSpec& spec, const SString& first, const SString& last,
                SString& folderOut, const AddLevel& level, const FillFolder& fill) {
  const SString display = DisplayName(first, last);
  SLockFile lock(site);
  if (!LockList(site, lock, spec, level.list, false)) {
    return FailPlainly(site, level, display, spec);
  }
  SLoginNameObj entry(first, last, SString());
  if (IsNameThere(site, spec, entry)) {
    folderOut = entry.folderName;
    return true;
  }
  bool isThere = false;
  entry.folderName = DeriveFolderName(spec, first, last, isThere);
  if (isThere && !IsEntryOf(spec, entry)) {
    // A rename that died half way has left the old name in the line.
    EnsureEntry(site, spec, entry.folderName, first, last, kNoLimit, level.list);
  }
  if (!isThere) {
    if (!EnsureEntry(site, spec, entry.folderName, first, last, level.limit, level.list)) {
      return FailOnFullList(site, level, display, spec);
    }
    if (!MakeEntryFolder(site, spec, entry, level, fill)) {
      return FailOnFolder(site, level, display, spec);
    }
  }
  folderOut = entry.folderName;
  return true;
}

}  // namespace

bool AddTeacherAt(SSite& site, SFileSpec& spec, const SString& name, SString& folderOut,
                  const FillFolder& fill) {
  return site.IsShared() && AddEntryAt(site, spec, name, SString(), folderOut, kAddTeacher, fill);
}

bool AddClassAt(SSite& site, SFileSpec& spec, const SString& name, SString& folderOut,
                const FillFolder& fill) {
  return AddEntryAt(site, spec, name, SString(), folderOut, kAddClass, fill);
}

bool AddStudentAt(SSite& site, SFileSpec& spec, const SString& first, const SString& last,
                  SString& folderOut, const FillFolder& fill) {
  return AddEntryAt(site, spec, first, last, folderOut, kAddStudent, fill);
}

bool CheckStudentName(SSite& site, const SLoginNameObj& classEntry, const SString& first,
                      const SString& last, SString& folderOut, SLoginList* list) {
  SLoginNameObj group(classEntry);
  PrepareStudentList(site, group);
  SFileSpec spec;
  StudentsFolder(site, spec, group);
  if (!IsFolderThere(site, spec)) {
    return false;
  }
  SLockFile lock(site);
  if (!LockIndex(lock, spec, ListKind::kStudents, false)) {
    return true;
  }
  bool isThere = false;
  folderOut = DeriveFolderName(spec, first, last, isThere);
  if (!isThere || list == nullptr) {
    return true;
  }
  // Somebody has added this student since the list was read.
  LoadLoginsAt(site, *list, spec, ListKind::kStudents, true, false);
  folderOut.Empty();
  return false;
}

}  // namespace kivstore
