// Runs a program and gives what it printed and how it ended.
#pragma once

#include <string>
#include <vector>

namespace kivtest {

struct RunResult {
  int exitCode = -1;
  std::string output;
  std::string errors;
};

// The program's path and its arguments, which no shell sees.
RunResult RunProgram(const std::vector<std::string>& command);

}  // namespace kivtest
