#include "app/commands.h"

namespace kivstore::commands {
namespace {

constexpr KnownCommand kCommands[] = {
    {KIV_COUNT_TEACHERS, CountTeachers, true},
    {KIV_TEACHER_NAME, TeacherName, true},
    {KIV_COUNT_CLASSES, CountClasses, true},
    {KIV_CLASS_NAME, ClassName, true},
    {KIV_COUNT_STUDENTS, CountStudents, true},
    {KIV_STUDENT_PROGRESS, StudentProgress, true},
    {KIV_ANY_ENTRIES, AnyEntries, true},
    {KIV_CACHE_TEACHERS, CacheTeachers, true},
    {KIV_CACHED_TEACHER_NAME, CachedTeacherName, false},
    {KIV_CACHE_CLASSES, CacheClasses, true},
    {KIV_CACHED_CLASS_NAME, CachedClassName, false},
    {KIV_CACHE_STUDENTS, CacheStudents, true},
    {KIV_CACHED_STUDENT_NAME, CachedStudentName, false},
    {KIV_PRODUCT_ID, ProductId, false},
};

}  // namespace

const KnownCommand* FindCommand(int32_t number) {
  for (const KnownCommand& known : kCommands) {
    if (known.number == number) {
      return &known;
    }
  }
  return nullptr;
}

}  // namespace kivstore::commands
