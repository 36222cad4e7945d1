// Facts about the workstation, as the probes ask for them. Where a platform cannot tell, the
// operation answers false or 0.
#pragma once

#include <cstdint>

namespace kivstore {

enum class ProcessorArchitecture : uint16_t { kIntel = 0, kMips = 1, kAlpha = 2, kPowerPc = 3 };

struct ProcessorFacts {
  uint16_t architecture;
  uint16_t level;  // 3: 386, 4: 486, above: Pentium
  uint32_t type;   // 386, 486 or 586, on systems outside the NT family
};

struct CpuidResult {
  uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
};

class ISystem {
 public:
  virtual ~ISystem() = default;

  // Low byte major, next byte minor, top bit clear on the NT family.
  virtual uint32_t Version() = 0;
  virtual uint64_t PhysicalMemory() = 0;  // bytes
  virtual ProcessorFacts Processor() = 0;
  // The speed that the system itself states, in MHz.
  virtual bool StatedMhz(uint32_t& mhz) = 0;
  virtual bool PerformanceCounter(int64_t& count) = 0;
  virtual bool PerformanceFrequency(int64_t& perSecond) = 0;
  // 0x7FFFFFFF when the priority cannot be told.
  virtual int32_t ThreadPriority() = 0;
  virtual void SetThreadPriority(int32_t priority) = 0;
  virtual uint64_t AffinityMask() = 0;
  // Index 14: planes, 12: bits per pixel, of a memory device context.
  virtual int32_t DeviceCapability(int32_t index) = 0;
  virtual bool FontSmoothing(bool& on) = 0;
  virtual bool SetFontSmoothing(bool on) = 0;
  virtual void ShowMessage(const char* text, const char* title) = 0;

  // The processor's own instructions. On a processor that lacks one the answer is 0 or false.
  // Sets or clears these bits of the flags register, gives what then stood there, and restores it.
  virtual uint32_t TryFlags(uint32_t mask, bool set) = 0;
  virtual bool Cpuid(uint32_t leaf, CpuidResult& result) = 0;
  virtual uint32_t TimeStamp() = 0;  // the low word of the time stamp counter
  // So many rounds of one bit scan of 0x80000000 and nothing else.
  virtual void BitScanLoop(uint32_t rounds) = 0;
};

// The four instructions, which are the same under every system.
class SProcessorInstructions : public ISystem {
 public:
  uint32_t TryFlags(uint32_t mask, bool set) final;
  bool Cpuid(uint32_t leaf, CpuidResult& result) final;
  uint32_t TimeStamp() final;
  void BitScanLoop(uint32_t rounds) final;
};

}  // namespace kivstore
