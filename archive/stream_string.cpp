#include "archive/stream_string.h"

namespace kivstore {

SStreamSrcString::SStreamSrcString(const SString& source)
    : SStreamSrcMemory(nullptr, 0), text(source) {
  // Only ever read: Open refuses to write.
  buffer = reinterpret_cast<uint8_t*>(const_cast<char*>(text.GetText()));
  size = text.GetLength();
  cursor = buffer;
}

bool SStreamSrcString::Open(int32_t openMode) {
  return SStreamSrcMemory::Open(openMode) && (mode != kWrite || Fail());
}

}  // namespace kivstore
