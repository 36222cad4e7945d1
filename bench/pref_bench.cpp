// The options as a preference text: written into an empty file and over a text of the same
// missions, and read, with 25 missions to as many as a record takes; and all three beside two MiB
// of lines that are somebody else's.
#include <benchmark/benchmark.h>

#include "foundation/files/file_spec.h"
#include "platform/platform.h"
#include "records/tutor_options_dob.h"
#include "tests/support/temp_folder.h"

namespace kivbench {
namespace {

using kivstore::SFileSpec;
using kivstore::STeacherOptionsDob;

constexpr const char* kFile = "options.txt";
constexpr const char* kSection = "Options";

class OptionsText {
 public:
  explicit OptionsText(const benchmark::State& state) : beside(LinesOf(state.range(1))) {
    Clear();
    options.missions.SetCount(static_cast<int32_t>(state.range(0)));
  }
  // Nothing but the others' lines, on both sides of an empty section.
  void Clear() { folder.WriteFile(kFile, beside + "[Options]\r\n" + beside); }
  bool Save() { return options.SaveToPref(Spec(), kSection); }
  bool Load() { return options.LoadFromPref(Spec(), kSection); }
  // A time has more digits than none: every line behind the first changes its place.
  void Decide(uint32_t time) {
    for (int32_t i = 0; i < options.missions.GetCount(); ++i) {
      options.missions.At(i).ForEachField(
          [&](const char*, auto& field) { field.stamp.SetRaw(time); });
    }
  }

 private:
  SFileSpec Spec() const { return SFileSpec(folder.Path(kFile).c_str()); }
  static std::string LinesOf(int64_t bytes) {
    std::string lines = bytes > 0 ? "[Others]\r\n" : "";
    for (int number = 0; std::ssize(lines) < bytes; ++number) {
      lines += "line" + std::to_string(number) + "=of another program\r\n";
    }
    return lines;
  }

  kivtest::TempFolder folder;
  std::string beside;
  STeacherOptionsDob options;
};

template <class Prepare, class Act>
void Measure(benchmark::State& state, Prepare prepare, Act act) {
  for (auto _ : state) {
    state.PauseTiming();
    prepare();
    state.ResumeTiming();
    if (!act()) {
      state.SkipWithError("not done");
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void SaveText(benchmark::State& state) {
  OptionsText text(state);
  Measure(
      state, [&] { text.Clear(); }, [&] { return text.Save(); });
}

void SaveTextOver(benchmark::State& state) {
  OptionsText text(state);
  uint32_t time = 0;
  text.Save();
  Measure(
      state, [&] { text.Decide(time = time == 0 ? 3839529600 : 0); }, [&] { return text.Save(); });
}

void LoadText(benchmark::State& state) {
  OptionsText text(state);
  text.Save();
  Measure(
      state, [] {}, [&] { return text.Load(); });
}

// Missions, and bytes of other lines on each side.
void Sizes(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"missions", "others"})->Unit(benchmark::kMillisecond);
  for (const int missions : {25, 100, 400, 4000, 32767}) {
    bench->Args({missions, 0});
  }
  bench->Args({25, 1 << 20})->Args({400, 1 << 20});
}
BENCHMARK(SaveText)->Apply(Sizes);
BENCHMARK(SaveTextOver)->Apply(Sizes);
BENCHMARK(LoadText)->Apply(Sizes);

}  // namespace
}  // namespace kivbench
