#include <windows.h>

#include "hosts/common/console.h"
// clang-format off
#include <shellapi.h>
// clang-format on

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <vector>

#include "hosts/common/wide_text.h"

namespace kivhost {

struct Console::State {
  std::vector<std::string> texts;
  std::vector<char*> arguments;
  UINT codePage = 0;  // the console's own
};

namespace {

bool IsTerminal(FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
}

// As the user wrote them: the C runtime's own hold only what the ANSI code page can tell.
std::vector<std::string> Utf8Arguments() {
  std::vector<std::string> texts;
  int count = 0;
  if (LPWSTR* const wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
    for (int i = 0; i < count; ++i) {
      texts.push_back(FromWide(CP_UTF8, wide[i]));
    }
    LocalFree(wide);
  }
  return texts;
}

// The progress bar clears its line by an escape sequence.
void AllowEscapes() {
  const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode = 0;
  if (GetConsoleMode(console, &mode)) {
    SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
}

}  // namespace

Console::Console(int argc, char** argv) : state(new State) {
  state->texts = Utf8Arguments();
  if (state->texts.empty()) {
    state->texts.assign(argv, argv + argc);
  }
  for (std::string& text : state->texts) {
    state->arguments.push_back(text.data());
  }
  state->arguments.push_back(nullptr);
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  state->codePage = GetConsoleOutputCP();
  SetConsoleOutputCP(CP_UTF8);
  AllowEscapes();
}

// The console is the user's: what runs in it next finds it as it was.
Console::~Console() {
  if (state->codePage != 0) {
    SetConsoleOutputCP(state->codePage);
  }
}

int Console::GetCount() const {
  return static_cast<int>(state->texts.size());
}

char** Console::GetArguments() {
  return state->arguments.data();
}

bool InputIsTerminal() {
  return IsTerminal(stdin);
}

bool ErrorIsTerminal() {
  return IsTerminal(stderr);
}

std::string ToLibraryPath(const std::string& path) {
  return FromWide(CP_ACP, ToWide(CP_UTF8, path));
}

std::string FromLibraryPath(const std::string& path) {
  return FromWide(CP_UTF8, ToWide(CP_ACP, path));
}

}  // namespace kivhost
