// Why the store answered false or could not do all of what it was asked: noted once, where the
// failure is, and read by a host. The operations' answers do not depend on it.
#pragma once

#include <cstdint>

#include "foundation/text/string.h"
#include "platform/file_services.h"

namespace kivstore {

// The list that a lock or a failure speaks of.
enum class ListKind : int { kClasses = 0, kStudents = 1, kFiles = 2, kTeachers = 3 };

enum class FailureKind {
  kNone,
  kLocked,        // somebody else holds the list's or the entry's lock
  kInUse,         // a file that had to go or to move is open elsewhere
  kNoPermission,  // the system refuses this user
  kMissing,       // a folder or a file that must be there is not
  kNoEntry,       // the entry to work on, or its folder, is not there (any more)
  kFull,          // the list holds as many entries as it may
  kNameTaken,
  kDamaged,      // a file cannot be read to its end
  kDiskFull,     // no space, or no more allowed to this user
  kForeignLink,  // a link of somebody else's is in the way: `path` is the link
  kOther,        // what `system` says
};

struct SFailure {
  FailureKind kind = FailureKind::kNone;
  ListKind list = ListKind::kClasses;
  SystemError system = SystemError::kNone;
  SString path;            // where, in the form the store holds paths
  uint32_t linkOwner = 0;  // of kForeignLink: the user's number
  SString text;            // the words for a user as the system has them; empty where it has none

  explicit operator bool() const { return kind != FailureKind::kNone; }
};

// What a file operation that failed like that means.
FailureKind FailureKindOf(SystemError error);
// Of the file operation that has just failed.
SFailure FailureOfLastFile(ListKind list);

}  // namespace kivstore
