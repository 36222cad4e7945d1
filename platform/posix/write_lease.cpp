#define _FILE_OFFSET_BITS 64
#include "platform/posix/write_lease.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>

#include "platform/posix/data_root.h"
#include "platform/posix/file_system_kind.h"

namespace kivstore {
namespace {

// Asks the system once for each file system in a row: the question goes over the network.
bool LiesOnThisMachine(int file) {
  static dev_t known = 0;
  static bool isLocal = false;
  struct stat facts;
  if (fstat(file, &facts) != 0) {
    return false;
  }
  if (known == 0 || known != facts.st_dev) {
    known = facts.st_dev;
    isLocal = KindOfFileSystem(file) == FileSystemKind::kLocal;
  }
  return isLocal;
}

// Whoever of ours has just opened the file meets our lock and is gone at once: a few tries, without
// waiting, see it go. What other machines share is not leased, even where its client could: a
// server that wants back what it has lent to this machine would wait for the lease to end.
int Lease(int file, int type) {
  constexpr int kTries = 4;
  if (KeptDataRoot().IsShared()) {
    return EREMOTE;
  }
  if (fcntl(file, F_SETSIG, SIGURG) != 0) {
    return errno;
  }
  for (int tries = 1; fcntl(file, F_SETLEASE, type) != 0; ++tries) {
    if (errno != EAGAIN) {
      return errno;
    }
    if (!LiesOnThisMachine(file)) {
      return EREMOTE;
    }
    if (tries == kTries) {
      return EAGAIN;
    }
    sched_yield();
  }
  return 0;
}

}  // namespace

int LeaseAlone(int file) {
  return Lease(file, F_WRLCK);
}

int LeaseForLook(int file) {
  return Lease(file, F_RDLCK);
}

}  // namespace kivstore
