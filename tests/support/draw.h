// Numbers and texts drawn by a seed, for runs of random steps against a model. The same seed draws
// the same on every platform.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace kivtest {

class Draw {
 public:
  explicit Draw(uint32_t seed) : engine(seed) {}

  int32_t Between(int32_t low, int32_t high) {
    const uint32_t span = static_cast<uint32_t>(high) - static_cast<uint32_t>(low);
    const auto number = static_cast<uint32_t>(engine());
    return static_cast<int32_t>(static_cast<uint32_t>(low) +
                                (span == UINT32_MAX ? number : number % (span + 1)));
  }
  int32_t Below(int32_t count) { return Between(0, count - 1); }
  bool OneIn(int32_t count) { return Below(count) == 0; }
  std::string Text(int32_t longest, std::string_view alphabet) {
    std::string text(static_cast<size_t>(Between(0, longest)), '\0');
    for (char& c : text) {
      c = alphabet[static_cast<size_t>(Below(static_cast<int32_t>(alphabet.size())))];
    }
    return text;
  }

 private:
  std::mt19937 engine;
};

// Runs `steps` with the seeds from 1 on until one fails, which is printed.
template <class Steps>
void ForSeeds(uint32_t seeds, Steps steps) {
  for (uint32_t seed = 1; seed <= seeds && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    Draw draw(seed);
    steps(draw);
  }
}

}  // namespace kivtest
