#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "hosts/common/charset.h"
#include "hosts/kivreport/report_writer.h"

namespace kivreport {
namespace {

constexpr size_t kColumns = 6;
constexpr size_t kFirstNumber = 3;
using Row = std::array<std::string, kColumns>;

// A row, or where something could not be read the names that lead there and a note, which runs over
// the columns behind them.
struct Line {
  Row row;
  size_t noteAt = kColumns;

  bool IsNote() const { return noteAt < kColumns; }
};

// A name out of a file may hold anything; a terminal is shown no control characters.
std::string Printable(std::string text) {
  std::replace_if(
      text.begin(), text.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
  return text;
}

class TableLines {
 public:
  explicit TableLines(const Report& report) {
    lines.push_back({{"Teacher", "Class", "Student", "Current mission", "Previous mission",
                      "Vocabulary level"}});
    const size_t top = report.network ? 0 : 1;
    AddNote(Row(), top, "", report.unread, report.IsKnown());
    for (const Teacher& teacher : report.teachers) {
      AddTeacher(teacher, top);
    }
  }

  std::vector<Line> Take() { return std::move(lines); }

 private:
  void AddTeacher(const Teacher& teacher, size_t top) {
    const Row row{Printable(teacher.name)};
    AddNote(row, top, teacher.name, teacher.unread, teacher.IsKnown());
    if (teacher.classes.empty() && !teacher.unread) {
      lines.push_back({{row[0], "(no classes)"}});
    }
    for (const Class& group : teacher.classes) {
      AddClass(row, group);
    }
  }

  void AddClass(Row row, const Class& group) {
    AddNote(row, 1, group.name, group.unread, group.IsKnown());
    row[1] = Printable(group.name);
    if (group.students.empty() && !group.unread) {
      lines.push_back({{row[0], row[1], "(no students)"}});
    }
    for (const Student& student : group.students) {
      AddStudent(row, student);
    }
  }

  void AddStudent(Row row, const Student& student) {
    if (student.unread) {
      AddNote(row, 2, student.name, student.unread, false);
      return;
    }
    row[2] = Printable(student.name);
    if (student.progress) {
      row[3] = std::to_string(student.progress->currentMission);
      row[4] = std::to_string(student.progress->previousMission);
      row[5] = std::to_string(student.progress->vocabLevel);
    }
    lines.push_back({row});
  }

  // "Room 12: not read, locked by someone else"
  void AddNote(Row row, size_t at, const std::string& name, const std::optional<Unread>& unread,
               bool isPart) {
    if (unread) {
      row[at] = (name.empty() ? "the store" : Printable(name)) +
                (isPart ? ": not all read, " : ": not read, ") + unread->what;
      lines.push_back({row, at});
    }
  }

  std::vector<Line> lines;
};

std::array<size_t, kColumns> MeasureColumns(const std::vector<Line>& lines) {
  std::array<size_t, kColumns> widths{};
  for (const Line& line : lines) {
    for (size_t i = 0; i < line.noteAt; ++i) {
      widths[i] = std::max(widths[i], kivhost::CountCharacters(line.row[i]));
    }
  }
  return widths;
}

void Plural(std::ostream& out, size_t count, const char* one, const char* many) {
  out << count << ' ' << (count == 1 ? one : many);
}

void WriteCounts(std::ostream& out, const Report& report) {
  if (report.network) {
    Plural(out, report.teachers.size(), "teacher", "teachers");
    out << ", ";
  }
  Plural(out, report.CountClasses(), "class", "classes");
  out << ", ";
  Plural(out, report.CountStudents(), "student", "students");
  out << '\n';
}

}  // namespace

void WriteTable(std::ostream& out, const Report& report) {
  const std::vector<Line> lines = TableLines(report).Take();
  const auto widths = MeasureColumns(lines);
  const size_t first = report.network ? 0 : 1;
  const size_t last = report.progress ? kColumns : kFirstNumber;

  const auto write = [&](const Line& line) {
    std::string text;
    for (size_t i = first; i < last; ++i) {
      const size_t width = kivhost::CountCharacters(line.row[i]);
      const std::string gap(line.IsNote() && i >= line.noteAt ? 0 : widths[i] - width, ' ');
      text += i < kFirstNumber ? line.row[i] + gap : gap + line.row[i];
      if (i + 1 < last) {
        text += "  ";
      }
    }
    text.erase(text.find_last_not_of(' ') + 1);
    out << text << '\n';
  };

  write(lines.front());
  Line rule;
  for (size_t i = first; i < last; ++i) {
    rule.row[i] = std::string(widths[i], '-');
  }
  write(rule);
  std::for_each(lines.begin() + 1, lines.end(), write);
  out << '\n';
  WriteCounts(out, report);
  for (const std::string& reason : ReasonsOf(report)) {
    out << "incomplete: " << Printable(reason) << '\n';
  }
}

}  // namespace kivreport
