// The POSIX implementation of each service. The objects exist before the first static constructor
// that asks for them and are never destroyed, so that anything static may use them until the end.
#pragma once

#include "platform/platform.h"

namespace kivstore {

IFileServices& PosixFileServices();
IClock& PosixClock();
IDates& PosixDates();
IKeyboard& PosixKeyboard();
ISystem& PosixSystem();
IMemory& PosixMemory();
IResources& PosixResources();

}  // namespace kivstore
