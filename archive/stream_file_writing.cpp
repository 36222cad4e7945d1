// The writing side of the file stream.
#include <cstring>

#include "archive/stream_file.h"
#include "archive/swap_bytes.h"

namespace kivstore {

bool SStreamSrcFile::FlushBuffer() {
  if (error) {
    return false;
  }
  const int32_t written = file->Write(bufferIndex, buffer);
  error = written < bufferIndex;
  CountMoved(written);
  ResetCursor();
  return !error;
}

bool SStreamSrcFile::Write(const void* source, int32_t count, bool swap) {
  if (error || mode != kWrite || count < 0) {
    error = true;
    return false;
  }
  const auto* const from = static_cast<const uint8_t*>(source);
  if (count < bufferSize - bufferIndex) {
    if (swap) {
      CopySwapped(cursor, from, count);
    } else if (count > 0) {
      std::memcpy(cursor, from, static_cast<size_t>(count));
    }
    Advance(count);
    return true;
  }
  if (swap) {
    while (count > 0 && PutByte(from[count - 1])) {
      --count;
    }
    return !error;
  }
  if (!FlushBuffer()) {
    return false;
  }
  const int32_t written = file->Write(count, from);
  CountMoved(written);
  error = written < count;
  return !error;
}

bool SStreamSrcFile::WriteByte(uint8_t value) {
  if (error || mode != kWrite) {
    error = true;
    return false;
  }
  return PutByte(value);
}

bool SStreamSrcFile::PutByte(uint8_t value) {
  if (bufferIndex >= bufferSize && !FlushBuffer()) {
    return false;
  }
  *cursor = value;
  Advance(1);
  return true;
}

}  // namespace kivstore
