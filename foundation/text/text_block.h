// Texts that are read together and mostly go together, such as the names of a list: one piece of
// memory for a hundred of them.
//
// Each is a string like any other. It may be shared and changed, and it outlives this object and
// its neighbours; a piece goes with the last of its texts. One text that is kept keeps 4 KB, so
// texts that are to live apart are made apart.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "foundation/text/string.h"

namespace kivstore {

class STextBlock {
 public:
  // How many bytes must be left of what is read, whatever the text is.
  static constexpr ptrdiff_t kAhead = 16;

  STextBlock() = default;
  ~STextBlock() { LetGo(); }
  STextBlock(const STextBlock&) = delete;
  STextBlock& operator=(const STextBlock&) = delete;

  // The text at `from` up to its NUL, found and copied in one pass, for `text`, which nobody has
  // locked. The place behind the NUL; null, with nothing done, for a text of more than 15 bytes,
  // with less than kAhead up to `end`, and without memory.
  const char* Read(const char* from, const char* end, SString& text) {
    if (end - from < kAhead || (room < kMostRoom && !TakePiece())) {
      return nullptr;
    }
    char* const to = at + sizeof(TextHeader);
    int length = CopyWord(to, from);
    if (length == kWord) {
      length += CopyWord(to + kWord, from + kWord);
    }
    if (length == kAhead) {
      return nullptr;
    }
    if (length > 0) {
      text.Adopt(Keep(length));
    }
    return from + length + 1;
  }

 private:
  friend class SString;

  static constexpr int kWord = 8;

  // Followed by the texts, which are aligned as it is.
  struct Piece {
    Piece* next;   // among those that are free
    size_t users;  // the texts, and the object that still fills it
  };
  struct TextHeader {
    Piece* piece;
    SString::BlockHeader header;
  };
  static constexpr size_t kMostRoom = sizeof(TextHeader) + kAhead;

  // How many bytes stand ahead of a NUL, 8 for none.
  static int CopyWord(char* to, const char* from) {
    constexpr uint64_t kOnes = 0x0101010101010101;
    constexpr uint64_t kTops = 0x8080808080808080;
    uint64_t word;
    std::memcpy(&word, from, sizeof word);
    std::memcpy(to, &word, sizeof word);
    if constexpr (std::endian::native == std::endian::big) {
      word = __builtin_bswap64(word);
    }
    return std::countr_zero((word - kOnes) & ~word & kTops) / 8;
  }

  // The text that has been copied to its place, with its NUL.
  char* Keep(int length) {
    constexpr size_t kStep = alignof(TextHeader);
    const size_t size = (sizeof(TextHeader) + static_cast<size_t>(length) + kStep) & ~(kStep - 1);
    auto* const head = reinterpret_cast<TextHeader*>(at);
    *head = {
        piece,
        {1, static_cast<int16_t>(length), static_cast<uint16_t>(length | SString::kJointMark)}};
    ++piece->users;
    at += size;
    room -= size;
    return reinterpret_cast<char*>(head + 1);
  }

  bool TakePiece();
  void LetGo();
  static void Drop(Piece* piece) noexcept;
  static Piece* gFreePieces;

  Piece* piece = nullptr;
  char* at = nullptr;  // where the next text goes
  size_t room = 0;     // bytes from there on
};

}  // namespace kivstore
