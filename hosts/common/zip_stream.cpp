#include "hosts/common/zip_stream.h"

#include <algorithm>
#include <limits>

#include "hosts/common/console.h"
#include "hosts/common/failure_text.h"

namespace kivhost {

using kivstore::FileAccess;
using kivstore::SeekOrigin;
using kivstore::SystemError;

HostError ZipTrouble(const std::string& path, SystemError error) {
  if (error == SystemError::kFileNotFound) {
    return {kWrongUsage, path + ": no such file"};
  }
  if (error == SystemError::kPathNotFound) {
    return {kWrongUsage, path + ": its folder is not there"};
  }
  kivstore::SFailure failure;
  failure.kind = FailureKindOf(error);
  failure.system = error;
  return {kNoStore, path + ": is " + WhatText(failure)};
}

struct ZipCalls {
  static ZipStream& StreamOf(voidpf stream) { return *static_cast<ZipStream*>(stream); }

  static int32_t AtOnce(uLong count) {
    constexpr uLong kMost = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::min(count, kMost));
  }

  static voidpf Open(voidpf opaque, const void* /*name*/, int /*mode*/) { return opaque; }
  static int Close(voidpf /*opaque*/, voidpf /*stream*/) { return 0; }

  static uLong Read(voidpf /*opaque*/, voidpf stream, void* buffer, uLong count) {
    return static_cast<uLong>(StreamOf(stream).Read(buffer, AtOnce(count)));
  }

  static uLong Write(voidpf /*opaque*/, voidpf stream, const void* buffer, uLong count) {
    return static_cast<uLong>(StreamOf(stream).Write(buffer, AtOnce(count)));
  }

  static ZPOS64_T Tell(voidpf /*opaque*/, voidpf stream) {
    return static_cast<ZPOS64_T>(ZipFiles().Tell(StreamOf(stream).file));
  }

  static long Seek(voidpf /*opaque*/, voidpf stream, ZPOS64_T offset, int origin) {
    const SeekOrigin from = origin == ZLIB_FILEFUNC_SEEK_CUR   ? SeekOrigin::kCurrent
                            : origin == ZLIB_FILEFUNC_SEEK_END ? SeekOrigin::kEnd
                                                               : SeekOrigin::kStart;
    return ZipFiles().Seek(StreamOf(stream).file, from, static_cast<int64_t>(offset)) ? 0 : -1;
  }

  static int HasFailed(voidpf /*opaque*/, voidpf stream) {
    return StreamOf(stream).error != SystemError::kNone ? 1 : 0;
  }
};

ZipStream::ZipStream(const std::string& path, FileAccess access)
    : file(ZipFiles().Open(ToLibraryPath(path).c_str(), access, error)) {
  if (file == nullptr) {
    throw ZipTrouble(path, error);
  }
}

zlib_filefunc64_def ZipStream::Functions() {
  return {ZipCalls::Open, ZipCalls::Read,  ZipCalls::Write,     ZipCalls::Tell,
          ZipCalls::Seek, ZipCalls::Close, ZipCalls::HasFailed, this};
}

std::string ZipStream::ReadAt(int64_t place, int32_t count) {
  std::string bytes(static_cast<size_t>(count), '\0');
  const bool isThere = ZipFiles().Seek(file, SeekOrigin::kStart, place);
  bytes.resize(static_cast<size_t>(isThere ? Read(bytes.data(), count) : 0));
  return bytes;
}

void ZipStream::WriteAt(int64_t place, const std::string& bytes) {
  Note(ZipFiles().Seek(file, SeekOrigin::kStart, place));
  Write(bytes.data(), static_cast<int32_t>(bytes.size()));
}

// Fewer bytes than asked for are the end of the file, unless the system says more.
int32_t ZipStream::Read(void* buffer, int32_t count) {
  const int32_t moved = ZipFiles().Read(file, buffer, count);
  Note(moved == count || ZipFiles().TransferError() == SystemError::kNone);
  return std::max(moved, 0);
}

int32_t ZipStream::Write(const void* buffer, int32_t count) {
  const int32_t moved = ZipFiles().Write(file, buffer, count);
  Note(moved == count);
  return std::max(moved, 0);
}

void ZipStream::Note(bool isDone) {
  if (!isDone && error == SystemError::kNone) {
    const SystemError told = ZipFiles().TransferError();
    error = told != SystemError::kNone ? told : SystemError::kOther;
  }
}

}  // namespace kivhost
