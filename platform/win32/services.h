// The Windows implementation of each service. The objects exist before the first static constructor
// that asks for them and are never destroyed, so that anything static may use them until the end.
#pragma once

#include "platform/platform.h"

namespace kivstore {

IFileServices& WindowsFileServices();
IClock& WindowsClock();
IDates& WindowsDates();
IKeyboard& WindowsKeyboard();
ISystem& WindowsSystem();
IMemory& WindowsMemory();
IResources& WindowsResources();

}  // namespace kivstore
