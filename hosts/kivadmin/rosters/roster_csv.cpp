#include "hosts/kivadmin/rosters/roster_csv.h"

#include <algorithm>
#include <array>

#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/rosters/rosters.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;
using kivstore::SString;

constexpr size_t kLongestFile = 64 << 20;
constexpr std::array kColumns = {"teacher", "class", "first_name", "last_name"};

std::string LinesOfClass(const Session& session, const std::string& teacher,
                         const SLoginNameObj& group) {
  const std::string name = session.Show(group.firstName);
  const Roster students = Students(session, group);
  if (students.list.IsEmpty()) {
    return FormatCsv({teacher, name, "", ""});
  }
  std::string lines;
  for (const SLoginNameObj& student : students.list) {
    lines +=
        FormatCsv({teacher, name, session.Show(student.firstName), session.Show(student.lastName)});
  }
  return lines;
}

// Of the selected teacher.
std::string LinesOfClasses(const Session& session, const std::string& teacher) {
  std::string lines;
  const Roster classes = Classes(session);
  for (const SLoginNameObj& group : classes.list) {
    lines += LinesOfClass(session, teacher, group);
  }
  return lines.empty() && !teacher.empty() ? FormatCsv({teacher, "", "", ""}) : lines;
}

}  // namespace

std::string ExportRosters(const Session& session) {
  std::string lines = FormatCsv({kColumns.begin(), kColumns.end()});
  if (!session.HasTeachers()) {
    return lines + LinesOfClasses(session, "");
  }
  const Roster teachers = Teachers(session);
  for (const SLoginNameObj& teacher : teachers.list) {
    session.Site().SelectTeacher(&teacher);
    lines += LinesOfClasses(session, session.Show(teacher.firstName));
  }
  return lines;
}

std::vector<CsvLine> ReadRosterFile(const std::string& path) {
  std::vector<CsvLine> lines =
      ReadCsv(kivhost::ReadWholeFile(path, kLongestFile, "a file of rosters", kWrongUsage));
  const bool hasHeader =
      !lines.empty() && std::equal(lines[0].fields.begin(), lines[0].fields.end(), kColumns.begin(),
                                   kColumns.end(), kivhost::EqualNoCase);
  if (!hasHeader) {
    throw HostError(kWrongUsage,
                    path + ": the first line is not teacher,class,first_name,last_name");
  }
  lines.erase(lines.begin());
  return lines;
}

}  // namespace kivadmin
