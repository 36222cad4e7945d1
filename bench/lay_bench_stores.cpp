// Lays out the stores that counts.sh and far.sh count on.
//
//   lay_bench_stores ROOT
//     ROOT/class-of-10, ROOT/class-of-100 and ROOT/class-of-1000
//   lay_bench_stores ROOT TEACHERS CLASSES STUDENTS
//     a school at ROOT, of so many teachers with so many classes of so many students each
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/bench_stores.h"

int main(int argc, char** argv) {
  if (argc == 5) {
    kivbench::LaySchool(argv[1], std::atoi(argv[2]), std::atoi(argv[3]), std::atoi(argv[4]));
    return 0;
  }
  if (argc != 2) {
    std::fprintf(stderr, "lay_bench_stores ROOT [TEACHERS CLASSES STUDENTS]\n");
    return 2;
  }
  for (const int size : {10, 100, 1000}) {
    kivbench::LayClassOf(std::string(argv[1]) + "/class-of-" + std::to_string(size), size);
  }
  return 0;
}
