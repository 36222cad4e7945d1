// Direct access to a string's block.
#include <algorithm>
#include <cstring>

#include "foundation/text/string.h"

namespace kivstore {

char* SString::GetBuffer(int count) {
  if (!IsShared() && GetCapacity() >= count) {
    return text;
  }
  const int length = GetLength();
  char* const block = Alloc(std::max(count, length), length);
  if (block == nullptr) {
    return nullptr;
  }
  std::memcpy(block, text, static_cast<size_t>(length));
  Adopt(block);
  return text;
}

void SString::ReleaseBuffer(int count) {
  if (!MakeUnique()) {
    return;
  }
  const int capacity = GetCapacity();
  if (count < 0) {
    const void* const nul = std::memchr(text, '\0', static_cast<size_t>(capacity));
    count = nul != nullptr ? static_cast<int>(static_cast<const char*>(nul) - text) : capacity;
  }
  SetLength(std::min(count, capacity));
}

char* SString::GetBufferSetLength(int count) {
  char* const buffer = GetBuffer(count);
  if (buffer != nullptr) {
    SetLength(std::max(count, 0));
  }
  return buffer;
}

void SString::FreeExtra() {
  if (GetCapacity() == GetLength() || IsLocked()) {
    return;
  }
  char* const block = Alloc(GetLength(), GetLength());
  if (block != nullptr) {
    std::memcpy(block, text, static_cast<size_t>(GetLength()));
    Adopt(block);
  }
}

char* SString::LockBuffer() {
  char* const buffer = GetBuffer(0);
  if (buffer != nullptr) {
    Header()->refs = -1;
  }
  return buffer;
}

void SString::UnlockBuffer() {
  if (IsLocked() && !IsEmptyBlock()) {
    Header()->refs = 1;
  }
}

}  // namespace kivstore
