#include "foundation/time/random.h"

#include <cstdlib>

#include "foundation/time/ticks.h"

namespace kivstore {
namespace {

constexpr uint32_t kCallsPerSeed = 1000;
constexpr int32_t kRandomMask = 0x7FFF;

uint32_t gRandomCalls = kCallsPerSeed - 1;

// 0 to 32,767.
int32_t NextRandom() {
  if (++gRandomCalls == kCallsPerSeed) {
    std::srand(GetTicks());
    gRandomCalls = 0;
  }
  return std::rand() & kRandomMask;
}

}  // namespace

int32_t Random(int32_t low, int32_t high) {
  const int32_t random = NextRandom();
  if (high < low) {
    return low;
  }
  const int64_t choices = static_cast<int64_t>(high) - low + 1;
  return static_cast<int32_t>(low + random % choices);
}

int16_t Random16(int16_t low, int16_t high) {
  return static_cast<int16_t>(Random(low, high));
}

double RandomUnit() {
  return NextRandom() / static_cast<double>(kRandomMask);
}

}  // namespace kivstore
