// A folder for one test: made empty and unique under the system's temporary folder, removed with
// everything in it at the end. Uses nothing of the library. Paths are relative to the folder, with
// slashes; what cannot be done throws, which fails the test.
#pragma once

#include <string>
#include <vector>

namespace kivtest {

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
  bool Exists(const std::string& relative) const;
  // The names in a folder, sorted.
  std::vector<std::string> List(const std::string& relative = "") const;

 private:
  std::string root;
};

}  // namespace kivtest
