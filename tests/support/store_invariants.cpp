#include "tests/support/store_invariants.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
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

bool ReadFileBytes(const fs::path& path, std::string& bytes) {
  std::ifstream in(path, std::ios::binary);
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return in.is_open();
}

std::string OwnName(const fs::path& folder) {
  std::string bytes;
  if (!ReadFileBytes(folder / "longname.kiv", bytes)) {
    return "";
  }
  return bytes.substr(0, bytes.find('\0'));
}

std::vector<std::string> VisibleFolders(const fs::path& list) {
  std::vector<std::string> names;
  std::error_code ignored;
  for (const fs::directory_entry& entry : fs::directory_iterator(list, ignored)) {
    const std::string name = entry.path().filename().string();
    if (entry.is_directory() && name[0] != '.') {
      names.push_back(name);
    }
  }
  return names;
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
    std::vector<ListedEntry> entries = ReadIndex(list);
    CompareWithFolders(list, entries);
    LookForDoubles(list, entries);
    return entries;
  }

  std::vector<ListedEntry> ReadIndex(const std::string& list) {
    std::vector<ListedEntry> entries;
    std::string bytes;
    ReadFileBytes(fs::path(root) / list / "index.kiv", bytes);
    const IndexImage index = ReadIndexBytes(bytes);
    for (const IndexLine& line : index.logins) {
      entries.push_back({list, line.folder, line.first, line.last});
    }
    if (index.isTorn && !bytes.empty()) {
      image.faults.push_back("torn index: " + list);
    }
    return entries;
  }

  void CompareWithFolders(const std::string& list, const std::vector<ListedEntry>& entries) {
    std::set<std::string> lines, folders;
    for (const ListedEntry& entry : entries) {
      lines.insert(Folded(entry.folder));
    }
    for (const std::string& name : VisibleFolders(fs::path(root) / list)) {
      folders.insert(Folded(name));
      if (lines.count(Folded(name)) == 0 && !OwnName(fs::path(root) / list / name).empty()) {
        image.faults.push_back("folder without a line: " + list + "/" + name);
      }
    }
    for (const std::string& line : lines) {
      if (folders.count(line) == 0) {
        image.faults.push_back("line without a folder: " + list + "/" + line);
      }
    }
  }

  void LookForDoubles(const std::string& list, const std::vector<ListedEntry>& entries) {
    std::set<std::string> folders, names;
    for (const ListedEntry& entry : entries) {
      if (!folders.insert(Folded(entry.folder)).second) {
        image.faults.push_back("folder listed twice: " + list + "/" + entry.folder);
      }
      if (!names.insert(Folded(entry.Name())).second) {
        image.faults.push_back("name listed twice: " + list + "/" + entry.Name());
      }
    }
  }

  std::string root;
};

}  // namespace

std::vector<std::string> StoreImage::ListsWith(const std::vector<ListedEntry>& entries,
                                               const std::string& name) {
  std::vector<std::string> lists;
  for (const ListedEntry& entry : entries) {
    if (entry.Name() == name) {
      lists.push_back(entry.list);
    }
  }
  return lists;
}

StoreImage ReadStore(const std::string& root, Kind kind) {
  StoreReader reader(root);
  if (kind == Kind::kTeachers) {
    reader.ReadTeachers();
  } else {
    reader.ReadClasses("Classes.zep");
  }
  return reader.image;
}

std::map<std::string, std::vector<std::string>> FindMarks(const std::string& root,
                                                          const std::vector<ListedEntry>& entries,
                                                          const std::string& file) {
  std::map<std::string, std::vector<std::string>> places;
  for (const ListedEntry& entry : entries) {
    std::string mark;
    if (ReadFileBytes(fs::path(root) / entry.Path() / file, mark)) {
      places[mark].push_back(entry.Path());
    }
  }
  return places;
}

}  // namespace kivtest
