// The lists that the commands work on.
#include "app/commands.h"
#include "store/change/default_entries.h"
#include "store/list/listing.h"
#include "store/place/placing.h"

namespace kivstore::commands {

// A folder that is not there is what the rules may make.
void ListTeachers(SGeneralCall& call, SLoginList& list) {
  SSite& site = call.GetSite();
  SFileSpec folder;
  TeachersFolder(site, folder);
  if (!site.HasTeacherTier() || !folder.IsExistingFolder()) {
    PrepareTeacherList(site);
    TeachersFolder(site, folder);
  }
  LoadLoginsAt(site, list, folder, ListKind::kTeachers, true, true);
}

// Counted and listed in one hold of the lock. One without entries, or one that is locked, goes the
// long way of the rules.
void ListClasses(SGeneralCall& call, SLoginList& list) {
  SSite& site = call.GetSite();
  SFileSpec folder;
  ClassesFolder(site, folder);
  if (LoadCountedLogins(site, list, folder, ListKind::kClasses)) {
    site.NoteCountedClasses(folder);
    return;
  }
  PrepareClassList(site);
  LoadClassList(site, list, true);
}

void ListStudents(SGeneralCall& call, SLoginList& list, const SLoginNameObj& classEntry) {
  SSite& site = call.GetSite();
  SLoginNameObj group(classEntry);
  SFileSpec folder;
  PrepareClassList(site);
  StudentsFolder(site, folder, group);
  if (!folder.IsExistingFolder()) {
    PrepareStudentList(site, group);
    StudentsFolder(site, folder, group);
  }
  LoadLoginsAt(site, list, folder, ListKind::kStudents, true, true);
}

bool SelectTeacherByIndex(SGeneralCall& call, const SGeneralParams& params) {
  if (!IsNetworked(params)) {
    return true;
  }
  SLoginList teachers;
  ListTeachers(call, teachers);
  const SLoginNameObj* const teacher = EntryNumber(teachers, params.teacherIndex);
  if (teacher == nullptr) {
    return false;
  }
  call.GetSite().SelectTeacher(teacher);
  return true;
}

}  // namespace kivstore::commands
