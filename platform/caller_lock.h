// Lets one thread at a time through: the library keeps state between calls, and a host need not
// know. One lock for the process; a thread that waits sleeps. Nobody enters twice.
#pragma once

namespace kivstore {

class SCallerLock {
 public:
  SCallerLock();  // waits
  ~SCallerLock();
  SCallerLock(const SCallerLock&) = delete;
  SCallerLock& operator=(const SCallerLock&) = delete;
};

}  // namespace kivstore
