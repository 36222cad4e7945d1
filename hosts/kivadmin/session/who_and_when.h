// What a note of something done tells beside it: who did it, and when.
#pragma once

#include <string>

namespace kivadmin {

// The name of the user who runs the program; of one who became root by sudo, that one's.
std::string UserName();

// The workstation's local time so many days ago, in a form of strftime.
std::string TimeText(const char* form, long daysAgo);
// Now, in the form of every note: 2026-11-21 23:55:01.
inline std::string NowText() {
  return TimeText("%Y-%m-%d %H:%M:%S", 0);
}

}  // namespace kivadmin
