#include "platform/platform.h"

#include "platform/win32/services.h"

namespace kivstore {

SPlatform& Platform() {
  static SPlatform services{&WindowsFileServices(), &WindowsClock(), &WindowsMemory(),
                            &WindowsResources(),    &WindowsDates(), &WindowsKeyboard(),
                            &WindowsSystem()};
  return services;
}

}  // namespace kivstore
