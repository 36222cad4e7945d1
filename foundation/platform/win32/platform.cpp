#include "foundation/platform/platform.h"

#include "foundation/platform/win32/services.h"

namespace kivstore {

SPlatform& Platform() {
  static SPlatform services{&WindowsFileServices(), &WindowsClock(), &WindowsMemory(),
                            &WindowsResources(),    &WindowsDates(), &WindowsKeyboard(),
                            &WindowsSystem()};
  return services;
}

}  // namespace kivstore
