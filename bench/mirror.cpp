// A file server at arm's length: shows a folder at another place, counts what is asked of it, and
// lets each question wait as a network would.
//
//   mirror FOLDER COUNTS MICROSECONDS PLACE [strict]
//
// Stays in the foreground until PLACE is unmounted. Each time a signal SIGUSR1 comes the questions
// since the last one are written to the file COUNTS, a line for each kind and one for all. With
// `strict` no name and no attribute is kept by the client, as on a mount that is to see every
// change at once: every step of a path is a question then.
#define FUSE_USE_VERSION 35
#include <dirent.h>
#include <fcntl.h>
#include <fuse3/fuse.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

namespace {

enum Question {
  kLook,
  kOpen,
  kRead,
  kWrite,
  kFlush,
  kList,
  kMake,
  kRemove,
  kRename,
  kSet,
  kMark,
  kLast
};

constexpr const char* kNames[kLast] = {"look", "open",   "read",   "write", "flush", "list",
                                       "make", "remove", "rename", "set",   "mark"};

std::string gFolder;
std::string gCounts;
useconds_t gWait = 0;
bool gIsStrict = false;
std::atomic<long> gAsked[kLast];

void Count(Question question) {
  ++gAsked[question];
  if (gWait > 0) {
    usleep(gWait);
  }
}

std::string Ask(Question question, const char* path) {
  Count(question);
  return gFolder + path;
}

int Answer(long result) {
  return result < 0 ? -errno : static_cast<int>(result);
}

void TellCounts() {
  std::ofstream file(gCounts);
  long all = 0;
  for (int i = 0; i < kLast; ++i) {
    const long asked = gAsked[i].exchange(0);
    all += asked;
    file << kNames[i] << ' ' << asked << '\n';
  }
  file << "all " << all << '\n';
}

// A thread awaits the signal, which all others leave to it: no handler could write a file safely.
void TellCountsWhenAsked() {
  sigset_t asking;
  sigemptyset(&asking);
  sigaddset(&asking, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &asking, nullptr);
  std::thread([asking] {
    for (int signal = 0; sigwait(&asking, &signal) == 0;) {
      TellCounts();
    }
  }).detach();
}

void* Begin(fuse_conn_info*, fuse_config* config) {
  config->use_ino = 1;
  config->nullpath_ok = 0;
  if (gIsStrict) {
    config->entry_timeout = config->attr_timeout = config->negative_timeout = 0;
    config->direct_io = 1;
  }
  return nullptr;
}

int Descriptor(const fuse_file_info* file) {
  return static_cast<int>(file->fh);
}

int Look(const char* path, struct stat* facts, fuse_file_info*) {
  return Answer(lstat(Ask(kLook, path).c_str(), facts));
}

int ReadLink(const char* path, char* text, size_t size) {
  const ssize_t length = readlink(Ask(kLook, path).c_str(), text, size - 1);
  text[length < 0 ? 0 : length] = '\0';
  return length < 0 ? -errno : 0;
}

int List(const char* path, void* to, fuse_fill_dir_t add, off_t, fuse_file_info*,
         fuse_readdir_flags) {
  DIR* const folder = opendir(Ask(kList, path).c_str());
  if (folder == nullptr) {
    return -errno;
  }
  while (const dirent* const entry = readdir(folder)) {
    struct stat facts {};
    facts.st_ino = entry->d_ino;
    facts.st_mode = DTTOIF(entry->d_type);
    add(to, entry->d_name, &facts, 0, fuse_fill_dir_flags{});
  }
  closedir(folder);
  return 0;
}

int Open(const char* path, fuse_file_info* file) {
  const int opened = open(Ask(kOpen, path).c_str(), file->flags & ~O_DIRECT);
  file->fh = static_cast<uint64_t>(opened);
  return opened < 0 ? -errno : 0;
}

int Create(const char* path, mode_t mode, fuse_file_info* file) {
  const int opened = open(Ask(kMake, path).c_str(), file->flags & ~O_DIRECT, mode);
  file->fh = static_cast<uint64_t>(opened);
  return opened < 0 ? -errno : 0;
}

int Read(const char*, char* bytes, size_t count, off_t at, fuse_file_info* file) {
  Count(kRead);
  return Answer(pread(Descriptor(file), bytes, count, at));
}

int Write(const char*, const char* bytes, size_t count, off_t at, fuse_file_info* file) {
  Count(kWrite);
  return Answer(pwrite(Descriptor(file), bytes, count, at));
}

int Sync(const char*, int, fuse_file_info* file) {
  Count(kFlush);
  return Answer(fsync(Descriptor(file)));
}

int Release(const char*, fuse_file_info* file) {
  return Answer(close(Descriptor(file)));
}

int Truncate(const char* path, off_t size, fuse_file_info* file) {
  const std::string place = Ask(kSet, path);
  return Answer(file != nullptr ? ftruncate(Descriptor(file), size)
                                : truncate(place.c_str(), size));
}

int ChangeMode(const char* path, mode_t mode, fuse_file_info*) {
  return Answer(chmod(Ask(kSet, path).c_str(), mode));
}

int SetTimes(const char* path, const timespec times[2], fuse_file_info*) {
  return Answer(utimensat(AT_FDCWD, Ask(kSet, path).c_str(), times, AT_SYMLINK_NOFOLLOW));
}

int MakeFolder(const char* path, mode_t mode) {
  return Answer(mkdir(Ask(kMake, path).c_str(), mode));
}

int Remove(const char* path) {
  return Answer(unlink(Ask(kRemove, path).c_str()));
}

int RemoveFolder(const char* path) {
  return Answer(rmdir(Ask(kRemove, path).c_str()));
}

int Rename(const char* from, const char* to, unsigned flags) {
  return Answer(
      renameat2(AT_FDCWD, Ask(kRename, from).c_str(), AT_FDCWD, (gFolder + to).c_str(), flags));
}

int GetMark(const char* path, const char* name, char* value, size_t size) {
  return Answer(lgetxattr(Ask(kMark, path).c_str(), name, value, size));
}

int SetMark(const char* path, const char* name, const char* value, size_t size, int flags) {
  return Answer(lsetxattr(Ask(kMark, path).c_str(), name, value, size, flags));
}

int TellSpace(const char* path, struct statvfs* facts) {
  return Answer(statvfs(Ask(kLook, path).c_str(), facts));
}

fuse_operations Operations() {
  fuse_operations operations{};
  operations.init = Begin;
  operations.getattr = Look;
  operations.readlink = ReadLink;
  operations.readdir = List;
  operations.open = Open;
  operations.create = Create;
  operations.read = Read;
  operations.write = Write;
  operations.fsync = Sync;
  operations.release = Release;
  operations.truncate = Truncate;
  operations.chmod = ChangeMode;
  operations.utimens = SetTimes;
  operations.mkdir = MakeFolder;
  operations.unlink = Remove;
  operations.rmdir = RemoveFolder;
  operations.rename = Rename;
  operations.getxattr = GetMark;
  operations.setxattr = SetMark;
  operations.statfs = TellSpace;
  return operations;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) {
    std::fprintf(stderr, "mirror FOLDER COUNTS MICROSECONDS PLACE [strict]\n");
    return 2;
  }
  gFolder = argv[1];
  gCounts = argv[2];
  gWait = static_cast<useconds_t>(std::atoi(argv[3]));
  char* arguments[] = {argv[0], argv[4], const_cast<char*>("-f"), nullptr};
  gIsStrict = argc > 5 && std::strcmp(argv[5], "strict") == 0;
  TellCountsWhenAsked();
  const fuse_operations operations = Operations();
  return fuse_main(3, arguments, &operations, nullptr);
}
