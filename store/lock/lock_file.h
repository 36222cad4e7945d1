// Exclusion between workstations: a lock is a small companion file, name.lok beside name.kiv, and
// holding the lock means holding that file open with no sharing at all.
//
// There is no server, no owner and no time stamp. When a process ends or a workstation falls off
// the network the system closes the handle and the lock is free: there is no stale lock. The file
// is empty, is never deleted here, and is made only where the file services make files; elsewhere a
// missing one means that the lock cannot be had.
//
// Locking is in force at shared sites only; at every other the class is inert and Lock answers
// true. Locks are taken from the root of the tree towards the leaf. A lock that could not be had
// notes the reason with its site.
#pragma once

#include <cstdint>

#include "foundation/files/file.h"
#include "foundation/files/file_spec.h"
#include "foundation/text/string.h"
#include "store/place/site.h"

namespace kivstore {

class SLockFile {
 public:
  explicit SLockFile(SSite& site);
  // On `fileName` in the folder `spec`, or with an empty name on the file `spec`.
  SLockFile(SSite& site, const SFileSpec& spec, const SString& fileName);
  ~SLockFile() { Unlock(); }
  SLockFile(const SLockFile&) = delete;
  SLockFile& operator=(const SLockFile&) = delete;

  // Only if the lock is not held; a held lock keeps its target silently.
  void Retarget(const SFileSpec& spec, const SString& fileName);
  // True if held now, or if locking is not in force. Five tries with growing random waits: a file
  // that stays busy costs 3.1 to 6.2 seconds.
  bool Lock();
  bool Unlock();  // true if it was held
  bool IsFileOpen() const { return file.IsOpen(); }
  // Of a held lock: whether its path still leads to the file that is held, so that others meet it.
  bool IsStillThere() const { return !site.IsShared() || file.IsStillThere(); }

  // The poll in the foreground, for a user interface that runs on while it waits: BeginPoll, then
  // Poll until it answers anything but kPollGoOn. Only a playing tutor polls.
  enum PollResult { kPollFailed = -1, kPollHeld = 3, kPollGaveUp = 4, kPollGoOn = 200 };
  void BeginPoll();
  int Poll();
  void ScheduleNextTry();
  int16_t timeoutSeconds = -1;  // of the poll; below 0: 20 seconds

  // Texts for a user interface; nothing here reads them.
  SString waitText;
  SString lockedText;
  SString failText;
  SString accessText;

  ListKind list = ListKind::kClasses;  // for the reason that a failed Lock notes

 private:
  enum class Try { kHeld, kBusy, kImpossible };
  void SetTarget(SFileSpec target, SString fileName);
  bool IsNoLockFile() const;
  bool MakeFile();
  Try TryOnce();
  Try TryWithBackoff();
  void NoteWhy(Try result);

  SSite& site;
  SFileSpec spec;  // the .lok file, taken to exist: opening it is the look at the disk
  SFile file;      // open means held
  int16_t backoff = 1;
  uint32_t deadlineTick = 0;
  uint32_t nextTryTick = 0;
};

// Waits a random time of step * 100 to step * 200 ms and doubles the step.
void BackoffWait(int16_t& step);

// Fills failText, waitText and lockedText by list; `quiet` empties failText.
void SetLockMessages(SLockFile& lock, ListKind list, bool quiet);

// Aims the lock at the folder's index.kiv and gives it its texts; `lock` is not held.
void AimAtIndex(SLockFile& lock, const SFileSpec& folder, ListKind list, bool quiet);
bool LockIndex(SLockFile& lock, const SFileSpec& folder, ListKind list, bool quiet);

}  // namespace kivstore
