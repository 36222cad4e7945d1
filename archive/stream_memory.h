// The stream over memory: a block that grows as it is written, or a caller's buffer of fixed size.
#pragma once

#include "archive/stream_source.h"
#include "foundation/memory/memory_block.h"

namespace kivstore {

// Reads are all or nothing. Close after writing makes `size` the length written, and Rewind then
// reads it back; Close of a read stream sets the error.
class SStreamSrcMemory : public SStreamSource {
 public:
  // A null buffer makes the stream own a growing block; otherwise the block stays the caller's,
  // which must outlive the stream, and it never grows.
  SStreamSrcMemory(void* buffer, int32_t size);
  ~SStreamSrcMemory() override;
  SStreamSrcMemory(const SStreamSrcMemory&) = delete;
  SStreamSrcMemory& operator=(const SStreamSrcMemory&) = delete;

  bool Open(int32_t openMode) override;
  bool Rewind() override;
  int32_t GetPosition() override { return position; }
  int32_t GetLength() override { return size; }
  bool Extend(int32_t n) override;
  bool Close() override;
  bool Read(void* dest, int32_t count, bool swap) override;
  bool ReadDelimited(SString& dest, const char* delimiters, bool skipRun, bool consumeOne) override;
  bool Write(const void* source, int32_t count, bool swap) override;
  uint8_t PeekByte() override;
  uint8_t ReadByte() override;
  bool WriteByte(uint8_t value) override;
  bool UnreadByte() override;
  const uint8_t* GetBlock(int32_t& count) override;
  bool Skip(int32_t n) override;

  // The owned block, unlocked and now the caller's, or null; leaves the stream with nothing.
  MemoryHandle DetachHandle();

 protected:
  int32_t Remaining() const { return size - position; }  // may be below 0: see ReadDelimited
  void MoveTo(int32_t newPosition);
  bool Fail() {
    error = true;
    return false;
  }

  uint8_t* buffer;
  int32_t size;  // capacity while writing, length of the contents otherwise
  MemoryHandle handle = nullptr;
  int32_t position = 0;
  int32_t growth = 0x400;

 private:
  bool AllocateOwned();
  bool Grow(int32_t n);
};

}  // namespace kivstore
