#include "platform/base/small_blocks.h"

namespace kivstore {
namespace {

constexpr size_t kChunkSize = 4096;

// The head is as wide as a step, so that the blocks behind it are aligned as the chunk is.
struct alignas(8) Chunk {
  Chunk* next;
};
static_assert(sizeof(Chunk) <= kSmallBlockStep);

// Only so that every chunk stays reachable for a leak check.
constinit Chunk* gChunks = nullptr;

}  // namespace

constinit FreeSmallBlock* gFreeSmallBlocks[kSmallBlockClasses] = {};

void* RefillSmallBlocks(size_t sizeClass) {
  auto* const memory = static_cast<char*>(std::malloc(kChunkSize));
  if (memory == nullptr) {
    return nullptr;
  }
  auto* const chunk = reinterpret_cast<Chunk*>(memory);
  chunk->next = gChunks;
  gChunks = chunk;

  const size_t blockSize = (sizeClass + 1) * kSmallBlockStep;
  FreeSmallBlock* list = nullptr;
  size_t offset = kSmallBlockStep;
  for (; offset + 2 * blockSize <= kChunkSize; offset += blockSize) {
    auto* const block = reinterpret_cast<FreeSmallBlock*>(memory + offset);
    block->next = list;
    list = block;
  }
  gFreeSmallBlocks[sizeClass] = list;
  return memory + offset;
}

}  // namespace kivstore
