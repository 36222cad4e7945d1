#include "archive/stream_source.h"

#include <algorithm>

#include "archive/text_stop.h"

namespace kivstore {
namespace {

// Room for as much again, since a string grows by no more than it is asked to.
void AppendWithRoom(SString& dest, char c) {
  const int length = dest.GetLength();
  if (length == dest.GetCapacity()) {
    dest.GetBuffer(std::clamp(2 * length, 64, SString::kMaxLength));
  }
  dest.Append(c);
}

}  // namespace

bool SStreamSource::Open(int32_t openMode) {
  if (!opened) {
    mode = openMode;
    error = false;
    opened = true;
  }
  return true;
}

bool SStreamSource::Close() {
  mode = kRead;
  return true;
}

int32_t SStreamSource::BytesLeft() {
  return static_cast<int32_t>(std::max<int64_t>(int64_t{GetLength()} - GetPosition(), 0));
}

bool SStreamSource::ReadDelimited(SString& dest, const char* delimiters, bool skipRun,
                                  bool consumeOne) {
  dest.Empty();
  if (!HasNext()) {
    error = true;
    return false;
  }
  const char* const stops = delimiters != nullptr ? delimiters : "";
  while (HasNext() && !IsTextStop(PeekByte(), stops)) {
    if (dest.GetLength() == SString::kMaxLength) {
      return false;
    }
    AppendWithRoom(dest, static_cast<char>(ReadByte()));
  }
  if (HasNext() && (StopsAtNulOnly(stops) || skipRun || consumeOne)) {
    ReadByte();
  }
  while (skipRun && HasNext() && IsDelimiter(PeekByte(), stops)) {
    ReadByte();
  }
  return !(dest.IsEmpty() && error);
}

}  // namespace kivstore
