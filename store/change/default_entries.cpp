#include "store/change/default_entries.h"

#include "store/change/adding.h"
#include "store/list/index_file.h"
#include "store/list/listing.h"
#include "store/lock/lock_file.h"
#include "store/place/display_name.h"
#include "store/place/failure_report.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

// The list's own folder, the last name of the way: placing stays on the first that is missing, and
// whoever the list belongs to is not made by looking at it.
bool MakeIfMissing(SFileSpec& spec, const SString& name) {
  return spec.IsExistingFolder() || (spec.GetFileName() == name && spec.EnsureFolder());
}

void AddDefaultTeacher(SSite& site) {
  SLoginNameObj teacher;
  MakeTeacherDefaultEntry(teacher);
  SString folder;
  AddTeacher(site, teacher.firstName, folder);
  site.SelectTeacher(&teacher);
}

// A count without a list (the folders have gone since, or the list is locked) selects nobody.
void SelectFirstTeacher(SSite& site) {
  if (CountTeachers(site) < 1) {
    AddDefaultTeacher(site);
    return;
  }
  SLoginList teachers;
  LoadTeacherList(site, teachers);
  if (!teachers.IsEmpty()) {
    site.SelectTeacher(teachers.At(0));
  }
}

// Notes the list if it has entries. One that is locked by someone is taken to have some, and may be
// looked at again.
bool HasEntries(SSite& site, const SFileSpec& classes) {
  if (!site.IsMultiUser()) {
    return false;
  }
  SLockFile lock(site, classes, CachedText<kTextIndexFile>());
  SetLockMessages(lock, ListKind::kClasses, false);
  if (!lock.Lock()) {
    return true;
  }
  if (ReadIndexCount(classes) < 1) {
    return false;
  }
  site.NoteCountedClasses(classes);
  return true;
}

// A folder of the default class that the index lacks will enter the list by reconciliation.
bool AddDefaultClass(SSite& site, SFileSpec& classes) {
  const SString& name = CachedText<kTextDefault>();
  SFileSpec place(classes);
  if (!place.Down(name)) {
    return false;
  }
  SString folder;
  return place.Exists() || AddClassAt(site, classes, name, folder);
}

bool FillClassList(SSite& site, SFileSpec& classes) {
  return MakeIfMissing(classes, ClassesName()) &&
         (HasEntries(site, classes) || AddDefaultClass(site, classes));
}

bool IsListed(const SFileSpec& classes, const SLoginNameObj& classEntry) {
  SIndexObj index;
  ReadWholeIndex(classes, index);
  return FindLogin(*index.logins, classEntry) >= 0;
}

// Only a class that is still listed: one that was deleted does not come back because somebody with
// an old list asks for its students.
bool RestoreClassFolder(SSite& site, SLoginNameObj& classEntry) {
  SFileSpec classes;
  ClassesFolder(site, classes);
  SFileSpec place(classes);
  if (!DownToEntry(place, classEntry)) {
    return false;
  }
  return place.Exists() ||
         (IsListed(classes, classEntry) &&
          AddClassAt(site, classes, DisplayName(classEntry), classEntry.folderName));
}

}  // namespace

bool PrepareTeacherList(SSite& site) {
  if (!site.HasTeacherTier()) {
    return PrepareClassList(site);
  }
  SFileSpec spec;
  TeachersFolder(site, spec);
  if (MakeIfMissing(spec, ClassesName(kTextTeacherClasses))) {
    return true;
  }
  ReportStoreFailure(site, spec, ListKind::kTeachers);
  return false;
}

bool PrepareClassList(SSite& site, bool removable) {
  if (site.HasTeacherTier() && site.GetCurrentTeacher() == nullptr) {
    SelectFirstTeacher(site);
  }
  if (site.GetCountedClasses().IsValid()) {
    return true;
  }
  SFileSpec spec;
  ClassesFolder(site, spec, removable);
  if (FillClassList(site, spec)) {
    return true;
  }
  ReportStoreFailure(site, spec, ListKind::kClasses, removable);
  return false;
}

bool PrepareStudentList(SSite& site, SLoginNameObj& classEntry) {
  if (!PrepareClassList(site)) {
    return false;
  }
  SFileSpec spec;
  StudentsFolder(site, spec, classEntry);
  if (spec.IsExistingFolder()) {
    return true;
  }
  if (RestoreClassFolder(site, classEntry)) {
    StudentsFolder(site, spec, classEntry);
    if (MakeIfMissing(spec, CachedText<kTextStudents>())) {
      return true;
    }
  }
  ReportStoreFailure(site, spec, ListKind::kStudents);
  return false;
}

bool AddTeacher(SSite& site, const SString& name, SString& folderOut) {
  SFileSpec spec;
  PrepareTeacherList(site);
  TeachersFolder(site, spec);
  return spec.IsExistingFolder() && AddTeacherAt(site, spec, name, folderOut);
}

bool AddClass(SSite& site, const SString& name, SString& folderOut) {
  SFileSpec spec;
  PrepareClassList(site);
  ClassesFolder(site, spec);
  return spec.IsExistingFolder() && AddClassAt(site, spec, name, folderOut);
}

bool AddStudent(SSite& site, const SLoginNameObj& classEntry, const SString& first,
                const SString& last, SString& folderOut) {
  SLoginNameObj group(classEntry);
  SFileSpec spec;
  PrepareStudentList(site, group);
  StudentsFolder(site, spec, group);
  return spec.IsExistingFolder() && AddStudentAt(site, spec, first, last, folderOut);
}

}  // namespace kivstore
