#include "hosts/kivreport/store_look.h"

#include <filesystem>
#include <vector>

#include "hosts/common/charset.h"
#include "hosts/kivreport/lock_probe.h"

namespace kivreport {
namespace {

namespace fs = std::filesystem;
using kivhost::EqualNoCase;

constexpr const char* kClassesFolder = "Classes.zep";
constexpr const char* kStudentsFolder = "Students";
constexpr const char* kIndexFile = "index.kiv";
constexpr const char* kLockFile = "index.lok";

std::vector<fs::path> Entries(const fs::path& folder, std::error_code& error) {
  std::vector<fs::path> entries;
  for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
    entries.push_back(it->path());
  }
  return entries;
}

// A name in a folder, letter case ignored as the store does it.
std::optional<fs::path> Find(const fs::path& folder, const char* name) {
  std::error_code error;
  if (fs::exists(folder / name, error)) {
    return folder / name;
  }
  for (const fs::path& entry : Entries(folder, error)) {
    if (EqualNoCase(entry.filename().string(), name)) {
      return entry;
    }
  }
  return std::nullopt;
}

std::optional<fs::path> FindClassesFolder(const std::string& root) {
  fs::path path(root);
  if (!path.has_filename()) {
    path = path.parent_path();
  }
  if (auto below = Find(path, kClassesFolder)) {
    return below;
  }
  if (EqualNoCase(path.filename().string(), kClassesFolder)) {
    return path;
  }
  return std::nullopt;
}

std::string CheckRoot(const std::string& root) {
  std::error_code error;
  const fs::file_status status = fs::status(root, error);
  if (status.type() == fs::file_type::not_found) {
    return root + ": no such folder; give the data root of the store";
  }
  if (error) {
    return root + ": " + error.message() + "; ask for permission to read it";
  }
  if (status.type() != fs::file_type::directory) {
    return root + ": is no folder; give the data root of the store";
  }
  Entries(root, error);
  if (error) {
    return root + ": " + error.message() + "; ask for permission to read it";
  }
  return "";
}

// Every folder of the tree that holds a list, top first.
std::vector<fs::path> ListFolders(const fs::path& classes, bool network) {
  std::vector<fs::path> lists{classes};
  std::error_code error;
  std::vector<fs::path> classFolders{classes};
  if (network) {
    classFolders.clear();
    for (const fs::path& teacher : Entries(classes, error)) {
      if (auto folder = Find(teacher, kClassesFolder)) {
        classFolders.push_back(*folder);
      }
    }
    lists.insert(lists.end(), classFolders.begin(), classFolders.end());
  }
  for (const fs::path& folder : classFolders) {
    for (const fs::path& group : Entries(folder, error)) {
      if (auto students = Find(group, kStudentsFolder)) {
        lists.push_back(*students);
      }
    }
  }
  return lists;
}

std::optional<std::string> CheckList(const fs::path& list, bool network) {
  std::error_code error;
  Entries(list, error);
  if (error) {
    return list.string() + ": " + error.message() + "; ask for permission to read it";
  }
  if (!network) {
    return std::nullopt;
  }
  const auto lock = Find(list, kLockFile);
  if (!lock) {
    return list.string() + ": no " + kLockFile + " beside the " + kIndexFile +
           ", so the list cannot be read; make an empty file of that name there";
  }
  switch (ProbeLock(*lock)) {
    case LockState::kFree:
      return std::nullopt;
    case LockState::kHeld:
      return lock->string() + ": the list is locked by someone else; try again in a moment";
    case LockState::kRefused:
      return lock->string() + ": no permission to write, which taking the lock needs; ask for it";
  }
  return std::nullopt;
}

}  // namespace

StoreLook LookAtStore(const std::string& root) {
  StoreLook look;
  look.trouble = CheckRoot(root);
  if (!look.trouble.empty()) {
    return look;
  }
  const auto classes = FindClassesFolder(root);
  if (!classes) {
    look.trouble =
        root + ": no folder " + kClassesFolder + " in it; give the data root of the store";
    return look;
  }
  std::error_code error;
  const std::vector<fs::path> entries = Entries(*classes, error);
  if (error) {
    look.trouble = classes->string() + ": " + error.message() + "; ask for permission";
  }
  for (const fs::path& entry : entries) {
    if (!fs::is_directory(entry, error)) {
      continue;
    }
    look.network = Find(entry, kClassesFolder).has_value();
    if (look.network || Find(entry, kStudentsFolder)) {
      break;
    }
  }
  return look;
}

std::optional<std::string> FindTrouble(const std::string& root, bool network) {
  const auto classes = FindClassesFolder(root);
  if (!classes) {
    return std::nullopt;
  }
  for (const fs::path& list : ListFolders(*classes, network)) {
    if (auto trouble = CheckList(list, network)) {
      return trouble;
    }
  }
  return std::nullopt;
}

}  // namespace kivreport
