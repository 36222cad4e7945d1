// A host's parameter block, filled as the input says, and what a call may do to it.
#pragma once

#include <memory>

#include "kivstore/general_proc.h"
#include "tests/fuzz/fuzz_target.h"

namespace kivtest {

class HostileBlock {
 public:
  explicit HostileBlock(FuzzInput& input);

  // Calls the library and looks at every byte of the block.
  void Call(const char* dataPath);

 private:
  // On the heap, so that a byte written behind it is seen.
  std::unique_ptr<SGeneralParams> block;
};

}  // namespace kivtest
