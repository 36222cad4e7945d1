// What the library remembers between two calls, in one place.
#pragma once

#include <cstdint>

#include "store/list/entries.h"
#include "store/place/site.h"

namespace kivstore {

// The lists of the cached chain (gTeacherCache, gClassCache, gStudentCache). They last until the
// command that reads them again, whatever happens to the store meanwhile. The tags say what the
// class and student lists were read for; reading the teachers anew does not touch them.
struct SRosterCaches {
  SLoginList teachers;
  SLoginList classes;
  SLoginList students;
  int16_t classCacheTeacher = 0;
  int16_t studentCacheClass = 0;
};

struct SLibraryState {
  // The kind of site, the teacher latch, and whether the store has failed.
  SSite site;
  SRosterCaches caches;
};

// One for the process. Beside it stands only the module handle (platform/resources.h).
SLibraryState& LibraryState();

}  // namespace kivstore
