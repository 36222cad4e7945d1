// Files that a user names, read and written whole: "-" is standard input or output. Throws
// HostError with the path and the code.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "hosts/common/host_error.h"

namespace kivhost {

// For messages: the path, or "standard input" for "-".
std::string NameOfFile(const std::string& path);
// `kind` is what a larger file than `most` is not: "a file of a store".
std::string ReadWholeFile(const std::string& path, size_t most, const char* kind,
                          ExitCode exitCode);
// Throws wrong usage for what is no place to write to: a file that is there, unless it is to be
// replaced, and whatever is a store's own.
void NeedTarget(const std::string& path, bool replaces);
// For what comes piece by piece: it is written beside the file and then into its place, so that one
// that is there stays until the new is whole. A pipe or a device is written to as it is.
class WholeFile {
 public:
  WholeFile(const std::string& path, bool replaces);
  // What was not finished leaves nothing.
  ~WholeFile();
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  void Write(std::string_view bytes);
  void Finish();

 private:
  void Flush();

  std::string path;
  std::filesystem::path target;  // empty: what is written is in its place at once
  std::filesystem::path beside;
  std::ofstream file;
  std::ostream* out;
};

void WriteWholeFile(const std::string& path, const std::string& bytes, bool replaces);

}  // namespace kivhost
