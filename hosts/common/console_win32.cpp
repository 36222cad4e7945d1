#include "hosts/common/console.h"

// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <streambuf>
#include <vector>

#include "hosts/common/wide_text.h"

namespace kivhost {
namespace {

// How many bytes of the text are whole UTF-8 characters.
size_t WholeCharacters(std::string_view text) {
  constexpr size_t kLongest = 4;
  for (size_t back = 1; back <= std::min(kLongest, text.size()); ++back) {
    const auto byte = static_cast<unsigned char>(text[text.size() - back]);
    if (byte >= 0xC0) {
      const size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
      return length > back ? text.size() - back : text.size();
    }
    if (byte < 0x80) {
      break;
    }
  }
  return text.size();
}

// A console takes 16-bit characters: then it shows every text, whatever its code page is.
class ConsoleBuffer final : public std::streambuf {
 public:
  ConsoleBuffer(std::ostream& stream, DWORD handle)
      : stream(stream), console(GetStdHandle(handle)) {
    if (GetConsoleMode(console, &mode)) {
      stream.flush();
      previous = stream.rdbuf(this);
      // The progress bar clears its line by an escape sequence.
      SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    }
  }
  ~ConsoleBuffer() override {
    if (previous != nullptr) {
      stream.flush();
      stream.rdbuf(previous);
      SetConsoleMode(console, mode);  // what runs there next finds it as it was
    }
  }

 protected:
  int_type overflow(int_type c) override {
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
      const char byte = traits_type::to_char_type(c);
      xsputn(&byte, 1);
    }
    return traits_type::not_eof(c);
  }

  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    constexpr size_t kEnough = 8192;
    text.append(bytes, static_cast<size_t>(count));
    if (text.size() >= kEnough) {
      sync();
    }
    return count;
  }

  int sync() override {
    const size_t whole = WholeCharacters(text);
    const std::wstring wide = ToWide(CP_UTF8, std::string_view(text).substr(0, whole));
    text.erase(0, whole);
    return Write(wide) ? 0 : -1;
  }

 private:
  bool Write(std::wstring_view wide) const {
    constexpr size_t kMost = 8192;  // in one call
    while (!wide.empty()) {
      DWORD written = 0;
      const auto count = static_cast<DWORD>(std::min(kMost, wide.size()));
      if (!WriteConsoleW(console, wide.data(), count, &written, nullptr) || written == 0) {
        return false;
      }
      wide.remove_prefix(written);
    }
    return true;
  }

  std::ostream& stream;
  HANDLE console;
  DWORD mode = 0;
  std::streambuf* previous = nullptr;
  std::string text;
};

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

}  // namespace

struct Console::State {
  std::vector<std::string> texts;
  std::vector<char*> arguments;
  ConsoleBuffer output{std::cout, STD_OUTPUT_HANDLE};
  ConsoleBuffer errors{std::cerr, STD_ERROR_HANDLE};
};

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
}

Console::~Console() = default;

int Console::GetCount() const {
  return static_cast<int>(state->texts.size());
}

char** Console::GetArguments() {
  return state->arguments.data();
}

bool InputIsTerminal() {
  return IsTerminal(stdin);
}

void TakeInputAsBytes() {
  _setmode(_fileno(stdin), _O_BINARY);
}

bool OutputIsTerminal() {
  return IsTerminal(stdout);
}

bool ErrorIsTerminal() {
  return IsTerminal(stderr);
}

std::optional<size_t> OutputColumns() {
  constexpr size_t kUsual = 80;
  if (!OutputIsTerminal()) {
    return std::nullopt;
  }
  CONSOLE_SCREEN_BUFFER_INFO shown;
  const bool isKnown = GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &shown) != 0;
  return isKnown ? static_cast<size_t>(shown.srWindow.Right - shown.srWindow.Left + 1) : kUsual;
}

// Characters go to it by 16 bits.
bool ShowsUnicode() {
  return true;
}

std::string NameOfUser(uint32_t /*number*/) {
  return {};
}

std::string ToLibraryPath(const std::string& path) {
  return FromWide(CP_ACP, ToWide(CP_UTF8, path));
}

std::string FromLibraryPath(const std::string& path) {
  return FromWide(CP_UTF8, ToWide(CP_ACP, path));
}

}  // namespace kivhost
