#include "foundation/files/file_spec.h"
#include "platform/platform.h"

namespace kivstore {
namespace {

// A drive's root, without its backslash as the system wants it, or a share. A path with neither has
// no root to ask, so the folder itself is asked, which tells the same.
SString SpacePlace(const SFileSpec& spec) {
  const SString root = spec.GetRoot();
  if (root.GetAt(1) == ':') {
    return root.Left(2);
  }
  if (root.GetAt(0) == '\\' && root.GetAt(1) == '\\') {
    return root;
  }
  SFileSpec folder(spec);
  if (!folder.IsExistingFolder()) {
    folder.Up();
  }
  return folder.GetPath();
}

}  // namespace

bool SFileSpec::GetFreeSpace(uint64_t* total, uint64_t* free, uint32_t* cluster) const {
  uint64_t totalBytes = 0;
  uint64_t freeBytes = 0;
  uint32_t clusterBytes = 1;
  const bool told = valid && Platform().files->DiskSpace(SpacePlace(*this).GetText(), totalBytes,
                                                         freeBytes, clusterBytes);
  if (total != nullptr) {
    *total = totalBytes;
  }
  if (free != nullptr) {
    *free = freeBytes;
  }
  if (cluster != nullptr) {
    *cluster = clusterBytes;
  }
  return told;
}

bool SFileSpec::FullAttributesOfFile(FileAttributes& attributes) const {
  SystemError error;
  return IsExistingFile() && Platform().files->FullAttributes(path.GetText(), attributes, error);
}

bool SFileSpec::IsHidden() const {
  FileAttributes attributes;
  return FullAttributesOfFile(attributes) && attributes.hidden;
}

bool SFileSpec::SetHidden(bool hidden) {
  FileAttributes attributes;
  if (!FullAttributesOfFile(attributes) || attributes.hidden == hidden) {
    return false;
  }
  attributes.hidden = hidden;
  return PutAttributes(attributes);
}

bool SFileSpec::IsReadOnly() const {
  FileAttributes attributes;
  return FullAttributesOfFile(attributes) && attributes.readOnly;
}

bool SFileSpec::SetReadOnly() {
  return ChangeReadOnly(true);
}

bool SFileSpec::ClearReadOnly() {
  return ChangeReadOnly(false);
}

bool SFileSpec::ChangeReadOnly(bool readOnly) {
  FileAttributes attributes;
  if (!FullAttributesOfFile(attributes)) {
    return false;
  }
  if (attributes.readOnly == readOnly) {
    return true;
  }
  attributes.readOnly = readOnly;
  return PutAttributes(attributes);
}

bool SFileSpec::PutAttributes(const FileAttributes& attributes) const {
  SystemError error;
  return Platform().files->SetAttributes(path.GetText(), attributes, error) ||
         NoteFileFailure(path, error);
}

}  // namespace kivstore
