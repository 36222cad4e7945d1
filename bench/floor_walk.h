// The cached chain over a school written out by hand, for the one store that lay_bench_stores lays
// out: what the answers need of the system and of the processor, and nothing else. It puts to the
// system the questions that the library puts, lock and lease, index and folder, list by list; what
// it spares is everything that makes a library of it: strings, records, layers, repair.
#pragma once

#include <cstdint>
#include <string>

#include "kivstore/general_proc.h"

namespace kivbench {

// Each name into its field of the block; how many students there were. 0 for a store that is not in
// order.
int64_t WalkByHand(const std::string& root, SGeneralParams& block);

}  // namespace kivbench
