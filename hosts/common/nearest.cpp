#include "hosts/common/nearest.h"

#include <algorithm>

namespace kivhost {
namespace {

// Changes from one word to the other, where two letters that are swapped are one.
size_t Distance(const std::string& a, const std::string& b) {
  const size_t width = b.size() + 1;
  std::vector<size_t> changes((a.size() + 1) * width);
  const auto at = [&](size_t i, size_t j) -> size_t& { return changes[i * width + j]; };
  for (size_t i = 0; i <= a.size(); ++i) {
    for (size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        at(i, j) = i + j;
        continue;
      }
      at(i, j) =
          std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, at(i - 1, j - 1) + (a[i - 1] != b[j - 1])});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
      }
    }
  }
  return changes.back();
}

}  // namespace

std::string Nearest(const std::string& word, const std::vector<std::string>& words) {
  constexpr size_t kLongest = 64;
  std::string nearest;
  size_t least = std::max<size_t>(2, word.size() / 3) + 1;
  for (const std::string& other : words) {
    const size_t distance = word.size() > kLongest ? kLongest : Distance(word, other);
    if (distance < least && distance < other.size()) {
      least = distance;
      nearest = other;
    }
  }
  return nearest;
}

}  // namespace kivhost
