// A machine made of values: every answer of ISystem is set by the test.
#pragma once

#include <string>

#include "platform/platform.h"

namespace kivtest {

class TestSystem : public kivstore::ISystem {
 public:
  uint32_t Version() override { return version; }
  uint64_t PhysicalMemory() override { return memory; }
  kivstore::ProcessorFacts Processor() override { return processor; }
  bool StatedMhz(uint32_t& mhz) override {
    mhz = statedMhz;
    return statedMhz != 0;
  }
  bool PerformanceCounter(int64_t& count) override {
    count = ticks;
    ticks += ticksPerLook;
    return frequency != 0;
  }
  bool PerformanceFrequency(int64_t& perSecond) override {
    perSecond = frequency;
    return frequency != 0;
  }
  int32_t ThreadPriority() override { return priority; }
  void SetThreadPriority(int32_t value) override { priority = value; }
  uint64_t AffinityMask() override { return affinity; }
  int32_t DeviceCapability(int32_t index) override { return index == 14 ? planes : bitsPerPixel; }
  bool FontSmoothing(bool& on) override {
    on = smoothing;
    return smoothingKnown;
  }
  bool SetFontSmoothing(bool on) override {
    smoothing = on;
    return true;
  }
  void ShowMessage(const char* text, const char* title) override {
    message = std::string(title) + ": " + text;
  }
  uint32_t TryFlags(uint32_t mask, bool set) override {
    return (set ? flags | (mask & changeable) : flags & ~(mask & changeable)) & mask;
  }
  bool Cpuid(uint32_t leaf, kivstore::CpuidResult& result) override {
    result = {leaf == 0 ? highestLeaf : signature, 0, 0, leaf == 1 ? features : 0};
    return leaf <= highestLeaf;
  }
  // The counter moves with every look, the time stamp by so many cycles a tick.
  uint32_t TimeStamp() override { return static_cast<uint32_t>(ticks * cyclesPerTick); }
  void BitScanLoop(uint32_t rounds) override {
    roundsRun += rounds;
    ticks += ticksPerLoop;
  }

  uint32_t version = 0x0A28000A;
  uint64_t memory = 0;
  kivstore::ProcessorFacts processor{0, 6, 0x24A};
  uint32_t statedMhz = 0;
  int64_t ticks = 0;
  int64_t ticksPerLook = 1;
  int64_t ticksPerLoop = 0;
  int64_t cyclesPerTick = 0;
  int64_t frequency = 0;
  int32_t priority = 0;
  uint64_t affinity = 0;
  int32_t planes = 0;
  int32_t bitsPerPixel = 0;
  bool smoothing = false;
  bool smoothingKnown = false;
  std::string message;
  uint32_t flags = 0;
  uint32_t changeable = 1u << 21;
  uint32_t highestLeaf = 1;
  uint32_t signature = 0x600;
  uint32_t features = 0;
  uint32_t roundsRun = 0;
};

}  // namespace kivtest
