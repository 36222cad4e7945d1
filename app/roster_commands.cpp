// The plain chain: every command reads the lists it needs.
#include "app/commands.h"
#include "foundation/site_mode.h"
#include "store/list/listing.h"

namespace kivstore::commands {

bool SelectTeacherByIndex(const SGeneralParams& params) {
  if (!IsNetworked(params)) {
    return true;
  }
  SLoginList teachers;
  LoadTeacherList(teachers.Array());
  const SLoginNameObj* const teacher = EntryNumber(teachers, params.teacherIndex);
  if (teacher == nullptr) {
    return false;
  }
  SelectTeacher(teacher);
  return true;
}

bool CountTeachers(SGeneralParams& params) {
  params.topCount = kivstore::CountTeachers();
  return params.topCount != 0;
}

bool TeacherName(SGeneralParams& params) {
  SLoginList teachers;
  LoadTeacherList(teachers.Array());
  const SLoginNameObj* const teacher = EntryNumber(teachers, params.teacherListIndex);
  if (teacher == nullptr) {
    return false;
  }
  ReturnName(params, params.teacherName, params.teacherNameSize, *teacher);
  return true;
}

bool CountClasses(SGeneralParams& params) {
  if (!SelectTeacherByIndex(params)) {
    return false;
  }
  params.classCount = CountEntries(nullptr, false);
  return params.classCount != 0;
}

bool ClassName(SGeneralParams& params) {
  if (!SelectTeacherByIndex(params)) {
    return false;
  }
  SLoginList classes;
  LoadClassList(classes.Array(), true);
  const SLoginNameObj* const entry = EntryNumber(classes, params.classListIndex);
  if (entry == nullptr) {
    return false;
  }
  params.classIndex = params.classListIndex - 1;
  ReturnName(params, params.className, params.classNameSize, *entry);
  return true;
}

bool CountStudents(SGeneralParams& params) {
  if (!SelectTeacherByIndex(params)) {
    return false;
  }
  SLoginList classes;
  LoadClassList(classes.Array(), true);
  const SLoginNameObj* const entry = EntryAt(classes, params.classIndex);
  if (entry == nullptr) {
    return false;
  }
  params.studentCount = CountEntries(entry, false);
  return true;
}

bool AnyEntries(SGeneralParams& params) {
  const int32_t count =
      IsNetworked(params) ? kivstore::CountTeachers() : CountEntries(nullptr, false);
  return count != 0;
}

}  // namespace kivstore::commands
