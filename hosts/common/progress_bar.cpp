#include "hosts/common/progress_bar.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "hosts/common/console.h"

namespace kivhost {
namespace {

constexpr auto kPatience = std::chrono::milliseconds(500);  // a walk this short shows no bar
constexpr auto kInterval = std::chrono::milliseconds(100);
constexpr size_t kWidth = 30;

}  // namespace

ProgressBar::ProgressBar(const char* what, size_t total, bool quiet)
    : what(what), total(total), shown(!quiet && total > 0 && ErrorIsTerminal()) {}

ProgressBar::~ProgressBar() {
  Clear();
}

void ProgressBar::Clear() {
  if (std::exchange(drawn, false)) {
    std::fputs("\r\x1B[K", stderr);
  }
}

void ProgressBar::Advance() {
  ++done;
  if (!shown) {
    return;
  }
  const auto now = Clock::now();
  if (now - start < kPatience || now - lastDraw < kInterval) {
    return;
  }
  lastDraw = now;
  Draw(now);
}

void ProgressBar::Draw(Clock::time_point now) {
  drawn = true;
  const size_t filled = std::min(kWidth, kWidth * done / total);
  const std::string bar = std::string(filled, '#') + std::string(kWidth - filled, '.');
  const double elapsed = std::chrono::duration<double>(now - start).count();
  const double left =
      elapsed / static_cast<double>(done) * static_cast<double>(total - std::min(done, total));
  std::fprintf(stderr, "\r[%s] %zu of %zu %s, %.0f s left\x1B[K", bar.c_str(), done, total, what,
               left);
}

}  // namespace kivhost
