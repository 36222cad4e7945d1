// The fuzz targets, what they take from the fuzzer's bytes, and how they say that a rule is broken.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace kivtest {

// What must hold, whatever the input: otherwise the rule is printed and the process ends, which the
// fuzzer takes for a finding.
inline void Require(bool holds, const char* rule) {
  if (!holds) {
    std::fprintf(stderr, "broken rule: %s\n", rule);
    std::abort();
  }
}

// The bytes from the front. Behind the end there are zeros and empty texts, so that every input
// means something.
class FuzzInput {
 public:
  FuzzInput(const uint8_t* data, size_t size)
      : bytes(reinterpret_cast<const char*>(data)), left(size) {}

  bool IsEmpty() const { return left == 0; }
  uint8_t Byte() { return static_cast<uint8_t>(BigEndian(1)); }
  // Mostly small, sometimes any: a byte of 0 to 251 stands for -2 to 249, any above it for a number
  // of 4 bytes that follows.
  int32_t Number() {
    constexpr int kLastSmall = 251;
    constexpr int kLowest = -2;
    const int first = Byte();
    return first <= kLastSmall ? first + kLowest : static_cast<int32_t>(BigEndian(4));
  }
  std::string Text() { return Take(Byte()); }            // a length of one byte, the text
  std::string LongText() { return Take(BigEndian(2)); }  // of two
  std::string Rest() { return Take(left); }

 private:
  uint32_t BigEndian(size_t width) {
    uint32_t value = 0;
    for (const char c : Take(width)) {
      value = value << 8 | static_cast<uint8_t>(c);
    }
    return value;
  }
  std::string Take(size_t count) {
    const std::string taken(bytes, std::min(count, left));
    bytes += taken.size();
    left -= taken.size();
    return taken;
  }

  const char* bytes;
  size_t left;
};

void FuzzFormat(FuzzInput input);  // a file of any format
void FuzzPref(FuzzInput input);    // edits, and a preference text
void FuzzStore(FuzzInput input);   // a tree of files, and calls

}  // namespace kivtest
