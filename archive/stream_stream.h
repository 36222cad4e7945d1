// A stream source over a typed stream: what reads and writes sources can so be handed one that is
// half read already.
//
// Every operation goes to the source under the typed stream, and the error state comes back from
// there. The error stands from construction until an Open that fits the typed stream's direction;
// an Open that does not fit sets it again.
#pragma once

#include <memory>

#include "archive/binary_stream.h"

namespace kivstore {

class SStreamSrcStream : public SStreamSource {
 public:
  static constexpr int32_t kScratch = 0x800;

  // `stream` may be null: then nothing works.
  SStreamSrcStream(SBinaryStream* stream, bool owns);
  ~SStreamSrcStream() override;
  SStreamSrcStream(const SStreamSrcStream&) = delete;
  SStreamSrcStream& operator=(const SStreamSrcStream&) = delete;

  bool Open(int32_t openMode) override;
  bool Rewind() override;
  int32_t GetPosition() override;
  int32_t GetLength() override;
  // True without effect for a stream that is being read, whose error is cleared.
  bool Extend(int32_t n) override;
  // Ends the writing of the typed stream.
  bool Close() override;
  bool Read(void* dest, int32_t count, bool swap) override;
  bool ReadDelimited(SString& dest, const char* delimiters, bool skipRun, bool consumeOne) override;
  bool Write(const void* source, int32_t count, bool swap) override;
  uint8_t PeekByte() override;
  uint8_t ReadByte() override;
  bool WriteByte(uint8_t value) override;
  bool UnreadByte() override;
  // At most kScratch bytes, good until the next operation.
  const uint8_t* GetBlock(int32_t& count) override;
  bool Skip(int32_t n) override;
  int32_t BytesLeft() override { return IsUsable() ? Taken(Inner().BytesLeft()) : 0; }

 private:
  bool IsUsable() const { return !error && stream != nullptr; }
  SStreamSource& Inner() { return stream->Source(); }
  // The inner error state becomes this one's.
  template <class Result>
  Result Taken(Result result) {
    error = stream->HasError() || Inner().HasError();
    return result;
  }

  SBinaryStream* stream;
  bool ownsStream;
  std::unique_ptr<uint8_t[]> scratch;
};

}  // namespace kivstore
