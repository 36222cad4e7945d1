#include "foundation/platform/platform.h"

#include "foundation/platform/posix/services.h"

namespace kivstore {

SPlatform& Platform() {
  static SPlatform services{&PosixFileServices(), &PosixClock(), &PosixMemory(),
                            &PosixResources(),    &PosixDates(), &PosixKeyboard(),
                            &PosixSystem()};
  return services;
}

}  // namespace kivstore
