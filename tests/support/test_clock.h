// A clock that the test moves by hand. It is the platform's clock from construction to destruction,
// starts at tick 0 and stands still unless told otherwise.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/platform.h"

namespace kivtest {

class TestClock : public kivstore::IClock {
 public:
  // autoAdvance: milliseconds that pass after each look at the ticks, so that a wait that spins on
  // them ends.
  explicit TestClock(uint32_t autoAdvance = 0) : autoAdvance(autoAdvance) {}

  uint32_t Ticks() override {
    const uint32_t now = ticks;
    ++ticksCalls;
    ticks += autoAdvance;
    return now;
  }
  kivstore::LocalTime Now() override {
    ++nowCalls;
    return local;
  }
  void Beep(uint32_t kind) override { beeps.push_back(kind); }

  // The local time does not move with the ticks.
  void Advance(uint32_t ms) { ticks += ms; }
  void SetTicks(uint32_t value) { ticks = value; }
  void SetAutoAdvance(uint32_t ms) { autoAdvance = ms; }
  void SetLocal(const kivstore::LocalTime& time) { local = time; }
  void SetLocal(uint16_t year, uint16_t month, uint16_t day, uint16_t hour = 0, uint16_t minute = 0,
                uint16_t second = 0) {
    local = {year, month, day, hour, minute, second};
  }

  // What happened: the tick count without a look at it, how often each was asked, the sounds.
  uint32_t CurrentTicks() const { return ticks; }
  int TicksCalls() const { return ticksCalls; }
  int NowCalls() const { return nowCalls; }
  const std::vector<uint32_t>& Beeps() const { return beeps; }

 private:
  uint32_t ticks = 0;
  uint32_t autoAdvance;
  kivstore::LocalTime local{2001, 2, 3, 4, 5, 6};
  int ticksCalls = 0;
  int nowCalls = 0;
  std::vector<uint32_t> beeps;
  kivstore::SPlatformOverride<kivstore::IClock> installed{kivstore::Platform().clock, this};
};

}  // namespace kivtest
