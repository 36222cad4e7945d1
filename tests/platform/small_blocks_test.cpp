#include "platform/base/small_blocks.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace kivstore {
namespace {

TEST(SmallBlocks, BlocksAreAlignedAndDoNotOverlap) {
  std::vector<std::pair<void*, std::string>> blocks;  // and what was put there
  for (int round = 0; round < 300; ++round) {
    for (const size_t size : {1u, 9u, 16u, 17u, 32u, 100u, 127u, 128u, 129u, 5000u}) {
      const std::string bytes(size, static_cast<char>(blocks.size()));
      blocks.emplace_back(AllocateSmall(size), bytes);
      ASSERT_NE(blocks.back().first, nullptr);
      EXPECT_EQ(reinterpret_cast<uintptr_t>(blocks.back().first) % 8, 0u);
      std::memcpy(blocks.back().first, bytes.data(), size);
    }
  }
  for (const auto& [memory, bytes] : blocks) {
    ASSERT_EQ(std::memcmp(memory, bytes.data(), bytes.size()), 0);
    FreeSmall(memory, bytes.size());
  }
}

#ifndef KIVSTORE_PLAIN_BLOCKS
TEST(SmallBlocks, FreedBlocksServeTheirClassAgain) {
  std::set<void*> rounds[2];
  for (const size_t size : {40u, 48u}) {
    std::set<void*>& blocks = rounds[size == 48];
    while (blocks.size() < 1000) {
      blocks.insert(AllocateSmall(size));
    }
    for (void* block : blocks) {
      FreeSmall(block, size);
    }
  }
  EXPECT_EQ(rounds[0], rounds[1]);
}
#endif

}  // namespace
}  // namespace kivstore
