// What the fuzzer calls, for the target that the build names.
#include "tests/fuzz/fuzz_target.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kivtest::KIVSTORE_FUZZ_TARGET({data, size});
  return 0;
}
