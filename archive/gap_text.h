// A text in one movable block, with the block's free room as a gap at the place of the last edit:
//
//   | text before the gap | free room | text behind it |
//
// So a row of edits from the text's start to its end moves every byte once, however many they are.
// Positions count the bytes of the text, the gap left out.
#pragma once

#include <cstdint>
#include <string_view>

#include "foundation/memory/memory_block.h"

namespace kivstore {

class SGapText {
 public:
  SGapText() = default;
  SGapText(const SGapText&) = delete;
  SGapText& operator=(const SGapText&) = delete;

  // A block of `blockSize` bytes that stays the caller's, of which the first `textLength` are the
  // text. Locks it; false if that fails.
  bool Hold(MemoryHandle block, int32_t textLength, int32_t blockSize);
  void LetGo();  // unlocks the block, which keeps its place

  int32_t GetLength() const { return length; }
  int32_t GetCapacity() const { return capacity; }
  int32_t GetGap() const { return gap; }
  char At(int32_t position) const { return *Address(position); }
  // The text from a position on as far as it lies in one piece: to the gap, or to its end.
  std::string_view From(int32_t position) const;
  // The whole text in one piece, with all free room behind it.
  char* Whole();

  // Room for n bytes more. Beyond a shortfall of one step the rule of growth gives no room: false,
  // as without memory.
  bool Reserve(int64_t n);
  void MoveGap(int32_t position);
  // In front of the gap; there must be room.
  void Insert(std::string_view bytes);
  void Cut(int32_t count);
  // The same number of bytes in another's place; they must lie in one piece.
  void Overwrite(int32_t position, std::string_view bytes);

 private:
  int32_t Room() const { return capacity - length; }
  char* Address(int32_t position) const { return text + position + (position < gap ? 0 : Room()); }

  MemoryHandle handle = nullptr;
  char* text = nullptr;
  int32_t length = 0;
  int32_t capacity = 0;
  int32_t gap = 0;  // the position behind which it lies
};

}  // namespace kivstore
