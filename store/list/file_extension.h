// What a file's name says of its type.
#pragma once

#include <string_view>

#include "platform/base/bytes.h"

namespace kivstore {

// Whether the part behind the last dot is this one, letter case ignored. A name without a dot has
// no extension, not even an empty one.
inline bool HasExtension(std::string_view name, std::string_view extension) {
  const size_t dot = name.rfind('.');
  return dot != std::string_view::npos && EqualBytesNoCase(name.substr(dot + 1), extension);
}

}  // namespace kivstore
