#include "foundation/files/file_finder.h"

#include <string_view>

#include "platform/platform.h"

namespace kivstore {
namespace {

bool IsDots(const FolderEntry& entry) {
  return entry.name[0] == '.' &&
         (entry.nameLength == 1 || (entry.nameLength == 2 && entry.name[1] == '.'));
}

bool IsAccepted(const FolderEntry& entry, uint16_t mask) {
  using Finder = SFileFinder;
  static constexpr uint16_t kAsked[2][2] = {
      {Finder::kFiles | Finder::kVisible, Finder::kFiles | Finder::kHidden},
      {Finder::kFolders | Finder::kVisible, Finder::kFolders | Finder::kHidden}};
  const uint16_t asked = kAsked[entry.attributes.folder][entry.attributes.hidden];
  return (mask & asked) == asked && !IsDots(entry);
}

}  // namespace

SFileFinder::SFileFinder(const SFileSpec& folder, uint16_t mask, const char* pattern)
    : spec(folder), mask(mask) {
  const size_t length = ViewOf(pattern).copy(this->pattern, sizeof this->pattern - 1);
  this->pattern[length] = '\0';
}

bool SFileFinder::Next(SFileSpec& out) {
  FolderEntry entry;
  if (!NextEntry(entry)) {
    return false;
  }
  out.SetFromEntry(spec.GetPath(), entry);
  return true;
}

bool SFileFinder::NextEntry(FolderEntry& entry) {
  if (!started && !Start()) {
    return false;
  }
  while (walk != nullptr && walk->Next(entry)) {
    if (IsAccepted(entry, mask)) {
      return true;
    }
  }
  if (walk != nullptr) {
    failed = walk->HasFailed();
    walk.reset();
    if (failed) {
      NoteFileFailure(spec.GetPath(), SystemError::kOther);
    }
  }
  return false;
}

bool SFileFinder::Start() {
  started = true;
  SystemError error = SystemError::kPathNotFound;
  if (spec.IsExistingFolder()) {
    const std::string_view ending(pattern[0] != '\0' ? pattern : ".*");
    char search[sizeof pattern + 1] = "*";
    search[1 + ending.copy(search + 1, sizeof search - 2)] = '\0';
    walk = Platform().files->Walk(spec.GetPathText(), search, error);
  }
  failed = walk == nullptr;
  if (!failed && (mask & kFiles) == 0) {
    walk->AskFoldersOnly();
  }
  return !failed || NoteFileFailure(spec.GetPath(), error);
}

}  // namespace kivstore
