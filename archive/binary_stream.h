// Typed reads and writes over a stream, with a mode and a sticky error. All numbers are big-endian
// in the stream, whatever the machine.
//
// A stream that could not be opened has the error set from the constructor on: every user starts
// with a look at HasError.
#pragma once

#include <cstdint>
#include <string_view>

#include "archive/stream_holder.h"
#include "archive/swap_bytes.h"
#include "foundation/geometry/angles.h"
#include "foundation/text/string.h"
#include "foundation/time/date_time.h"

namespace kivstore {

class SBinaryStream {
 public:
  static constexpr int32_t kRead = SStreamSource::kRead;
  static constexpr int32_t kWrite = SStreamSource::kWrite;

  SBinaryStream(int32_t mode, SStreamSource* source, bool owns);
  ~SBinaryStream();  // FinishWriting, then lets go of the stream
  SBinaryStream(const SBinaryStream&) = delete;
  SBinaryStream& operator=(const SBinaryStream&) = delete;

  bool IsWriting() const { return mode == kWrite; }
  bool HasError() const { return error; }
  SStreamSource& Source() { return *holder.Get(); }
  void SetError(bool failed) { error = failed; }

  // Each answers whether the stream has no error after it; on a stream with an error it does
  // nothing. Of two numbers in one operation the error is that of the last.
  bool WriteByte(uint8_t value) { return !error && Take(holder->WriteByte(value)); }
  template <class Number>
  bool WriteNumber(Number value) {
    return !error && Put(value);
  }
  bool WriteShort(int16_t value) { return WriteNumber(value); }
  bool WriteLong(int32_t value) { return WriteNumber(value); }
  bool WriteDouble(double value) { return WriteNumber(value); }
  bool WriteRaw(const void* data, int16_t length) { return WriteBlock(data, length); }
  bool WriteBlock(const void* data, int32_t length) {
    return !error && Take(holder->Write(data, length, false));
  }
  bool WriteText(const SString& text) {  // the text and one NUL
    return WriteBlock(text.GetText(), text.GetLength() + 1);
  }
  bool WriteDateTime(SDateTime value);  // high word, low word
  bool WriteRect(const SRect& rect);
  bool WritePoint(const SPoint& point);
  bool WriteSize(const SSize& size);

  // A failed read leaves the variable as it was, but for a text: that holds what there was of it.
  template <class Number>
  bool ReadNumber(Number& value) {
    return !error && Get(value);
  }
  bool ReadByte(uint8_t& value) { return ReadNumber(value); }
  bool ReadShort(int16_t& value) { return ReadNumber(value); }
  bool ReadLong(int32_t& value) { return ReadNumber(value); }
  bool ReadDouble(double& value) { return ReadNumber(value); }
  bool ReadBlock(void* data, int32_t length) {
    return !error && Take(holder->Read(data, length, false));
  }
  bool ReadText(SString& text) {  // to the NUL
    return (!error && holder->TakeReadyText(text)) || ReadDelimited(text, nullptr, true, true);
  }
  // A last text without its stop character is delivered, and the error is set.
  bool ReadDelimited(SString& text, const char* delimiters, bool skipRun, bool consumeOne) {
    if (error || !Take(!holder->HasError())) {
      return false;
    }
    const bool read = holder->ReadDelimited(text, delimiters, skipRun, consumeOne);
    error = !read || holder->HasError();
    return read;
  }
  bool ReadDateTime(SDateTime& value) {
    uint64_t words;
    if (error || !Get(words)) {
      return false;
    }
    value.SetRaw(static_cast<uint32_t>(words));  // the high word is dropped
    return true;
  }
  bool ReadRect(SRect& rect);
  bool ReadPoint(SPoint& point);
  bool ReadSize(SSize& size);

  bool ReadAndCompareLong(int32_t value);
  bool ReadAndCompareRaw(const void* data, int16_t length);

  bool Skip(int32_t count);
  // The next bytes as they stand, consumed, if they lie ready in a buffer; else null.
  const uint8_t* TakeReady(int32_t count) { return error ? nullptr : holder->TakeReady(count); }
  // What lies ready, to be looked at.
  std::string_view PeekReady() const { return error ? std::string_view() : holder->PeekReady(); }

  // Receives blocks; the stream's bytes without a copy.
  class Sink {
   public:
    virtual ~Sink() = default;
    virtual bool Take(const uint8_t* block, int32_t length) = 0;
  };
  bool CopyFrom(SBinaryStream& source, int32_t count);
  bool CopyTo(Sink& sink, int32_t count);

  // Only when writing: closes the stream, and with `rewind` goes back to its start for reading.
  void FinishWriting(bool rewind);

 private:
  bool Take(bool succeeded) {
    error = !succeeded;
    return succeeded;
  }
  template <class Number>
  bool Put(Number value) {
    return Store(&value, sizeof value);
  }
  template <class Number>
  bool Get(Number& value) {
    const uint8_t* const ready = holder->TakeReady(sizeof value);
    if (ready == nullptr) {
      return Fetch(&value, sizeof value);
    }
    CopySwapped(&value, ready, sizeof value);
    return true;
  }
  // A number through the stream's own operations.
  bool Store(const void* number, int32_t size);
  bool Fetch(void* number, int32_t size);

  int32_t mode;
  bool error = false;
  SStreamHolder holder;
};

}  // namespace kivstore
