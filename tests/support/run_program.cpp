#include "tests/support/run_program.h"

#include <cstdlib>

#include "tests/support/temp_folder.h"
#include "tests/support/wine.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace kivtest {
namespace {

#ifdef _WIN32

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

int Run(const std::string& line, const std::string& output, const std::string& errors) {
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = OpenInherited("NUL", GENERIC_READ, OPEN_EXISTING);
  start.hStdOutput = OpenInherited(output, GENERIC_WRITE, CREATE_ALWAYS);
  start.hStdError = OpenInherited(errors, GENERIC_WRITE, CREATE_ALWAYS);
  PROCESS_INFORMATION process{};
  DWORD exitCode = static_cast<DWORD>(-1);
  if (CreateProcessW(nullptr, Wide(line).data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                     &start, &process)) {
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &exitCode);
  }
  for (const HANDLE handle :
       {process.hThread, process.hProcess, start.hStdInput, start.hStdOutput, start.hStdError}) {
    CloseHandle(handle);
  }
  return static_cast<int>(exitCode);
}

#else

std::string Quote(const std::string& argument) {
  std::string quoted = "'";
  for (const char c : argument) {
    quoted += c == '\'' ? "'\\''" : std::string(1, c);
  }
  return quoted + "'";
}

int Run(const std::string& line, const std::string& output, const std::string& errors) {
  const std::string redirected = line + ">" + Quote(output) + " 2>" + Quote(errors);
  const int status = std::system(redirected.c_str());
  return status >= 0 && (status & 0x7F) == 0 ? status >> 8 & 0xFF : -1;
}

#endif

}  // namespace

bool RunsUnderWine() {
#ifdef _WIN32
  const HMODULE system = GetModuleHandleA("ntdll.dll");
  return system != nullptr && GetProcAddress(system, "wine_get_version") != nullptr;
#else
  return false;
#endif
}

RunResult RunProgram(const std::vector<std::string>& command) {
  const TempFolder folder;
  std::string line;
  for (const std::string& argument : command) {
    line += Quote(argument) + " ";
  }
  RunResult result;
  result.exitCode = Run(line, folder.Path("out"), folder.Path("err"));
  result.output = folder.ReadFile("out");
  result.errors = folder.ReadFile("err");
  return result;
}

}  // namespace kivtest
