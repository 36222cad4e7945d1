#include <windows.h>

#include <mutex>
#include <thread>

#include "hosts/common/child_process.h"
#include "hosts/common/host_error.h"
#include "hosts/common/wide_text.h"

namespace kivhost {
namespace {

[[noreturn]] void ThrowUnstarted() {
  throw HostError(kNoStore, "no process can be started: error " + std::to_string(GetLastError()));
}

class Handle {
 public:
  Handle() = default;
  ~Handle() { Close(); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  void Close() {
    if (handle != nullptr && handle != INVALID_HANDLE_VALUE) {
      CloseHandle(handle);
    }
    handle = nullptr;
  }

  HANDLE handle = nullptr;
};

// A pipe whose in end alone is inherited.
struct Pipe {
  Pipe() {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    if (!CreatePipe(&out.handle, &in.handle, &inherited, 0) ||
        !SetHandleInformation(out.handle, HANDLE_FLAG_INHERIT, 0)) {
      ThrowUnstarted();
    }
  }
  void ReadAll(std::string& text) const {
    char block[1 << 16];
    for (DWORD count = 0;
         ReadFile(out.handle, block, sizeof block, &count, nullptr) && count > 0;) {
      text.append(block, count);
    }
  }

  Handle out, in;
};

// As the C runtime takes it apart again.
std::wstring Quoted(const std::wstring& word) {
  std::wstring quoted = L"\"";
  size_t strokes = 0;
  for (const wchar_t c : word) {
    if (c == L'"') {
      quoted.append(strokes + 1, L'\\');
    }
    strokes = c == L'\\' ? strokes + 1 : 0;
    quoted += c;
  }
  return quoted.append(strokes, L'\\') + L'"';
}

std::wstring OwnPath() {
  constexpr DWORD kLongest = 1 << 15;
  std::wstring path(kLongest, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), kLongest));
  return path;
}

void Start(const std::vector<std::string>& arguments, const Pipe& output, const Pipe& errors,
           Handle& process) {
  const std::wstring path = OwnPath();
  std::wstring line = Quoted(path);
  for (const std::string& argument : arguments) {
    line += L' ' + Quoted(ToWide(CP_UTF8, argument));
  }
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = output.in.handle;
  start.hStdError = errors.in.handle;
  PROCESS_INFORMATION started{};
  if (!CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                      &start, &started)) {
    ThrowUnstarted();
  }
  CloseHandle(started.hThread);
  process.handle = started.hProcess;
}

}  // namespace

ChildResult RunSelf(const std::vector<std::string>& arguments) {
  // One at a time: a child inherits what another thread has open for its own.
  static std::mutex starting;
  std::unique_lock alone(starting);
  Pipe output, errors;
  Handle process;
  ChildResult result;
  Start(arguments, output, errors, process);
  output.in.Close();
  errors.in.Close();
  alone.unlock();
  std::thread reading([&] { errors.ReadAll(result.errors); });
  output.ReadAll(result.output);
  reading.join();
  WaitForSingleObject(process.handle, INFINITE);
  DWORD exitCode = 0;
  GetExitCodeProcess(process.handle, &exitCode);
  result.exitCode = static_cast<int>(exitCode);
  return result;
}

}  // namespace kivhost
