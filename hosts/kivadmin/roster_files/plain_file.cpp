#include "hosts/kivadmin/roster_files/plain_file.h"

#include <filesystem>

#include "hosts/common/host_error.h"
#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/roster_files/file_text.h"

namespace kivadmin {
namespace {

namespace fs = std::filesystem;
using kivhost::HostError;
using kivhost::kWrongUsage;

// Nothing is opened that could wait for somebody else, and nothing read that is too long.
void NeedPlainFile(const std::string& path, const char* kind) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) {
    throw HostError(kWrongUsage, path + ": no such file");
  }
  if (fs::status_known(status) && !fs::is_regular_file(status) && !fs::is_directory(status)) {
    throw HostError(kWrongUsage, path + ": a pipe, a socket or a device, and no file");
  }
  const auto size = fs::file_size(path, error);
  if (!error && size > kLongestRosterFile) {
    throw HostError(kWrongUsage, path + ": too large for " + kind);
  }
}

}  // namespace

std::string ReadPlainFile(const std::string& path, const char* kind) {
  if (path != "-") {
    NeedPlainFile(path, kind);
  }
  return kivhost::ReadWholeFile(path, kLongestRosterFile, kind, kWrongUsage);
}

}  // namespace kivadmin
