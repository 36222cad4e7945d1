#include "hosts/kivadmin/rosters/roster_csv.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <tuple>

#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/rosters/roster_changes.h"

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

// Brings one line after the other into the store. Each list is read once: what the import adds it
// also notes.
class Importer {
 public:
  explicit Importer(const Session& session) : session(session) {}

  // Throws where the line cannot be taken.
  void Take(const std::vector<std::string>& fields);
  const ImportCounts& GetCounts() const { return counts; }

 private:
  struct Teacher {
    std::optional<Roster> classes;
    std::map<const SLoginNameObj*, std::optional<Roster>> students;  // by the class's entry
  };

  Teacher& TakeTeacher(const std::string& name);
  const SLoginNameObj* TakeClass(Teacher& teacher, const std::string& name);
  void TakeStudent(Teacher& teacher, const SLoginNameObj& group, const PersonName& name);
  // The roster's own entry for one that has been added.
  static const SLoginNameObj* Note(Roster& roster, const SLoginNameObj& entry);

  const Session& session;
  std::optional<Roster> teachers;
  std::map<const SLoginNameObj*, Teacher> known;  // by the entry; null in a store without teachers
  ImportCounts counts;
};

const SLoginNameObj* Importer::Note(Roster& roster, const SLoginNameObj& entry) {
  const int32_t place = roster.list.GetSize();
  if (!roster.list.Add(std::make_unique<SLoginNameObj>(entry))) {
    throw std::bad_alloc();
  }
  return roster.list.At(place);
}

void Importer::Take(const std::vector<std::string>& fields) {
  if (fields.size() != kColumns.size()) {
    throw HostError(kRefused, std::to_string(fields.size()) + " fields and not " +
                                  std::to_string(kColumns.size()));
  }
  const auto& [teacherName, className, first, last] =
      std::tie(fields[0], fields[1], fields[2], fields[3]);
  // Nothing of a line is added whose student could not be.
  std::optional<PersonName> person;
  if (!first.empty() || !last.empty()) {
    person = NewPerson(session, first, last);
  }
  if (!className.empty() || person) {
    session.NewName(className, "class");
  }
  const ImportCounts before = counts;
  Teacher& teacher = TakeTeacher(teacherName);
  if (!className.empty()) {
    const SLoginNameObj* const group = TakeClass(teacher, className);
    if (person) {
      TakeStudent(teacher, *group, *person);
    }
  }
  if (before.teachers + before.classes + before.students ==
      counts.teachers + counts.classes + counts.students) {
    ++counts.there;
  }
}

Importer::Teacher& Importer::TakeTeacher(const std::string& name) {
  if (!session.HasTeachers()) {
    if (!name.empty()) {
      RequireTeachers(session);
    }
    return known[nullptr];
  }
  const SString text = session.NewName(name, "teacher");
  if (!teachers) {
    teachers = Teachers(session);
  }
  const SLoginNameObj* entry = FindName(*teachers, text, SString());
  if (entry == nullptr) {
    entry = Note(*teachers, EnterTeacher(session, *teachers, text));
    ++counts.teachers;
  }
  session.Site().SelectTeacher(entry);
  return known[entry];
}

const SLoginNameObj* Importer::TakeClass(Teacher& teacher, const std::string& name) {
  const SString text = session.NewName(name, "class");
  if (!teacher.classes) {
    teacher.classes = Classes(session);
  }
  const SLoginNameObj* entry = FindName(*teacher.classes, text, SString());
  if (entry == nullptr) {
    entry = Note(*teacher.classes, EnterClass(session, *teacher.classes, text));
    ++counts.classes;
  }
  return entry;
}

void Importer::TakeStudent(Teacher& teacher, const SLoginNameObj& group, const PersonName& name) {
  std::optional<Roster>& students = teacher.students[&group];
  if (!students) {
    students = Students(session, group);
  }
  if (FindName(*students, name.first, name.last) == nullptr) {
    Note(*students, EnterStudent(session, *students, name));
    ++counts.students;
  }
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

ImportCounts ImportRosters(
    const Session& session, const std::vector<CsvLine>& lines,
    const std::function<void(const CsvLine& line, const std::string& why)>& refused) {
  Importer importer(session);
  size_t notTaken = 0;
  for (const CsvLine& line : lines) {
    try {
      importer.Take(line.fields);
    } catch (const HostError& error) {
      ++notTaken;
      refused(line, error.what());
    }
  }
  ImportCounts counts = importer.GetCounts();
  counts.notTaken = notTaken;
  return counts;
}

}  // namespace kivadmin
