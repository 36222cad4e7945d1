#include "platform/base/bytes.h"

#include <algorithm>

namespace kivstore {
namespace {

int Order(uint64_t a, uint64_t b) {
  return a < b ? -1 : a > b ? 1 : 0;
}

// Of eight bytes, or `count` if that is less.
int CompareWord(const char* a, const char* b, size_t count) {
  const uint64_t packedA = PackBytes(a, count);
  const uint64_t packedB = PackBytes(b, count);
  if (packedA == packedB) {
    return 0;
  }
  return Order(FoldLowerPacked(packedA), FoldLowerPacked(packedB));
}

}  // namespace

int bytes_detail::CompareFolded(std::string_view a, std::string_view b) {
  const size_t common = std::min(a.size(), b.size());
  int order = common < 8 ? CompareWord(a.data(), b.data(), common) : 0;
  for (size_t at = 0; order == 0 && at + 8 <= common; at += 8) {
    order = CompareWord(a.data() + at, b.data() + at, 8);
  }
  if (order == 0 && common > 8) {
    // The last word overlaps what is known to be equal: no byte stands alone.
    order = CompareWord(a.data() + common - 8, b.data() + common - 8, 8);
  }
  return order != 0 ? order : Order(a.size(), b.size());
}

}  // namespace kivstore
