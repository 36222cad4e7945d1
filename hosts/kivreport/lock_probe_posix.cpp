#include <fcntl.h>
#include <unistd.h>

#include "hosts/kivreport/lock_probe.h"

namespace kivreport {

LockState ProbeLock(const std::filesystem::path& path) {
  const int file = open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) {
    return LockState::kRefused;
  }
  struct flock lock {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  const bool taken = fcntl(file, F_OFD_SETLK, &lock) == 0;
  close(file);
  return taken ? LockState::kFree : LockState::kHeld;
}

}  // namespace kivreport
