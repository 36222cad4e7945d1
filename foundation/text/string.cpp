#include "foundation/text/string.h"

#include <algorithm>
#include <cstring>

namespace kivstore {
namespace {

int ClampedLength(size_t length) {
  return static_cast<int>(std::min(length, static_cast<size_t>(SString::kMaxLength)));
}

// The first and the last word of `size` bytes, both read before either is written.
template <class Word>
inline void CopyEnds(char* to, const char* from, size_t size) {
  Word first;
  Word last;
  std::memcpy(&first, from, sizeof first);
  std::memcpy(&last, from + size - sizeof last, sizeof last);
  std::memcpy(to, &first, sizeof first);
  std::memcpy(to + size - sizeof last, &last, sizeof last);
}

// Most texts are names, for which a call costs more than the copy: up to 16 bytes go as two words
// that may overlap.
inline void CopyBytes(char* to, const char* from, int count) {
  const auto size = static_cast<size_t>(count);
  if (size - 8 <= 8) {
    CopyEnds<uint64_t>(to, from, size);
  } else if (size - 4 < 4) {
    CopyEnds<uint32_t>(to, from, size);
  } else if (size > 16) {
    std::memcpy(to, from, size);
  } else {
    for (size_t i = 0; i < size; ++i) {
      to[i] = from[i];
    }
  }
}

}  // namespace

constinit SString::EmptyBlock SString::emptyBlock = {{-1, 0, 0}, '\0'};

char* SString::NewText(const char* bytes, int length) noexcept {
  char* const block = Alloc(length, length);
  if (block == nullptr) {
    return EmptyText();
  }
  CopyBytes(block, bytes, length);
  return block;
}

bool SString::MakeUnique() {
  if (!IsShared()) {
    return true;
  }
  char* const own = Alloc(GetLength(), GetLength());
  if (own == nullptr) {
    return false;
  }
  CopyBytes(own, text, GetLength());
  Adopt(own);
  return true;
}

SString::SString(const char* source) noexcept : SString(ViewOf(source)) {}

SString::SString(const char* bytes, int count) noexcept
    : text(bytes != nullptr ? NewText(bytes, std::clamp(count, 0, kMaxLength)) : EmptyText()) {}

SString::SString(char character, int count) noexcept : text(EmptyText()) {
  const int length = std::clamp(count, 0, kMaxLength);
  if (char* const block = Alloc(length, length); block != nullptr) {
    std::memset(block, character, static_cast<size_t>(length));
    text = block;
  }
}

SString::SString(std::string_view source) noexcept
    : text(NewText(source.data(), ClampedLength(source.size()))) {}

void SString::Empty() {
  if (IsLocked()) {
    SetLength(0);
  } else {
    Release();
  }
}

SString& SString::AssignOver(int count, const char* bytes) {
  const int length = bytes != nullptr ? std::clamp(count, 0, kMaxLength) : 0;
  if (IsShared() || GetCapacity() < length) {
    char* const block = Alloc(length, length);
    if (block == nullptr) {
      return *this;
    }
    CopyBytes(block, bytes, length);  // ahead of the release: the bytes may be this string's own
    Adopt(block);
  } else if (length != 0) {
    std::memmove(text, bytes, static_cast<size_t>(length));
  }
  SetLength(length);
  return *this;
}

SString& SString::Assign(const char* source) {
  return Assign(ClampedLength(ViewOf(source).size()), source);
}

SString& SString::Assign(char character) {
  return Assign(1, &character);
}

SString& SString::Append(int count, const char* bytes) {
  const int length = GetLength();
  const int added = std::min(count, kMaxLength - length);
  if (added <= 0 || bytes == nullptr) {
    return *this;
  }
  if (!IsShared() && GetCapacity() - length >= added) {
    std::memmove(text + length, bytes, static_cast<size_t>(added));
    SetLength(length + added);
    return *this;
  }
  char* const block = Alloc(length + added, length + added);
  if (block != nullptr) {
    CopyBytes(block, text, length);
    CopyBytes(block + length, bytes, added);
    Adopt(block);
  }
  return *this;
}

SString& SString::Append(const char* source) {
  return Append(ClampedLength(ViewOf(source).size()), source);
}

SString& SString::Append(const SString& other) {
  return Append(other.GetLength(), other.text);
}

SString& SString::Append(char character) {
  return Append(1, &character);
}

void SString::Take(char* blockText) noexcept {
  if (!IsLocked() || IsEmptyBlock()) {
    Adopt(blockText);
    return;
  }
  SString taken;
  taken.text = blockText;
  Assign(taken);
}

SString& SString::AssignJoined(std::string_view a, std::string_view b, std::string_view c) {
  const int lengthA = ClampedLength(a.size());
  const int lengthB = std::min(ClampedLength(b.size()), kMaxLength - lengthA);
  const int lengthC = std::min(ClampedLength(c.size()), kMaxLength - lengthA - lengthB);
  const int length = lengthA + lengthB + lengthC;
  if (char* const block = Alloc(length, length); block != nullptr) {
    CopyBytes(block, a.data(), lengthA);
    CopyBytes(block + lengthA, b.data(), lengthB);
    CopyBytes(block + lengthA + lengthB, c.data(), lengthC);
    Take(block);
  }
  return *this;
}

SString SString::Concat(std::string_view a, std::string_view b) {
  SString joined;
  joined.AssignJoined(a, b, {});
  return joined;
}

SString operator+(const SString& a, const SString& b) {
  return SString::Concat(a.View(), b.View());
}

SString operator+(const SString& a, const char* b) {
  return SString::Concat(a.View(), ViewOf(b));
}

SString operator+(const char* a, const SString& b) {
  return SString::Concat(ViewOf(a), b.View());
}

SString operator+(const SString& a, char b) {
  return SString::Concat(a.View(), {&b, 1});
}

SString operator+(char a, const SString& b) {
  return SString::Concat({&a, 1}, b.View());
}

}  // namespace kivstore
