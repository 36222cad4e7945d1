// `kivadmin.log` in the data root: what kivadmin did to the store, an object of JSON a line, UTF-8:
//
//   {"when":"2026-11-21 23:55:01","who":"hill","version":"1.0.0","what":"added class \"5a\""}
//
// when is the workstation's local time, what the line that the command told. Lines are only ever
// appended, each in one write, under the lock kivadmin.lok beside it; one that a death has cut
// short stays, and the next begins behind it. Other keys are left alone.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "foundation/files/file_spec.h"
#include "store/place/site.h"

namespace kivadmin {

inline constexpr const char* kActionLog = "kivadmin.log";
inline constexpr const char* kActionLogLock = "kivadmin.lok";

struct LoggedAction {
  std::string when;
  std::string who;
  std::string version;  // of kivadmin
  std::string what;
};

// Appends what has just been done. The answer is why it could not be, empty if it was; nothing of
// the line is left then.
std::string AppendAction(kivstore::SSite& site, const kivstore::SFileSpec& root,
                         const std::string& what);

// Calls `take` with one after the other, the oldest first, and answers how many lines could not be
// read. Throws HostError where the log is there and cannot be.
using TakeAction = std::function<void(LoggedAction)>;
size_t ReadActions(const kivstore::SFileSpec& root, const TakeAction& take);

}  // namespace kivadmin
