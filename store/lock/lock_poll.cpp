// The poll of a lock in the foreground.
#include "foundation/time/random.h"
#include "foundation/time/ticks.h"
#include "store/lock/lock_file.h"

namespace kivstore {
namespace {

constexpr uint32_t kDefaultTimeout = 20000;
constexpr int16_t kLongestBackoff = 64;

}  // namespace

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

}  // namespace kivstore
