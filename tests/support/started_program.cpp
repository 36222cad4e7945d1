#include "tests/support/started_program.h"

namespace kivtest {
namespace {

#ifdef _WIN32

constexpr const char* kNowhere = " >NUL 2>&1";

// The command interpreter takes one pair of quotation marks off the whole line.
FILE* OpenPipe(const std::string& line) {
  return _popen(('"' + line + '"').c_str(), "w");
}

bool ClosePipe(FILE* pipe) {
  return _pclose(pipe) == 0;
}

#else

constexpr const char* kNowhere = " >/dev/null 2>&1";

FILE* OpenPipe(const std::string& line) {
  return popen(line.c_str(), "w");
}

bool ClosePipe(FILE* pipe) {
  return pclose(pipe) == 0;
}

#endif

std::string LineOf(const std::vector<std::string>& command) {
  std::string line;
  for (const std::string& argument : command) {
    line += (line.empty() ? "\"" : " \"") + argument + '"';
  }
  return line + kNowhere;
}

}  // namespace

StartedProgram::StartedProgram(const std::vector<std::string>& command)
    : input(OpenPipe(LineOf(command))) {}

bool StartedProgram::Finish() {
  FILE* const pipe = input;
  input = nullptr;
  return pipe != nullptr && ClosePipe(pipe);
}

}  // namespace kivtest
