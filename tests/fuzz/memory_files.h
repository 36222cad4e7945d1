// A file system in memory, as the file services tell it: small, deterministic and fast enough for
// some thousand stores a second. Like the library's own services it makes nothing: what is there
// was put there.
//
//   MemoryFiles files;
//   files.Put("root/Classes.zep/index.kiv", bytes);
//   const SPlatformOverride<IFileServices> installed(Platform().files, &files);
//
// Paths have slashes or backslashes, begin at the top whatever they begin with, and are found
// without regard to letter case. Nothing that runs on it moves anything or removes a folder: a call
// that tries ends the process.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/inert_makers.h"
#include "tests/fuzz/fuzz_target.h"

namespace kivtest {

struct MemoryEntry {
  std::string name;  // as it is spelt
  kivstore::FileAttributes attributes;
  std::string bytes;
  bool heldElsewhere = false;  // open on another workstation, with no sharing
  int readers = 0;
  bool writer = false;

  bool IsExclusive() const { return heldElsewhere || writer; }
};

}  // namespace kivtest

namespace kivstore {

struct OpenFile {
  kivtest::MemoryEntry* entry;
  FileAccess access;
  int64_t position;
};

}  // namespace kivstore

namespace kivtest {

class MemoryFiles : public kivstore::SInertMakers {
 public:
  using Entry = MemoryEntry;
  using FileAccess = kivstore::FileAccess;
  using FileAttributes = kivstore::FileAttributes;
  using FileHandle = kivstore::FileHandle;
  using SystemError = kivstore::SystemError;
  // By folded path with slashes; the top itself is "".
  using Tree = std::map<std::string, Entry>;

  // The folders on the way are made. Null if a file stands in it, or anything at the place itself.
  Entry* Put(std::string_view path, std::string_view bytes) {
    const auto [place, name] = PlacesOf(path).back();
    if (tree.count(place) != 0 || PutFolder(ParentOf(place)) == nullptr) {
      return nullptr;
    }
    return &(tree[place] = {name, {}, std::string(bytes)});
  }
  Entry* PutFolder(std::string_view path) {
    Entry* entry = nullptr;
    for (const auto& [place, name] : PlacesOf(path)) {
      entry = &tree.try_emplace(place, Entry{name, {.folder = true}, ""}).first->second;
      if (!entry->attributes.folder) {
        return nullptr;
      }
    }
    return entry;
  }
  const Tree& Entries() const { return tree; }
  // Empty for a file that is not there.
  std::string BytesOf(std::string_view path) const {
    const auto found = tree.find(PlaceOf(path));
    return found != tree.end() ? found->second.bytes : std::string();
  }
  static std::string Folded(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), [](char c) {
      return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return name;
  }
  size_t OpenHandles() const { return handles; }

  FileHandle Open(const char* path, FileAccess access, SystemError& error) override {
    Entry* const entry = Find(path, error);
    const bool writing = access == FileAccess::kReadWrite;
    if (entry == nullptr) {
      return nullptr;
    }
    error = entry->attributes.folder || (writing && entry->attributes.readOnly)
                ? SystemError::kAccessDenied
            : entry->IsExclusive() || (writing && entry->readers > 0)
                ? SystemError::kSharingViolation
                : SystemError::kNone;
    if (error != SystemError::kNone) {
      return nullptr;
    }
    entry->writer = writing;
    entry->readers += !writing;
    ++handles;
    return new kivstore::OpenFile{entry, access, 0};
  }
  void Close(FileHandle file) override {
    file->entry->writer = false;
    file->entry->readers -= file->access == FileAccess::kRead;
    --handles;
    delete file;
  }
  int32_t Read(FileHandle file, void* buffer, int32_t count) override {
    const int64_t rest = Size(file) - file->position;
    const auto moved = static_cast<int32_t>(std::clamp<int64_t>(rest, 0, std::max(count, 0)));
    if (moved > 0) {
      std::memcpy(buffer, &file->entry->bytes[static_cast<size_t>(file->position)],
                  static_cast<size_t>(moved));
    }
    file->position += moved;
    return moved;
  }
  int32_t Write(FileHandle file, const void* buffer, int32_t count) override {
    const int64_t start = file->position, end = start + count;
    if (file->access != FileAccess::kReadWrite || count < 1 || end > kLongestFile) {
      return 0;
    }
    std::string& bytes = file->entry->bytes;
    bytes.resize(std::max(bytes.size(), static_cast<size_t>(end)));
    std::memcpy(&bytes[static_cast<size_t>(start)], buffer, static_cast<size_t>(count));
    file->position = end;
    return count;
  }
  bool Seek(FileHandle file, kivstore::SeekOrigin origin, int64_t offset) override {
    using kivstore::SeekOrigin;
    const int64_t position = offset + (origin == SeekOrigin::kStart ? 0
                                       : origin == SeekOrigin::kEnd ? Size(file)
                                                                    : file->position);
    file->position = position >= 0 ? position : file->position;
    return position >= 0;
  }
  int64_t Tell(FileHandle file) override { return file->position; }
  int64_t Size(FileHandle file) override { return static_cast<int64_t>(file->entry->bytes.size()); }
  bool SetEnd(FileHandle file) override {
    if (file->access != FileAccess::kReadWrite || file->position > kLongestFile) {
      return false;
    }
    file->entry->bytes.resize(static_cast<size_t>(file->position));
    return true;
  }
  bool Flush(FileHandle) override { return true; }
  bool Attributes(const char* path, FileAttributes& attributes, SystemError& error) override {
    const Entry* const entry = Find(path, error);
    attributes = entry != nullptr ? entry->attributes : attributes;
    return entry != nullptr;
  }
  bool FullAttributes(const char* path, FileAttributes& attributes, SystemError& error) override {
    return Attributes(path, attributes, error);
  }
  bool SetAttributes(const char* path, const FileAttributes& attributes,
                     SystemError& error) override {
    Entry* const entry = Find(path, error);
    if (entry == nullptr || entry->attributes.folder) {
      error = entry != nullptr ? SystemError::kAccessDenied : error;
      return false;
    }
    entry->attributes.hidden = attributes.hidden;
    entry->attributes.readOnly = attributes.readOnly;
    return true;
  }
  bool Delete(const char* path, SystemError& error) override {
    const Entry* const entry = Find(path, error);
    if (entry == nullptr) {
      return false;
    }
    error = entry->attributes.folder || entry->attributes.readOnly ? SystemError::kAccessDenied
            : entry->IsExclusive() || entry->readers > 0           ? SystemError::kSharingViolation
                                                                   : SystemError::kNone;
    return error == SystemError::kNone && tree.erase(PlaceOf(path)) == 1;
  }
  bool RemoveFolder(const char*, SystemError&) override { return Never("no folder is removed"); }
  bool Move(const char*, const char*, SystemError&) override { return Never("nothing is moved"); }
  std::unique_ptr<kivstore::IFolderWalk> Walk(const char* folder, const char*,
                                              SystemError& error) override {
    const Entry* const entry = Find(folder, error);
    if (entry == nullptr || !entry->attributes.folder) {
      error = SystemError::kPathNotFound;
      return nullptr;
    }
    return std::make_unique<MemoryWalk>(tree, PlaceOf(folder));
  }
  bool DiskSpace(const char*, uint64_t&, uint64_t&, uint32_t&) override { return false; }
  bool CurrentFolder(char* buffer, int size) override {
    return std::snprintf(buffer, static_cast<size_t>(size), "\\") < size;
  }
  bool SetCurrentFolder(const char*) override { return true; }

 private:
  static constexpr int64_t kLongestFile = 1 << 26;

  // As the folder was when the walk began.
  class MemoryWalk : public kivstore::IFolderWalk {
   public:
    MemoryWalk(const Tree& tree, const std::string& place) {
      for (const auto& [path, entry] : tree) {
        if (!path.empty() && ParentOf(path) == place) {
          shown.emplace_back(entry.name, entry.attributes);
        }
      }
    }
    bool Next(kivstore::FolderEntry& entry) override {
      if (at == shown.size()) {
        return false;
      }
      const auto& [name, attributes] = shown[at++];
      entry = {name.c_str(), static_cast<int>(name.size()), attributes};
      return true;
    }
    bool HasFailed() const override { return false; }

   private:
    std::vector<std::pair<std::string, FileAttributes>> shown{{".", {.folder = true}},
                                                              {"..", {.folder = true}}};
    size_t at = 0;
  };

  static bool Never(const char* rule) {
    Require(false, rule);
    return false;
  }
  static std::string ParentOf(const std::string& place) {
    const size_t slash = place.rfind('/');
    return slash == std::string::npos ? std::string() : place.substr(0, slash);
  }
  // Each place on the path with its name as it is spelt, the top first; ".." takes one back.
  static std::vector<std::pair<std::string, std::string>> PlacesOf(std::string_view path) {
    std::vector<std::pair<std::string, std::string>> places{{"", ""}};
    for (size_t at = 0; at < path.size();) {
      const size_t end = std::min(path.find_first_of("/\\", at), path.size());
      const std::string name(path.substr(at, end - at));
      at = end + 1;
      if (name == "..") {
        places.resize(std::max<size_t>(places.size() - 1, 1));
      } else if (!name.empty() && name != ".") {
        const std::string parent = places.back().first + (places.size() > 1 ? "/" : "");
        places.emplace_back(parent + Folded(name), name);
      }
    }
    return places;
  }
  static std::string PlaceOf(std::string_view path) { return PlacesOf(path).back().first; }
  Entry* Find(std::string_view path, SystemError& error) {
    const std::string place = PlaceOf(path);
    const auto found = tree.find(place), parent = tree.find(ParentOf(place));
    const bool isThere = found != tree.end();
    const bool isPlain = isThere && !found->second.attributes.folder;
    const bool hasFolder = parent != tree.end() && parent->second.attributes.folder;
    if (path.empty() || (isPlain && (path.back() == '/' || path.back() == '\\'))) {
      error = SystemError::kPathNotFound;
      return nullptr;
    }
    error = isThere     ? SystemError::kNone
            : hasFolder ? SystemError::kFileNotFound
                        : SystemError::kPathNotFound;
    return isThere ? &found->second : nullptr;
  }

  Tree tree{{"", {"", {.folder = true}, ""}}};
  size_t handles = 0;
};

}  // namespace kivtest
