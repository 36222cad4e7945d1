#include "app/commands.h"

namespace kivstore::commands {
namespace {

struct Row {
  int32_t number;
  Command command;
};

constexpr Row kRows[] = {
    {KIV_COUNT_TEACHERS, CountTeachers},
    {KIV_TEACHER_NAME, TeacherName},
    {KIV_COUNT_CLASSES, CountClasses},
    {KIV_CLASS_NAME, ClassName},
    {KIV_COUNT_STUDENTS, CountStudents},
    {KIV_STUDENT_PROGRESS, StudentProgress},
    {KIV_ANY_ENTRIES, AnyEntries},
    {KIV_CACHE_TEACHERS, CacheTeachers},
    {KIV_CACHED_TEACHER_NAME, CachedTeacherName},
    {KIV_CACHE_CLASSES, CacheClasses},
    {KIV_CACHED_CLASS_NAME, CachedClassName},
    {KIV_CACHE_STUDENTS, CacheStudents},
    {KIV_CACHED_STUDENT_NAME, CachedStudentName},
    {KIV_PRODUCT_ID, ProductId},
};

}  // namespace

Command FindCommand(int32_t number) {
  for (const Row& row : kRows) {
    if (row.number == number) {
      return row.command;
    }
  }
  return nullptr;
}

}  // namespace kivstore::commands
