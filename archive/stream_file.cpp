#include "archive/stream_file.h"

#include <algorithm>
#include <new>

namespace kivstore {

SStreamSrcFile::SStreamSrcFile(const SFileSpec& spec) : spec(spec) {}

SStreamSrcFile::SStreamSrcFile(SFile* file) : file(file != nullptr ? file : &own) {}

SStreamSrcFile::~SStreamSrcFile() {
  if (mode == kWrite) {
    SStreamSrcFile::Close();
  }
  FreeBuffer();
}

bool SStreamSrcFile::Open(int32_t openMode) {
  if (opened) {
    return !error;
  }
  SStreamSource::Open(openMode);
  if (!OpenFile()) {
    error = true;
    return false;
  }
  PrepareBuffer();
  // Without a buffer a read stream counts as open and its first read fails, as for an empty file.
  if (buffer == nullptr) {
    file->Close();
    error = mode == kWrite;
  }
  return !error;
}

bool SStreamSrcFile::OpenFile() {
  openError = SFile::kSuccess;
  const int32_t fileMode = mode == kWrite ? SFile::kWrite : SFile::kRead;
  if (!file->IsOpen() && !file->Open(fileMode, spec, &openError)) {
    return false;
  }
  // The size first: the file services read a small file along with it, from where it stands.
  fileSize = mode == kWrite ? 0 : file->Size();
  if (fileSize < 0 || !file->Seek(0, 0)) {
    file->Close();
    openError = SFile::kOtherError;
    return false;
  }
  return true;
}

void SStreamSrcFile::PrepareBuffer() {
  bufferSize = mode == kWrite ? kWriteBuffer : std::min(fileSize, kReadBuffer);
  bufferHandle = AllocateBlock(bufferSize);
  buffer = static_cast<uint8_t*>(LockBlock(bufferHandle));
  ResetCursor();
  filePos = 0;
}

void SStreamSrcFile::FreeBuffer() {
  if (bufferHandle != nullptr) {
    FreeBlock(bufferHandle);
  }
}

bool SStreamSrcFile::Rewind() {
  filePos = 0;
  ResetCursor();
  if (mode != kWrite) {
    bufferValid = 0;
  }
  if (file->IsOpen()) {
    error = !file->Seek(0, 0);
  }
  return !error;
}

// Positions saturate: what lies beyond 31 bits has none that could be told.
int32_t SStreamSrcFile::GetPosition() {
  const int64_t position = int64_t{filePos} + (mode == kWrite ? bufferIndex : -Held());
  return static_cast<int32_t>(std::min<int64_t>(position, INT32_MAX));
}

int32_t SStreamSrcFile::GetLength() {
  if (!file->IsOpen()) {
    return 0;
  }
  return mode == kWrite ? std::max(file->Size(), GetPosition()) : fileSize;
}

// A peek at the buffer's end leaves the cursor, and with it the position, behind what it brought.
int32_t SStreamSrcFile::BytesLeft() {
  if (mode == kWrite) {
    return SStreamSource::BytesLeft();
  }
  const int64_t left = int64_t{GetLength()} - filePos + std::max(Held(), 0);
  return static_cast<int32_t>(std::max<int64_t>(left, 0));
}

bool SStreamSrcFile::Extend(int32_t n) {
  if (error || mode != kWrite) {
    return false;
  }
  if (n < 0 || n > INT32_MAX - GetPosition() || !file->SetSize(GetPosition() + n)) {
    error = true;
  }
  return !error;
}

bool SStreamSrcFile::Close() {
  if (mode != kWrite) {
    return !error;
  }
  const bool flushed = FlushBuffer();
  mode = kRead;
  if (flushed) {
    error = !file->SetSize(filePos) || !file->Flush();
    fileSize = filePos;
  }
  return !error;
}

void SStreamSrcFile::CountMoved(int32_t n) {
  filePos = static_cast<int32_t>(std::min<int64_t>(int64_t{filePos} + n, INT32_MAX));
}

bool SStreamSrcFile::SeekBy(int64_t distance) {
  if (distance > INT32_MAX || distance < INT32_MIN ||
      !file->Seek(2, static_cast<int32_t>(distance))) {
    error = true;
  }
  ResetCursor();
  if (mode != kWrite) {
    bufferValid = 0;
  }
  return !error;
}

bool SStreamSrcFile::UnreadByte() {
  if (error || GetPosition() <= 0) {
    return false;
  }
  if (bufferIndex > 0) {
    Advance(-1);
    return true;
  }
  const int32_t held = mode == kWrite ? 0 : Held();
  --filePos;
  filePos -= held;
  return SeekBy(-int64_t{held} - 1);
}

bool SStreamSrcFile::Skip(int32_t n) {
  if (error || n < 0) {
    error = true;
    return false;
  }
  if (n <= Held()) {
    Advance(n);
    return true;
  }
  int32_t distance = n;
  if (mode != kWrite) {
    distance -= std::max(Held(), 0);
  } else if (bufferIndex > 0 && !FlushBuffer()) {
    return false;
  }
  CountMoved(distance);
  return SeekBy(distance);
}

}  // namespace kivstore
