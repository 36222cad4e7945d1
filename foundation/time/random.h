// Random numbers from one generator, seeded anew from the tick count at the first call and at every
// thousandth after it. rand() is taken as 15 bits wide on every platform.
#pragma once

#include <cstdint>

namespace kivstore {

// Inclusive at both ends.
int32_t Random(int32_t low, int32_t high);
int16_t Random16(int16_t low, int16_t high);
// From 0 to 1, both included.
double RandomUnit();

}  // namespace kivstore
