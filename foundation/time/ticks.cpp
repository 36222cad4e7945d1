#include "foundation/time/ticks.h"

#include "platform/platform.h"

namespace kivstore {
namespace {

constexpr uint32_t kExclamation = 0x30;

}  // namespace

uint32_t GetTicks() {
  return Platform().clock->Ticks();
}

void WaitTicks(int32_t ms) {
  if (ms <= 0) {
    return;
  }
  IClock& clock = *Platform().clock;
  const auto end = static_cast<int32_t>(clock.Ticks() + static_cast<uint32_t>(ms));
  while (static_cast<int32_t>(clock.Ticks()) < end) {
    clock.Pause();
  }
}

void Beep() {
  Platform().clock->Beep(kExclamation);
}

}  // namespace kivstore
