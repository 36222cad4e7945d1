// How a host program ends: what goes wrong anywhere in it is one line on standard error and an exit
// code.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace kivhost {

// kRefused: the store has it otherwise: full, locked, in use, a name taken or unknown. kNoStore:
// none there, or it cannot be read or written.
enum ExitCode { kDone = 0, kRefused = 1, kWrongUsage = 2, kNoStore = 3 };

class HostError : public std::runtime_error {
 public:
  HostError(ExitCode exitCode, const std::string& message)
      : std::runtime_error(message), exitCode(exitCode) {}

  const ExitCode exitCode;
};

// Runs the program; anything that is thrown becomes the line and the code.
int RunHost(const char* program, const std::function<int()>& run);

}  // namespace kivhost
