#ifndef _WIN32

#include <cstdlib>

#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

std::string Quote(const std::string& argument) {
  std::string quoted = "'";
  for (const char c : argument) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + "'";
}

int ExitCode(int status) {
  return status >= 0 && (status & 0x7F) == 0 ? status >> 8 & 0xFF : -1;
}

}  // namespace

RunResult RunProgram(const std::vector<std::string>& command) {
  const TempFolder folder;
  folder.WriteFile("out", "");
  folder.WriteFile("err", "");
  std::string line;
  for (const std::string& argument : command) {
    line += Quote(argument) + " ";
  }
  line += ">" + Quote(folder.Path("out")) + " 2>" + Quote(folder.Path("err"));
  RunResult result;
  result.exitCode = ExitCode(std::system(line.c_str()));
  result.output = folder.ReadFile("out");
  result.errors = folder.ReadFile("err");
  return result;
}

}  // namespace kivtest

#endif
