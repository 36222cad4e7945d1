// What the processor says of itself.
#pragma once

#include <cstdint>

namespace kivstore {

inline constexpr uint32_t kFeatureTimeStampCounter = 1u << 4;

// True if the ID bit of the flags register can be changed.
bool HasCpuid();

// 0 for an 8086, 2 for a 286, 3 for a 386, 4 for a 486, otherwise the CPUID family; -1 where CPUID
// has no leaf above 0.
int16_t ProcessorFamily();

// The feature word of CPUID leaf 1; 0 if there is none.
uint32_t ProcessorFeatures();

}  // namespace kivstore
