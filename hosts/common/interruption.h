// Ctrl-C, for a program that goes through many entries: it ends between two, and says how far it
// came. A second one ends the program at once.
#pragma once

#include <string>

namespace kivhost {

// While one of these lives.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  bool IsAsked() const;
  // Throws HostError if it is: "interrupted: " and how far the program came.
  void NeedNone(const std::string& howFar) const;
};

}  // namespace kivhost
