#include "tests/support/store_builder.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/xattr.h>
#endif

namespace kivtest {
namespace {

namespace fs = std::filesystem;

constexpr size_t kFolderWidth = 8;

bool EqualNoCase(const std::string& a, const std::string& b) {
  const auto fold = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                            [&](char x, char y) { return fold(x) == fold(y); });
}

bool HasFolder(const std::vector<IndexLine>& lines, const std::string& folder) {
  return std::any_of(lines.begin(), lines.end(),
                     [&](const IndexLine& line) { return EqualNoCase(line.folder, folder); });
}

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

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

#ifdef _WIN32
bool SetHiddenAttribute(const std::string& path) {
  return SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_HIDDEN) != 0;
}
#else
// As file servers keep the attributes of Windows. The folder must bear one for its entries' to
// count.
bool SetHiddenAttribute(const std::string& path) {
  return setxattr(ParentOf(path).c_str(), "user.DOSATTRIB", "0x10", 4, 0) == 0 &&
         setxattr(path.c_str(), "user.DOSATTRIB", "0x12", 4, 0) == 0;
}
#endif

}  // namespace

StoreBuilder::StoreBuilder(const std::string& rootPath, Kind kind) : root(rootPath), kind(kind) {
  MakeList(Top());
}

std::string StoreBuilder::ClassList(const std::string& teacher) {
  return teacher.empty() ? Top() : Join(teacher, "Classes.zep");
}

std::string StoreBuilder::StudentList(const std::string& classFolder) {
  return Join(classFolder, "Students");
}

std::string StoreBuilder::Join(const std::string& folder, const std::string& name) {
  return folder + "/" + name;
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
  MakeFolder(Join(added, "Shared"));
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
  if (HasLocks()) {
    WriteFile(Join(place, "options.lok"), "");
  }
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
  std::vector<IndexLine>& lines = lists.at(ParentOf(entry)).logins;
  std::erase_if(lines, [&](const IndexLine& line) { return line.folder == NameOf(entry); });
  WriteIndex(ParentOf(entry));
}

void StoreBuilder::RemoveFolder(const std::string& entry) const {
  fs::remove_all(Path(entry));
}

void StoreBuilder::SetLongName(const std::string& entry, const std::string& first,
                               const std::string& last) const {
  WriteFile(Join(entry, "longname.kiv"), LongNameBytes(first, last));
}

bool StoreBuilder::Hide(const std::string& entry) const {
  return SetHiddenAttribute(Path(entry));
}

void StoreBuilder::Tear(const std::string& file, size_t length) const {
  fs::resize_file(Path(file), length);
}

void StoreBuilder::WriteFile(const std::string& file, const std::string& bytes) const {
  std::ofstream out(Path(file), std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) {
    throw std::runtime_error("cannot write " + Path(file));
  }
}

void StoreBuilder::RemoveFile(const std::string& file) const {
  fs::remove(Path(file));
}

std::string StoreBuilder::ReadFile(const std::string& file) const {
  std::ifstream in(Path(file), std::ios::binary);
  if (!in) {
    throw std::runtime_error("cannot read " + Path(file));
  }
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string StoreBuilder::AddEntry(const std::string& list, const std::string& first,
                                   const std::string& last, const std::string& folder) {
  std::vector<IndexLine>& lines = lists.at(list).logins;
  const std::string name = folder.empty() ? DeriveFolder(lists.at(list), first + last) : folder;
  lines.push_back({name, first, last});
  const std::string entry = Join(list, name);
  MakeFolder(entry);
  SetLongName(entry, first, last);
  if (HasLocks()) {
    WriteFile(Join(entry, "index.lok"), "");
  }
  return entry;
}

void StoreBuilder::MakeList(const std::string& list) {
  lists[list];
  MakeFolder(list);
}

void StoreBuilder::MakeFolder(const std::string& folder) const {
  fs::create_directories(Path(folder));
}

void StoreBuilder::WriteIndex(const std::string& list) const {
  const List& content = lists.at(list);
  WriteFile(Join(list, "index.kiv"), IndexBytes(content.logins, content.files));
  if (HasLocks()) {
    WriteFile(Join(list, "index.lok"), "");
  }
}

std::string StoreBuilder::DeriveFolder(const List& list, const std::string& name) const {
  const std::string plain = LettersAndDigits(name);
  std::string candidate = plain;
  for (int number = 1; candidate.empty() || HasFolder(list.logins, candidate); ++number) {
    const std::string ending = std::to_string(number);
    candidate = plain.substr(0, kFolderWidth - ending.size()) + ending;
  }
  return candidate;
}

}  // namespace kivtest
