// The new contents of a small file, composed in memory, so that they replace the old ones in one
// write: a process may die between any two calls, and what it leaves has to be the old contents,
// the new ones, or something that no reader takes for either.
#pragma once

#include "archive/binary_stream.h"
#include "archive/stream_memory.h"
#include "foundation/files/file.h"

namespace kivstore {

class SComposedFile {
 public:
  SComposedFile() = default;
  SComposedFile(const SComposedFile&) = delete;
  SComposedFile& operator=(const SComposedFile&) = delete;

  // Where the contents are written to, until one of the operations below ends that.
  SBinaryStream& Stream() { return stream; }

  // Into a file that is open for writing. False for an error. Between the write and the cut a file
  // that gets shorter ends in a rest of the old contents: for forms whose reader knows their end.
  bool WriteTo(SFile& file);
  // For forms that have no other way to tell old from new: as long as the bytes are changing, zeros
  // that no contents have stand behind them. A reader that finds bytes left over knows the file to
  // be torn, wherever the write was cut short. With keepMark they stay.
  bool WriteMarkedTo(SFile& file, bool keepMark = false);
  // The bytes; null if there was not memory enough for them.
  const uint8_t* TakeBytes(int32_t& length);

 private:
  SStreamSrcMemory bytes{nullptr, 0};
  SBinaryStream stream{SBinaryStream::kWrite, &bytes, false};
};

}  // namespace kivstore
