// The stream that is not there: every operation fails and does nothing. One shared instance stands
// in wherever a holder holds no stream.
#pragma once

#include "archive/stream_source.h"

namespace kivstore {

class SStreamSrcNull : public SStreamSource {
 public:
  bool Open(int32_t) override { return false; }
  bool Rewind() override { return false; }
  int32_t GetPosition() override { return 0; }
  int32_t GetLength() override { return 0; }
  bool Extend(int32_t) override { return false; }
  bool Close() override { return false; }
  bool Read(void*, int32_t, bool) override { return false; }
  bool ReadDelimited(SString&, const char*, bool, bool) override { return false; }
  bool Write(const void*, int32_t, bool) override { return false; }
  uint8_t PeekByte() override { return 0; }
  uint8_t ReadByte() override { return 0; }
  bool WriteByte(uint8_t) override { return false; }
  const uint8_t* GetBlock(int32_t& count) override {
    count = 0;
    return nullptr;
  }
  bool Skip(int32_t) override { return false; }

  static SStreamSrcNull& Shared();
};

}  // namespace kivstore
