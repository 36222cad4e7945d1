#include "probes/processor.h"

#include "platform/platform.h"

namespace kivstore {
namespace {

constexpr uint32_t kTopFlags = 0xF000;  // bits 12 to 15
constexpr uint32_t kAlignmentCheck = 1u << 18;
constexpr uint32_t kIdBit = 1u << 21;

uint32_t TryFlags(uint32_t mask, bool set) {
  return Platform().system->TryFlags(mask, set) & mask;
}

bool CanChange(uint32_t bit) {
  return TryFlags(bit, true) != TryFlags(bit, false);
}

int16_t FamilyByFlags() {
  if (TryFlags(kTopFlags, false) == kTopFlags) {
    return 0;
  }
  if (TryFlags(kTopFlags, true) == 0) {
    return 2;
  }
  return CanChange(kAlignmentCheck) ? 4 : 3;
}

bool HasLeafOne() {
  CpuidResult result;
  return HasCpuid() && Platform().system->Cpuid(0, result) && result.eax > 0;
}

}  // namespace

bool HasCpuid() {
  return CanChange(kIdBit);
}

int16_t ProcessorFamily() {
  if (!HasCpuid()) {
    return FamilyByFlags();
  }
  CpuidResult result;
  if (!HasLeafOne() || !Platform().system->Cpuid(1, result)) {
    return -1;
  }
  return static_cast<int16_t>(result.eax >> 8 & 0xF);
}

uint32_t ProcessorFeatures() {
  CpuidResult result;
  return HasLeafOne() && Platform().system->Cpuid(1, result) ? result.edx : 0;
}

}  // namespace kivstore
