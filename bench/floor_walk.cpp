#include "bench/floor_walk.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <string_view>
#include <vector>

namespace kivbench {
namespace {

constexpr const char* kClasses = "/Classes.zep";

struct Name {
  const char* folder;
  const char* first;
  const char* last;
};

int Open(const std::string& path, int flags, short lockType) {
  const int file = open(path.c_str(), flags | O_CLOEXEC);
  struct flock lock {};
  lock.l_type = lockType;
  lock.l_whence = SEEK_SET;
  return file >= 0 && fcntl(file, F_OFD_SETLK, &lock) == 0 ? file : -1;
}

// The lock of a list, as long as it lives.
class HeldList {
 public:
  explicit HeldList(const std::string& folder)
      : file(Open(folder + "/index.lok", O_RDWR, F_WRLCK)) {
    fcntl(file, F_SETSIG, SIGURG);
    fcntl(file, F_SETLEASE, F_WRLCK);
  }
  ~HeldList() { close(file); }

 private:
  int file;
};

class List {
 public:
  // Whether the index and the folder tell the same entries.
  bool Read(const std::string& folder) {
    struct stat facts;
    if (lstat(folder.c_str(), &facts) != 0) {
      return false;
    }
    const HeldList lock(folder);
    ReadIndex(folder);
    ReadFolder(folder);
    const auto byFolder = [](const Name& a, const Name& b) {
      return std::string_view(a.folder) < b.folder;
    };
    std::sort(names.begin(), names.end(), byFolder);
    std::sort(folders.begin(), folders.end());
    return std::equal(
        names.begin(), names.end(), folders.begin(), folders.end(),
        [](const Name& name, std::string_view there) { return name.folder == there; });
  }

  std::vector<Name> names;

 private:
  void ReadIndex(const std::string& folder) {
    const int file = Open(folder + "/index.kiv", O_RDONLY, F_RDLCK);
    (void)!pread(file, bytes, sizeof bytes, 0);
    close(file);
    names.resize(static_cast<unsigned char>(bytes[2]) * 256u +
                 static_cast<unsigned char>(bytes[3]));
    const char* at = bytes + 4;
    for (Name& name : names) {
      for (const char** text : {&name.folder, &name.first, &name.last}) {
        *text = at;
        at += std::strlen(at) + 1;
      }
    }
  }

  void ReadFolder(const std::string& path) {
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    (void)!fgetxattr(folder, "user.DOSATTRIB", nullptr, 0);
    folders.clear();
    size_t used = 0;
    for (ssize_t count; (count = getdents64(folder, entries + used, sizeof entries - used)) > 0;) {
      for (const size_t end = used + static_cast<size_t>(count); used < end;) {
        const auto* const entry = reinterpret_cast<const dirent64*>(entries + used);
        if (entry->d_type == DT_DIR && entry->d_name[0] != '.') {
          folders.emplace_back(entry->d_name);
        }
        used += entry->d_reclen;
      }
    }
    close(folder);
  }

  std::vector<std::string_view> folders;
  char bytes[0x10000];
  alignas(dirent64) char entries[0x10000];
};

// What a list of students asks first: the class list has entries.
bool HasEntries(const std::string& folder) {
  struct stat facts;
  char count[4] = "";
  if (lstat(folder.c_str(), &facts) != 0) {
    return false;
  }
  const HeldList lock(folder);
  const int file = Open(folder + "/index.kiv", O_RDONLY, F_RDLCK);
  (void)!pread(file, count, sizeof count, 0);
  close(file);
  return (count[2] | count[3]) != 0;
}

template <size_t size>
void Tell(char (&field)[size], const Name& name) {
  std::string_view first(name.first), last(name.last);
  size_t length = first.copy(field, size - 1);
  if (!last.empty() && length < size - 1) {
    field[length++] = ' ';
    length += last.copy(field + length, size - 1 - length);
  }
  std::memset(field + length, 0, size - length);
}

}  // namespace

int64_t WalkByHand(const std::string& root, SGeneralParams& block) {
  static List teachers, classes, students;
  int64_t told = 0;
  const std::string top = root + kClasses;
  if (!teachers.Read(top)) {
    return 0;
  }
  for (const Name& teacher : teachers.names) {
    Tell(block.teacherName, teacher);
    const std::string ofTeacher = top + '/' + teacher.folder + kClasses;
    if (!classes.Read(ofTeacher)) {
      return 0;
    }
    for (const Name& group : classes.names) {
      Tell(block.className, group);
      if (!HasEntries(ofTeacher) || !students.Read(ofTeacher + '/' + group.folder + "/Students")) {
        return 0;
      }
      for (const Name& student : students.names) {
        Tell(block.studentName, student);
        ++told;
      }
    }
  }
  return told;
}

}  // namespace kivbench
