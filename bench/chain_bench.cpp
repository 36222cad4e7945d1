// A whole walk over a school, as a host does it: the plain chain of commands 1 to 5 and the cached
// chain of 9 to 14, beside the same written out by hand. Items are students for the cached chain
// and names and counts told for the plain.
#include <benchmark/benchmark.h>

#include "bench/bench_stores.h"
#include "bench/floor_walk.h"
#include "bench/general_call.h"
#include "tests/support/temp_folder.h"

namespace kivbench {
namespace {

int64_t WalkCached(Block& block) {
  int64_t students = 0;
  block.Call(KIV_CACHE_TEACHERS);
  for (block.teacherIndex = 1; block.teacherIndex <= block.topCount; ++block.teacherIndex) {
    block.teacherListIndex = block.teacherIndex;
    block.Call(KIV_CACHED_TEACHER_NAME);
    block.Call(KIV_CACHE_CLASSES);
    for (int c = 1; c <= block.classCount; ++c) {
      block.classListIndex = c;
      block.Call(KIV_CACHED_CLASS_NAME);
      block.Call(KIV_CACHE_STUDENTS);
      for (int s = 1; s <= block.studentCount; ++s) {
        block.studentListIndex = s;
        students += block.Call(KIV_CACHED_STUDENT_NAME);
      }
    }
  }
  return students;
}

int64_t WalkFloor(Block& block) {
  return WalkByHand(block.root, block);
}

int64_t WalkPlain(Block& block) {
  int64_t told = 0;
  block.Call(KIV_COUNT_TEACHERS);
  for (block.teacherIndex = 1; block.teacherIndex <= block.topCount; ++block.teacherIndex) {
    block.teacherListIndex = block.teacherIndex;
    told += block.Call(KIV_TEACHER_NAME);
    block.Call(KIV_COUNT_CLASSES);
    for (int c = 1; c <= block.classCount; ++c) {
      block.classListIndex = c;
      told += block.Call(KIV_CLASS_NAME);
      told += block.Call(KIV_COUNT_STUDENTS);
    }
  }
  return told;
}

int64_t WalkProgress(Block& block) {
  int64_t students = 0;
  block.Call(KIV_COUNT_TEACHERS);
  for (block.teacherIndex = 1; block.teacherIndex <= block.topCount; ++block.teacherIndex) {
    block.Call(KIV_COUNT_CLASSES);
    for (block.classIndex = 0; block.classIndex < block.classCount; ++block.classIndex) {
      block.Call(KIV_COUNT_STUDENTS);
      for (int s = 1; s <= block.studentCount; ++s) {
        block.studentListIndex = s;
        students += block.Call(KIV_STUDENT_PROGRESS);
      }
    }
  }
  return students;
}

void Walk(benchmark::State& state, int64_t (*walk)(Block&), bool school) {
  kivtest::TempFolder folder;
  if (school) {
    LaySchool(folder.Path(), 5, 8, 30);
  } else {
    LayClassOf(folder.Path(), 1000);
  }
  Block block(folder.Path());
  WalkCached(block);
  int64_t items = 0;
  for (auto _ : state) {
    items += walk(block);
  }
  state.SetItemsProcessed(items);
}
BENCHMARK_CAPTURE(Walk, cached_chain_school, WalkCached, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Walk, floor_of_the_cached_chain_school, WalkFloor, true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Walk, cached_chain_class_of_1000, WalkCached, false)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Walk, plain_chain_school, WalkPlain, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Walk, plain_chain_class_of_1000, WalkPlain, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Walk, progress_school, WalkProgress, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Walk, progress_class_of_1000, WalkProgress, false)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kivbench
