#include "foundation/files/file_finder.h"
#include "foundation/files/file_spec.h"
#include "platform/base/bytes.h"
#include "platform/platform.h"

namespace kivstore {
namespace {

// Deeper than any store: what is nested deeper stays.
constexpr int kMaxDepth = 128;
constexpr uint32_t kFolderMode = 0x1FF;
constexpr uint16_t kAllFiles = SFileFinder::kFiles | SFileFinder::kVisible | SFileFinder::kHidden;
constexpr uint16_t kAllFolders =
    SFileFinder::kFolders | SFileFinder::kVisible | SFileFinder::kHidden;

IFileServices& Files() {
  return *Platform().files;
}

bool IsNameAllowed(const SString& name) {
  return !name.IsEmpty() && name.GetLength() <= 255 &&
         name.View().find_first_of("\\/\t\n\r") == std::string_view::npos;
}

bool IsLink(const SString& path) {
  FileAttributes attributes;
  SystemError error;
  return Files().Attributes(path.GetText(), attributes, error) && attributes.link;
}

}  // namespace

SString SFileSpec::WithoutBackslash() const {
  return isFolder ? path.Left(path.GetLength() - 1) : path;
}

// So that a folder can go in which this process stands.
void SFileSpec::LeaveCurrentFolder() const {
  char current[4096];
  if (!Files().CurrentFolder(current, sizeof current)) {
    return;
  }
  const std::string_view folder = path.View();
  if (!EqualBytesNoCase(std::string_view(current).substr(0, folder.size()), folder)) {
    return;
  }
  const bool hasDrive = path.GetAt(1) == ':';
  Files().SetCurrentFolder(hasDrive ? path.Left(3).GetText() : "\\");
}

bool SFileSpec::Delete(bool recursive) {
  return DeleteStep(recursive, 0);
}

bool SFileSpec::DeleteStep(bool recursive, int depth) {
  if (!valid) {
    return false;
  }
  if (!exists) {
    return true;
  }
  return isFolder ? DeleteFolder(recursive, depth) : DeleteFile();
}

bool SFileSpec::DeleteFile() {
  SystemError error;
  if (!Files().Delete(path.GetText(), error)) {
    return false;
  }
  exists = false;
  return true;
}

// What a link leads to is no part of this tree: the link goes, its target stays.
bool SFileSpec::DeleteFolder(bool recursive, int depth) {
  const SString bare = WithoutBackslash();
  if (bare.IsEmpty() || (!IsLink(bare) && !DeleteEntries(recursive, depth))) {
    return false;
  }
  LeaveCurrentFolder();
  SystemError error;
  if (!Files().RemoveFolder(bare.GetText(), error)) {
    return false;
  }
  path = bare;
  exists = isFolder = false;
  return true;
}

// With recursive, only the last entry counts: one that stayed before it makes the folder's own
// removal fail.
bool SFileSpec::DeleteEntries(bool recursive, int depth) const {
  if (depth >= kMaxDepth) {
    return false;
  }
  SFileFinder finder(*this, SFileFinder::kEverything);
  SFileSpec child;
  bool deleted = true;
  while (finder.Next(child)) {
    deleted = child.DeleteStep(recursive, depth + 1);
    if (!deleted && !recursive) {
      return false;
    }
  }
  return deleted;
}

bool SFileSpec::Rename(const SString& newName) {
  if (!IsNameAllowed(newName) || !valid || (exists && !RenameOnDisk(newName))) {
    return false;
  }
  const SString bare = WithoutBackslash();
  path = bare.Left(bare.GetLength() - fileName.GetLength()) + newName;
  if (isFolder) {
    path += '\\';
  }
  if (!fileName.IsEmpty()) {
    fileName = newName;
  }
  return true;
}

bool SFileSpec::RenameOnDisk(const SString& newName) const {
  SFileSpec target(*this);
  if (!target.Up() || !target.Down(newName) || target.exists) {
    return false;
  }
  if (isFolder) {
    LeaveCurrentFolder();
  }
  SystemError error;
  return Files().Move(WithoutBackslash().GetText(), target.GetPathText(), error);
}

bool SFileSpec::MoveTo(const SFileSpec& target) {
  if (!target.IsExistingFolder() || !valid) {
    return false;
  }
  SFileSpec place(target);
  if (!place.Down(fileName) || place.exists) {
    return false;
  }
  if (!exists) {
    *this = target;
    return true;
  }
  SystemError error;
  if (!Files().Move(WithoutBackslash().GetText(), place.GetPathText(), error)) {
    return MoveTree(place);
  }
  Set(place.path);
  return true;
}

bool SFileSpec::MoveTree(const SFileSpec& target) {
  if (!valid || !exists || !target.valid || target.exists) {
    return false;
  }
  SFileSpec place(target);
  if (!isFolder) {
    SystemError error;
    return Files().Move(path.GetText(), place.GetPathText(), error) && Set(place.path);
  }
  if (CopyFolders(place, 0) && CopyFiles(place, 0)) {
    Delete(true);
    return true;
  }
  place.Delete(true);  // as far as it was made here
  return false;
}

// A tree that holds a link to a folder is not copied: what the link leads to is no part of it.
bool SFileSpec::CopyFolders(SFileSpec& target, int depth) const {
  if (depth >= kMaxDepth || IsLink(WithoutBackslash()) || !target.CreateFolder(kFolderMode)) {
    return false;
  }
  SFileFinder finder(*this, kAllFolders);
  SFileSpec child;
  while (finder.Next(child)) {
    SFileSpec place(target);
    if (!place.Down(child.fileName) || !child.CopyFolders(place, depth + 1)) {
      return false;
    }
  }
  return !finder.HasFailed();
}

bool SFileSpec::CopyFiles(const SFileSpec& target, int depth) const {
  SFileSpec child;
  SFileFinder files(*this, kAllFiles);
  while (files.Next(child)) {
    if (!child.CopyTo(target, child.fileName)) {
      return false;
    }
  }
  SFileFinder folders(*this, kAllFolders);
  while (folders.Next(child)) {
    SFileSpec place(target);
    if (depth >= kMaxDepth || !place.Down(child.fileName) || !child.CopyFiles(place, depth + 1)) {
      return false;
    }
  }
  return !files.HasFailed() && !folders.HasFailed();
}

}  // namespace kivstore
