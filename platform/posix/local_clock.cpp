// Time from the monotonic clock and the system's time zone. There is nothing to sound.
#include <time.h>

#include "platform/base/never_destroyed.h"
#include "platform/posix/services.h"

namespace kivstore {
namespace {

class LocalClock final : public IClock {
 public:
  uint32_t Ticks() override {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint32_t>(static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000);
  }

  void Pause() override {
    constexpr timespec kMillisecond{0, 1000000};
    nanosleep(&kMillisecond, nullptr);
  }

  LocalTime Now() override {
    const time_t now = time(nullptr);
    tm local{};
    localtime_r(&now, &local);
    return {static_cast<uint16_t>(local.tm_year + 1900), static_cast<uint16_t>(local.tm_mon + 1),
            static_cast<uint16_t>(local.tm_mday),        static_cast<uint16_t>(local.tm_hour),
            static_cast<uint16_t>(local.tm_min),         static_cast<uint16_t>(local.tm_sec)};
  }

  void Beep(uint32_t) override {}
};

constinit NeverDestroyed<LocalClock> gLocalClock;

}  // namespace

IClock& PosixClock() {
  return gLocalClock.object;
}

}  // namespace kivstore
