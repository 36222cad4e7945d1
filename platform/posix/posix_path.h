// A path of the store, turned into one of the system: slashes for backslashes, and names found
// without regard to letter case.
#pragma once

#include <cerrno>
#include <string_view>

#include "platform/file_services.h"

namespace kivstore {

class PosixPath {
 public:
  explicit PosixPath(const char* path);

  // kNone; kPathNotFound for an empty path, kInvalidName for one longer than the system takes.
  SystemError Check() const;
  const char* Text() const { return text; }
  std::string_view View() const { return {text, static_cast<size_t>(length)}; }

  // For a path that the system did not find as written: puts the names that stand on disk in place
  // of those that differ in letter case only, from the first folder that is not there as written
  // down to the last name. Of several, the first in byte order.
  // kNone: the path now names something. kFileNotFound: its folder does, the last name is not in
  // it. kPathNotFound: the folder is missing.
  SystemError MatchNames();
  // The other path's last name, which has the same length: undoes what MatchNames did to it.
  void TakeLastName(const PosixPath& other);

 private:
  static constexpr int kRoom = 4096;  // the system's limit, NUL included

  int StartOfName(int end) const;
  int EndOfNames(int end) const;
  SystemError MatchName(int end);
  SystemError MatchInFolder(int start, int end);
  int OpenFolder(class FolderReader& folder, int end);

  int length;
  char text[kRoom];
};

SystemError ToSystemError(int systemError);

// Runs `call`, which gets a system path and answers 0 or the system's error, on `path` as written
// and, only if that finds nothing, on the path that differs in letter case.
template <class Call>
SystemError OnPath(const char* path, Call call) {
  PosixPath posix(path);
  if (const SystemError unusable = posix.Check(); unusable != SystemError::kNone) {
    return unusable;
  }
  int failure = call(posix.Text());
  if (failure == ENOENT) {
    const SystemError lookup = posix.MatchNames();
    if (lookup != SystemError::kNone) {
      return lookup;
    }
    failure = call(posix.Text());
  }
  return ToSystemError(failure);
}

}  // namespace kivstore
