// A file that another process holds open.
#pragma once

#include <chrono>
#include <future>
#include <stdexcept>
#include <thread>

#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

namespace kivtest {

class HeldElsewhere {
 public:
  // Throws if the other process cannot have it.
  HeldElsewhere(const std::string& path, bool forReading)
      : program(std::async(std::launch::async, RunProgram,
                           std::vector<std::string>{KIVSTORE_BINARY_DIR "/bin/hold_file", path,
                                                    forReading ? "r" : "w", folder.Path("held")})) {
    while (!folder.Exists("held")) {
      if (program.wait_for(std::chrono::milliseconds(1)) == std::future_status::ready) {
        throw std::runtime_error("another process cannot open " + path);
      }
    }
  }
  ~HeldElsewhere() { folder.Remove("held"); }

 private:
  TempFolder folder;
  std::future<RunResult> program;  // whose end is waited for
};

}  // namespace kivtest
