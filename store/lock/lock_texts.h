// The words that a lock carries for a user interface. They are set on every lock, and most locks
// are on the same few files: what can be kept is kept.
#pragma once

#include "foundation/text/string.h"
#include "store/place/failure.h"

namespace kivstore {

// What a user reads while a lock of the list is waited for, when it stayed locked, and when the
// operation was given up.
struct SLockTexts {
  SString fail;
  SString wait;
  SString locked;
};
const SLockTexts& LockTextsOf(ListKind list);

// A lock that has been told no list.
const SLockTexts& PlainLockTexts();
// That this file is locked.
const SString& FileLockedText(const SString& fileName);
// That a file in this folder could not be reached.
SString NoAccessText(const SString& folderPath);

}  // namespace kivstore
