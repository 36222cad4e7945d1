#include "tests/fuzz/memory_files.h"

#include <algorithm>
#include <cstring>

#include "tests/fuzz/require.h"

namespace kivstore {

struct OpenFile {
  kivtest::MemoryFiles::Entry* entry;
  FileAccess access;
  int64_t position;
};

}  // namespace kivstore

namespace kivtest {

using namespace kivstore;

namespace {

constexpr int64_t kLongestFile = 1 << 26;

char FoldedCharacter(char c) {
  return c == '\\' ? '/' : c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string ParentOf(const std::string& place) {
  const size_t slash = place.rfind('/');
  return slash == std::string::npos ? std::string() : place.substr(0, slash);
}

bool EndsInSeparator(std::string_view path) {
  return path.ends_with('/') || path.ends_with('\\');
}

bool Fail(SystemError& error, SystemError reason) {
  error = reason;
  return false;
}

// The names of the path, as they are spelt; ".." takes one back.
std::vector<std::string> NamesOf(std::string_view path) {
  std::vector<std::string> names;
  for (size_t at = 0; at < path.size();) {
    const size_t end = std::min(path.find_first_of("/\\", at), path.size());
    const std::string name(path.substr(at, end - at));
    at = end + 1;
    if (name == "..") {
      names.resize(names.size() - (names.empty() ? 0 : 1));
    } else if (!name.empty() && name != ".") {
      names.push_back(name);
    }
  }
  return names;
}

std::string Below(const std::string& place, const std::string& name) {
  std::string below = place.empty() ? name : place + "/" + name;
  std::transform(below.begin(), below.end(), below.begin(), FoldedCharacter);
  return below;
}

std::string PlaceOf(std::string_view path) {
  std::string place;
  for (const std::string& name : NamesOf(path)) {
    place = Below(place, name);
  }
  return place;
}

// As the folder was when the walk began.
class MemoryWalk : public IFolderWalk {
 public:
  MemoryWalk(const MemoryFiles::Tree& tree, const std::string& place) {
    const std::string start = place.empty() ? place : place + "/";
    for (auto next = tree.upper_bound(start); next != tree.end() && next->first.starts_with(start);
         ++next) {
      if (next->first.find('/', start.size()) == std::string::npos) {
        shown.emplace_back(next->second.name, next->second.attributes);
      }
    }
  }
  bool Next(FolderEntry& entry) override {
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

}  // namespace

MemoryFiles::MemoryFiles() {
  tree[""].attributes.folder = true;
}

MemoryFiles::~MemoryFiles() = default;

MemoryFiles::Entry* MemoryFiles::PutFolder(std::string_view path) {
  std::string place;
  Entry* entry = &tree[place];
  for (const std::string& name : NamesOf(path)) {
    place = Below(place, name);
    const auto [found, isNew] = tree.try_emplace(place);
    entry = &found->second;
    if (isNew) {
      *entry = {name, {.folder = true}, {}};
    } else if (!entry->attributes.folder) {
      return nullptr;
    }
  }
  return entry;
}

MemoryFiles::Entry* MemoryFiles::Put(std::string_view path, std::string_view bytes) {
  const std::vector<std::string> names = NamesOf(path);
  const std::string place = PlaceOf(path);
  if (names.empty() || tree.count(place) != 0 || PutFolder(ParentOf(place)) == nullptr) {
    return nullptr;
  }
  Entry& entry = tree[place];
  entry = {names.back(), {}, std::string(bytes)};
  return &entry;
}

std::string MemoryFiles::BytesOf(std::string_view path) const {
  const auto found = tree.find(PlaceOf(path));
  return found != tree.end() ? found->second.bytes : std::string();
}

MemoryFiles::Entry* MemoryFiles::Find(std::string_view path, SystemError& error) {
  const std::string place = PlaceOf(path);
  const auto found = tree.find(place);
  const bool isFile = found != tree.end() && !found->second.attributes.folder;
  if (path.empty() || (isFile && EndsInSeparator(path))) {
    error = SystemError::kPathNotFound;
    return nullptr;
  }
  if (found == tree.end()) {
    const auto parent = tree.find(ParentOf(place));
    const bool hasFolder = parent != tree.end() && parent->second.attributes.folder;
    error = hasFolder ? SystemError::kFileNotFound : SystemError::kPathNotFound;
    return nullptr;
  }
  error = SystemError::kNone;
  return &found->second;
}

FileHandle MemoryFiles::Open(const char* path, FileAccess access, SystemError& error) {
  Entry* const entry = Find(path, error);
  if (entry == nullptr) {
    return nullptr;
  }
  const bool writing = access == FileAccess::kReadWrite;
  if (entry->attributes.folder || (writing && entry->attributes.readOnly)) {
    error = SystemError::kAccessDenied;
    return nullptr;
  }
  if (entry->heldElsewhere || entry->writer || (writing && entry->readers > 0)) {
    error = SystemError::kSharingViolation;
    return nullptr;
  }
  entry->writer = writing;
  entry->readers += writing ? 0 : 1;
  ++handles;
  return new OpenFile{entry, access, 0};
}

void MemoryFiles::Close(FileHandle file) {
  if (file->access == FileAccess::kReadWrite) {
    file->entry->writer = false;
  } else {
    --file->entry->readers;
  }
  --handles;
  delete file;
}

int32_t MemoryFiles::Read(FileHandle file, void* buffer, int32_t count) {
  const int64_t rest = Size(file) - file->position;
  const auto moved = static_cast<int32_t>(std::clamp<int64_t>(rest, 0, std::max(count, 0)));
  if (moved > 0) {
    std::memcpy(buffer, file->entry->bytes.data() + file->position, static_cast<size_t>(moved));
  }
  file->position += moved;
  return moved;
}

int32_t MemoryFiles::Write(FileHandle file, const void* buffer, int32_t count) {
  const int64_t end = file->position + count;
  if (file->access != FileAccess::kReadWrite || count < 1 || end > kLongestFile) {
    return 0;
  }
  std::string& bytes = file->entry->bytes;
  bytes.resize(std::max(bytes.size(), static_cast<size_t>(end)));
  std::memcpy(bytes.data() + file->position, buffer, static_cast<size_t>(count));
  file->position = end;
  return count;
}

bool MemoryFiles::Seek(FileHandle file, SeekOrigin origin, int64_t offset) {
  const int64_t base = origin == SeekOrigin::kStart ? 0
                       : origin == SeekOrigin::kEnd ? Size(file)
                                                    : file->position;
  if (base + offset < 0) {
    return false;
  }
  file->position = base + offset;
  return true;
}

int64_t MemoryFiles::Tell(FileHandle file) {
  return file->position;
}

int64_t MemoryFiles::Size(FileHandle file) {
  return static_cast<int64_t>(file->entry->bytes.size());
}

bool MemoryFiles::SetEnd(FileHandle file) {
  if (file->access != FileAccess::kReadWrite || file->position > kLongestFile) {
    return false;
  }
  file->entry->bytes.resize(static_cast<size_t>(file->position));
  return true;
}

bool MemoryFiles::Flush(FileHandle) {
  return true;
}

bool MemoryFiles::Attributes(const char* path, FileAttributes& attributes, SystemError& error) {
  const Entry* const entry = Find(path, error);
  if (entry != nullptr) {
    attributes = entry->attributes;
  }
  return entry != nullptr;
}

bool MemoryFiles::FullAttributes(const char* path, FileAttributes& attributes, SystemError& error) {
  return Attributes(path, attributes, error);
}

bool MemoryFiles::SetAttributes(const char* path, const FileAttributes& attributes,
                                SystemError& error) {
  Entry* const entry = Find(path, error);
  if (entry == nullptr) {
    return false;
  }
  if (entry->attributes.folder) {
    return Fail(error, SystemError::kAccessDenied);
  }
  entry->attributes.hidden = attributes.hidden;
  entry->attributes.readOnly = attributes.readOnly;
  return true;
}

bool MemoryFiles::Delete(const char* path, SystemError& error) {
  const Entry* const entry = Find(path, error);
  if (entry == nullptr) {
    return false;
  }
  if (entry->attributes.folder || entry->attributes.readOnly) {
    return Fail(error, SystemError::kAccessDenied);
  }
  if (entry->IsOpen()) {
    return Fail(error, SystemError::kSharingViolation);
  }
  tree.erase(PlaceOf(path));
  return true;
}

bool MemoryFiles::RemoveFolder(const char*, SystemError&) {
  Require(false, "no folder is removed");
  return false;
}

bool MemoryFiles::Move(const char*, const char*, SystemError&) {
  Require(false, "nothing is moved");
  return false;
}

std::unique_ptr<IFolderWalk> MemoryFiles::Walk(const char* folder, const char*,
                                               SystemError& error) {
  const Entry* const entry = Find(folder, error);
  if (entry == nullptr || !entry->attributes.folder) {
    error = SystemError::kPathNotFound;
    return nullptr;
  }
  return std::make_unique<MemoryWalk>(tree, PlaceOf(folder));
}

bool MemoryFiles::DiskSpace(const char*, uint64_t&, uint64_t&, uint32_t&) {
  return false;
}

bool MemoryFiles::CurrentFolder(char* buffer, int size) {
  if (size < 2) {
    return false;
  }
  std::memcpy(buffer, "\\", 2);
  return true;
}

bool MemoryFiles::SetCurrentFolder(const char*) {
  return true;
}

}  // namespace kivtest
