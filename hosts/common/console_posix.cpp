#include <pwd.h>
#include <unistd.h>

#include <algorithm>

#include "hosts/common/console.h"

namespace kivhost {

struct Console::State {
  int count;
  char** arguments;
};

Console::Console(int argc, char** argv) : state(new State{argc, argv}) {}

Console::~Console() = default;

int Console::GetCount() const {
  return state->count;
}

char** Console::GetArguments() {
  return state->arguments;
}

bool InputIsTerminal() {
  return isatty(STDIN_FILENO) == 1;
}

void TakeInputAsBytes() {}

bool OutputIsTerminal() {
  return isatty(STDOUT_FILENO) == 1;
}

bool ErrorIsTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

std::string NameOfUser(uint32_t number) {
  const passwd* const user = getpwuid(number);
  return user != nullptr ? user->pw_name : "user " + std::to_string(number);
}

std::string ToLibraryPath(const std::string& path) {
  return path;
}

std::string FromLibraryPath(const std::string& path) {
  std::string text = path;
  std::replace(text.begin(), text.end(), '\\', '/');
  return text;
}

}  // namespace kivhost
