// The plain chain: every command reads the lists it needs.
#include "app/commands.h"
#include "store/change/default_entries.h"
#include "store/list/listing.h"

namespace kivstore::commands {
namespace {

int32_t CountTopList(SGeneralCall& call) {
  PrepareTeacherList(call.GetSite());
  return kivstore::CountTeachers(call.GetSite());
}

int32_t CountClassList(SGeneralCall& call) {
  PrepareClassList(call.GetSite());
  return CountEntries(call.GetSite(), nullptr);
}

}  // namespace

bool CountTeachers(SGeneralCall& call, SGeneralParams& params) {
  params.topCount = CountTopList(call);
  return params.topCount != 0;
}

bool TeacherName(SGeneralCall& call, SGeneralParams& params) {
  SLoginList teachers;
  ListTeachers(call, teachers);
  const SLoginNameObj* const teacher = EntryNumber(teachers, params.teacherListIndex);
  if (teacher == nullptr) {
    return false;
  }
  ReturnName(params, params.teacherName, params.teacherNameSize, *teacher);
  return true;
}

bool CountClasses(SGeneralCall& call, SGeneralParams& params) {
  if (!SelectTeacherByIndex(call, params)) {
    return false;
  }
  params.classCount = CountClassList(call);
  return params.classCount != 0;
}

bool ClassName(SGeneralCall& call, SGeneralParams& params) {
  if (!SelectTeacherByIndex(call, params)) {
    return false;
  }
  SLoginList classes;
  ListClasses(call, classes);
  const SLoginNameObj* const entry = EntryNumber(classes, params.classListIndex);
  if (entry == nullptr) {
    return false;
  }
  params.classIndex = params.classListIndex - 1;
  ReturnName(params, params.className, params.classNameSize, *entry);
  return true;
}

bool CountStudents(SGeneralCall& call, SGeneralParams& params) {
  if (!SelectTeacherByIndex(call, params)) {
    return false;
  }
  SLoginList classes;
  ListClasses(call, classes);
  const SLoginNameObj* const entry = EntryAt(classes, params.classIndex);
  if (entry == nullptr) {
    return false;
  }
  params.studentCount = CountEntries(call.GetSite(), entry);
  return true;
}

bool AnyEntries(SGeneralCall& call, SGeneralParams& params) {
  return (IsNetworked(params) ? CountTopList(call) : CountClassList(call)) != 0;
}

}  // namespace kivstore::commands
