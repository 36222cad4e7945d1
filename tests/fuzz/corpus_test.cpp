// Replays the inputs that lie in corpus/, each a test of its own: a broken rule ends the process
// behind the name of its input.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/fuzz/fuzz_target.h"

namespace kivtest {
namespace {

namespace fs = std::filesystem;

constexpr struct {
  const char* folder;
  void (*run)(FuzzInput);
} kTargets[] = {{"format", FuzzFormat}, {"pref", FuzzPref}, {"store", FuzzStore}};

class Replay : public testing::Test {
 public:
  Replay(void (*run)(FuzzInput), const fs::path& file) : run(run), file(file) {}
  void TestBody() override {
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    ASSERT_FALSE(bytes.empty());
    run({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
  }

 private:
  void (*run)(FuzzInput);
  fs::path file;
};

// The names of the tests are those of the files.
const bool gAreRegistered = [] {
  for (const auto& [folder, run] : kTargets) {
    const fs::path corpus = fs::path(KIVSTORE_SOURCE_DIR) / "tests/fuzz/corpus" / folder;
    for (const fs::directory_entry& entry : fs::directory_iterator(corpus)) {
      testing::RegisterTest(
          folder, entry.path().filename().string().c_str(), nullptr, nullptr, __FILE__, __LINE__,
          [run = run, file = entry.path()]() -> Replay* { return new Replay(run, file); });
    }
  }
  return true;
}();

}  // namespace
}  // namespace kivtest
