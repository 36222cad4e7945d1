// The byte stream interface on which the archives and the index files stand.
//
// A stream knows bytes and nothing of records. Failure is sticky: once `error` is set, operations
// do nothing and answer false; only the first Open clears it (and Rewind of a file stream, by its
// seek). There is no seek: a stream moves by Rewind, Skip and UnreadByte alone. A stream object
// opens once.
//
// The virtual operations stand in an order that programs built apart from this one call them by.
//
// `swap` reverses the bytes between stream and memory: with it, the first byte of the stream lands
// in dest[count - 1], and on writing the last byte of the source goes first. That is how numbers
// are big-endian in every file; plain bytes go without.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "archive/text_stop.h"
#include "foundation/text/string.h"

namespace kivstore {

class SStreamSource {
 public:
  static constexpr int32_t kRead = 0;
  static constexpr int32_t kWrite = 1;

  virtual ~SStreamSource() = default;

  virtual bool Open(int32_t openMode);
  virtual bool Rewind() = 0;
  virtual int32_t GetPosition() = 0;
  virtual int32_t GetLength() = 0;
  // Makes room for n bytes past the position.
  virtual bool Extend(int32_t n) = 0;
  // End of the phase of writing.
  virtual bool Close();
  // Exactly `count` bytes.
  virtual bool Read(void* dest, int32_t count, bool swap) = 0;
  // Reads text up to a stop character, at most 32,766 characters: one more stops with false and
  // what was read so far. With null or empty delimiters the stop is a NUL, which is consumed;
  // otherwise the first delimiter or NUL, consumed with consumeOne, and with skipRun the whole run
  // of them. The end of the data ends the text too. False if the text stayed empty and `error` is
  // set.
  virtual bool ReadDelimited(SString& dest, const char* delimiters, bool skipRun, bool consumeOne);
  virtual bool Write(const void* source, int32_t count, bool swap) = 0;
  virtual uint8_t PeekByte() = 0;
  virtual uint8_t ReadByte() = 0;  // 0 with `error` set on failure
  virtual bool WriteByte(uint8_t value) = 0;
  virtual bool UnreadByte() { return false; }
  // The stream's next bytes without a copy, consumed; `count` comes back as what was delivered.
  virtual const uint8_t* GetBlock(int32_t& count) = 0;
  virtual bool Skip(int32_t n) = 0;
  // How many bytes can still be read, never below 0: what a count or length in the stream is held
  // against. Not the length less the position, which may stand behind the end.
  virtual int32_t BytesLeft();

  bool HasError() const { return error; }

  // The next bytes if they lie ready in a buffer, consumed, else null: what most small reads need,
  // without a virtual call.
  const uint8_t* TakeReady(int32_t count) {
    if (error || count > bufferValid - bufferIndex) {
      return nullptr;
    }
    const uint8_t* const taken = cursor;
    bufferIndex += count;
    cursor += count;
    return taken;
  }
  // What lies ready, to be looked at: TakeReady consumes it.
  std::string_view PeekReady() const {
    const int32_t held = error ? 0 : std::max(bufferValid - bufferIndex, 0);
    return {reinterpret_cast<const char*>(cursor), static_cast<size_t>(held)};
  }
  // As TakeReady for a text up to its NUL, which is consumed; false if it is not ready to its end.
  bool TakeReadyText(SString& dest) {
    const int32_t held = error ? 0 : bufferValid - bufferIndex;
    const int32_t length = FindNul(cursor, held);
    if (length >= held || length > SString::kMaxLength) {
      return false;
    }
    dest.Assign(length, reinterpret_cast<const char*>(cursor));
    bufferIndex += length + 1;
    cursor += length + 1;
    return true;
  }

 protected:
  bool error = false;
  bool opened = false;
  int32_t mode = kRead;
  uint8_t* cursor = nullptr;  // the next byte, where there is a buffer
  int32_t bufferIndex = 0;    // offset of the cursor in it
  int32_t bufferValid = 0;    // bytes of it that hold data to be read

 private:
  bool HasNext() { return !error && BytesLeft() > 0; }
};

}  // namespace kivstore
