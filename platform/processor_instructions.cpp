// TryFlags, CPUID, the time stamp counter and the measured loop, by the compiler's own names for
// them.
#include "platform/system.h"

#if defined(__i386__) || defined(__x86_64__)
#define KIVSTORE_INTEL 1
#include <cpuid.h>
#include <x86intrin.h>
#endif

namespace kivstore {

uint32_t SProcessorInstructions::TryFlags([[maybe_unused]] uint32_t mask,
                                          [[maybe_unused]] bool set) {
#ifdef KIVSTORE_INTEL
  auto before = __readeflags();
  __writeeflags(set ? before | mask : before & ~static_cast<decltype(before)>(mask));
  const auto after = __readeflags();
  __writeeflags(before);
  return static_cast<uint32_t>(after);
#else
  return 0;
#endif
}

bool SProcessorInstructions::Cpuid([[maybe_unused]] uint32_t leaf,
                                   [[maybe_unused]] CpuidResult& result) {
#ifdef KIVSTORE_INTEL
  return __get_cpuid(leaf, &result.eax, &result.ebx, &result.ecx, &result.edx) != 0;
#else
  return false;
#endif
}

uint32_t SProcessorInstructions::TimeStamp() {
#ifdef KIVSTORE_INTEL
  return static_cast<uint32_t>(__rdtsc());
#else
  return 0;
#endif
}

void SProcessorInstructions::BitScanLoop(uint32_t rounds) {
  const uint32_t scanned = 0x80000000;
  uint32_t found = 0;
  for (uint32_t round = 0; round < rounds; ++round) {
    // Volatile, so that the one instruction whose cost is known stays in the loop and stays alone.
#ifdef KIVSTORE_INTEL
    __asm__ volatile("bsf %1, %0" : "=r"(found) : "r"(scanned) : "cc");
#else
    __asm__ volatile("" : "=r"(found) : "0"(__builtin_ctz(scanned)));
#endif
  }
}

}  // namespace kivstore
