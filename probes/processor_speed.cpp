#include "probes/processor_speed.h"

#include <algorithm>

#include "platform/platform.h"
#include "probes/processor.h"

namespace kivstore {
namespace {

constexpr int kLoopTries = 10;
constexpr int64_t kSettleTicks = 50;
constexpr int64_t kMeasureTicks = 1000;
constexpr int kLeastRounds = 3;
constexpr int kMostRounds = 20;
constexpr uint32_t kCloseEnough = 3;  // three times one megahertz
constexpr int32_t kPriorityUnknown = 0x7FFFFFFF;
constexpr int32_t kTimeCritical = 15;

uint32_t DivideRounded(uint32_t value, uint32_t by) {
  if (by == 0) {
    return 0;
  }
  return value / by + (value % by > by / 2 ? 1 : 0);
}

// Counter ticks to microseconds.
uint32_t ToMicroseconds(int64_t ticks, uint32_t frequency) {
  const uint32_t scaled = static_cast<uint32_t>(ticks) * 100000;
  const uint32_t divisor = frequency / 10;
  if (divisor == 0) {
    return 0;
  }
  return scaled / divisor + (scaled % frequency > frequency / 2 ? 1 : 0);
}

bool GetFrequency(uint32_t& frequency) {
  int64_t perSecond = 0;
  if (!Platform().system->PerformanceFrequency(perSecond) || perSecond <= 0) {
    return false;
  }
  frequency = static_cast<uint32_t>(perSecond);
  return frequency != 0;
}

int64_t ReadCounter() {
  int64_t count = 0;
  Platform().system->PerformanceCounter(count);
  return count;
}

// Spins until so many counter ticks have passed and gives the last time stamp read. A counter that
// stands still ends it too.
uint32_t SpinFor(int64_t ticks, int64_t start) {
  constexpr int kMostTurns = 100'000'000;
  uint32_t stamp = 0;
  for (int turn = 0; turn < kMostTurns; ++turn) {
    stamp = Platform().system->TimeStamp();
    if (ReadCounter() - start >= ticks) {
      break;
    }
  }
  return stamp;
}

// Runs the spins undisturbed, as far as the system grants it.
class TimeCritical {
 public:
  TimeCritical() : before(Platform().system->ThreadPriority()) {
    if (before != kPriorityUnknown) {
      Platform().system->SetThreadPriority(kTimeCritical);
    }
  }
  ~TimeCritical() {
    if (before != kPriorityUnknown) {
      Platform().system->SetThreadPriority(before);
    }
  }

 private:
  int32_t before;
};

struct Round {
  uint32_t cycles;
  uint32_t microseconds;
};

Round MeasureRound(uint32_t frequency) {
  uint32_t begin;
  uint32_t end;
  int64_t start = ReadCounter();
  int64_t stop;
  {
    const TimeCritical undisturbed;
    begin = SpinFor(kSettleTicks, start);
    start = ReadCounter();
    end = SpinFor(kMeasureTicks, start);
    stop = ReadCounter();
  }
  return {end - begin, ToMicroseconds(stop - start, frequency)};
}

bool Agrees(uint32_t estimate, uint32_t sum) {
  const uint32_t three = 3 * estimate;
  return (three > sum ? three - sum : sum - three) <= kCloseEnough;
}

SSpeedResult Summarise(uint32_t cycles, uint32_t microseconds) {
  SSpeedResult result{cycles, microseconds, 0, 0};
  if (microseconds == 0) {
    return result;
  }
  const uint32_t hundredths = cycles * 100 / microseconds;
  const uint32_t tenths = cycles * 10 / microseconds + (hundredths % 10 > 5 ? 1 : 0);
  result.wholeMhz = cycles / microseconds;
  result.roundedMhz = result.wholeMhz + (tenths % 10 > 5 ? 1 : 0);
  return result;
}

}  // namespace

uint32_t LoopCycles(int16_t family) {
  if (family < 3) {
    return 0;
  }
  if (family == 3) {
    return 115;
  }
  if (family == 4) {
    return 47;
  }
  return family == 5 ? 43 : 38;
}

SSpeedResult MeasureByLoop(uint32_t cycles) {
  uint32_t frequency = 0;
  if (!GetFrequency(frequency)) {
    return {};
  }
  int64_t least = INT64_MAX;
  for (int i = 0; i < kLoopTries; ++i) {
    const int64_t start = ReadCounter();
    Platform().system->BitScanLoop(kLoopRounds);
    least = std::min(least, ReadCounter() - start);
  }
  const uint32_t elapsed = ToMicroseconds(least, frequency);
  if (elapsed == 0) {
    return {};
  }
  return {cycles, elapsed, cycles / elapsed, DivideRounded(cycles, elapsed)};
}

SSpeedResult MeasureByCounter() {
  uint32_t frequency = 0;
  if (!GetFrequency(frequency)) {
    return {};
  }
  uint32_t estimates[3] = {};
  uint32_t cycles = 0;
  uint32_t microseconds = 0;
  for (int round = 1; round <= kMostRounds; ++round) {
    const Round measured = MeasureRound(frequency);
    cycles += measured.cycles;
    microseconds += measured.microseconds;
    estimates[2] = estimates[1];
    estimates[1] = estimates[0];
    estimates[0] = DivideRounded(measured.cycles, measured.microseconds);
    const uint32_t sum = estimates[0] + estimates[1] + estimates[2];
    const bool steady = std::all_of(std::begin(estimates), std::end(estimates),
                                    [&](uint32_t estimate) { return Agrees(estimate, sum); });
    if (round >= kLeastRounds && steady) {
      break;
    }
  }
  return Summarise(cycles, microseconds);
}

SSpeedResult MeasureSpeed() {
  if (ProcessorFeatures() & kFeatureTimeStampCounter) {
    return MeasureByCounter();
  }
  const uint32_t cycles = LoopCycles(ProcessorFamily());
  return cycles == 0 ? SSpeedResult{} : MeasureByLoop(cycles * kLoopRounds);
}

uint32_t ProcessorSpeed() {
  return RoundMhz(MeasureSpeed().roundedMhz, false);
}

uint32_t RoundMhz(uint32_t mhz, bool keepHigh) {
  if (mhz >= 976) {
    return keepHigh ? mhz : (mhz + 50) / 100 * 100;
  }
  const uint32_t rest = mhz % 100;
  const uint32_t by50 = (rest + 25) / 50 * 50;
  const uint32_t by33 = (rest + 16) / 33 * 33;
  const auto distance = [rest](uint32_t to) { return to > rest ? to - rest : rest - to; };
  const uint32_t rounded = mhz - rest + (distance(by33) < distance(by50) ? by33 : by50);
  return rounded % 100 == 99 ? rounded + 1 : rounded;
}

}  // namespace kivstore
