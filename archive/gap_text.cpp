#include "archive/gap_text.h"

#include <cstring>

namespace kivstore {
namespace {

constexpr int32_t kStep = 4096;

void Move(char* to, const char* from, int32_t count) {
  if (count > 0) {
    std::memmove(to, from, static_cast<size_t>(count));
  }
}

}  // namespace

bool SGapText::Hold(MemoryHandle block, int32_t textLength, int32_t blockSize) {
  handle = block;
  text = static_cast<char*>(LockBlock(block));
  length = gap = textLength;
  capacity = blockSize;
  return text != nullptr;
}

void SGapText::LetGo() {
  UnlockBlock(handle);
  handle = nullptr;
  text = nullptr;
  length = capacity = gap = 0;
}

std::string_view SGapText::From(int32_t position) const {
  const int32_t end = position < gap ? gap : length;
  return {Address(position), static_cast<size_t>(end - position)};
}

char* SGapText::Whole() {
  MoveGap(length);
  return text;
}

bool SGapText::Reserve(int64_t n) {
  const int64_t room = Room() - n;
  if (room >= 0) {
    return true;
  }
  const int64_t growth = (room / kStep + 1) * kStep;
  if (growth + room < 0 || capacity + growth > INT32_MAX) {
    return false;
  }
  const bool grown = ResizeBlock(handle, capacity + growth);
  text = static_cast<char*>(LockBlock(handle));
  if (grown) {
    const char* const behind = Address(gap);
    capacity += static_cast<int32_t>(growth);
    Move(Address(gap), behind, length - gap);
  }
  return grown;
}

void SGapText::MoveGap(int32_t position) {
  const int32_t count = position - gap;
  if (count > 0) {
    Move(text + gap, Address(gap), count);
  } else {
    Move(text + position + Room(), text + position, -count);
  }
  gap = position;
}

void SGapText::Insert(std::string_view bytes) {
  const auto count = static_cast<int32_t>(bytes.size());
  Move(text + gap, bytes.data(), count);
  gap += count;
  length += count;
}

void SGapText::Cut(int32_t count) {
  gap -= count;
  length -= count;
}

void SGapText::Overwrite(int32_t position, std::string_view bytes) {
  Move(Address(position), bytes.data(), static_cast<int32_t>(bytes.size()));
}

}  // namespace kivstore
