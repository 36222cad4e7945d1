// Tick helpers, in milliseconds since system start.
#pragma once

#include <cstdint>

namespace kivstore {

uint32_t GetTicks();

// Waits by the tick count until `ms` have passed, a millisecond at a time; returns at once for 0 or
// less. The comparison is signed, so a wrap of the counter ends the wait early or
// lengthens it.
void WaitTicks(int32_t ms);

// The system's warning sound.
void Beep();

}  // namespace kivstore
