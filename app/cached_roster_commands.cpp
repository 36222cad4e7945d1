// The cached chain: 9, 11 and 13 read a list each, 10, 12 and 14 touch no file.
#include "app/commands.h"

namespace kivstore::commands {
namespace {

bool SelectCachedTeacher(SGeneralCall& call, const SGeneralParams& params) {
  const SRosterCaches& caches = call.GetCaches();
  if (!IsNetworked(params)) {
    return true;
  }
  const SLoginNameObj* const teacher = EntryNumber(caches.teachers, params.teacherIndex);
  if (teacher == nullptr) {
    return false;
  }
  call.GetSite().SelectTeacher(teacher);
  return true;
}

bool IsTeacherOfClassCache(const SGeneralCall& call, const SGeneralParams& params) {
  return params.teacherIndex == call.GetCaches().classCacheTeacher;
}

}  // namespace

bool CacheTeachers(SGeneralCall& call, SGeneralParams& params) {
  SRosterCaches& caches = call.GetCaches();
  params.topCount = 0;
  if (!IsNetworked(params)) {
    return false;
  }
  caches.teachers.RemoveAll();
  ListTeachers(call, caches.teachers);
  params.topCount = caches.teachers.GetSize();
  if (params.topCount > 0) {
    call.GetSite().SelectTeacher(caches.teachers.At(0));
  }
  return true;
}

bool CachedTeacherName(SGeneralCall& call, SGeneralParams& params) {
  const SRosterCaches& caches = call.GetCaches();
  const SLoginNameObj* const teacher = EntryNumber(caches.teachers, params.teacherListIndex);
  if (teacher == nullptr) {
    return false;
  }
  call.GetSite().SelectTeacher(teacher);
  ReturnName(params, params.teacherName, params.teacherNameSize, *teacher);
  return true;
}

bool CacheClasses(SGeneralCall& call, SGeneralParams& params) {
  SRosterCaches& caches = call.GetCaches();
  caches.classes.RemoveAll();
  if (!SelectCachedTeacher(call, params)) {
    return false;
  }
  ListClasses(call, caches.classes);
  caches.classCacheTeacher = static_cast<int16_t>(params.teacherIndex);
  params.classCount = caches.classes.GetSize();
  return true;
}

bool CachedClassName(SGeneralCall& call, SGeneralParams& params) {
  const SRosterCaches& caches = call.GetCaches();
  const SLoginNameObj* const entry = EntryNumber(caches.classes, params.classListIndex);
  if (!IsTeacherOfClassCache(call, params) || entry == nullptr) {
    return false;
  }
  params.classIndex = params.classListIndex - 1;
  ReturnName(params, params.className, params.classNameSize, *entry);
  return true;
}

bool CacheStudents(SGeneralCall& call, SGeneralParams& params) {
  SRosterCaches& caches = call.GetCaches();
  caches.students.RemoveAll();
  const SLoginNameObj* const classEntry = EntryAt(caches.classes, params.classIndex);
  if (!IsTeacherOfClassCache(call, params) || classEntry == nullptr) {
    return false;
  }
  caches.studentCacheClass = static_cast<int16_t>(params.classIndex);
  if (!SelectCachedTeacher(call, params)) {
    return false;
  }
  ListStudents(call, caches.students, *classEntry);
  params.studentCount = caches.students.GetSize();
  return true;
}

bool CachedStudentName(SGeneralCall& call, SGeneralParams& params) {
  const SRosterCaches& caches = call.GetCaches();
  if (!IsTeacherOfClassCache(call, params) || params.classIndex != caches.studentCacheClass ||
      EntryAt(caches.classes, params.classIndex) == nullptr) {
    return false;
  }
  const SLoginNameObj* const student = EntryNumber(caches.students, params.studentListIndex);
  if (student == nullptr) {
    return false;
  }
  ReturnName(params, params.studentName, params.studentNameSize, *student);
  params.studentIndex = params.studentListIndex - 1;
  return true;
}

}  // namespace kivstore::commands
