#include "tests/support/store_invariants.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>

#include "tests/support/record_bytes.h"
#include "tests/support/temp_folder.h"

namespace kivtest {
namespace {

namespace fs = std::filesystem;

std::string Folded(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  });
  return text;
}

std::string BytesIfThere(const fs::path& path) {
  return fs::is_regular_file(path) ? ReadFileBytes(path.string()) : std::string();
}

// The names of the folders that tell a name, or of all.
std::set<std::string> Folders(const fs::path& list, bool naming) {
  std::set<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(list)) {
    const std::string name = entry.path().filename().string();
    const std::string told = BytesIfThere(entry.path() / "longname.kiv");
    if (entry.is_directory() && name[0] != '.' && (!naming || (told + '\0')[0] != '\0')) {
      names.insert(Folded(name));
    }
  }
  return names;
}

void ReadList(StoreImage& image, const fs::path& root, const std::string& list) {
  if (!fs::is_directory(root / list)) {
    return;
  }
  const auto fault = [&](const char* what, const std::string& name) {
    image.faults.push_back(what + list + "/" + name);
  };
  const std::string bytes = BytesIfThere(root / list / "index.kiv");
  const IndexImage index = ReadIndexBytes(bytes);
  if (index.isTorn && !bytes.empty()) {
    fault("torn index: ", "");
  }
  std::set<std::string> unlisted = Folders(root / list, true), all = Folders(root / list, false);
  std::set<std::string> lines, names;
  for (const IndexLine& line : index.logins) {
    const ListedEntry entry{list, line.folder, line.first, line.last};
    const std::string folder = Folded(line.folder);
    unlisted.erase(folder);
    if (!lines.insert(folder).second || !names.insert(Folded(entry.Name())).second) {
      fault("listed twice: ", line.folder);
    }
    if (all.count(folder) == 0) {
      fault("line without a folder: ", line.folder);
    }
    image.entries.push_back(entry);
    ReadList(image, root, entry.Path() + "/Classes.zep");
    ReadList(image, root, entry.Path() + "/Students");
  }
  for (const std::string& name : unlisted) {
    fault("folder without a line: ", name);
  }
}

}  // namespace

StoreImage ReadStore(const std::string& root) {
  StoreImage image;
  ReadList(image, root, "Classes.zep");
  return image;
}

}  // namespace kivtest
