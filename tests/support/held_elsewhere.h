// A file that another process holds open.
#pragma once

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/support/temp_folder.h"

namespace kivtest {

class HeldElsewhere {
 public:
  // Throws if the other process cannot have it.
  HeldElsewhere(const std::string& path, bool forReading) {
    const std::string program = KIVSTORE_BINARY_DIR "/bin/hold_file";
    const std::string line = Quoted(program) + " " + Quoted(path) + (forReading ? " r " : " w ") +
                             Quoted(folder.Path("ready"));
    input = OpenPipe(line);
    while (input != nullptr && Answer().empty()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (Answer() != "held") {
      Close();
      throw std::runtime_error("another process cannot open " + path);
    }
  }
  ~HeldElsewhere() { Close(); }
  HeldElsewhere(const HeldElsewhere&) = delete;
  HeldElsewhere& operator=(const HeldElsewhere&) = delete;

 private:
  static std::string Quoted(const std::string& text) { return '"' + text + '"'; }

#ifdef _WIN32
  // The command interpreter takes one pair of quotation marks off the whole line.
  static FILE* OpenPipe(const std::string& line) {
    return _popen(Quoted(line).c_str(), "w");
  }
  static void ClosePipe(FILE* pipe) {
    _pclose(pipe);
  }
#else
  static FILE* OpenPipe(const std::string& line) {
    return popen(line.c_str(), "w");
  }
  static void ClosePipe(FILE* pipe) {
    pclose(pipe);
  }
#endif

  std::string Answer() const {
    return folder.Exists("ready") ? folder.ReadFile("ready") : std::string();
  }

  void Close() {
    if (input != nullptr) {
      ClosePipe(input);
      input = nullptr;
    }
  }

  TempFolder folder;
  FILE* input = nullptr;
};

}  // namespace kivtest
