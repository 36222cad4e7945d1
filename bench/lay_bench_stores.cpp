// Lays out the stores that counts.sh counts on: ROOT/class-of-10, class-of-100 and class-of-1000.
#include <cstdio>
#include <string>

#include "bench/bench_stores.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "lay_bench_stores ROOT\n");
    return 2;
  }
  for (const int size : {10, 100, 1000}) {
    kivbench::LayClassOf(std::string(argv[1]) + "/class-of-" + std::to_string(size), size);
  }
  return 0;
}
