#define _FILE_OFFSET_BITS 64
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <new>
#include <string_view>

#include "platform/posix/dos_mark.h"
#include "platform/posix/folder_reader.h"
#include "platform/posix/posix_file_services.h"
#include "platform/posix/posix_path.h"
#include "platform/posix/wildcard.h"

namespace kivstore {
namespace {

class PosixFolderWalk : public IFolderWalk {
 public:
  explicit PosixFolderWalk(const char* mask) : mask(mask), all(this->mask.View() == "*.*") {}

  int Open(const char* path);
  bool Next(FolderEntry& entry) override;
  void AskFoldersOnly() override { asksFiles = false; }
  bool HasFailed() const override { return reader.HasFailed(); }

 private:
  class Mask {
   public:
    explicit Mask(std::string_view source) : length(source.copy(text, sizeof text)) {}
    std::string_view View() const { return {text, length}; }

   private:
    size_t length;
    char text[264];
  };

  bool Shows(const RawEntry& raw) const;
  bool LeadsToFolder(const RawEntry& raw) const;
  unsigned char AskType(const RawEntry& raw) const;
  FileAttributes AttributesOf(const RawEntry& raw, unsigned char type) const;
  bool BearsHiddenMark(const RawEntry& raw) const;

  FolderReader reader;
  std::unique_ptr<char[]> markedFolder;  // the folder's path, if it bears a mark
  Mask mask;
  bool all;  // the mask excludes nothing
  bool asksFiles = true;
};

int PosixFolderWalk::Open(const char* path) {
  const int failure = reader.OpenHere(path);
  if (failure != 0 || !BearsMark(reader.GetDescriptor())) {
    return failure;
  }
  const size_t size = std::strlen(path) + 1;
  markedFolder.reset(new (std::nothrow) char[size]);
  if (markedFolder == nullptr) {
    return ENOMEM;
  }
  std::memcpy(markedFolder.get(), path, size);
  return 0;
}

// No path can name what has a backslash in its name.
bool PosixFolderWalk::Shows(const RawEntry& raw) const {
  return std::memchr(raw.name, '\\', static_cast<size_t>(raw.nameLength)) == nullptr &&
         (all || MatchesWildcard(raw.Name(), mask.View()));
}

bool PosixFolderWalk::LeadsToFolder(const RawEntry& raw) const {
  struct stat facts;
  return fstatat(reader.GetDescriptor(), raw.name, &facts, 0) == 0 && S_ISDIR(facts.st_mode);
}

// Where the file system tells no types.
unsigned char PosixFolderWalk::AskType(const RawEntry& raw) const {
  struct stat facts;
  if (fstatat(reader.GetDescriptor(), raw.name, &facts, AT_SYMLINK_NOFOLLOW) != 0) {
    return DT_REG;
  }
  return static_cast<unsigned char>(IFTODT(facts.st_mode));
}

// Of what is no folder itself.
FileAttributes PosixFolderWalk::AttributesOf(const RawEntry& raw, unsigned char type) const {
  FileAttributes attributes;
  attributes.link = type == DT_LNK;
  attributes.folder = type == DT_LNK && LeadsToFolder(raw);
  attributes.special = type != DT_LNK && type != DT_REG;
  return attributes;
}

bool PosixFolderWalk::BearsHiddenMark(const RawEntry& raw) const {
  char path[4096 + 256];
  std::snprintf(path, sizeof path, "%s/%s", markedFolder.get(), raw.name);
  return (MarkOf(path) & kDosHidden) != 0;
}

bool PosixFolderWalk::Next(FolderEntry& entry) {
  RawEntry raw;
  do {
    if (!reader.Next(raw)) {
      return false;
    }
  } while (!Shows(raw));
  const unsigned char type = raw.type != DT_UNKNOWN ? raw.type : AskType(raw);
  const bool dot = raw.name[0] == '.';
  entry.name = raw.name;
  entry.nameLength = raw.nameLength;
  entry.attributes = type == DT_DIR ? FileAttributes{.folder = true} : AttributesOf(raw, type);
  if (dot) {
    entry.attributes.hidden = !raw.IsDots();
  } else if (markedFolder != nullptr && (asksFiles || entry.attributes.folder)) {
    entry.attributes.hidden = BearsHiddenMark(raw);
  }
  return true;
}

}  // namespace

std::unique_ptr<IFolderWalk> SPosixFileServices::Walk(const char* folder, const char* mask,
                                                      SystemError& error) {
  std::unique_ptr<PosixFolderWalk> walk(new (std::nothrow) PosixFolderWalk(mask));
  if (walk == nullptr) {
    error = SystemError::kOther;
    return nullptr;
  }
  error = OnPath(folder, [&](const char* path) { return walk->Open(path); });
  if (error == SystemError::kFileNotFound) {
    error = SystemError::kPathNotFound;  // what is missing is the folder of the entries
  }
  if (error != SystemError::kNone) {
    return nullptr;
  }
  return walk;
}

}  // namespace kivstore
