#include "platform/platform.h"

#include "platform/posix/services.h"

namespace kivstore {

SPlatform& Platform() {
  static SPlatform services{&PosixFileServices(), &PosixClock(), &PosixMemory(),
                            &PosixResources(),    &PosixDates(), &PosixKeyboard(),
                            &PosixSystem()};
  return services;
}

}  // namespace kivstore
