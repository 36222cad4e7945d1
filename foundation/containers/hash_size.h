// How many buckets suit a map of a known size.
#pragma once

#include <cstdint>

namespace kivstore {

// The first prime of a fixed table above count + count / 5; 997, the last, from 997 on.
uint32_t SuggestHashSize(uint32_t count);

}  // namespace kivstore
