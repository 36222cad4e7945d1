// The cached chain: 9, 11 and 13 read a list each, 10, 12 and 14 touch no file.
#include "app/commands.h"
#include "app/roster_caches.h"
#include "foundation/site_mode.h"
#include "store/list/listing.h"

namespace kivstore {

SLoginList gTeacherCache;
SLoginList gClassCache;
SLoginList gStudentCache;
int16_t gClassCacheTeacher = 0;
int16_t gStudentCacheClass = 0;

}  // namespace kivstore

namespace kivstore::commands {
namespace {

bool SelectCachedTeacher(const SGeneralParams& params) {
  if (!IsNetworked(params)) {
    return true;
  }
  const SLoginNameObj* const teacher = EntryNumber(gTeacherCache, params.teacherIndex);
  if (teacher == nullptr) {
    return false;
  }
  SelectTeacher(teacher);
  return true;
}

bool IsTeacherOfClassCache(const SGeneralParams& params) {
  return params.teacherIndex == gClassCacheTeacher;
}

}  // namespace

bool CacheTeachers(SGeneralParams& params) {
  params.topCount = 0;
  if (!IsNetworked(params)) {
    return false;
  }
  DeleteLogins(gTeacherCache.Array());
  LoadTeacherList(gTeacherCache.Array());
  params.topCount = gTeacherCache.GetSize();
  if (params.topCount > 0) {
    SelectTeacher(gTeacherCache.At(0));
  }
  return true;
}

bool CachedTeacherName(SGeneralParams& params) {
  const SLoginNameObj* const teacher = EntryNumber(gTeacherCache, params.teacherListIndex);
  if (teacher == nullptr) {
    return false;
  }
  SelectTeacher(teacher);
  ReturnName(params, params.teacherName, params.teacherNameSize, *teacher);
  return true;
}

bool CacheClasses(SGeneralParams& params) {
  DeleteLogins(gClassCache.Array());
  if (!SelectCachedTeacher(params)) {
    return false;
  }
  LoadClassList(gClassCache.Array(), true);
  gClassCacheTeacher = static_cast<int16_t>(params.teacherIndex);
  params.classCount = gClassCache.GetSize();
  return true;
}

bool CachedClassName(SGeneralParams& params) {
  const SLoginNameObj* const entry = EntryNumber(gClassCache, params.classListIndex);
  if (!IsTeacherOfClassCache(params) || entry == nullptr) {
    return false;
  }
  params.classIndex = params.classListIndex - 1;
  ReturnName(params, params.className, params.classNameSize, *entry);
  return true;
}

bool CacheStudents(SGeneralParams& params) {
  DeleteLogins(gStudentCache.Array());
  const SLoginNameObj* const classEntry = EntryAt(gClassCache, params.classIndex);
  if (!IsTeacherOfClassCache(params) || classEntry == nullptr) {
    return false;
  }
  gStudentCacheClass = static_cast<int16_t>(params.classIndex);
  if (!SelectCachedTeacher(params)) {
    return false;
  }
  LoadStudentList(gStudentCache.Array(), *classEntry, true, true);
  params.studentCount = gStudentCache.GetSize();
  return true;
}

bool CachedStudentName(SGeneralParams& params) {
  if (!IsTeacherOfClassCache(params) || params.classIndex != gStudentCacheClass ||
      EntryAt(gClassCache, params.classIndex) == nullptr) {
    return false;
  }
  const SLoginNameObj* const student = EntryNumber(gStudentCache, params.studentListIndex);
  if (student == nullptr) {
    return false;
  }
  ReturnName(params, params.studentName, params.studentNameSize, *student);
  params.studentIndex = params.studentListIndex - 1;
  return true;
}

}  // namespace kivstore::commands
