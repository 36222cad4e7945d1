// A large buffer that is used over and over instead of being allocated each time. One user has it
// at a time; whoever comes meanwhile gets a block from the heap.
#pragma once

#include <cstddef>
#include <cstdlib>

namespace kivstore {

template <size_t size>
class KeptBuffer {
 public:
  static constexpr size_t kSize = size;
  static constexpr size_t kAlignment = 4096;

  // Null when there is no memory.
  char* Take() {
    if (taken) {
      return static_cast<char*>(std::aligned_alloc(kAlignment, size));
    }
    taken = true;
    return kept;
  }

  void GiveBack(char* buffer) {
    if (buffer == kept) {
      taken = false;
    } else {
      std::free(buffer);
    }
  }

 private:
  bool taken = false;
  alignas(kAlignment) char kept[size] = {};
};

}  // namespace kivstore
