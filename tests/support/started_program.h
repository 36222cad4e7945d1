// A program that runs beside the test, as another workstation does. What it prints is dropped.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace kivtest {

class StartedProgram {
 public:
  // The program's path and its arguments, none of them with a quotation mark.
  explicit StartedProgram(const std::vector<std::string>& command);
  ~StartedProgram() { Finish(); }
  StartedProgram(StartedProgram&& other) noexcept : input(other.input) { other.input = nullptr; }
  StartedProgram& operator=(StartedProgram&&) = delete;

  // Ends its standard input and waits for it; true if it ended with 0.
  bool Finish();

 private:
  FILE* input;
};

}  // namespace kivtest
