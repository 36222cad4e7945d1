#include "foundation/files/file_spec.h"
#include "platform/platform.h"

namespace kivstore {
namespace {

bool IsOfTarget(SystemError error) {
  return error == SystemError::kDiskFull || error == SystemError::kWriteProtected ||
         error == SystemError::kAlreadyExists;
}

}  // namespace

bool SFileSpec::CreateFile(const SFileType&, int32_t a, int32_t b, int32_t c) {
  return CreateFile(a, b, c);
}

// The maker's answer is the look at the disk.
bool SFileSpec::CreateFile(int32_t, int32_t, int32_t) {
  SystemError error = SystemError::kPathNotFound;
  if (!valid || !Platform().files->MakeFile(path.GetText(), error)) {
    return NoteFileFailure(path, error);
  }
  exists = true;
  return true;
}

bool SFileSpec::CreateFolder(uint32_t mode) {
  SystemError error = SystemError::kPathNotFound;
  return MakeFolder(mode, error) || NoteFileFailure(path, error);
}

bool SFileSpec::EnsureFolder() {
  // What is in the way has been told by the look at it.
  if (exists || !valid) {
    return IsExistingFolder();
  }
  SystemError error = SystemError::kNone;
  return MakeFolder(0, error) || (error == SystemError::kAlreadyExists && Refresh() && isFolder) ||
         NoteFileFailure(path, error);
}

bool SFileSpec::MakeFolder(uint32_t mode, SystemError& error) {
  if (!valid || !Platform().files->MakeFolder(path.GetText(), mode, error)) {
    return false;
  }
  exists = true;
  if (!isFolder) {
    isFolder = true;
    path += '\\';
  }
  return true;
}

// Makers that are inert say that all went well, whatever they are asked for; the others refuse an
// empty path.
bool SFileSpec::CopyTo(const SFileSpec& destination, const SString& name) const {
  SString target;
  if (exists && destination.IsExistingFolder()) {
    target = destination.path + name;
  }
  const SString source = WithoutBackslash();
  SystemError error;
  return Platform().files->CopyFileTo(source.GetText(), target.GetText(), error) ||
         NoteFileFailure(IsOfTarget(error) ? target : source, error);
}

bool SFileSpec::CopyToFolder(const SFileSpec& destination, const SString& name) const {
  if (exists && destination.exists) {
    SFileSpec target(destination);
    target.Down(name);
  }
  return false;
}

}  // namespace kivstore
