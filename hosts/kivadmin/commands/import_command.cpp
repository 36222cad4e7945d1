#include <array>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>

#include "foundation/site_mode.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/csv_reader.h"
#include "hosts/kivadmin/rosters/roster_work.h"

namespace kivadmin {
namespace {

using kivstore::SLoginNameObj;
using kivstore::SString;

constexpr std::array kColumns = {"teacher", "class", "first_name", "last_name"};

struct ImportArguments {
  std::string file;
};

struct Counts {
  size_t teachers = 0;
  size_t classes = 0;
  size_t students = 0;
  size_t there = 0;
  size_t notTaken = 0;
};

// Brings one line after the other into the store. Each list is read once: what the import adds it
// also notes.
class Importer {
 public:
  explicit Importer(const Session& session) : session(session) {}

  // Throws where the line cannot be taken.
  void Take(const std::vector<std::string>& fields);
  const Counts& GetCounts() const { return counts; }

 private:
  struct Teacher {
    std::unique_ptr<Roster> classes;
    std::map<const SLoginNameObj*, std::unique_ptr<Roster>> students;  // by the class's entry
  };

  Teacher& TakeTeacher(const std::string& name);
  const SLoginNameObj* TakeClass(Teacher& teacher, const std::string& name);
  void TakeStudent(Teacher& teacher, const SLoginNameObj& group, const PersonName& name);
  // The roster's own entry for one that has been added.
  static const SLoginNameObj* Note(Roster& roster, const SLoginNameObj& entry);

  const Session& session;
  std::unique_ptr<Roster> teachers;
  std::map<const SLoginNameObj*, Teacher> known;  // by the entry; null in a store without teachers
  Counts counts;
};

const SLoginNameObj* Importer::Note(Roster& roster, const SLoginNameObj& entry) {
  auto* const copy = new SLoginNameObj(entry);
  roster.list.Array().Add(copy);
  return copy;
}

void Importer::Take(const std::vector<std::string>& fields) {
  if (fields.size() != kColumns.size()) {
    throw AdminError{kRefused, std::to_string(fields.size()) + " fields and not " +
                                   std::to_string(kColumns.size())};
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
  const Counts before = counts;
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
    teachers = session.Teachers();
  }
  const SLoginNameObj* entry = Session::FindName(*teachers, text, SString());
  if (entry == nullptr) {
    entry = Note(*teachers, EnterTeacher(session, *teachers, text));
    ++counts.teachers;
  }
  SelectTeacher(entry);
  return known[entry];
}

const SLoginNameObj* Importer::TakeClass(Teacher& teacher, const std::string& name) {
  const SString text = session.NewName(name, "class");
  if (!teacher.classes) {
    teacher.classes = session.Classes();
  }
  const SLoginNameObj* entry = Session::FindName(*teacher.classes, text, SString());
  if (entry == nullptr) {
    entry = Note(*teacher.classes, EnterClass(session, *teacher.classes, text));
    ++counts.classes;
  }
  return entry;
}

void Importer::TakeStudent(Teacher& teacher, const SLoginNameObj& group, const PersonName& name) {
  std::unique_ptr<Roster>& students = teacher.students[&group];
  if (!students) {
    students = session.Students(group);
  }
  if (Session::FindName(*students, name.first, name.last) == nullptr) {
    Note(*students, EnterStudent(session, *students, group, name));
    ++counts.students;
  }
}

std::vector<CsvLine> ReadLines(const std::string& path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  if (!file || file.bad()) {
    throw AdminError{kWrongUsage, path + ": could not be read"};
  }
  std::vector<CsvLine> lines = ReadCsv(text);
  const bool hasHeader =
      !lines.empty() && std::equal(lines[0].fields.begin(), lines[0].fields.end(), kColumns.begin(),
                                   kColumns.end(), kivhost::EqualNoCase);
  if (!hasHeader) {
    throw AdminError{kWrongUsage, path +
                                      ": the first line is not teacher,class,first_name,"
                                      "last_name"};
  }
  lines.erase(lines.begin());
  return lines;
}

std::string Summary(const Counts& counts, const std::string& file) {
  return "imported " + file + ": " + std::to_string(counts.teachers) + " teachers, " +
         std::to_string(counts.classes) + " classes, " + std::to_string(counts.students) +
         " students added; " + std::to_string(counts.there) + " lines there already, " +
         std::to_string(counts.notTaken) + " not taken";
}

void Import(const CommonOptions& common, const ImportArguments& arguments) {
  const std::vector<CsvLine> lines = ReadLines(arguments.file);
  const Session session(common, Session::Access::kChange);
  Importer importer(session);
  size_t notTaken = 0;
  for (const CsvLine& line : lines) {
    try {
      importer.Take(line.fields);
    } catch (const AdminError& error) {
      ++notTaken;
      std::cerr << arguments.file << ':' << line.number << ": " << error.message << '\n';
    }
  }
  Counts counts = importer.GetCounts();
  counts.notTaken = notTaken;
  session.Say(Summary(counts, arguments.file));
  if (notTaken > 0) {
    throw AdminError{kRefused, std::to_string(notTaken) + " of " + std::to_string(lines.size()) +
                                   " lines were not taken"};
  }
}

}  // namespace

void AddImportCommand(CLI::App& app, CommonOptions& common) {
  CLI::App* const import = app.add_subcommand(
      "import",
      "Add the teachers, classes and students of a CSV file, UTF-8, with the header\n"
      "teacher,class,first_name,last_name. A line without a student adds the class, one without\n"
      "a class the teacher. What is there already stays as it is; a line that cannot be taken is\n"
      "reported with its number, and the rest is taken.");
  const auto arguments = std::make_shared<ImportArguments>();
  AddChangeArguments(*import, common);
  import->add_option("FILE", arguments->file, "The CSV file")->required();
  import->callback([&common, arguments] { Import(common, *arguments);
});
}  // namespace kivadmin

}  // namespace kivadmin
