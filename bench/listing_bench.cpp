// One class of 10, 100 and 1,000 students: listing it, and one student's progress in it.
#include <benchmark/benchmark.h>

#include "bench/bench_stores.h"
#include "bench/general_call.h"
#include "tests/support/temp_folder.h"

namespace kivbench {
namespace {

// Lays the class once, and lets a first listing put it in order.
class ClassOf {
 public:
  explicit ClassOf(int students) : block(folder.Path()) {
    LayClassOf(folder.Path(), students);
    block.Call(KIV_CACHE_TEACHERS);
    block.Call(KIV_CACHE_CLASSES);
    block.Call(KIV_CACHE_STUDENTS);
  }
  kivtest::TempFolder folder;
  Block block;
};

void ListStudents(benchmark::State& state) {
  ClassOf group(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    if (!group.block.Call(KIV_CACHE_STUDENTS)) {
      state.SkipWithError("not listed");
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ListStudents)->Arg(10)->Arg(100)->Arg(1000);

void OneProgress(benchmark::State& state) {
  ClassOf group(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    if (!group.block.Call(KIV_STUDENT_PROGRESS)) {
      state.SkipWithError("no progress");
    }
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(OneProgress)->Arg(10)->Arg(100)->Arg(1000);

}  // namespace
}  // namespace kivbench
