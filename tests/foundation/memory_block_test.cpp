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
class RecordingMemory : public IMemory {
 public:
  MemoryHandle Allocate(uint32_t flags, int64_t) override {
    allocationFlags = flags;
    return Handle();
  }
  void Free(MemoryHandle) override { ++frees; }
  void* Lock(MemoryHandle) override { return this; }
  void Unlock(MemoryHandle) override { --locks; }
  MemoryHandle Reallocate(MemoryHandle, int64_t, uint32_t flags) override {
    reallocationFlags = flags;
    return moved ? reinterpret_cast<MemoryHandle>(&moved) : Handle();
  }
  uint32_t Flags(MemoryHandle) override { return marks | locks; }

  MemoryHandle Handle() { return reinterpret_cast<MemoryHandle>(this); }

  uint32_t marks = 0;
  uint32_t locks = 0;
  uint32_t allocationFlags = 0;
  uint32_t reallocationFlags = 0;
  bool moved = false;
  int frees = 0;
};

class MemoryBlockRules : public testing::Test {
 protected:
  RecordingMemory memory;
  SPlatformOverride<IMemory> installed{Platform().memory, &memory};
};

TEST_F(MemoryBlockRules, FreeingUnlocksFirstAndLeavesADiscardedBlockAlone) {
  AllocateBlock(10);
  EXPECT_EQ(memory.allocationFlags, 2u);
  for (const uint32_t marks : {0u, 0x8000u}) {
    memory.locks = 3;
    memory.marks = marks;
    FreeBlock(memory.Handle());
    EXPECT_EQ(memory.locks, marks == 0 ? 0u : 3u);
    EXPECT_EQ(memory.frees, 1);
  }
}

TEST_F(MemoryBlockRules, ResizingUnlocksAndIsTrueOnlyForTheSameHandle) {
  for (const bool moved : {false, true}) {
    memory.locks = 1;
    memory.moved = moved;
    EXPECT_EQ(ResizeBlock(memory.Handle(), 10), !moved);
    EXPECT_EQ(memory.locks, 0u);
    EXPECT_EQ(memory.reallocationFlags, 2u);
  }
}

}  // namespace
}  // namespace kivstore
