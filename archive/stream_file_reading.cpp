// The reading side of the file stream.
#include <algorithm>
#include <cstring>

#include "archive/stream_file.h"
#include "archive/swap_bytes.h"
#include "archive/text_stop.h"

namespace kivstore {

bool SStreamSrcFile::FillBuffer() {
  if (error || mode == kWrite) {
    error = true;
    return false;
  }
  bufferValid = buffer != nullptr ? std::clamp(file->Read(bufferSize, buffer), 0, bufferSize) : 0;
  CountMoved(bufferValid);
  error = bufferValid == 0;
  return !error;
}

bool SStreamSrcFile::Refill() {
  const bool filled = FillBuffer();
  if (mode != kWrite) {
    ResetCursor();
  }
  return filled;
}

bool SStreamSrcFile::Read(void* dest, int32_t count, bool swap) {
  if (swap && !error && count > 0 && count <= Held()) {
    CopySwapped(dest, cursor, count);
    Advance(count);
    return true;
  }
  if (error || count < 0) {
    error = true;
    return false;
  }
  auto* to = static_cast<uint8_t*>(dest);
  if (swap) {
    ReadSwappedBytes(to, count);
    return !error;
  }
  while (count > 0 && HasByte()) {
    const int32_t taken = std::min(count, Held());
    std::memcpy(to, cursor, static_cast<size_t>(taken));
    Advance(taken);
    to += taken;
    count -= taken;
  }
  return !error;
}

void SStreamSrcFile::ReadSwappedBytes(uint8_t* dest, int32_t count) {
  while (count > 0) {
    dest[--count] = ReadByte();
  }
}

uint8_t SStreamSrcFile::ReadByte() {
  if (error || !HasByte()) {
    return 0;
  }
  const uint8_t value = *cursor;
  Advance(1);
  return value;
}

uint8_t SStreamSrcFile::PeekByte() {
  if (error) {
    return 0;
  }
  // A refill here leaves the cursor where it stood, which may be behind what it brought.
  if (Held() <= 0 && !FillBuffer()) {
    return 0;
  }
  return Held() > 0 ? *cursor : 0;
}

const uint8_t* SStreamSrcFile::GetBlock(int32_t& count) {
  if (error || !HasByte()) {
    count = 0;
    return nullptr;
  }
  const uint8_t* const block = cursor;
  count = std::clamp(count, 0, Held());
  Advance(count);
  return block;
}

bool SStreamSrcFile::ReadDelimited(SString& dest, const char* delimiters, bool skipRun,
                                   bool consumeOne) {
  if (error) {
    dest.Empty();
    return false;
  }
  if (!AppendToStop(dest, delimiters)) {
    return false;
  }
  if (!error) {
    if (StopsAtNulOnly(delimiters)) {
      Advance(1);
    } else if (skipRun) {
      SkipStops(delimiters);
    } else if (consumeOne) {
      Advance(1);
    }
  }
  return !(dest.IsEmpty() && error);
}

// False for a text that is too long. Otherwise the cursor is on the stop, or `error` is set at the
// end of the data.
bool SStreamSrcFile::AppendToStop(SString& dest, const char* delimiters) {
  bool first = true;
  while (HasByte()) {
    const int32_t run = LengthToStop(cursor, Held(), delimiters);
    const bool found = run < Held();
    const int32_t taken = std::min(run, SString::kMaxLength - (first ? 0 : dest.GetLength()));
    const auto* const text = reinterpret_cast<const char*>(cursor);
    // Nearly every text lies within the buffer: one assignment and no emptying before.
    first ? dest.Assign(taken, text) : dest.Append(taken, text);
    first = false;
    Advance(taken);
    if (taken < run) {
      return false;
    }
    if (found) {
      return true;
    }
  }
  if (first) {
    dest.Empty();
  }
  return true;
}

void SStreamSrcFile::SkipStops(const char* delimiters) {
  while (HasByte() && IsTextStop(*cursor, delimiters)) {
    Advance(1);
  }
}

}  // namespace kivstore
