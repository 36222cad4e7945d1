// The start of a lesson: so many hosts at once ask who is in their class and how far their student
// has come. Tells how long they took, and how long of it they waited at locks that others held.
//
//   lesson ROOT HOSTS [SECONDS]     networked store; 25 hosts a class, of the first teacher; all at
//                                   once, or one after the other within the seconds
//
// Each host is a process and asks as a tutor that starts: commands 1, 3 and 5, and 6 for its own
// student. One that is told no asks anew, as a user would, and is counted.
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "bench/general_call.h"
#include "platform/platform.h"

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point begun) {
  return std::chrono::duration<double>(Clock::now() - begun).count();
}

// A lock is a file opened alone, again and again until it is had.
class TimedServices : public kivstore::SForwardingFileServices {
 public:
  using SForwardingFileServices::SForwardingFileServices;

  kivstore::FileHandle Open(const char* path, kivstore::FileAccess access,
                            kivstore::SystemError& error) override {
    const size_t length = std::strlen(path);
    const bool isLock = length > 4 && std::strcmp(path + length - 4, ".lok") == 0;
    const auto begun = Clock::now();
    const kivstore::FileHandle file = inner.Open(path, access, error);
    if (isLock && file == nullptr) {
      asked.try_emplace(path, begun);
    } else if (const auto first = isLock ? asked.find(path) : asked.end(); first != asked.end()) {
      waited += SecondsSince(first->second);
      asked.erase(first);
    }
    return file;
  }

  double waited = 0;

 private:
  std::map<std::string, Clock::time_point> asked;  // in vain as yet
};

struct Told {
  double took;
  double waited;
  int refused;
};

Told Start(const char* root, int number) {
  constexpr int kSeats = 25;
  TimedServices services(*kivstore::Platform().files);
  const kivstore::SPlatformOverride<kivstore::IFileServices> scope(kivstore::Platform().files,
                                                                   &services);
  kivbench::Block block(root);
  block.classIndex = number / kSeats;
  block.studentListIndex = number % kSeats + 1;
  Told told{};
  const auto begun = Clock::now();
  for (const int command :
       {KIV_COUNT_TEACHERS, KIV_COUNT_CLASSES, KIV_COUNT_STUDENTS, KIV_STUDENT_PROGRESS}) {
    while (!block.Call(command)) {
      ++told.refused;
    }
  }
  told.took = SecondsSince(begun);
  told.waited = services.waited;
  return told;
}

// All wait until the pipe at `gate` is closed.
void LetStart(const char* root, int number, double after, const int (&gate)[2], int answers) {
  char nothing;
  close(gate[1]);
  if (read(gate[0], &nothing, 1) == 0) {
    usleep(static_cast<useconds_t>(after * 1e6));
    const Told told = Start(root, number);
    _exit(write(answers, &told, sizeof told) == sizeof told ? 0 : 1);
  }
  _exit(1);
}

std::vector<Told> StartAll(const char* root, int hosts, double seconds) {
  int gate[2], answers[2];
  std::vector<Told> all;
  if (pipe(gate) != 0 || pipe(answers) != 0) {
    return all;
  }
  for (int i = 0; i < hosts; ++i) {
    if (fork() == 0) {
      LetStart(root, i, seconds * i / hosts, gate, answers[1]);
    }
  }
  close(answers[1]);
  sleep(1);
  close(gate[0]);
  close(gate[1]);
  for (Told told; read(answers[0], &told, sizeof told) == sizeof told;) {
    all.push_back(told);
  }
  while (wait(nullptr) > 0) {
  }
  return all;
}

void Print(const std::vector<Told>& all, const char* what, double Told::*field) {
  std::vector<double> values;
  for (const Told& told : all) {
    values.push_back(told.*field);
  }
  std::sort(values.begin(), values.end());
  std::printf("  %s: the middle one %.3f s, the last %.3f s\n", what, values[values.size() / 2],
              values.back());
}

}  // namespace

int main(int argc, char** argv) {
  const int hosts = argc > 2 ? std::atoi(argv[2]) : 0;
  const double seconds = argc > 3 ? std::atof(argv[3]) : 0;
  if (hosts < 1) {
    std::fprintf(stderr, "lesson ROOT HOSTS [SECONDS]\n");
    return 2;
  }
  const std::vector<Told> all = StartAll(argv[1], hosts, seconds);
  int refused = 0;
  for (const Told& told : all) {
    refused += told.refused;
  }
  std::printf("%zu of %d hosts within %g s, told no %d times\n", all.size(), hosts, seconds,
              refused);
  if (all.empty()) {
    return 1;
  }
  Print(all, "took", &Told::took);
  Print(all, "of it waiting at locks", &Told::waited);
  return all.size() == static_cast<size_t>(hosts) ? 0 : 1;
}
