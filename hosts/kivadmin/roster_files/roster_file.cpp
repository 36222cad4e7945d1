#include "hosts/kivadmin/roster_files/roster_file.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "hosts/common/host_error.h"
#include "hosts/common/unicode.h"
#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/roster_files/cell_text.h"
#include "hosts/kivadmin/roster_files/file_text.h"
#include "hosts/kivadmin/roster_files/one_roster_lines.h"
#include "hosts/kivadmin/roster_files/plain_file.h"
#include "hosts/kivadmin/roster_files/roster_table.h"

namespace kivadmin {
namespace {

namespace fs = std::filesystem;
using kivhost::HostError;
using kivhost::kWrongUsage;
using namespace std::string_view_literals;

constexpr const char* kKind = "a roster";

bool IsZip(std::string_view bytes) {
  return bytes.starts_with("PK\3\4") || bytes.starts_with("PK\5\6");
}

// What people take for a table of text; null if it may be one.
const char* OtherKind(std::string_view bytes) {
  constexpr std::pair<std::string_view, const char*> kBeginnings[] = {
      {"\xD0\xCF\x11\xE0"sv, "a workbook; save its sheet as CSV and give that"},
      {"%PDF-"sv, "a PDF file; a table as CSV is wanted"},
      {"{\\rtf"sv, "a text with formats; a table as CSV is wanted"},
      {"\x1F\x8B"sv, "a compressed file; unpack it first"},
      {"7z\xBC\xAF"sv, "a compressed file; unpack it first"},
      {"<"sv, "a page of HTML or XML; save its table as CSV and give that"}};
  for (const auto& [beginning, kind] : kBeginnings) {
    if (bytes.starts_with(beginning)) {
      return kind;
    }
  }
  return nullptr;
}

void TakeTable(std::string bytes, const RosterFormat& format, RosterFile& roster) {
  if (const char* const kind = OtherKind(bytes)) {
    throw HostError(kWrongUsage, roster.name + ": " + kind);
  }
  ReadRosterTable(DecodeFile(std::move(bytes), roster.name, format.charset), format, roster);
}

void TakeBundle(RosterBundle bundle, const RosterFormat& format, RosterFile& roster) {
  const OneRoster facts = ReadOneRoster(bundle, format.charset, roster);
  roster.readAs = "OneRoster" + (bundle.GetVersion().empty() ? "" : ' ' + bundle.GetVersion()) +
                  ", " + bundle.Charsets();
  TakeOneRoster(facts, format, roster);
}

void Read(const std::string& path, const RosterFormat& format, RosterFile& roster) {
  if (path == "-") {
    roster.name = kivhost::NameOfFile(path);
    std::string bytes = ReadPlainFile(path, kKind);
    if (IsZip(bytes)) {
      throw HostError(kWrongUsage, roster.name + ": a zip; give it as a file");
    }
    TakeTable(std::move(bytes), format, roster);
    return;
  }
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::is_directory(status)) {
    TakeBundle(RosterBundle::OpenFolder(path), format, roster);
    return;
  }
  std::string bytes = ReadPlainFile(path, kKind);
  if (IsZip(bytes)) {
    TakeBundle(RosterBundle::OpenZip(path), format, roster);
    return;
  }
  TakeTable(std::move(bytes), format, roster);
}

// Classes of a bundle without a teacher cannot stand in a store that has teachers.
void LeaveOutTeacherless(RosterFile& roster) {
  std::vector<std::string> groups;
  std::erase_if(roster.lines, [&](const RosterLine& line) {
    const bool isOne = line.teacher.empty() && !line.file.empty();
    if (isOne && (groups.empty() || groups.back() != line.group)) {
      groups.push_back(line.group);
    }
    return isOne;
  });
  if (!groups.empty()) {
    roster.notes.push_back("classes without a teacher left out (--teacher NAME gives them one): " +
                           Listed(groups));
  }
}

void LeaveOutTeachers(RosterFile& roster) {
  std::map<std::string, std::set<std::string>> teachers;
  for (RosterLine& line : roster.lines) {
    teachers[kivhost::FoldCase(line.group)].insert(line.teacher);
    line.teacher.clear();
  }
  std::erase_if(roster.lines, [](const RosterLine& line) { return line.group.empty(); });
  roster.notes.emplace_back("the store has no teachers: those of the file are left out");
  std::vector<std::string> merged;
  for (const auto& [group, names] : teachers) {
    if (names.size() > 1 && !group.empty()) {
      merged.push_back(group);
    }
  }
  if (!merged.empty()) {
    roster.notes.push_back("classes of several teachers, taken as one: " + Listed(merged));
  }
}

bool HasTeacher(const RosterLine& line) {
  return !line.teacher.empty();
}

}  // namespace

RosterFile ReadRosterFile(const std::string& path, const RosterFormat& format) {
  RosterFile roster;
  roster.name = path;
  Read(path, format, roster);
  return roster;
}

void FitToStore(RosterFile& roster, bool hasTeachers) {
  const auto& lines = roster.lines;
  if (!hasTeachers) {
    if (std::any_of(lines.begin(), lines.end(), HasTeacher)) {
      LeaveOutTeachers(roster);
    }
    return;
  }
  LeaveOutTeacherless(roster);
  if (!lines.empty() && std::none_of(lines.begin(), lines.end(), HasTeacher)) {
    throw HostError(kWrongUsage, roster.name +
                                     ": tells no teacher, and the store has teachers; --teacher "
                                     "NAME gives all to one, --columns teacher=A tells a column");
  }
}

}  // namespace kivadmin
