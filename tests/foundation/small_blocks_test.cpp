#include "foundation/small_blocks.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <vector>

#include "foundation/login_name.h"

namespace kivstore {
namespace {

TEST(SmallBlocks, BlocksAreAlignedAndDoNotOverlap) {
  struct Block {
    unsigned char* memory;
    size_t size;
  };
  std::vector<Block> blocks;
  for (int round = 0; round < 300; ++round) {
    for (const size_t size : {1u, 9u, 16u, 17u, 32u, 100u, 127u, 128u, 129u, 5000u}) {
      auto* const memory = static_cast<unsigned char*>(AllocateSmall(size));
      ASSERT_NE(memory, nullptr);
      EXPECT_EQ(reinterpret_cast<uintptr_t>(memory) % 8, 0u);
      std::memset(memory, static_cast<int>(blocks.size() & 0xFF), size);
      blocks.push_back({memory, size});
    }
  }
  for (size_t i = 0; i < blocks.size(); ++i) {
    const std::vector<unsigned char> expected(blocks[i].size, static_cast<unsigned char>(i & 0xFF));
    ASSERT_EQ(std::memcmp(blocks[i].memory, expected.data(), blocks[i].size), 0);
    FreeSmall(blocks[i].memory, blocks[i].size);
  }
}

#ifndef KIVSTORE_PLAIN_BLOCKS
TEST(SmallBlocks, FreedBlocksServeTheirClassAgain) {
  std::vector<void*> blocks;
  std::set<void*> first;
  for (int i = 0; i < 1000; ++i) {
    blocks.push_back(AllocateSmall(40));
    first.insert(blocks.back());
  }
  for (void* block : blocks) {
    FreeSmall(block, 40);
  }
  for (int i = 0; i < 1000; ++i) {
    blocks[static_cast<size_t>(i)] = AllocateSmall(48);
    EXPECT_EQ(first.count(blocks[static_cast<size_t>(i)]), 1u);
  }
  for (void* block : blocks) {
    FreeSmall(block, 48);
  }
}
#endif

TEST(SmallBlocks, AnEntryIsFreedWithTheSizeItWasMadeWith) {
  struct LargerEntry : SLoginNameObj {
    char more[100] = {};
  };
  SLoginNameObj* const entries[] = {new SLoginNameObj("a", "b", "c"), new LargerEntry};
  for (SLoginNameObj* entry : entries) {
    delete entry;
  }
  SLoginNameObj* const again = new SLoginNameObj;
#ifndef KIVSTORE_PLAIN_BLOCKS
  EXPECT_EQ(again, entries[0]);
#endif
  delete again;
}

}  // namespace
}  // namespace kivstore
