// The lists of the cached chain. They outlive the call that read them, until the command that reads
// them again, whatever happens to the store meanwhile. The tags say what the class and student
// lists were read for; reading the teachers anew does not touch them.
#pragma once

#include <cstdint>

#include "store/list/entries.h"

namespace kivstore {

extern SLoginList gTeacherCache;
extern SLoginList gClassCache;
extern SLoginList gStudentCache;
extern int16_t gClassCacheTeacher;
extern int16_t gStudentCacheClass;

}  // namespace kivstore
