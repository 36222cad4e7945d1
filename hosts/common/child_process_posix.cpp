#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include "hosts/common/child_process.h"
#include "hosts/common/host_error.h"

extern char** environ;

namespace kivhost {
namespace {

[[noreturn]] void ThrowUnstarted(int number) {
  throw HostError(kNoStore, std::string("no process can be started: ") + std::strerror(number));
}

// A pipe whose ends no other child inherits.
class Pipe {
 public:
  Pipe() {
    if (pipe2(ends, O_CLOEXEC) != 0) {
      ThrowUnstarted(errno);
    }
  }
  ~Pipe() {
    CloseIn();
    close(ends[0]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int In() const { return ends[1]; }
  void CloseIn() {
    if (ends[1] >= 0) {
      close(ends[1]);
      ends[1] = -1;
    }
  }
  void ReadAll(std::string& text) const {
    char block[1 << 16];
    for (ssize_t count; (count = read(ends[0], block, sizeof block)) != 0;) {
      if (count > 0) {
        text.append(block, static_cast<size_t>(count));
      } else if (errno != EINTR) {
        return;
      }
    }
  }

 private:
  int ends[2] = {-1, -1};
};

pid_t Start(const std::vector<std::string>& arguments, const Pipe& output, const Pipe& errors) {
  std::vector<char*> words{const_cast<char*>("kivreport")};
  for (const std::string& argument : arguments) {
    words.push_back(const_cast<char*>(argument.c_str()));
  }
  words.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, output.In(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors.In(), STDERR_FILENO);
  pid_t process = 0;
  const int error =
      posix_spawn(&process, "/proc/self/exe", &actions, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    ThrowUnstarted(error);
  }
  return process;
}

int WaitFor(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  constexpr int kEndedBySignal = 128;
  return WIFEXITED(status) ? WEXITSTATUS(status) : kEndedBySignal + WTERMSIG(status);
}

}  // namespace

ChildResult RunSelf(const std::vector<std::string>& arguments) {
  Pipe output, errors;
  ChildResult result;
  const pid_t process = Start(arguments, output, errors);
  output.CloseIn();
  errors.CloseIn();
  std::thread reading([&] { errors.ReadAll(result.errors); });
  output.ReadAll(result.output);
  reading.join();
  result.exitCode = WaitFor(process);
  return result;
}

}  // namespace kivhost
