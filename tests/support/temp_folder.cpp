#include "tests/support/temp_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace kivtest {
namespace {

namespace fs = std::filesystem;

fs::path MakeUniqueFolder() {
  std::random_device random;
  for (int attempt = 0; attempt < 100; ++attempt) {
    fs::path candidate = fs::temp_directory_path() / ("kivstore-test-" + std::to_string(random()));
    if (fs::create_directory(candidate)) {
      return candidate;
    }
  }
  throw std::runtime_error("no unique temporary folder");
}

void AllowOwner(const fs::path& path) {
  std::error_code ignored;
  if (!fs::is_symlink(path, ignored)) {
    fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, ignored);
  }
}

// A folder must be made accessible before it can be walked.
void RemoveTree(const fs::path& path) {
  std::error_code ignored;
  AllowOwner(path);
  if (!fs::is_symlink(path, ignored)) {
    fs::recursive_directory_iterator entry(path, ignored);
    for (; entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
      AllowOwner(entry->path());
    }
  }
  fs::remove_all(path, ignored);
}

constexpr const char* kFolder = "folder";  // what a snapshot has in place of bytes

}  // namespace

std::string ReadFileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error("cannot read " + path);
  }
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFileBytes(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << bytes;
  file.close();
  if (!file) {
    throw std::runtime_error("cannot write " + path);
  }
}

Snapshot SnapshotOf(const std::string& root) {
  Snapshot files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root)) {
    const std::string path = entry.path().generic_string();
    files[path.substr(root.size() + 1)] = entry.is_directory() ? kFolder : ReadFileBytes(path);
  }
  return files;
}

TempFolder::TempFolder() : root(MakeUniqueFolder().string()) {}

TempFolder::~TempFolder() {
  RemoveTree(root);
}

void TempFolder::WriteFile(const std::string& relative, const std::string& bytes) const {
  fs::create_directories(fs::path(Path(relative)).parent_path());
  WriteFileBytes(Path(relative), bytes);
}

std::string TempFolder::ReadFile(const std::string& relative) const {
  return ReadFileBytes(Path(relative));
}

void TempFolder::MakeFolder(const std::string& relative) const {
  fs::create_directories(Path(relative));
}

void TempFolder::Remove(const std::string& relative) const {
  RemoveTree(Path(relative));
}

void TempFolder::Restore(const Snapshot& snapshot) const {
  const Snapshot now = SnapshotOf(root);
  for (const auto& [path, bytes] : now) {
    if (snapshot.count(path) == 0) {
      Remove(path);
    }
  }
  for (const auto& [path, bytes] : snapshot) {
    const auto found = now.find(path);
    if (found == now.end() || found->second != bytes) {
      bytes == kFolder ? MakeFolder(path) : WriteFile(path, bytes);
    }
  }
}

bool TempFolder::Exists(const std::string& relative) const {
  return fs::exists(fs::symlink_status(Path(relative)));
}

std::vector<std::string> TempFolder::List(const std::string& relative) const {
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(Path(relative))) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace kivtest
