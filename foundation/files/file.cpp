#include "foundation/files/file.h"

#include <algorithm>

#include "platform/platform.h"

namespace kivstore {
namespace {

int32_t ToOpenError(SystemError error) {
  switch (error) {
    case SystemError::kNone:
      return SFile::kSuccess;
    case SystemError::kFileNotFound:
    case SystemError::kPathNotFound:
      return SFile::kNotFound;
    case SystemError::kSharingViolation:
      return SFile::kSharingViolation;
    default:
      return SFile::kOtherError;
  }
}

int32_t Cut(int64_t value) {
  return static_cast<int32_t>(std::min<int64_t>(value, INT32_MAX));
}

}  // namespace

bool SFile::Open(int32_t newMode, const SFileSpec& spec, int32_t* error) {
  Close();
  SystemError failure = SystemError::kFileNotFound;
  if (spec.IsValid() && spec.Exists()) {
    const FileAccess access = newMode == kWrite ? FileAccess::kReadWrite : FileAccess::kRead;
    handle = Platform().files->Open(spec.GetPathText(), access, failure);
  }
  if (error != nullptr) {
    *error = ToOpenError(handle != nullptr ? SystemError::kNone : failure);
  }
  isOpen = handle != nullptr;
  path = spec.GetPath();
  return isOpen || NoteFileFailure(path, failure);
}

bool SFile::OpenPatiently(const SFileSpec& spec) {
  constexpr int kTries = 200;  // a millisecond each
  int32_t error = kSuccess;
  for (int i = 1; !Open(kWrite, spec, &error); ++i) {
    if (error != kSharingViolation || i == kTries) {
      return false;
    }
    Platform().clock->Pause();
  }
  return true;
}

bool SFile::Close() {
  if (!isOpen) {
    return false;
  }
  Platform().files->Close(handle);
  handle = nullptr;
  isOpen = false;
  return true;
}

bool SFile::IsStillThere() const {
  return isOpen && Platform().files->LeadsTo(path.GetText(), handle);
}

bool SFile::Note(bool succeeded) const {
  if (!succeeded && Platform().files->TransferError() != SystemError::kNone) {
    NoteFileFailure(path, Platform().files->TransferError());
  }
  return succeeded;
}

int32_t SFile::Read(int32_t count, void* buffer) {
  const int32_t moved = isOpen && count > 0 ? Platform().files->Read(handle, buffer, count) : 0;
  if (isOpen && moved < count) {
    Note(false);
  }
  return moved;
}

int32_t SFile::Write(int32_t count, const void* buffer) {
  const int32_t moved = isOpen && count > 0 ? Platform().files->Write(handle, buffer, count) : 0;
  if (isOpen && moved < count) {
    Note(false);
  }
  return moved;
}

bool SFile::Seek(int32_t origin, int32_t offset) {
  constexpr SeekOrigin kOrigins[] = {SeekOrigin::kStart, SeekOrigin::kEnd, SeekOrigin::kCurrent};
  return isOpen && origin >= 0 && origin <= 2 &&
         Platform().files->Seek(handle, kOrigins[origin], offset);
}

int32_t SFile::Tell() const {
  return isOpen ? Cut(Platform().files->Tell(handle)) : 0;
}

int32_t SFile::Size() const {
  return isOpen ? Cut(Platform().files->Size(handle)) : 0;
}

bool SFile::AtEnd() const {
  return !isOpen || Platform().files->Tell(handle) >= Platform().files->Size(handle);
}

bool SFile::SetSize(int32_t size) {
  if (!isOpen) {
    return false;
  }
  const int64_t position = Platform().files->Tell(handle);
  if (!Platform().files->Seek(handle, SeekOrigin::kStart, size)) {
    return false;
  }
  const bool set = Note(Platform().files->SetEnd(handle));
  return Platform().files->Seek(handle, SeekOrigin::kStart, position) && set;
}

bool SFile::Truncate() {
  return isOpen && Note(Platform().files->SetEnd(handle));
}

bool SFile::Flush() {
  return isOpen && Note(Platform().files->Flush(handle));
}

}  // namespace kivstore
