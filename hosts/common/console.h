// What a host program meets around it that differs from system to system: the command line, the
// standard streams, the form of a path. Inside, everything is UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace kivhost {

// For the length of main. Arguments come as UTF-8; standard output and error take UTF-8, on a
// console as well as in a pipe, with line ends as they are written.
class Console {
 public:
  Console(int argc, char** argv);
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  int GetCount() const;
  char** GetArguments();

 private:
  struct State;
  std::unique_ptr<State> state;
};

bool InputIsTerminal();
// From then on standard input comes byte by byte as it is, on a system that makes texts of it.
void TakeInputAsBytes();
bool ErrorIsTerminal();
bool OutputIsTerminal();
// How many columns the terminal behind standard output has; nothing if there is none.
std::optional<size_t> OutputColumns();
// Whether it shows what is no ASCII, as the locale tells.
bool ShowsUnicode();

// By the user's number; empty where users have none. The number itself if nobody has it.
std::string NameOfUser(uint32_t number);

// A path as the library takes it, in the system's own bytes, and back, with the system's own
// separators. What the bytes cannot hold becomes a question mark, which no file name has.
std::string ToLibraryPath(const std::string& path);
std::string FromLibraryPath(const std::string& path);

}  // namespace kivhost
