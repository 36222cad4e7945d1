#include "archive/dob_binary_archive.h"

#include <algorithm>
#include <new>

#include "archive/stream_file.h"

namespace kivstore {
namespace {

// Only what goes out needs the time.
SDateTime TimeOfCreation(int32_t mode) {
  return mode == SDobBinaryArchive::kWrite ? SDateTime() : SDateTime::None();
}

}  // namespace

SDobBinaryArchive::SDobBinaryArchive(int32_t mode, const SFileSpec& spec)
    : mode(mode), now(TimeOfCreation(mode)), stream(nullptr), ownsStream(true) {
  auto* const source = new (std::nothrow) SStreamSrcFile(spec);
  const int32_t streamMode = IsWriting() ? SBinaryStream::kWrite : SBinaryStream::kRead;
  stream = new (std::nothrow) SBinaryStream(streamMode, source, true);
  if (stream == nullptr) {
    delete source;
  }
}

SDobBinaryArchive::SDobBinaryArchive(int32_t mode, SBinaryStream* stream)
    : mode(mode), now(TimeOfCreation(mode)), stream(stream), ownsStream(false) {}

SDobBinaryArchive::~SDobBinaryArchive() {
  if (ownsStream) {
    delete stream;
  }
}

bool SDobBinaryArchive::WriteBytes(const void* data, int16_t length) {
  return stream != nullptr && stream->WriteRaw(data, length);
}

bool SDobBinaryArchive::WriteTag(uint32_t tag) {
  return stream != nullptr && stream->WriteLong(static_cast<int32_t>(tag));
}

bool SDobBinaryArchive::CheckBytes(const void* data, int16_t length) {
  return stream != nullptr && stream->ReadAndCompareRaw(data, length);
}

bool SDobBinaryArchive::CheckTag(uint32_t tag) {
  return stream != nullptr && stream->ReadAndCompareLong(static_cast<int32_t>(tag));
}

void SDobBinaryArchive::Finish() {
  if (IsWriting() && stream != nullptr) {
    stream->FinishWriting(false);
  }
}

bool SDobBinaryArchive::TransferBlob(const char*, MemoryHandle& handle, int32_t& length) {
  if (stream == nullptr) {
    return false;
  }
  return IsWriting() ? WriteBlob(handle, length) : ReadBlob(handle, length);
}

bool SDobBinaryArchive::WriteBlob(MemoryHandle handle, int32_t length) {
  if (length < 1) {
    return stream->WriteLong(0);
  }
  const void* const bytes = LockBlock(handle);
  if (bytes == nullptr) {
    return false;
  }
  const bool written = stream->WriteLong(length) && stream->WriteBlock(bytes, length);
  UnlockBlock(handle);
  return written;
}

bool SDobBinaryArchive::ReadBlob(MemoryHandle& handle, int32_t& length) {
  int32_t stored = 0;
  if (!stream->ReadLong(stored)) {
    return false;
  }
  SStreamSource& source = stream->Source();
  if (stored > int64_t{source.GetLength()} - source.GetPosition()) {
    stream->SetError(true);
    return false;
  }
  length = std::max(stored, 0);
  handle = length > 0 ? AllocateBlock(length) : nullptr;
  if (length == 0) {
    return true;
  }
  void* const bytes = LockBlock(handle);
  if (bytes == nullptr) {
    length = 0;
    stream->Skip(stored);
    return false;
  }
  const bool read = stream->ReadBlock(bytes, stored);
  UnlockBlock(handle);
  return read;
}

bool SDobBinaryArchive::TransferDateTime(const char*, SDateTime& value) {
  if (stream == nullptr) {
    return false;
  }
  return IsWriting() ? stream->WriteDateTime(value) : stream->ReadDateTime(value);
}

bool SDobBinaryArchive::TransferRect(const char*, SRect& value) {
  if (stream == nullptr) {
    return false;
  }
  return IsWriting() ? stream->WriteRect(value) : stream->ReadRect(value);
}

bool SDobBinaryArchive::TransferSize(const char*, SSize& value) {
  if (stream == nullptr) {
    return false;
  }
  return IsWriting() ? stream->WriteSize(value) : stream->ReadSize(value);
}

bool SDobBinaryArchive::TransferPoint(const char*, SPoint& value) {
  if (stream == nullptr) {
    return false;
  }
  return IsWriting() ? stream->WritePoint(value) : stream->ReadPoint(value);
}

bool SDobBinaryArchive::TransferString(const char*, SString& value) {
  if (stream == nullptr) {
    return false;
  }
  if (IsWriting()) {
    return stream->WriteText(value);
  }
  // A memory stream takes a text without its NUL and only its position tells.
  SStreamSource& source = stream->Source();
  if (stream->ReadText(value) && source.GetPosition() > source.GetLength()) {
    stream->SetError(true);
  }
  return !stream->HasError();
}

bool SDobBinaryArchive::TransferDouble(const char*, double& value) {
  if (stream == nullptr) {
    return false;
  }
  return IsWriting() ? stream->WriteDouble(value) : stream->ReadDouble(value);
}

// The signed and the unsigned number of a width have the same bytes.
bool SDobBinaryArchive::TransferULong(const char* name, uint32_t& value) {
  return TransferLong(name, reinterpret_cast<int32_t&>(value));
}

bool SDobBinaryArchive::TransferLong(const char*, int32_t& value) {
  if (stream == nullptr) {
    return false;
  }
  return IsWriting() ? stream->WriteLong(value) : stream->ReadLong(value);
}

bool SDobBinaryArchive::TransferUShort(const char* name, uint16_t& value) {
  return TransferShort(name, reinterpret_cast<int16_t&>(value));
}

bool SDobBinaryArchive::TransferShort(const char*, int16_t& value) {
  if (stream == nullptr) {
    return false;
  }
  return IsWriting() ? stream->WriteShort(value) : stream->ReadShort(value);
}

bool SDobBinaryArchive::TransferUChar(const char*, uint8_t& value) {
  if (stream == nullptr) {
    return false;
  }
  return IsWriting() ? stream->WriteByte(value) : stream->ReadByte(value);
}

bool SDobBinaryArchive::TransferChar(const char* name, char& value) {
  return TransferUChar(name, reinterpret_cast<uint8_t&>(value));
}

bool SDobBinaryArchive::TransferBool(const char*, bool& value) {
  if (stream == nullptr) {
    return false;
  }
  if (IsWriting()) {
    return stream->WriteByte(value ? 1 : 0);
  }
  uint8_t byte = value ? 1 : 0;
  const bool read = stream->ReadByte(byte);
  value = byte != 0;
  return read;
}

// Reading into a stamp that holds the fresh mark leaves it: what the file says was overtaken here.
bool SDobBinaryArchive::TransferTimeStamp(const char*, SDateTime& stamp) {
  return TransferDateTime(nullptr, stamp.IsFresh() ? now : stamp);
}

const uint8_t* SDobBinaryArchive::TakeRowBytes(int32_t count, int32_t width) {
  if (!IsReading() || stream == nullptr || count < 0 || count > INT32_MAX / width) {
    return nullptr;
  }
  return stream->TakeReady(count * width);
}

bool SDobBinaryArchive::TakeRow(bool* row, int32_t count) {
  const uint8_t* const bytes = TakeRowBytes(count, 1);
  if (bytes == nullptr) {
    return false;
  }
  std::transform(bytes, bytes + count, row, [](uint8_t byte) { return byte != 0; });
  return true;
}

}  // namespace kivstore
