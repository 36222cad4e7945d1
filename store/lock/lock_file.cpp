#include "store/lock/lock_file.h"

#include <utility>

#include "foundation/time/random.h"
#include "foundation/time/ticks.h"
#include "store/lock/lock_texts.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

constexpr int16_t kTryLimit = 32;
constexpr uint32_t kDefaultTimeout = 20000;
constexpr int16_t kLongestBackoff = 64;

}  // namespace

SLockFile::SLockFile(SSite& site)
    : waitText(PlainLockTexts().wait), failText(PlainLockTexts().fail), site(site) {}

SLockFile::SLockFile(SSite& site, const SFileSpec& spec, const SString& fileName)
    : SLockFile(site) {
  Retarget(spec, fileName);
}

void SLockFile::Retarget(const SFileSpec& newSpec, const SString& fileName) {
  if (site.IsShared() && !IsFileOpen()) {
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
  accessText = NoAccessText(target.GetPath());
  lockedText = FileLockedText(fileName);
  if (fileName.GetLength() > 3) {
    fileName.DeleteRight(3);
    fileName += "lok";
  }
  target.DownAssumed(fileName.GetText());
  spec = std::move(target);
}

bool SLockFile::Lock() {
  if (!site.IsShared()) {
    return true;
  }
  Try result = TryWithBackoff();
  if (result == Try::kImpossible && MakeFile()) {
    result = TryWithBackoff();
  }
  NoteWhy(result);
  return result == Try::kHeld;
}

// Only where the lock is aimed at a file that is not there.
bool SLockFile::MakeFile() {
  return spec.IsValid() && !spec.Refresh() && spec.CreateFile(FindFileType(kFileTypeLock), 0, 0, 0);
}

bool SLockFile::Unlock() {
  return file.Close();
}

// What was refused is no file that somebody could let go.
bool SLockFile::IsNoLockFile() const {
  const SystemError error = LastFileFailure().error;
  return !file.IsOpen() &&
         (error == SystemError::kForeignLink || error == SystemError::kNoPlainFile);
}

SLockFile::Try SLockFile::TryOnce() {
  if (!spec.IsValid() || !spec.Exists()) {
    return Try::kImpossible;
  }
  // A handle excludes a second one of the same process too; opening this one anew would let go of
  // it first.
  int32_t error = SFile::kSharingViolation;
  if (!file.IsOpen() && file.Open(SFile::kWrite, spec, &error)) {
    return Try::kHeld;
  }
  return error == SFile::kNotFound || IsNoLockFile() ? Try::kImpossible : Try::kBusy;
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

// A refused access looks like a busy file to the tries; only the reason tells them apart.
void SLockFile::NoteWhy(Try result) {
  if (result == Try::kImpossible) {
    const SystemError error = spec.IsValid() ? LastFileFailure().error : SystemError::kNone;
    site.NoteFailure(FailureKind::kMissing, spec.GetPath(), list, error);
  } else if (result == Try::kBusy) {
    const SystemError error = SFileSpec::LastFailure().error;
    const bool isBusy = file.IsOpen() || error == SystemError::kSharingViolation;
    site.NoteFailure(isBusy ? FailureKind::kLocked : FailureKindOf(error), spec.GetPath(), list,
                     error);
  }
}

void SLockFile::BeginPoll() {
  const uint32_t timeout =
      timeoutSeconds < 0 ? kDefaultTimeout : static_cast<uint32_t>(timeoutSeconds) * 1000;
  deadlineTick = GetTicks() + timeout;
}

void SLockFile::ScheduleNextTry() {
  const int32_t shortest = backoff * 100;
  nextTryTick = GetTicks() + static_cast<uint32_t>(Random(shortest, shortest * 2));
  if (backoff < kLongestBackoff) {
    backoff = static_cast<int16_t>(backoff * 2);
  }
}

int SLockFile::Poll() {
  const uint32_t now = GetTicks();
  if (now >= deadlineTick) {
    return kPollGaveUp;
  }
  if (now <= nextTryTick) {
    return kPollGoOn;
  }
  switch (TryOnce()) {
    case Try::kHeld:
      return kPollHeld;
    case Try::kImpossible:
      return kPollFailed;
    case Try::kBusy:
      break;
  }
  ScheduleNextTry();
  return kPollGoOn;
}

void BackoffWait(int16_t& step) {
  const auto shortest = static_cast<int16_t>(step * 100);
  WaitTicks(Random16(shortest, static_cast<int16_t>(shortest * 2)));
  step = static_cast<int16_t>(step * 2);
}

void SetLockMessages(SLockFile& lock, ListKind list, bool quiet) {
  const SLockTexts& texts = LockTextsOf(list);
  lock.list = list;
  lock.failText = quiet ? SString() : texts.fail;
  lock.waitText = texts.wait;
  lock.lockedText = texts.locked;
}

void AimAtIndex(SLockFile& lock, const SFileSpec& folder, ListKind list, bool quiet) {
  lock.Retarget(folder, CachedText<kTextIndexFile>());
  SetLockMessages(lock, list, quiet);
}

bool LockIndex(SLockFile& lock, const SFileSpec& folder, ListKind list, bool quiet) {
  AimAtIndex(lock, folder, list, quiet);
  return lock.Lock();
}

}  // namespace kivstore
