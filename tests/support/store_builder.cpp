#include "tests/support/store_builder.h"

#include <cctype>
#include <filesystem>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/xattr.h>
#endif

namespace kivtest {
namespace {

namespace fs = std::filesystem;

constexpr size_t kFolderWidth = 8;

std::string LettersAndDigits(const std::string& name) {
  std::string kept;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80 && std::isalnum(byte) != 0) {
      kept.push_back(c);
    }
  }
  return kept.substr(0, kFolderWidth);
}

std::string ParentOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

}  // namespace

StoreBuilder::StoreBuilder(const std::string& rootPath, Kind kind) : root(rootPath), kind(kind) {
  MakeList(Top());
}

std::string StoreBuilder::AddTeacher(const std::string& name, const std::string& folder) {
  const std::string teacher = AddEntry(Top(), name, "", folder);
  MakeList(ClassList(teacher));
  return teacher;
}

std::string StoreBuilder::AddClass(const std::string& teacher, const std::string& name,
                                   const std::string& folder) {
  const std::string added = AddEntry(ClassList(teacher), name, "", folder);
  MakeList(StudentList(added));
  fs::create_directory(Path(Join(added, "Shared")));
  return added;
}

std::string StoreBuilder::AddStudent(const std::string& classFolder, const std::string& first,
                                     const std::string& last, const std::string& folder) {
  const std::string student = AddEntry(StudentList(classFolder), first, last, folder);
  MakeList(student);
  return student;
}

void StoreBuilder::AddFileLine(const std::string& list, const FileLine& line) {
  lists.at(list).files.push_back(line);
}

void StoreBuilder::WriteOptions(const std::string& place, const OptionsBytes& options) {
  WriteFile(Join(place, "options.kiv"), options.Bytes());
  WriteLock(Join(place, "options.lok"));
}

void StoreBuilder::WriteGame(const std::string& student, const GameBytes& game) {
  WriteFile(Join(student, "autogame.zep"), game.Bytes());
}

void StoreBuilder::Finish() {
  for (const auto& [folder, list] : lists) {
    WriteIndex(folder);
  }
}

void StoreBuilder::DropIndexLine(const std::string& entry) {
  const std::string list = ParentOf(entry);
  std::erase_if(lists.at(list).logins,
                [&](const IndexLine& line) { return Join(list, line.folder) == entry; });
  WriteIndex(list);
}

void StoreBuilder::RemoveFolder(const std::string& entry) const {
  fs::remove_all(Path(entry));
}

void StoreBuilder::SetLongName(const std::string& entry, const std::string& first,
                               const std::string& last) const {
  WriteFile(Join(entry, "longname.kiv"), LongNameBytes(first, last));
}

bool StoreBuilder::Hide(const std::string& entry) const {
#ifdef _WIN32
  return SetFileAttributesA(Path(entry).c_str(), FILE_ATTRIBUTE_HIDDEN) != 0;
#else
  // As file servers keep the attributes of Windows. The folder must bear one for its entries' to
  // count.
  return setxattr(Path(ParentOf(entry)).c_str(), "user.DOSATTRIB", "0x10", 4, 0) == 0 &&
         setxattr(Path(entry).c_str(), "user.DOSATTRIB", "0x12", 4, 0) == 0;
#endif
}

void StoreBuilder::Tear(const std::string& file, size_t length) const {
  fs::resize_file(Path(file), length);
}

void StoreBuilder::RemoveFile(const std::string& file) const {
  fs::remove(Path(file));
}

std::string StoreBuilder::AddEntry(const std::string& list, const std::string& first,
                                   const std::string& last, const std::string& folder) {
  const std::string name = folder.empty() ? DeriveFolder(list, first + last) : folder;
  lists.at(list).logins.push_back({name, first, last});
  const std::string entry = Join(list, name);
  fs::create_directories(Path(entry));
  SetLongName(entry, first, last);
  WriteLock(Join(entry, "index.lok"));
  return entry;
}

void StoreBuilder::MakeList(const std::string& list) {
  lists[list];
  fs::create_directories(Path(list));
}

void StoreBuilder::WriteIndex(const std::string& list) const {
  const List& content = lists.at(list);
  WriteFile(Join(list, "index.kiv"), IndexBytes(content.logins, content.files));
  WriteLock(Join(list, "index.lok"));
}

void StoreBuilder::WriteLock(const std::string& file) const {
  if (kind != Kind::kLocal) {
    WriteFile(file, "");
  }
}

std::string StoreBuilder::DeriveFolder(const std::string& list, const std::string& name) const {
  const std::string plain = LettersAndDigits(name);
  std::string candidate = plain;
  for (int number = 1; candidate.empty() || fs::exists(Path(Join(list, candidate))); ++number) {
    const std::string ending = std::to_string(number);
    candidate = plain.substr(0, kFolderWidth - ending.size()) + ending;
  }
  return candidate;
}

}  // namespace kivtest
