// What a target takes from the fuzzer's bytes, from the front. Behind the end there are zeros and
// empty texts, so that every input means something. write_seeds.cpp writes in the same order.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace kivtest {

class FuzzInput {
 public:
  FuzzInput(const uint8_t* data, size_t size)
      : bytes(reinterpret_cast<const char*>(data)), left(size) {}

  bool IsEmpty() const { return left == 0; }
  uint8_t Byte() { return left > 0 ? static_cast<uint8_t>(Take(1)[0]) : uint8_t{0}; }
  uint16_t Short() {
    const unsigned high = Byte();
    return static_cast<uint16_t>(high << 8 | Byte());
  }
  // Mostly small, sometimes any: a byte of 0 to 251 stands for -2 to 249, any above it for a number
  // of 4 bytes that follows.
  int32_t Number() {
    constexpr int kLastSmall = 251;
    constexpr int kLowest = -2;
    const int first = Byte();
    return first <= kLastSmall ? first + kLowest : Long();
  }
  int32_t Long() {
    const uint32_t high = Short();
    return static_cast<int32_t>(high << 16 | Short());
  }
  std::string Text() { return Take(Byte()); }       // a length of one byte, the text
  std::string LongText() { return Take(Short()); }  // of two
  std::string Rest() { return Take(left); }

 private:
  std::string Take(size_t count) {
    count = std::min(count, left);
    const std::string taken(bytes, count);
    bytes += count;
    left -= count;
    return taken;
  }

  const char* bytes;
  size_t left;
};

}  // namespace kivtest
