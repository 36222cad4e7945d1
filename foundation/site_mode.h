// What kind of site the store serves. Plain globals: the host calls from one thread at a time.
#pragma once

#include <cstdint>

#include "foundation/login_name.h"
#include "foundation/text/string.h"

namespace kivstore {

inline constexpr int32_t kSiteShared = 1;          // on the network, no teachers named
inline constexpr int32_t kSiteLocal = 3;           // multi-user on one machine, no locks
inline constexpr int32_t kSiteSharedTeachers = 4;  // on the network, with teachers

extern int32_t gSiteMode;
// Latch: the store has a teacher level. Set by the first call in a networked mode, never cleared.
extern uint8_t gTeacherTier;
// The selected teacher: a copy, null for none; goes with the application object. SelectTeacher sets
// it.
extern SLoginNameObj* gCurrentTeacher;
// Where removable data lies; empty, and it stays empty here.
extern SString gDataPathOverride;
// Set by the first store failure and kept for the library's life: nothing asks twice.
extern bool gStoreFailed;
// The version word of every record this library writes or accepts.
extern uint32_t gFileVersion;

inline void SetSiteMode(int32_t value) {
  gSiteMode = value;
}
inline bool IsSharedSite() {
  return gSiteMode == kSiteShared || gSiteMode == kSiteSharedTeachers;
}
inline bool IsMultiUserSite() {
  return IsSharedSite() || gSiteMode == kSiteLocal;
}

// "major.minor" as binary-coded decimal: major in the top byte, minor in the next. "0.01" gives
// 0x00010000. Leading white space is skipped; a text that does not begin with a digit gives 0.
uint32_t PackVersion(const char* text);
int VersionMajor(uint32_t version);
int VersionMinor(uint32_t version);

// A null entry clears the selection; otherwise the entry's three strings are copied.
void SelectTeacher(const SLoginNameObj* entry);

}  // namespace kivstore
