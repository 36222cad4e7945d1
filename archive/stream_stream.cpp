#include "archive/stream_stream.h"

#include <algorithm>
#include <new>

namespace kivstore {

SStreamSrcStream::SStreamSrcStream(SBinaryStream* stream, bool owns)
    : stream(stream), ownsStream(owns) {
  error = stream != nullptr;
}

SStreamSrcStream::~SStreamSrcStream() {
  if (ownsStream) {
    delete stream;
  }
}

bool SStreamSrcStream::Open(int32_t openMode) {
  error = stream == nullptr || openMode != (stream->IsWriting() ? kWrite : kRead);
  return !error;
}

bool SStreamSrcStream::Rewind() {
  return IsUsable() && Taken(Inner().Rewind());
}

int32_t SStreamSrcStream::GetPosition() {
  return IsUsable() ? Taken(Inner().GetPosition()) : 0;
}

int32_t SStreamSrcStream::GetLength() {
  return IsUsable() ? Taken(Inner().GetLength()) : 0;
}

bool SStreamSrcStream::Extend(int32_t n) {
  if (stream == nullptr) {
    return false;
  }
  if (stream->IsWriting()) {
    return IsUsable() && Taken(Inner().Extend(n));
  }
  stream->SetError(false);
  return Taken(true);
}

bool SStreamSrcStream::Close() {
  if (!IsUsable()) {
    return false;
  }
  stream->FinishWriting(false);
  Taken(true);
  return !error;
}

bool SStreamSrcStream::Read(void* dest, int32_t count, bool swap) {
  if (!IsUsable() || !Taken(Inner().Read(dest, count, false))) {
    return false;
  }
  if (swap) {
    auto* const bytes = static_cast<uint8_t*>(dest);
    std::reverse(bytes, bytes + count);
  }
  return true;
}

bool SStreamSrcStream::ReadDelimited(SString& dest, const char* delimiters, bool skipRun,
                                     bool consumeOne) {
  dest.Empty();
  return IsUsable() && Taken(stream->ReadDelimited(dest, delimiters, skipRun, consumeOne));
}

bool SStreamSrcStream::Write(const void* source, int32_t count, bool swap) {
  if (!swap) {
    return IsUsable() && Taken(Inner().Write(source, count, false));
  }
  const auto* const bytes = static_cast<const uint8_t*>(source);
  while (count > 0 && WriteByte(bytes[count - 1])) {
    --count;
  }
  return IsUsable();
}

uint8_t SStreamSrcStream::PeekByte() {
  return IsUsable() ? Taken(Inner().PeekByte()) : uint8_t{0};
}

uint8_t SStreamSrcStream::ReadByte() {
  if (!IsUsable()) {
    error = true;
    return 0;
  }
  return Taken(Inner().ReadByte());
}

bool SStreamSrcStream::WriteByte(uint8_t value) {
  return IsUsable() && Taken(Inner().WriteByte(value));
}

bool SStreamSrcStream::UnreadByte() {
  return IsUsable() && Taken(Inner().UnreadByte());
}

const uint8_t* SStreamSrcStream::GetBlock(int32_t& count) {
  count = std::clamp(count, 0, std::min(BytesLeft(), kScratch));
  if (!IsUsable()) {
    return nullptr;
  }
  if (scratch == nullptr) {
    scratch.reset(new (std::nothrow) uint8_t[kScratch]);
  }
  if (scratch == nullptr || !Read(scratch.get(), count, false)) {
    count = 0;
    return nullptr;
  }
  return scratch.get();
}

bool SStreamSrcStream::Skip(int32_t n) {
  return IsUsable() && Taken(Inner().Skip(n));
}

}  // namespace kivstore
