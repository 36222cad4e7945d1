// A bar on standard error for a walk that takes long: done, total, time left. Silent in a pipe.
#pragma once

#include <chrono>
#include <cstddef>

namespace kivhost {

class ProgressBar {
 public:
  ProgressBar(const char* what, size_t total, bool quiet);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Advance();
  // What is told next stands in its place.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  void Draw(Clock::time_point now);

  const char* what;
  size_t total;
  size_t done = 0;
  bool shown;
  bool drawn = false;
  Clock::time_point start = Clock::now();
  Clock::time_point lastDraw = start;
};

}  // namespace kivhost
