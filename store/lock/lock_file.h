// Exclusion between workstations: a lock is a small companion file, name.lok beside name.kiv, and
// holding the lock means holding that file open with no sharing at all.
//
// There is no server, no owner and no time stamp. When a process ends or a workstation falls off
// the network the system closes the handle and the lock is free: there is no stale lock. The file
// is empty, is never deleted here, and is made only where the file services make files; elsewhere a
// missing one means that the lock cannot be had.
//
// Locking is in force in shared site modes only; in every other mode the class is inert and Lock
// answers true. Locks are taken from the root of the tree towards the leaf.
#pragma once

#include <cstdint>

#include "foundation/containers/array.h"
#include "foundation/files/file.h"
#include "foundation/files/file_spec.h"
#include "foundation/text/string.h"

namespace kivstore {

// Which list a lock's texts speak of.
enum class LockKind : int { kClasses = 0, kStudents = 1, kFiles = 2, kTeachers = 3 };

class SLockFile {
 public:
  SLockFile();
  // On `fileName` in the folder `spec`, or with an empty name on the file `spec`.
  SLockFile(const SFileSpec& spec, const SString& fileName);
  ~SLockFile() { Unlock(); }
  SLockFile(const SLockFile&) = delete;
  SLockFile& operator=(const SLockFile&) = delete;

  // Only if the lock is not held; a held lock keeps its target silently.
  void Retarget(const SFileSpec& spec, const SString& fileName);
  // True if held now, or if locking is not in force. Five tries with growing random waits: a file
  // that stays busy costs 3.1 to 6.2 seconds. The argument is accepted and ignored.
  bool Lock(bool ask = true);
  bool Unlock();  // true if it was held
  bool IsFileOpen() const { return file.IsOpen(); }
  // By address: another object on the same file is not recognised as held.
  static bool IsHeldHere(const SLockFile& lock);

  // The foreground poll, for a user interface that runs on while it waits.
  enum PollResult { kPollFailed = -1, kPollHeld = 3, kPollGaveUp = 4, kPollGoOn = 200 };
  void BeginPoll();
  int Poll();
  void ScheduleNextTry();

  // Texts for a user interface; nothing here reads them.
  SString waitText;
  SString lockedText;
  SString failText;
  SString accessText;

 private:
  SFileSpec spec;  // the .lok file, with the flags of the moment the target was set
  SFile file;      // open means held

 public:
  int16_t timeoutSeconds = -1;  // of the poll

 private:
  int16_t backoff = 1;
  uint32_t deadlineTick = 0;
  uint32_t nextTryTick = 0;

 public:
  bool nested = false;     // the lock is one of several that a group operation takes
  bool cancelAll = false;  // nothing sets it: where an interface would record a cancelled group

 private:
  enum class Try { kHeld = 0, kBusy = 1, kImpossible = 2 };
  void SetTarget(SFileSpec target, SString fileName);
  void ComposeTexts(const SString& folderPath, const SString& fileName);
  Try TryOnce();
  Try TryWithBackoff();
};

// Waits a random time of step * 100 to step * 200 ms, spent on the tick count, and doubles the
// step.
void BackoffWait(int16_t& step);

// Fills failText, waitText and lockedText by list; `quiet` empties failText.
void SetLockMessages(SLockFile& lock, LockKind kind, bool quiet);

}  // namespace kivstore
