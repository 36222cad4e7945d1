// A folder of the program's own among the system's temporary files, which goes with all it holds.
#pragma once

#include <filesystem>
#include <string>

namespace kivreport {

class ScratchFolder {
 public:
  // Throws HostError if there can be none.
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::string Path() const { return folder.string(); }
  std::string PathOf(const char* name) const { return (folder / name).string(); }

 private:
  std::filesystem::path folder;
};

}  // namespace kivreport
