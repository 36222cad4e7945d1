#include "archive/stream_memory.h"

#include <algorithm>
#include <cstring>

#include "archive/swap_bytes.h"
#include "archive/text_stop.h"

namespace kivstore {

SStreamSrcMemory::SStreamSrcMemory(void* buffer, int32_t size)
    : buffer(static_cast<uint8_t*>(buffer)), size(buffer != nullptr ? std::max(size, 0) : 0) {
  cursor = this->buffer;
}

SStreamSrcMemory::~SStreamSrcMemory() {
  FreeBlock(handle);
}

bool SStreamSrcMemory::Open(int32_t openMode) {
  if (opened) {
    return !error;
  }
  SStreamSource::Open(openMode);
  if (buffer == nullptr && (mode != kWrite || !AllocateOwned())) {
    return Fail();
  }
  MoveTo(0);
  return true;
}

bool SStreamSrcMemory::AllocateOwned() {
  handle = AllocateBlock(growth);
  buffer = static_cast<uint8_t*>(LockBlock(handle));
  if (buffer == nullptr) {
    return false;
  }
  size = growth;
  std::memset(buffer, 0, static_cast<size_t>(size));
  return true;
}

// Makes room for n bytes past the position. New room is zeroed: a Skip may leave it unwritten.
bool SStreamSrcMemory::Grow(int32_t n) {
  if (handle == nullptr || n < 0) {
    return Fail();
  }
  const int64_t shortfall = int64_t{n} - Remaining();
  if (shortfall <= 0) {
    return true;
  }
  const int64_t newSize = size + (shortfall + growth - 1) / growth * growth;
  const bool grown = newSize <= INT32_MAX && ResizeBlock(handle, newSize);
  buffer = static_cast<uint8_t*>(LockBlock(handle));
  if (grown && buffer != nullptr) {
    std::memset(buffer + size, 0, static_cast<size_t>(newSize - size));
    size = static_cast<int32_t>(newSize);
  }
  MoveTo(position);
  return grown && buffer != nullptr ? true : Fail();
}

// The position may pass the size by one; the cursor stays at the end then.
void SStreamSrcMemory::MoveTo(int32_t newPosition) {
  position = newPosition;
  cursor = buffer + std::min(position, size);
}

bool SStreamSrcMemory::Rewind() {
  MoveTo(0);
  return !error;
}

bool SStreamSrcMemory::Extend(int32_t n) {
  return !error && Grow(n);
}

bool SStreamSrcMemory::Close() {
  if (mode != kWrite) {
    return Fail();
  }
  mode = kRead;
  size = position;
  return !error;
}

bool SStreamSrcMemory::Read(void* dest, int32_t count, bool swap) {
  if (error || count < 0 || count > Remaining()) {
    return Fail();
  }
  if (swap) {
    CopySwapped(dest, cursor, count);
  } else if (count > 0) {
    std::memcpy(dest, cursor, static_cast<size_t>(count));
  }
  MoveTo(position + count);
  return true;
}

bool SStreamSrcMemory::ReadDelimited(SString& dest, const char* delimiters, bool skipRun,
                                     bool consumeOne) {
  dest.Empty();
  if (error || Remaining() <= 0) {
    return false;
  }
  const int32_t length = LengthToStop(cursor, Remaining(), delimiters);
  const int32_t taken = std::min(length, SString::kMaxLength);
  dest.Assign(taken, reinterpret_cast<const char*>(cursor));
  MoveTo(position + taken);
  if (taken < length) {
    return false;
  }
  if (StopsAtNulOnly(delimiters)) {
    MoveTo(position + 1);  // one past the size for a last text without its NUL
  } else if (skipRun) {
    while (Remaining() > 0 && IsTextStop(*cursor, delimiters)) {
      MoveTo(position + 1);
    }
  } else if (consumeOne && Remaining() > 0) {
    MoveTo(position + 1);
  }
  return true;
}

bool SStreamSrcMemory::Write(const void* source, int32_t count, bool swap) {
  if (error || mode != kWrite || count < 0) {
    return Fail();
  }
  const auto* const from = static_cast<const uint8_t*>(source);
  if (swap && count > Remaining()) {
    while (count > 0 && WriteByte(from[count - 1])) {
      --count;
    }
    return !error;
  }
  if (count > Remaining() && !Grow(count)) {
    return false;
  }
  if (swap) {
    CopySwapped(cursor, from, count);
  } else if (count > 0) {
    std::memcpy(cursor, from, static_cast<size_t>(count));
  }
  MoveTo(position + count);
  return true;
}

bool SStreamSrcMemory::WriteByte(uint8_t value) {
  if (error || mode != kWrite || (Remaining() < 1 && !Grow(1))) {
    return Fail();
  }
  *cursor = value;
  MoveTo(position + 1);
  return true;
}

uint8_t SStreamSrcMemory::PeekByte() {
  return !error && Remaining() > 0 ? *cursor : 0;
}

uint8_t SStreamSrcMemory::ReadByte() {
  if (error || Remaining() < 1) {
    Fail();
    return 0;
  }
  const uint8_t value = *cursor;
  MoveTo(position + 1);
  return value;
}

bool SStreamSrcMemory::UnreadByte() {
  if (error || position <= 0) {
    return false;
  }
  MoveTo(position - 1);
  return true;
}

const uint8_t* SStreamSrcMemory::GetBlock(int32_t& count) {
  if (error || count < 0 || count > Remaining()) {
    Fail();
    count = 0;
    return nullptr;
  }
  const uint8_t* const block = cursor;
  MoveTo(position + count);
  return block;
}

bool SStreamSrcMemory::Skip(int32_t n) {
  if (error || n < 0 || (n > Remaining() && (mode != kWrite || !Grow(n)))) {
    return Fail();
  }
  MoveTo(position + n);
  return true;
}

MemoryHandle SStreamSrcMemory::DetachHandle() {
  MemoryHandle const detached = handle;
  if (detached == nullptr) {
    return nullptr;
  }
  UnlockBlock(detached);
  handle = nullptr;
  buffer = nullptr;
  size = 0;
  MoveTo(0);
  return detached;
}

}  // namespace kivstore
