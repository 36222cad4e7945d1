// A file that another process holds open.
#pragma once

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/support/started_program.h"
#include "tests/support/temp_folder.h"

namespace kivtest {

class HeldElsewhere {
 public:
  // Throws if the other process cannot have it.
  HeldElsewhere(const std::string& path, bool forReading)
      : program({KIVSTORE_BINARY_DIR "/bin/hold_file", path, forReading ? "r" : "w",
                 folder.Path("ready")}) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (Answer().empty() && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (Answer() != "held") {
      throw std::runtime_error("another process cannot open " + path);
    }
  }

 private:
  std::string Answer() const {
    return folder.Exists("ready") ? folder.ReadFile("ready") : std::string();
  }

  TempFolder folder;
  StartedProgram program;
};

}  // namespace kivtest
