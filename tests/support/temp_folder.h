// A folder for one test: made empty and unique under the system's temporary folder, removed with
// everything in it at the end. Uses nothing of the library. Paths are relative to the folder, with
// slashes; what cannot be done throws, which fails the test.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace kivtest {

std::string ReadFileBytes(const std::string& path);
void WriteFileBytes(const std::string& path, const std::string& bytes);

// Every file below a folder with its bytes, and every folder: to see what a call has changed.
using Snapshot = std::map<std::string, std::string>;
Snapshot SnapshotOf(const std::string& root);

class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& Path() const { return root; }
  std::string Path(const std::string& relative) const { return root + "/" + relative; }

  // Writing and making folders make the missing parents too.
  void WriteFile(const std::string& relative, const std::string& bytes) const;
  std::string ReadFile(const std::string& relative) const;
  void MakeFolder(const std::string& relative) const;
  void Remove(const std::string& relative) const;  // with everything in it
  // Puts everything back to how it was, touching nothing else.
  void Restore(const Snapshot& snapshot) const;
  bool Exists(const std::string& relative) const;
  // The names in a folder, sorted.
  std::vector<std::string> List(const std::string& relative = "") const;

 private:
  std::string root;
};

}  // namespace kivtest
