// Time and sound of the system.
#include <windows.h>

#include "platform/base/never_destroyed.h"
#include "platform/win32/services.h"

namespace kivstore {
namespace {

class LocalClock final : public IClock {
 public:
  uint32_t Ticks() override { return GetTickCount(); }

  void Pause() override { Sleep(1); }

  LocalTime Now() override {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
  }

  void Beep(uint32_t kind) override { MessageBeep(kind); }
};

constinit NeverDestroyed<LocalClock> gLocalClock;

}  // namespace

IClock& WindowsClock() {
  return gLocalClock.object;
}

}  // namespace kivstore
