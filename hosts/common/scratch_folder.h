// A folder of the program's own among the system's temporary files, which goes with all it holds.
#pragma once

#include <filesystem>
#include <functional>
#include <istream>
#include <string>
#include <string_view>

namespace kivhost {

class ScratchFolder {
 public:
  // Throws HostError if there can be none.
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  std::string Path() const { return folder.string(); }
  std::string PathOf(const char* name) const { return (folder / name).string(); }
  // What a file in it holds from here on. Throws HostError if it cannot be read to its end.
  void WriteFrom(std::istream& file, const std::function<void(std::string_view)>& write) const;

 private:
  std::filesystem::path folder;
};

}  // namespace kivhost
