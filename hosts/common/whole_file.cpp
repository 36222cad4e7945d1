#include "hosts/common/whole_file.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

#include "hosts/common/charset.h"
#include "hosts/common/console.h"

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
    const bool isBesideClasses = isNamed(name, "Deleted") || isNamed(name, "kivstore.conf") ||
                                 isNamed(name, "kivadmin.log") || isNamed(name, "kivadmin.lok");
    if (isBesideClasses && fs::exists(at.parent_path() / kClassesFolder, unknown)) {
      return true;
    }
  }
  return false;
}

// A folder opens on some systems, and answers no byte.
std::istream& OpenToRead(const std::string& path, std::ifstream& file, ExitCode exitCode) {
  if (path == "-") {
    TakeInputAsBytes();
    return std::cin;
  }
  std::error_code error;
  file.open(fs::path(path), std::ios::binary);
  if (!file || fs::is_directory(fs::path(path), error)) {
    throw HostError(exitCode, path + ": cannot be read");
  }
  return file;
}

[[noreturn]] void ThrowUnwritten(const std::string& path, int number) {
  throw HostError(kNoStore, path + ": could not be written: " +
                                std::generic_category().message(number != 0 ? number : EIO));
}

}  // namespace

std::string NameOfFile(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

std::string ReadWholeFile(const std::string& path, size_t most, const char* kind,
                          ExitCode exitCode) {
  std::ifstream opened;
  std::istream& file = OpenToRead(path, opened, exitCode);
  std::string bytes;
  char block[1 << 16];
  while (file.read(block, sizeof block), file.gcount() > 0) {
    bytes.append(block, static_cast<size_t>(file.gcount()));
    if (bytes.size() > most) {
      throw HostError(exitCode, NameOfFile(path) + ": too large for " + kind);
    }
  }
  if (file.bad()) {
    throw HostError(exitCode, NameOfFile(path) + ": cannot be read to its end");
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

WholeFile::WholeFile(const std::string& path, bool replaces) : path(path), out(&std::cout) {
  if (path == "-") {
    return;
  }
  NeedTarget(path, replaces);
  std::error_code error;
  const fs::path named(path);
  if (fs::is_other(fs::status(named, error))) {
    beside = named;
  } else {
    // Through a link to where it leads.
    const fs::path canonical = fs::weakly_canonical(named, error);
    target = error ? named : canonical;
    beside = target;
    beside += ".new";
  }
  errno = 0;
  file.open(beside, std::ios::binary);
  out = &file;
  if (!file) {
    const int number = errno;
    beside.clear();
    ThrowUnwritten(path, number);
  }
}

WholeFile::~WholeFile() {
  if (!target.empty() && !beside.empty()) {
    file.close();
    std::error_code ignored;
    fs::remove(beside, ignored);
  }
}

void WholeFile::Write(std::string_view bytes) {
  errno = 0;
  if (!(*out << bytes)) {
    ThrowUnwritten(out == &file ? path : "standard output", errno);
  }
}

void WholeFile::Flush() {
  errno = 0;
  if (!out->flush()) {
    ThrowUnwritten(out == &file ? path : "standard output", errno);
  }
}

void WholeFile::Finish() {
  Flush();
  if (target.empty()) {
    return;
  }
  errno = 0;
  file.close();
  if (!file) {
    ThrowUnwritten(path, errno);
  }
  std::error_code error;
  fs::rename(beside, target, error);
  if (error) {
    throw HostError(kNoStore, path + ": could not be written: " + error.message());
  }
  beside.clear();
}

void WriteWholeFile(const std::string& path, const std::string& bytes, bool replaces) {
  WholeFile file(path, replaces);
  file.Write(bytes);
  file.Finish();
}

}  // namespace kivhost
