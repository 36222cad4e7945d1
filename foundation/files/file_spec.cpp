#include "foundation/files/file_spec.h"

#include <algorithm>
#include <utility>

#include "foundation/files/path_steps.h"
#include "platform/base/bytes.h"
#include "platform/platform.h"

namespace kivstore {
namespace {

constexpr size_t kNone = std::string_view::npos;

constexpr int16_t kOtherError = 1;
constexpr int16_t kNotFound = 2;
constexpr int16_t kSharingViolation = 3;

int16_t gLastError = 0;

int16_t ToLastError(SystemError error) {
  switch (error) {
    case SystemError::kNone:
      return 0;
    case SystemError::kFileNotFound:
    case SystemError::kPathNotFound:
      return kNotFound;
    case SystemError::kSharingViolation:
      return kSharingViolation;
    default:
      return kOtherError;
  }
}

// A path of `length` characters to be written into `path`, with room for the backslash that makes
// it a folder's. Null if it is too long to be held.
char* StartPath(SString& path, size_t length) {
  if (length >= static_cast<size_t>(SString::kMaxLength)) {
    return nullptr;
  }
  return path.GetBuffer(static_cast<int>(length) + 1);
}

char* AddPart(char* at, std::string_view part) {
  return at + part.copy(at, part.size());
}

// A part that comes from outside may have slashes.
char* AddForeignPart(char* at, std::string_view part) {
  char* const end = AddPart(at, part);
  if (part.find('/') != kNone) {
    std::replace(at, end, '/', '\\');
  }
  return end;
}

// A name that a step can put behind a folder's path without changing what the steps before it mean.
bool IsPlainName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('\\') == kNone &&
         name.find('/') == kNone;
}

}  // namespace

int16_t SFileSpec::GetLastError() {
  return gLastError;
}

bool SFileSpec::IsEqual(const SFileSpec& other) const {
  return valid == other.valid && exists == other.exists && isFolder == other.isFolder &&
         path == other.path && fileName == other.fileName;
}

void SFileSpec::Reset() {
  valid = exists = isFolder = false;
  path.Release();
  fileName.Release();
}

bool SFileSpec::Set(const SString& newPath) {
  return SetJoined({}, newPath.View());
}

bool SFileSpec::Refresh() {
  return SetJoined(path.View(), {});
}

SString SFileSpec::HeldForm(std::string_view folder, std::string_view rest) {
  const size_t length = folder.size() + rest.size();
  SString held;
  char* const text = length != 0 ? StartPath(held, length) : nullptr;
  if (text != nullptr) {
    AddForeignPart(AddPart(text, folder), rest);
    held.ReleaseBuffer(static_cast<int>(NormalizePath(text, length)));
  }
  return held;
}

bool SFileSpec::SetJoined(std::string_view folder, std::string_view rest) {
  if (folder.empty() && rest.empty()) {
    Reset();
    return false;
  }
  SString asked = HeldForm(folder, rest);
  if (asked.IsEmpty()) {
    Reset();
    gLastError = kOtherError;
    return NoteFileFailure(SString(), SystemError::kInvalidName);
  }
  return TakeAttributes(asked);
}

bool SFileSpec::TakeAttributes(SString& asked) {
  Reset();
  FileAttributes attributes;
  SystemError error = SystemError::kNone;
  exists = Platform().files->Attributes(asked.GetText(), attributes, error);
  if (exists) {
    error = attributes.foreign ? SystemError::kForeignLink : SystemError::kNone;
  }
  gLastError = ToLastError(error);
  if (gLastError == kOtherError || gLastError == kSharingViolation) {
    NoteFileFailure(asked, error);
  }
  valid = exists || HoldFolderOf(asked, error);
  isFolder = exists && attributes.folder;
  if (!valid) {
    return false;
  }
  if (isFolder && asked.View().back() != '\\') {
    asked.Append('\\');
  }
  path = std::move(asked);
  SplitFileName();
  return exists;
}

// Whether the folder is there of a path that names nothing: mostly the error has told already.
bool SFileSpec::HoldFolderOf(const SString& asked, SystemError error) const {
  const size_t backslash = asked.View().rfind('\\');
  if (backslash == kNone || error == SystemError::kPathNotFound) {
    return false;
  }
  if (error == SystemError::kFileNotFound) {
    return true;
  }
  const SString folder = asked.Left(std::max(static_cast<int>(backslash), 1));
  FileAttributes attributes;
  return Platform().files->Attributes(folder.GetText(), attributes, error) && attributes.folder;
}

void SFileSpec::SplitFileName() {
  std::string_view rest = path.View();
  if (isFolder) {
    rest.remove_suffix(1);
  }
  const size_t start = rest.rfind('\\') + 1;
  fileName.Assign(static_cast<int>(rest.size() - start), rest.data() + start);
}

bool SFileSpec::Down(const char* name) {
  if (!valid || !exists) {
    return false;
  }
  if (!isFolder) {
    Reset();
    return false;
  }
  if (name == nullptr) {
    return true;
  }
  SetJoined(path.View(), name);
  return valid;
}

bool SFileSpec::Up() {
  if (!valid) {
    return false;
  }
  std::string_view rest = path.View();
  if (isFolder) {
    rest.remove_suffix(1);
  }
  const size_t backslash = rest.rfind('\\');
  if (backslash == kNone) {
    Reset();
    return false;
  }
  path.Assign(static_cast<int>(backslash) + 1, path.GetText());
  exists = isFolder = true;
  SplitFileName();
  return true;
}

bool SFileSpec::DownThrough(std::initializer_list<const SString*> names) {
  if (DownAtOnce(names)) {
    return true;
  }
  for (const SString* const name : names) {
    if (!Down(*name)) {
      return false;
    }
  }
  return valid;
}

// True if the deepest path is there, or lacks nothing but its last name: then the steps before it
// lead through folders that are there.
bool SFileSpec::DownAtOnce(std::initializer_list<const SString*> names) {
  size_t length = path.View().size();
  for (const SString* const name : names) {
    if (!IsPlainName(name->View())) {
      return false;
    }
    length += name->View().size() + 1;
  }
  SString deepest;
  char* at = IsExistingFolder() && names.size() != 0 ? StartPath(deepest, length - 1) : nullptr;
  if (at == nullptr) {
    return false;
  }
  at = AddPart(at, path.View());
  for (const SString* const name : names) {
    at = AddPart(at, name->View());
    *at++ = '\\';
  }
  deepest.ReleaseBuffer(static_cast<int>(length) - 1);
  SFileSpec there;
  there.TakeAttributes(deepest);
  if (!there.valid) {
    return false;
  }
  *this = std::move(there);
  return true;
}

bool SFileSpec::DownAssumed(const char* name) {
  if (!IsExistingFolder() || name == nullptr) {
    return false;
  }
  const std::string_view last(name);
  if (!IsPlainName(last)) {
    return Down(name);
  }
  SString joined;
  const size_t length = path.View().size() + last.size();
  char* const text = StartPath(joined, length);
  if (text == nullptr) {
    Reset();
    return false;
  }
  AddPart(AddPart(text, path.View()), last);
  joined.ReleaseBuffer(static_cast<int>(length));
  fileName.Assign(static_cast<int>(last.size()), last.data());
  path = std::move(joined);
  isFolder = false;
  return true;
}

void SFileSpec::SetFromEntry(const SString& folderPath, const FolderEntry& entry) {
  const std::string_view name(entry.name, static_cast<size_t>(entry.nameLength));
  const size_t length = folderPath.View().size() + name.size();
  SString joined;
  char* const text = StartPath(joined, length);
  if (text == nullptr) {
    Reset();
    return;
  }
  *AddPart(AddPart(text, folderPath.View()), name) = '\\';
  joined.ReleaseBuffer(static_cast<int>(length) + (entry.attributes.folder ? 1 : 0));
  path = std::move(joined);
  fileName.Assign(entry.nameLength, entry.name);
  valid = exists = true;
  isFolder = entry.attributes.folder;
  gLastError = 0;
}

SString SFileSpec::GetRoot() const {
  const std::string_view view = path.View();
  if (!view.starts_with("\\\\")) {
    return path.Left(3);
  }
  const size_t third = view.find('\\', 2);
  const size_t fourth = third == kNone ? kNone : view.find('\\', third + 1);
  return fourth == kNone ? path : path.Left(static_cast<int>(fourth) + 1);
}

bool SFileSpec::HasType(const SFileType& type) const {
  const std::string_view extension = type.GetExtension().View();
  const std::string_view view = path.View();
  return valid && exists && type.IsValid() && view.size() > extension.size() &&
         EqualBytesNoCase(view.substr(view.size() - extension.size()), extension);
}

}  // namespace kivstore
