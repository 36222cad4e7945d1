#include "foundation/memory/memory_block.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/platform.h"

namespace kivstore {
namespace {

TEST(MemoryBlock, KeepsItsHandleAndBytesWhenResizedAndWhenItCannotBe) {
  const MemoryHandle handle = AllocateBlock(4);
  std::memcpy(LockBlock(handle), "abcd", 4);
  EXPECT_TRUE(ResizeBlock(handle, 100000));
  for (const int64_t size : {int64_t{0}, int64_t{-1}, INT64_MAX, int64_t{0x80000000}}) {
    EXPECT_FALSE(ResizeBlock(handle, size)) << size;
  }
  EXPECT_EQ(std::memcmp(LockBlock(handle), "abcd", 4), 0);
  EXPECT_TRUE(ResizeBlock(handle, 2));
  EXPECT_EQ(std::memcmp(LockBlock(handle), "ab", 2), 0);
  FreeBlock(handle);
}

TEST(MemoryBlock, NullHandlesAndBadSizesDoNothingAndNoBytesHaveNoAddress) {
  FreeBlock(nullptr);
  UnlockBlock(nullptr);
  EXPECT_EQ(LockBlock(nullptr), nullptr);
  EXPECT_FALSE(ResizeBlock(nullptr, 10));
  EXPECT_EQ(AllocateBlock(-1), nullptr);
  EXPECT_EQ(AllocateBlock(0x80000000), nullptr);
  const MemoryHandle empty = AllocateBlock(0);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(LockBlock(empty), nullptr);
  FreeBlock(empty);
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
  RecordingMemory memory;
  for (const uint32_t marks : {0u, 0x8000u}) {
    memory.locks = 3;
    memory.marks = marks;
    FreeBlock(memory.Handle());
    EXPECT_EQ(memory.locks, marks == 0 ? 0u : 3u);
    EXPECT_EQ(memory.frees, 1);
  }
  for (const bool moves : {false, true}) {
    memory.locks = 1;
    memory.moves = moves;
    memory.flags = 0;
    EXPECT_EQ(ResizeBlock(memory.Handle(), 10), !moves) << "only the same handle";
    EXPECT_EQ(memory.locks, 0u);
    EXPECT_EQ(memory.flags, 2u);
  }
  memory.flags = 0;
  AllocateBlock(10);
  EXPECT_EQ(memory.flags, 2u);
}

}  // namespace
}  // namespace kivstore
