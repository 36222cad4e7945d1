// This program once more, with other arguments, as a process of its own.
#pragma once

#include <string>
#include <vector>

namespace kivhost {

struct ChildResult {
  int exitCode = 0;    // of a process that was ended from outside at least 128
  std::string output;  // all of standard output, and of standard error
  std::string errors;
};

// Waits for its end; it has nothing to read on standard input. Throws HostError if it cannot be
// started. May be called by several threads at once.
ChildResult RunSelf(const std::vector<std::string>& arguments);

}  // namespace kivhost
