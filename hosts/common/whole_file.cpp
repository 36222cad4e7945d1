#include "hosts/common/whole_file.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

#include "hosts/common/charset.h"

namespace kivhost {

namespace fs = std::filesystem;

namespace {

constexpr const char* kClassesFolder = "Classes.zep";

// Its classes folder or what was deleted, or a file that programs keep beside them.
bool IsOfStore(const fs::path& path) {
  std::error_code unknown;
  const fs::path whole = fs::weakly_canonical(path, unknown);
  const auto isNamed = [](const fs::path& part, const char* name) {
    return EqualNoCase(part.string(), name);
  };
  for (fs::path at = whole; at.has_relative_path(); at = at.parent_path()) {
    const fs::path name = at.filename();
    if (isNamed(name, kClassesFolder)) {
      return true;
    }
    const bool isBesideClasses =
        isNamed(name, "Deleted") || isNamed(name, "kivstore.conf") || isNamed(name, "kivadmin.log");
    if (isBesideClasses && fs::exists(at.parent_path() / kClassesFolder, unknown)) {
      return true;
    }
  }
  return false;
}

[[noreturn]] void ThrowUnwritten(const std::string& path, int number) {
  throw HostError(kNoStore, path + ": could not be written: " +
                                std::generic_category().message(number != 0 ? number : EIO));
}

void WriteTo(const fs::path& path, const std::string& shown, const std::string& bytes) {
  errno = 0;
  std::ofstream file(path, std::ios::binary);
  file << bytes << std::flush;
  if (!file) {
    ThrowUnwritten(shown, errno);
  }
}

}  // namespace

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

void NeedTarget(const std::string& path, bool replaces) {
  if (path == "-") {
    return;
  }
  std::error_code unknown;
  const fs::file_status status = fs::status(fs::path(path), unknown);
  if (fs::is_directory(status)) {
    throw HostError(kWrongUsage, path + ": is a folder");
  }
  if (IsOfStore(fs::path(path))) {
    throw HostError(kWrongUsage, path + ": lies in a store; name a file outside of it");
  }
  if (fs::is_regular_file(status) && !replaces) {
    throw HostError(kWrongUsage, path + ": is there already; --force replaces it");
  }
}

void WriteWholeFile(const std::string& path, const std::string& bytes, bool replaces) {
  if (path == "-") {
    errno = 0;
    if (!(std::cout << bytes << std::flush)) {
      ThrowUnwritten("standard output", errno);
    }
    return;
  }
  NeedTarget(path, replaces);
  std::error_code error;
  const fs::path target(path);
  if (fs::is_other(fs::status(target, error))) {
    WriteTo(target, path, bytes);
    return;
  }
  // Through a link to where it leads.
  const fs::path canonical = fs::weakly_canonical(target, error);
  const fs::path real = error ? target : canonical;
  fs::path beside = real;
  beside += ".new";
  std::error_code ignored;
  try {
    WriteTo(beside, path, bytes);
  } catch (const HostError&) {
    fs::remove(beside, ignored);
    throw;
  }
  fs::rename(beside, real, error);
  if (error) {
    fs::remove(beside, ignored);
    throw HostError(kNoStore, path + ": could not be written: " + error.message());
  }
}

}  // namespace kivhost
