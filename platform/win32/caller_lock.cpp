#include "platform/caller_lock.h"

#include <windows.h>

namespace kivstore {
namespace {

SRWLOCK gCallers = SRWLOCK_INIT;

}  // namespace

SCallerLock::SCallerLock() {
  AcquireSRWLockExclusive(&gCallers);
}

SCallerLock::~SCallerLock() {
  ReleaseSRWLockExclusive(&gCallers);
}

}  // namespace kivstore
