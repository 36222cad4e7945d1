#include "archive/composed_file.h"

#include <algorithm>

namespace kivstore {
namespace {

// More than what a mixture of two contents could take for its own end.
constexpr int32_t kTornMark = 64;

}  // namespace

const uint8_t* SComposedFile::TakeBytes(int32_t& length) {
  stream.FinishWriting(false);
  bytes.Rewind();
  length = bytes.GetLength();
  return stream.HasError() ? nullptr : bytes.GetBlock(length);
}

bool SComposedFile::WriteTo(SFile& file) {
  int32_t length = 0;
  const uint8_t* const data = TakeBytes(length);
  return data != nullptr && file.Write(length, data) == length && file.SetSize(length) &&
         file.Flush();
}

bool SComposedFile::WriteMarkedTo(SFile& file, bool keepMark) {
  int32_t length = 0;
  const uint8_t* const data = TakeBytes(length);
  const int32_t before = file.Size();
  if (data == nullptr || before < 0 || !file.SetSize(std::max(before, length) + kTornMark)) {
    return false;
  }
  const int32_t written = file.Write(length, data);
  if (written == length) {
    return (keepMark || file.SetSize(length)) && file.Flush();
  }
  if (written == 0) {
    file.SetSize(before);
  }
  return false;
}

}  // namespace kivstore
