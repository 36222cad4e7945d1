// Counts the instructions of one command, in user mode, by stepping through it one by one. The
// system is asked as in any other run; under valgrind it is not (openat2).
//
//   count_steps ROOT COMMAND     networked store, first teacher, first class, first student
#include <sys/ptrace.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include "bench/general_call.h"

namespace {

// Two commands go ahead: the first leaves the store in order, and texts and buffers are made once.
void PlayTraced(kivbench::Block& block, int command) {
  ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  block.Call(command);
  block.Call(command);
  raise(SIGSTOP);
  block.Call(command);
  raise(SIGSTOP);
}

bool Step(pid_t child) {
  int status = 0;
  return ptrace(PTRACE_SINGLESTEP, child, nullptr, nullptr) == 0 &&
         waitpid(child, &status, 0) == child && WIFSTOPPED(status) && WSTOPSIG(status) == SIGTRAP;
}

// An instruction that repeats itself stops at every turn, and stays where it is.
long CountSteps(pid_t child) {
  long steps = 0;
  for (long last = 0; Step(child);) {
    const long place = ptrace(PTRACE_PEEKUSER, child, offsetof(user_regs_struct, rip), nullptr);
    steps += place != last ? 1 : 0;
    last = place;
  }
  return steps;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "count_steps ROOT COMMAND\n");
    return 2;
  }
  kivbench::Block block(argv[1]);
  const pid_t child = fork();
  if (child == 0) {
    PlayTraced(block, std::atoi(argv[2]));
    return 0;
  }
  waitpid(child, nullptr, 0);
  std::printf("%ld\n", CountSteps(child));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  return 0;
}
