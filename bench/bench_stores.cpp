#include "bench/bench_stores.h"

#include "tests/support/store_builder.h"

namespace kivbench {
namespace {

using kivtest::GameBytes;
using kivtest::Kind;
using kivtest::OptionsBytes;
using kivtest::StoreBuilder;

constexpr uint32_t kDecided = 3839529600;  // 1 September 2025

void AddClass(StoreBuilder& store, const std::string& teacher, int number, int students) {
  const std::string group = store.AddClass(teacher, "Class " + std::to_string(number));
  store.WriteOptions(group, OptionsBytes().Set("VocabLevel", 2, kDecided));
  GameBytes game;
  game.learnedNewKeys = true;
  for (int i = 0; i < students; ++i) {
    const std::string student =
        store.AddStudent(group, "Student", "Number " + std::to_string(i + 1));
    store.WriteOptions(student, OptionsBytes().SetMission(1 + i % 25, kDecided));
    store.WriteGame(student, game);
  }
}

}  // namespace

void LaySchool(const std::string& root, int teachers, int classes, int students) {
  StoreBuilder store(root, Kind::kTeachers);
  for (int t = 0; t < teachers; ++t) {
    const std::string teacher = store.AddTeacher("Teacher " + std::to_string(t + 1));
    store.WriteOptions(StoreBuilder::ClassList(teacher), OptionsBytes());
    for (int c = 0; c < classes; ++c) {
      AddClass(store, teacher, c + 1, students);
    }
  }
  store.Finish();
}

void LayClassOf(const std::string& root, int students) {
  LaySchool(root, 1, 1, students);
}

}  // namespace kivbench
