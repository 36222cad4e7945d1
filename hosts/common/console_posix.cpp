#include <langinfo.h>
#include <locale.h>
#include <pwd.h>
#include <sys/ioctl.h>
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

std::optional<size_t> OutputColumns() {
  constexpr size_t kUsual = 80;
  if (!OutputIsTerminal()) {
    return std::nullopt;
  }
  winsize size{};
  const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : kUsual;
}

bool ShowsUnicode() {
  const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
  if (locale == nullptr) {
    return false;
  }
  const std::string codes = nl_langinfo_l(CODESET, locale);
  freelocale(locale);
  return codes == "UTF-8";
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
