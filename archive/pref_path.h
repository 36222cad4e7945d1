// The section path and the key path of a preference archive: levels joined by "_".
#pragma once

#include <cstdint>
#include <cstring>

#include "foundation/text/string.h"

namespace kivstore {

template <int32_t kLevels>
struct SPrefPath {
  static constexpr int32_t kLongest = 240;

  char text[kLongest + 4] = "";
  int32_t depth = 0;
  int32_t offsets[kLevels + 1] = {};  // where each level's path ends in the text

  bool IsFull() const { return depth >= kLevels; }

  // A null name adds a level and nothing to the path. A path that would be too long stays as it is,
  // with the level added all the same: false. The path must not be full.
  bool Push(const char* name) {
    const int32_t offset = offsets[depth];
    offsets[++depth] = offset;
    if (name == nullptr) {
      return true;
    }
    const std::string_view level(name);
    const int32_t start = offset > 0 ? offset + 1 : 0;
    if (level.size() > static_cast<size_t>(kLongest) ||
        start + static_cast<int32_t>(level.size()) > kLongest) {
      return false;
    }
    text[offset] = '_';
    std::memcpy(text + start, level.data(), level.size());
    offsets[depth] = start + static_cast<int32_t>(level.size());
    text[offsets[depth]] = '\0';
    return true;
  }

  // False if no level is there.
  bool Pop() {
    if (depth < 1) {
      return false;
    }
    text[offsets[--depth]] = '\0';
    return true;
  }
};

}  // namespace kivstore
