#include "foundation/files/file_spec.h"
#include "platform/platform.h"

namespace kivstore {

bool SFileSpec::CreateFile(const SFileType&, int32_t a, int32_t b, int32_t c) {
  return CreateFile(a, b, c);
}

// The maker's answer is the look at the disk.
bool SFileSpec::CreateFile(int32_t, int32_t, int32_t) {
  SystemError error;
  if (!valid || !Platform().files->MakeFile(path.GetText(), error)) {
    return false;
  }
  exists = true;
  return true;
}

bool SFileSpec::CreateFolder(uint32_t mode) {
  SystemError error;
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
  SystemError error;
  return Platform().files->CopyFileTo(WithoutBackslash().GetText(), target.GetText(), error);
}

bool SFileSpec::CopyToFolder(const SFileSpec& destination, const SString& name) const {
  if (exists && destination.exists) {
    SFileSpec target(destination);
    target.Down(name);
  }
  return false;
}

}  // namespace kivstore
