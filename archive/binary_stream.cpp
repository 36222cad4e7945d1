#include "archive/binary_stream.h"

#include <algorithm>
#include <cstring>

namespace kivstore {

SBinaryStream::SBinaryStream(int32_t mode, SStreamSource* source, bool owns)
    : mode(mode), holder(source, owns) {
  Take(holder->Open(mode));
}

SBinaryStream::~SBinaryStream() {
  FinishWriting(false);
}

bool SBinaryStream::Store(const void* number, int32_t size) {
  return Take(holder->Write(number, size, true));
}

bool SBinaryStream::Fetch(void* number, int32_t size) {
  uint8_t read[8];
  if (!Take(holder->Read(read, size, true))) {
    return false;
  }
  std::memcpy(number, read, static_cast<size_t>(size));
  return true;
}

bool SBinaryStream::WriteDateTime(SDateTime value) {
  const uint32_t words[2] = {value.Raw(), value.IsFresh() ? SDateTime::kFresh : 0};
  return !error && Take(holder->Write(words, sizeof words, true));
}

bool SBinaryStream::WriteRect(const SRect& rect) {
  if (error) {
    return false;
  }
  Put(rect.left);
  Put(rect.top);
  Put(rect.right);
  return Put(rect.bottom);
}

bool SBinaryStream::WritePoint(const SPoint& point) {
  if (error) {
    return false;
  }
  Put(point.x);
  return Put(point.y);
}

bool SBinaryStream::WriteSize(const SSize& size) {
  return WritePoint({size.cx, size.cy});
}

bool SBinaryStream::ReadRect(SRect& rect) {
  if (error) {
    return false;
  }
  Get(rect.left);
  Get(rect.top);
  Get(rect.right);
  return Get(rect.bottom);
}

bool SBinaryStream::ReadPoint(SPoint& point) {
  if (error) {
    return false;
  }
  Get(point.x);
  return Get(point.y);
}

bool SBinaryStream::ReadSize(SSize& size) {
  if (error) {
    return false;
  }
  Get(size.cx);
  return Get(size.cy);
}

bool SBinaryStream::ReadAndCompareLong(int32_t value) {
  int32_t read = 0;
  return ReadLong(read) && read == value;
}

bool SBinaryStream::ReadAndCompareRaw(const void* data, int16_t length) {
  const auto* const expected = static_cast<const uint8_t*>(data);
  bool equal = length >= 0 && !error;
  uint8_t piece[64];
  for (int32_t done = 0; done < length;) {
    const int32_t count = std::min<int32_t>(length - done, sizeof piece);
    if (!ReadBlock(piece, count)) {
      return false;
    }
    equal = equal && std::memcmp(piece, expected + done, static_cast<size_t>(count)) == 0;
    done += count;
  }
  return equal;
}

bool SBinaryStream::Skip(int32_t count) {
  return !error && Take(holder->Skip(count));
}

bool SBinaryStream::CopyFrom(SBinaryStream& source, int32_t count) {
  // A stream that feeds itself could move the block under its own reader.
  if (error || holder.Get() == source.holder.Get()) {
    error = true;
    return false;
  }
  while (count > 0) {
    int32_t delivered = count;
    const uint8_t* const block = source.holder->GetBlock(delivered);
    if (!Take(block != nullptr && delivered > 0) || !WriteBlock(block, delivered)) {
      return false;
    }
    count -= delivered;
  }
  return true;
}

bool SBinaryStream::CopyTo(Sink& sink, int32_t count) {
  if (error) {
    return false;
  }
  while (count > 0) {
    int32_t delivered = count;
    const uint8_t* const block = holder->GetBlock(delivered);
    if (!Take(block != nullptr && delivered > 0 && sink.Take(block, delivered))) {
      return false;
    }
    count -= delivered;
  }
  return true;
}

void SBinaryStream::FinishWriting(bool rewind) {
  if (mode != kWrite) {
    return;
  }
  mode = kRead;
  Take(holder->Close());
  if (rewind) {
    Take(holder->Rewind());
  }
}

}  // namespace kivstore
