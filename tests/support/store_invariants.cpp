#include "tests/support/store_invariants.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>

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

class StoreReader {
 public:
  explicit StoreReader(const std::string& root) : root(root) {}

  void ReadTeachers() {
    image.teachers = ReadList("Classes.zep");
    for (const ListedEntry& teacher : image.teachers) {
      ReadClasses(teacher.Path() + "/Classes.zep");
    }
  }
  void ReadClasses(const std::string& list) {
    const std::vector<ListedEntry> classes = ReadList(list);
    image.classes.insert(image.classes.end(), classes.begin(), classes.end());
    for (const ListedEntry& entry : classes) {
      const std::vector<ListedEntry> students = ReadList(entry.Path() + "/Students");
      image.students.insert(image.students.end(), students.begin(), students.end());
    }
  }

  StoreImage image;

 private:
  std::vector<ListedEntry> ReadList(const std::string& list) {
    const std::string bytes = BytesIfThere(root / list / "index.kiv");
    const IndexImage index = ReadIndexBytes(bytes);
    if (index.isTorn && !bytes.empty()) {
      image.faults.push_back("torn index: " + list);
    }
    std::vector<ListedEntry> entries;
    std::set<std::string> folders, names;
    for (const IndexLine& line : index.logins) {
      const ListedEntry entry{list, line.folder, line.first, line.last};
      entries.push_back(entry);
      if (!folders.insert(Folded(line.folder)).second) {
        image.faults.push_back("folder listed twice: " + entry.Path());
      }
      if (!names.insert(Folded(entry.Name())).second) {
        image.faults.push_back("name listed twice: " + list + "/" + entry.Name());
      }
    }
    CompareWithFolders(list, folders);
    return entries;
  }
  void CompareWithFolders(const std::string& list, std::set<std::string> lines) {
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(root / list, ignored)) {
      const std::string name = entry.path().filename().string();
      const bool isVisible = entry.is_directory() && name[0] != '.';
      const std::string told = isVisible ? BytesIfThere(entry.path() / "longname.kiv") : "";
      if (isVisible && lines.erase(Folded(name)) == 0 && !told.empty() && told[0] != '\0') {
        image.faults.push_back("folder without a line: " + list + "/" + name);
      }
    }
    for (const std::string& line : lines) {
      image.faults.push_back("line without a folder: " + list + "/" + line);
    }
  }

  fs::path root;
};

}  // namespace

StoreImage ReadStore(const std::string& root, Kind kind) {
  StoreReader reader(root);
  kind == Kind::kTeachers ? reader.ReadTeachers() : reader.ReadClasses("Classes.zep");
  return reader.image;
}

}  // namespace kivtest
