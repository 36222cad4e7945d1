#include "store/lock/lock_file.h"

#include <utility>

#include "foundation/site_mode.h"
#include "foundation/time/random.h"
#include "foundation/time/ticks.h"

namespace kivstore {
namespace {

constexpr int16_t kTryLimit = 32;

// One entry for each lock that this process holds: the address of that lock's spec.
SPtrArray heldLocks;

int32_t FindHeld(const SFileSpec* spec) {
  return heldLocks.FindLinear(const_cast<SFileSpec*>(spec));
}

}  // namespace

SLockFile::SLockFile(const SFileSpec& spec, const SString& fileName) : SLockFile() {
  if (IsSharedSite()) {
    SetTarget(spec, fileName);
  }
}

void SLockFile::Retarget(const SFileSpec& newSpec, const SString& fileName) {
  if (IsSharedSite() && !IsFileOpen()) {
    SetTarget(newSpec, fileName);
  }
}

void SLockFile::SetTarget(SFileSpec target, SString fileName) {
  if (!target.IsValid()) {
    return;
  }
  if (fileName.IsEmpty() && !target.IsExistingFolder()) {
    fileName = target.GetFileName();
    target.Up();
  } else if (!target.IsExistingFolder()) {
    return;
  }
  ComposeTexts(target.GetPath(), fileName);
  if (fileName.GetLength() > 3) {
    fileName.DeleteRight(3);
    fileName += "lok";
  }
  target.Down(fileName);
  spec = std::move(target);
}

bool SLockFile::Lock(bool) {
  if (!IsSharedSite()) {
    return true;
  }
  if (!spec.IsValid()) {
    return false;
  }
  if (!spec.Exists() && !spec.CreateFile(FindFileType(kFileTypeLock), 0, 0, 0)) {
    return false;
  }
  return TryWithBackoff() == Try::kHeld;
}

bool SLockFile::Unlock() {
  if (!file.Close()) {
    return false;
  }
  const int32_t held = FindHeld(&spec);
  if (held >= 0) {
    heldLocks.RemoveAt(held);
  }
  return true;
}

bool SLockFile::IsHeldHere(const SLockFile& lock) {
  return FindHeld(&lock.spec) >= 0;
}

SLockFile::Try SLockFile::TryOnce() {
  if (!spec.IsValid() || !spec.Exists()) {
    return Try::kImpossible;
  }
  // A handle excludes a second one of the same process too; opening this one anew would let go of
  // it first.
  if (file.IsOpen() || !file.Open(SFile::kWrite, spec)) {
    return Try::kBusy;
  }
  heldLocks.Add(&spec);
  return Try::kHeld;
}

SLockFile::Try SLockFile::TryWithBackoff() {
  int16_t step = 1;
  Try result = Try::kBusy;
  while (result == Try::kBusy && step < kTryLimit) {
    result = TryOnce();
    if (result == Try::kBusy) {
      BackoffWait(step);
    }
  }
  return result;
}

void BackoffWait(int16_t& step) {
  const auto shortest = static_cast<int16_t>(step * 100);
  WaitTicks(Random16(shortest, static_cast<int16_t>(shortest * 2)));
  step = static_cast<int16_t>(step * 2);
}

}  // namespace kivstore
