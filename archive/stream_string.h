// The stream over a string: its text without a terminator, read only. Opening it for writing fails.
#pragma once

#include "archive/stream_memory.h"

namespace kivstore {

class SStreamSrcString : public SStreamSrcMemory {
 public:
  explicit SStreamSrcString(const SString& source);
  bool Open(int32_t openMode) override;

 private:
  SString text;
};

}  // namespace kivstore
