#include "hosts/common/whole_file.h"

#include <filesystem>
#include <fstream>

namespace kivhost {

namespace fs = std::filesystem;

// A folder opens on some systems, and answers no byte.
std::string ReadWholeFile(const std::string& path, size_t most, const char* kind,
                          ExitCode exitCode) {
  std::error_code error;
  std::ifstream file(fs::path(path), std::ios::binary);
  if (!file || fs::is_directory(fs::path(path), error)) {
    throw HostError(exitCode, path + ": cannot be read");
  }
  std::string bytes;
  char block[1 << 16];
  while (file.read(block, sizeof block), file.gcount() > 0) {
    bytes.append(block, static_cast<size_t>(file.gcount()));
    if (bytes.size() > most) {
      throw HostError(exitCode, path + ": too large for " + kind);
    }
  }
  if (file.bad()) {
    throw HostError(exitCode, path + ": cannot be read to its end");
  }
  return bytes;
}

void WriteWholeFile(const std::string& path, const std::string& bytes) {
  std::ofstream file(fs::path(path), std::ios::binary);
  file << bytes << std::flush;
  if (!file) {
    throw HostError(kWrongUsage, path + ": could not be written");
  }
}

}  // namespace kivhost
