#include "foundation/memory/memory_block.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/platform.h"

namespace kivstore {
namespace {

TEST(MemoryBlock, KeepsItsHandleAndBytesWhenResizedAndWhenItCannotBe) {
  const MemoryHandle handle = AllocateBlock(4), empty = AllocateBlock(0);
  std::memcpy(LockBlock(handle), "abcd", 4);
  EXPECT_TRUE(ResizeBlock(handle, 100000));
  for (const int64_t size : {int64_t{0}, int64_t{-1}, INT64_MAX, int64_t{0x80000000}}) {
    EXPECT_FALSE(ResizeBlock(handle, size) || ResizeBlock(nullptr, size)) << size;
    const MemoryHandle asked = AllocateBlock(size);
    EXPECT_EQ(asked != nullptr, size == 0) << size;
    FreeBlock(asked);
  }
  EXPECT_EQ(std::memcmp(LockBlock(handle), "abcd", 4), 0);
  EXPECT_TRUE(ResizeBlock(handle, 2));
  EXPECT_EQ(std::memcmp(LockBlock(handle), "ab", 2), 0);
  EXPECT_TRUE(LockBlock(empty) == nullptr && LockBlock(nullptr) == nullptr) << "no bytes";
  for (const MemoryHandle block : {handle, empty, MemoryHandle{nullptr}}) {
    UnlockBlock(block);
    FreeBlock(block);
  }
}

// One block that tells what was done to it.
struct RecordingMemory : IMemory {
  MemoryHandle Allocate(uint32_t asked, int64_t) override { return flags |= asked, Handle(); }
  void Free(MemoryHandle) override { ++frees; }
  void* Lock(MemoryHandle) override { return this; }
  void Unlock(MemoryHandle) override { --locks; }
  MemoryHandle Reallocate(MemoryHandle, int64_t, uint32_t asked) override {
    return flags |= asked, moves ? reinterpret_cast<MemoryHandle>(&moves) : Handle();
  }
  uint32_t Flags(MemoryHandle) override { return marks | locks; }
  MemoryHandle Handle() { return reinterpret_cast<MemoryHandle>(this); }

  uint32_t marks = 0, locks = 0, flags = 0;
  bool moves = false;
  int frees = 0;
  SPlatformOverride<IMemory> installed{Platform().memory, this};
};

TEST(MemoryBlock, UnlocksAheadOfFreeingAndResizingAndLeavesADiscardedBlockAlone) {
  for (const bool marked : {false, true}) {
    RecordingMemory memory;
    memory.locks = 3;
    memory.marks = marked ? 0x8000 : 0;
    FreeBlock(memory.Handle());
    EXPECT_TRUE(memory.locks == (marked ? 3 : 0) && memory.frees == (marked ? 0 : 1));
    memory.locks = 1;
    memory.marks = 0;
    memory.moves = marked;
    EXPECT_EQ(ResizeBlock(memory.Handle(), 10), !marked) << "only the same handle";
    EXPECT_TRUE(memory.locks == 0 && memory.flags == 2);
    memory.flags = 0;
    AllocateBlock(10);
    EXPECT_EQ(memory.flags, 2u);
  }
}

}  // namespace
}  // namespace kivstore
