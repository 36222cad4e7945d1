// The buffered file stream: few calls to a file server. Up to 64 KiB a read, 4 KiB a write, and
// large writes past the buffer.
//
// The file handle stays open until the destructor, Close or not: a Close after writing cuts the
// file behind the last byte written. Opening an empty file for reading succeeds, and the first read
// fails.
#pragma once

#include "archive/stream_source.h"
#include "foundation/files/file.h"
#include "foundation/memory/memory_block.h"

namespace kivstore {

class SStreamSrcFile : public SStreamSource {
 public:
  static constexpr int32_t kWriteBuffer = 0x1000;
  static constexpr int32_t kReadBuffer = 0x10000;

  explicit SStreamSrcFile(const SFileSpec& spec);  // opens a file of its own
  explicit SStreamSrcFile(SFile* file);            // the caller's file, which stays the caller's
  ~SStreamSrcFile() override;
  SStreamSrcFile(const SStreamSrcFile&) = delete;
  SStreamSrcFile& operator=(const SStreamSrcFile&) = delete;

  bool Open(int32_t openMode) override;
  bool Rewind() override;
  int32_t GetPosition() override;
  int32_t GetLength() override;
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
  int32_t BytesLeft() override;

  // Why the file did not open: SFile's error output.
  int32_t GetOpenError() const { return openError; }

 private:
  bool OpenFile();
  void PrepareBuffer();
  void FreeBuffer();

  int32_t Held() const { return bufferValid - bufferIndex; }
  void Advance(int32_t n) {
    bufferIndex += n;
    cursor += n;
  }
  void ResetCursor() {
    bufferIndex = 0;
    cursor = buffer;
  }
  void CountMoved(int32_t n);
  bool SeekBy(int64_t distance);

  bool FillBuffer();  // leaves the cursor where it is
  bool Refill();
  bool HasByte() { return Held() > 0 || Refill(); }
  void ReadSwappedBytes(uint8_t* dest, int32_t count);
  bool AppendToStop(SString& dest, const char* delimiters);
  void SkipStops(const char* delimiters);

  bool FlushBuffer();
  bool PutByte(uint8_t value);

  SFileSpec spec;
  SFile own;
  SFile* file = &own;
  int32_t openError = 0;
  MemoryHandle bufferHandle = nullptr;
  uint8_t* buffer = nullptr;
  int32_t bufferSize = 0;
  int32_t filePos = 0;   // bytes moved between file and buffer so far
  int32_t fileSize = 0;  // taken at open for reading
};

}  // namespace kivstore
