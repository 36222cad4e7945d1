#include "archive/dob_binary_archive.h"

#include <algorithm>

namespace kivstore {
namespace {

// Only what goes out needs the time.
SDateTime TimeOfCreation(int32_t mode) {
  return mode == SDobBinaryArchive::kWrite ? SDateTime() : SDateTime::None();
}

// One field in the stream. Numbers, the signed and the unsigned of a width alike, go as their
// bytes.
template <class Number>
bool Write(SBinaryStream& stream, Number value) {
  if constexpr (sizeof value == 1) {
    return stream.WriteByte(static_cast<uint8_t>(value));
  } else {
    return stream.WriteNumber(value);
  }
}
bool Write(SBinaryStream& stream, SDateTime value) {
  return stream.WriteDateTime(value);
}
bool Write(SBinaryStream& stream, const SRect& value) {
  return stream.WriteRect(value);
}
bool Write(SBinaryStream& stream, const SSize& value) {
  return stream.WriteSize(value);
}
bool Write(SBinaryStream& stream, const SPoint& value) {
  return stream.WritePoint(value);
}
bool Write(SBinaryStream& stream, const SString& value) {
  return stream.WriteText(value);
}

template <class Number>
bool Read(SBinaryStream& stream, Number& value) {
  return stream.ReadNumber(value);
}
bool Read(SBinaryStream& stream, bool& value) {
  uint8_t byte = value ? 1 : 0;
  const bool read = stream.ReadByte(byte);
  value = byte != 0;
  return read;
}
bool Read(SBinaryStream& stream, SDateTime& value) {
  return stream.ReadDateTime(value);
}
bool Read(SBinaryStream& stream, SRect& value) {
  return stream.ReadRect(value);
}
bool Read(SBinaryStream& stream, SSize& value) {
  return stream.ReadSize(value);
}
bool Read(SBinaryStream& stream, SPoint& value) {
  return stream.ReadPoint(value);
}
// A memory stream delivers a last text without its NUL, and only what was left tells.
bool Read(SBinaryStream& stream, SString& value) {
  const int32_t left = stream.Source().BytesLeft();
  if (stream.ReadText(value) && value.GetLength() >= left) {
    stream.SetError(true);
  }
  return !stream.HasError();
}

}  // namespace

SDobBinaryArchive::SDobBinaryArchive(int32_t mode, const SFileSpec& spec)
    : SDobTransfers(TimeOfCreation(mode)), mode(mode) {
  const int32_t streamMode = IsWriting() ? SBinaryStream::kWrite : SBinaryStream::kRead;
  stream = &own.emplace(streamMode, spec).stream;
}

SDobBinaryArchive::SDobBinaryArchive(int32_t mode, SBinaryStream* stream)
    : SDobTransfers(TimeOfCreation(mode)), mode(mode), stream(stream) {}

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
  if (stored > stream->Source().BytesLeft()) {
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

template <class T>
bool SDobBinaryArchive::TransferField(const char*, T& value) {
  if (stream == nullptr) {
    return false;
  }
  return IsWriting() ? Write(*stream, value) : Read(*stream, value);
}

template class SDobTransfers<SDobBinaryArchive>;
// Another form in another program may hand its fields on to this one.
template bool SDobBinaryArchive::TransferField(const char*, SDateTime&);
template bool SDobBinaryArchive::TransferField(const char*, SRect&);
template bool SDobBinaryArchive::TransferField(const char*, SSize&);
template bool SDobBinaryArchive::TransferField(const char*, SPoint&);
template bool SDobBinaryArchive::TransferField(const char*, SString&);
template bool SDobBinaryArchive::TransferField(const char*, double&);
template bool SDobBinaryArchive::TransferField(const char*, uint32_t&);
template bool SDobBinaryArchive::TransferField(const char*, int32_t&);
template bool SDobBinaryArchive::TransferField(const char*, uint16_t&);
template bool SDobBinaryArchive::TransferField(const char*, int16_t&);
template bool SDobBinaryArchive::TransferField(const char*, uint8_t&);
template bool SDobBinaryArchive::TransferField(const char*, char&);
template bool SDobBinaryArchive::TransferField(const char*, bool&);

}  // namespace kivstore
