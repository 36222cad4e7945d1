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

bool SStreamSource::ReadDelimited(SString& dest, const char* delimiters, bool skipRun,
                                  bool consumeOne) {
  dest.Empty();
  if (error || IsAtEnd()) {
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
