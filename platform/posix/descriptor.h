// A file descriptor that closes itself.
#pragma once

#include <unistd.h>

namespace kivstore {

class Descriptor {
 public:
  constexpr explicit Descriptor(int number = -1) : number(number) {}
  ~Descriptor() { Reset(-1); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int Get() const { return number; }
  bool IsOpen() const { return number >= 0; }

  void Reset(int other) {
    if (number >= 0) {
      close(number);
    }
    number = other;
  }

  int Release() {
    const int released = number;
    number = -1;
    return released;
  }

 private:
  int number;
};

}  // namespace kivstore
