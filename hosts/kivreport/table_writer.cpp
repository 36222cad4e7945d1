#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "hosts/common/charset.h"
#include "hosts/kivreport/report_writer.h"

namespace kivreport {
namespace {

constexpr size_t kColumns = 6;
constexpr size_t kFirstNumber = 3;
using Row = std::array<std::string, kColumns>;

// A name out of a file may hold anything; a terminal is shown no control characters.
std::string Printable(std::string text) {
  std::replace_if(
      text.begin(), text.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
  return text;
}

Row StudentRow(const Teacher& teacher, const Class& group, const Student& student, bool progress) {
  Row row{Printable(teacher.name), Printable(group.name), Printable(student.name), "", "", ""};
  if (progress) {
    row[3] = std::to_string(student.currentMission);
    row[4] = std::to_string(student.previousMission);
    row[5] = std::to_string(student.vocabLevel);
  }
  return row;
}

std::vector<Row> MakeRows(const Report& report) {
  std::vector<Row> rows{
      {"Teacher", "Class", "Student", "Current mission", "Previous mission", "Vocabulary level"}};
  for (const Teacher& teacher : report.teachers) {
    if (teacher.classes.empty()) {
      rows.push_back({Printable(teacher.name), "(no classes)", "", "", "", ""});
    }
    for (const Class& group : teacher.classes) {
      if (group.students.empty()) {
        rows.push_back(
            {Printable(teacher.name), Printable(group.name), "(no students)", "", "", ""});
      }
      for (const Student& student : group.students) {
        rows.push_back(StudentRow(teacher, group, student, report.progress));
      }
    }
  }
  return rows;
}

std::array<size_t, kColumns> MeasureColumns(const std::vector<Row>& rows) {
  std::array<size_t, kColumns> widths{};
  for (const Row& row : rows) {
    for (size_t i = 0; i < kColumns; ++i) {
      widths[i] = std::max(widths[i], kivhost::CountCharacters(row[i]));
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
  const std::vector<Row> rows = MakeRows(report);
  const auto widths = MeasureColumns(rows);
  const size_t first = report.network ? 0 : 1;
  const size_t last = report.progress ? kColumns : kFirstNumber;

  const auto writeRow = [&](const Row& row) {
    std::string line;
    for (size_t i = first; i < last; ++i) {
      const std::string gap(widths[i] - kivhost::CountCharacters(row[i]), ' ');
      line += i < kFirstNumber ? row[i] + gap : gap + row[i];
      if (i + 1 < last) {
        line += "  ";
      }
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out << line << '\n';
  };

  writeRow(rows.front());
  Row rule;
  for (size_t i = first; i < last; ++i) {
    rule[i] = std::string(widths[i], '-');
  }
  writeRow(rule);
  std::for_each(rows.begin() + 1, rows.end(), writeRow);
  out << '\n';
  WriteCounts(out, report);
}

}  // namespace kivreport
