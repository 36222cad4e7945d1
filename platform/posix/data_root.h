// The folder that holds the store at work. What lies below it is reached from a handle of it where
// a link leads to it, and where entries are changed.
//
// It is kept for one command, so that a host that lives long does not go on with a folder that has
// been renamed or taken off since. Keeping it costs nothing; the first use of the handle opens it
// (one call), and letting go closes it (one).
#pragma once

#include <sys/types.h>

#include <string_view>

#include "platform/posix/descriptor.h"
#include "platform/posix/file_system_kind.h"

namespace kivstore {

class DataRoot {
 public:
  constexpr DataRoot() = default;

  // `path` as the store holds it; empty: lets go. A path that the system cannot take is none.
  void Keep(const char* path);
  // How `path`, one of the system's, goes on from the root; null if it does not lie below it.
  // Letter case is ignored, unless that spells another folder.
  const char* WayTo(const char* path);
  // 0, or the system's error if it is not there.
  int Open();
  bool IsOpen() const { return folder.IsOpen(); }
  int Get() const { return folder.Get(); }
  const char* Text() const { return text; }
  // Something was found by the root's text as it stands.
  bool isSpelledRight = false;

  // A look has met this file system at `path`, which is no link. Costs one call for each file
  // system that the process meets.
  void Meet(dev_t fileSystem, const char* path);
  // Whether other machines may change what was met below the root, or without any look the root.
  bool IsShared();
  // Whether what was met last is of that kind.
  bool IsWindowsShare();

 private:
  static constexpr int kRoom = 4096;

  std::string_view View() const { return {text, static_cast<size_t>(length)}; }
  bool IsSpelledBy(const char* path);
  int OpenAs(const char* path);
  void Take(dev_t fileSystem, const char* path);
  void MeetItself();

  Descriptor folder;
  dev_t met = 0;
  bool hasMet = false;
  bool isShared = false;
  FileSystemKind kind = FileSystemKind::kLocal;
  int length = 0;  // with the slash that ends it; 0: nothing is kept
  char text[kRoom] = "";
};

// The one of this process.
DataRoot& KeptDataRoot();

}  // namespace kivstore
