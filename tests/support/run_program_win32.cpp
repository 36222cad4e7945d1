#ifdef _WIN32

#include <windows.h>

#include "tests/support/run_program.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

std::wstring Wide(const std::string& utf8) {
  const int size = static_cast<int>(utf8.size());
  std::wstring wide(utf8.size(), L'\0');
  const int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), size);
  wide.resize(static_cast<size_t>(length));
  return wide;
}

// By the rules of the C runtime: backslashes count only before a quotation mark.
std::string Quote(const std::string& argument) {
  std::string quoted = "\"";
  size_t backslashes = 0;
  for (const char c : argument) {
    if (c == '"') {
      quoted.append(backslashes + 1, '\\');
    }
    backslashes = c == '\\' ? backslashes + 1 : 0;
    quoted += c;
  }
  return quoted + std::string(backslashes, '\\') + '"';
}

HANDLE OpenInherited(const std::string& path, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                     disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

int Run(const std::string& line, HANDLE output, HANDLE errors) {
  const HANDLE input = OpenInherited("NUL", GENERIC_READ, OPEN_EXISTING);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = input;
  start.hStdOutput = output;
  start.hStdError = errors;
  PROCESS_INFORMATION process{};
  DWORD exitCode = static_cast<DWORD>(-1);
  std::wstring wide = Wide(line);
  if (CreateProcessW(nullptr, wide.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                     &process)) {
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  CloseHandle(input);
  return static_cast<int>(exitCode);
}

}  // namespace

RunResult RunProgram(const std::vector<std::string>& command) {
  const TempFolder folder;
  std::string line;
  for (const std::string& argument : command) {
    line += (line.empty() ? "" : " ") + Quote(argument);
  }
  const HANDLE output = OpenInherited(folder.Path("out"), GENERIC_WRITE, CREATE_ALWAYS);
  const HANDLE errors = OpenInherited(folder.Path("err"), GENERIC_WRITE, CREATE_ALWAYS);
  RunResult result;
  result.exitCode = Run(line, output, errors);
  CloseHandle(output);
  CloseHandle(errors);
  result.output = folder.ReadFile("out");
  result.errors = folder.ReadFile("err");
  return result;
}

}  // namespace kivtest

#endif
