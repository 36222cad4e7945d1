// How fast the processor runs: by its time stamp counter where it has one, otherwise by timing a
// loop of one instruction whose cost in cycles is known by processor family.
#pragma once

#include <cstdint>

namespace kivstore {

// All 0 where the speed cannot be measured. The arithmetic is unsigned 32-bit.
struct SSpeedResult {
  uint32_t cycles = 0;
  uint32_t microseconds = 0;
  uint32_t wholeMhz = 0;    // rounded down
  uint32_t roundedMhz = 0;  // rounded to the nearest
};

SSpeedResult MeasureSpeed();

// The two ways. The loop takes the cycles that all its rounds cost.
SSpeedResult MeasureByCounter();
SSpeedResult MeasureByLoop(uint32_t cycles);

// Cycles a loop round costs, by family; 0 is no measurement.
uint32_t LoopCycles(int16_t family);
inline constexpr uint32_t kLoopRounds = 4000;

// MeasureSpeed's rounded figure, rounded again by RoundMhz.
uint32_t ProcessorSpeed();

// To a speed that processors are sold with: the nearest multiple of 50 or 33 in its hundred. From
// 976 on to the nearest hundred, or with `keepHigh` as it is.
uint32_t RoundMhz(uint32_t mhz, bool keepHigh);

}  // namespace kivstore
