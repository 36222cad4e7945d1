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

bool IsNameAllowed(const SString& name) {
  return !name.IsEmpty() && name.GetLength() <= 255 &&
         name.View().find_first_of("\\/\t\n\r") == std::string_view::npos;
}

bool IsLink(const SString& path) {
  FileAttributes attributes;
  SystemError error;
  return Platform().files->Attributes(path.GetText(), attributes, error) && attributes.link;
}

}  // namespace

SString SFileSpec::WithoutBackslash() const {
  return isFolder ? path.Left(path.GetLength() - 1) : path;
}

// So that a folder can go in which this process stands.
void SFileSpec::LeaveCurrentFolder() const {
  char current[4096];
  if (!Platform().files->CurrentFolder(current, sizeof current)) {
    return;
  }
  const std::string_view folder = path.View();
  if (!EqualBytesNoCase(std::string_view(current).substr(0, folder.size()), folder)) {
    return;
  }
  const bool hasDrive = path.GetAt(1) == ':';
  Platform().files->SetCurrentFolder(hasDrive ? path.Left(3).GetText() : "\\");
}

bool SFileSpec::Delete(bool recursive) {
  return DeleteStep(recursive, 0);
}

bool SFileSpec::DeleteStep(bool recursive, int depth) {
  if (!valid) {
    return NoteFileFailure(path, SystemError::kPathNotFound);
  }
  if (!exists) {
    return true;
  }
  return isFolder ? DeleteFolder(recursive, depth) : DeleteFile();
}

bool SFileSpec::DeleteFile() {
  SystemError error;
  if (!Platform().files->Delete(path.GetText(), error)) {
    return NoteFileFailure(path, error);
  }
  exists = false;
  return true;
}

// What a link leads to is no part of this tree: the link goes, its target stays.
bool SFileSpec::DeleteFolder(bool recursive, int depth) {
  const SString bare = WithoutBackslash();
  const uint32_t known = LastFailure().number;
  if (bare.IsEmpty() || (!IsLink(bare) && !DeleteEntries(recursive, depth))) {
    return false;
  }
  LeaveCurrentFolder();
  SystemError error;
  if (!Platform().files->RemoveFolder(bare.GetText(), error)) {
    // That it is not empty is known already, by what stayed in it.
    return LastFailure().number != known ? false : NoteFileFailure(bare, error);
  }
  path = bare;
  exists = isFolder = false;
  return true;
}

// With recursive, only the last entry counts: one that stayed before it makes the folder's own
// removal fail.
bool SFileSpec::DeleteEntries(bool recursive, int depth) const {
  if (depth >= kMaxDepth) {
    return NoteFileFailure(path, SystemError::kOther);
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
  if (!target.Up() || !target.Down(newName)) {
    return NoteFileFailure(path, SystemError::kPathNotFound);
  }
  if (target.exists) {
    return NoteFileFailure(target.path, SystemError::kAlreadyExists);
  }
  if (isFolder) {
    LeaveCurrentFolder();
  }
  const SString bare = WithoutBackslash();
  SystemError error;
  return Platform().files->Move(bare.GetText(), target.GetPathText(), error) ||
         NoteFileFailure(bare, error);
}

bool SFileSpec::RenameTo(const SFileSpec& place) {
  if (!valid || !exists || !place.valid) {
    return NoteFileFailure(path, SystemError::kPathNotFound);
  }
  if (place.exists) {
    return NoteFileFailure(place.path, SystemError::kAlreadyExists);
  }
  if (isFolder) {
    LeaveCurrentFolder();
  }
  const SString bare = WithoutBackslash();
  const SString target = place.path;
  SystemError error;
  if (!Platform().files->Move(bare.GetText(), target.GetText(), error)) {
    const SString blocker(Platform().files->BlockingFile());
    return NoteFileFailure(blocker.IsEmpty() ? bare : blocker, error);
  }
  Set(target);
  return true;  // though somebody may have taken it away again, or what it is in
}

// What stopped the copying tells more only if it is the same refusal further in, or if moving was
// not possible anyway.
bool SFileSpec::NoteRefusedMove(const SString& bare, SystemError error) {
  const bool toldWithin = error == SystemError::kNotSameDevice || error == LastFailure().error;
  return toldWithin ? false : NoteFileFailure(bare, error);
}

bool SFileSpec::MoveTo(const SFileSpec& target) {
  if (!target.IsExistingFolder() || !valid) {
    return NoteFileFailure(valid ? target.path : path, SystemError::kPathNotFound);
  }
  SFileSpec place(target);
  if (!place.Down(fileName)) {
    return NoteFileFailure(target.path, SystemError::kPathNotFound);
  }
  if (place.exists) {
    return NoteFileFailure(place.path, SystemError::kAlreadyExists);
  }
  if (!exists) {
    *this = target;
    return true;
  }
  const SString bare = WithoutBackslash();
  SystemError error;
  if (!Platform().files->Move(bare.GetText(), place.GetPathText(), error)) {
    return MoveTree(place) || NoteRefusedMove(bare, error);
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
    return Platform().files->Move(path.GetText(), place.GetPathText(), error)
               ? Set(place.path)
               : NoteFileFailure(path, error);
  }
  if (CopyFolders(place, 0) && CopyFiles(place, 0)) {
    Delete(true);
    return true;
  }
  const SFileFailure failure = LastFailure();
  place.Delete(true);  // as far as it was made here
  return NoteFileFailure(failure.path, failure.error);
}

// A tree that holds a link to a folder is not copied: what the link leads to is no part of it.
bool SFileSpec::CopyFolders(SFileSpec& target, int depth) const {
  if (depth >= kMaxDepth || IsLink(WithoutBackslash())) {
    return NoteFileFailure(path, SystemError::kOther);
  }
  if (!target.CreateFolder(kFolderMode)) {
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
