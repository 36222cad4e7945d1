// The fuzzer's way in: KIVSTORE_FUZZ_TARGET is FuzzFormat, FuzzPref or FuzzStore.
#include <cstdlib>

#include "tests/fuzz/fuzz_target.h"

// The stores lie in memory, which is several times as fast.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return setenv("TMPDIR", "/dev/shm", 0);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kivtest::KIVSTORE_FUZZ_TARGET({data, size});
  return 0;
}
