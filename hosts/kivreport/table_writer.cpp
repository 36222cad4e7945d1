#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "hosts/common/unicode.h"
#include "hosts/kivreport/cells.h"
#include "hosts/kivreport/report_writer.h"
#include "hosts/kivreport/table_foot.h"

namespace kivreport {
namespace {

// A row, or where something could not be read the names that lead there and a note, which runs over
// the columns behind them.
struct TableLine {
  std::vector<std::string> cells;
  bool isNote = false;
};

Columns TableColumns(const Report& report, const Form& form) {
  if (form.columns) {
    return *form.columns;
  }
  std::vector<const char*> names{kClassColumn, kStudentColumn};
  if (report.network) {
    names.insert(names.begin(), kTeacherColumn);
  }
  if (report.progress) {
    names.insert(names.end(), {"current_mission", "previous_mission", "vocab_level"});
  }
  if (report.since) {
    const auto more = ChangeColumns(report);
    names.insert(names.end(), more.begin(), more.end());
  }
  if (form.marksStanding && report.progress) {
    names.insert(names.end(), {"last_work", "standing"});
  }
  return ColumnsOf(names);
}

class TableLines {
 public:
  TableLines(const Report& report, const Columns& columns) : report(report), columns(columns) {
    TableLine head;
    for (const Column* const column : columns) {
      head.cells.emplace_back(column->head);
    }
    lines.push_back(std::move(head));
    AddNote(report.network ? kTeacherColumn : kClassColumn, {}, "", report.unread,
            report.IsKnown());
    for (const Teacher& teacher : report.teachers) {
      AddTeacher(teacher);
    }
  }

  std::vector<TableLine> Take() { return std::move(lines); }

 private:
  // Names that lead to what a line tells of.
  struct Place {
    std::string teacher;
    std::string group;
  };

  void AddTeacher(const Teacher& teacher) {
    AddNote(report.network ? kTeacherColumn : kClassColumn, {}, teacher.name, teacher.unread,
            teacher.IsKnown());
    if (teacher.classes.empty() && !teacher.unread) {
      AddRemark({teacher.name, "(no classes)"}, "");
    }
    for (const Class& group : teacher.classes) {
      AddClass({teacher.name, group.name}, group);
    }
  }

  void AddClass(const Place& place, const Class& group) {
    AddNote(kClassColumn, {place.teacher, ""}, group.name, group.unread, group.IsKnown());
    if (group.students.empty() && !group.unread) {
      AddRemark(place, "(no students)");
    }
    for (const Student& student : group.students) {
      if (student.unread) {
        AddNote(kStudentColumn, place, student.name, student.unread, false);
      } else {
        AddRow(place, student);
      }
    }
  }

  void AddRow(const Place& place, const Student& student) {
    TableLine line;
    for (const Column* const column : columns) {
      line.cells.push_back(
          Printable(TextOf(column->value({report, place.teacher, place.group, student}))));
    }
    lines.push_back(std::move(line));
  }

  // Where the columns do not tell it, there is no line.
  void AddRemark(const Place& place, const std::string& student) {
    AddRow(place, {student, {}, {}});
    const auto& cells = lines.back().cells;
    if (std::all_of(cells.begin(), cells.end(), [](const auto& cell) { return cell.empty(); })) {
      lines.pop_back();
    }
  }

  // "Room 12: not read, locked by someone else", in the column of the entry or the first.
  void AddNote(const std::string& columnName, const Place& place, const std::string& name,
               const std::optional<Unread>& unread, bool isPart) {
    if (!unread) {
      return;
    }
    TableLine line;
    line.isNote = true;
    const auto at = std::find_if(columns.begin(), columns.end(),
                                 [&](const Column* column) { return column->name == columnName; });
    const auto end = at == columns.end() ? columns.begin() : at;
    for (auto column = columns.begin(); column != end; ++column) {
      line.cells.push_back(
          Printable(TextOf((*column)->value({report, place.teacher, place.group, Student()}))));
    }
    line.cells.push_back((name.empty() ? "the store" : Printable(name)) +
                         (isPart ? ": not all read, " : ": not read, ") + unread->what);
    lines.push_back(std::move(line));
  }

  const Report& report;
  const Columns& columns;
  std::vector<TableLine> lines;
};

std::vector<size_t> MeasureColumns(const std::vector<TableLine>& lines, size_t count) {
  std::vector<size_t> widths(count);
  for (const TableLine& line : lines) {
    for (size_t i = 0; i + (line.isNote ? 1 : 0) < line.cells.size(); ++i) {
      widths[i] = std::max(widths[i], kivhost::CountCells(line.cells[i]));
    }
  }
  return widths;
}

std::string TextOfLine(const TableLine& line, const Columns& columns,
                       const std::vector<size_t>& widths, bool hasColor) {
  std::string text;
  for (size_t i = 0; i < line.cells.size(); ++i) {
    const bool isNote = line.isNote && i + 1 == line.cells.size();
    text += i > 0 ? "  " : "";
    text += isNote ? ColoredNote(line.cells[i], hasColor)
            : columns[i]->isNumber
                ? PadLeft(line.cells[i], widths[i])
                : ColoredCell(PadRight(line.cells[i], widths[i]), columns[i]->name, hasColor);
  }
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

}  // namespace

void WriteTable(std::ostream& out, const Report& report, const Form& form) {
  const Columns columns = TableColumns(report, form);
  const std::vector<TableLine> lines = TableLines(report, columns).Take();
  const auto widths = MeasureColumns(lines, columns.size());
  TableLine rule;
  for (const size_t width : widths) {
    rule.cells.emplace_back(width, '-');
  }
  const auto write = [&](const TableLine& line) {
    out << TextOfLine(line, columns, widths, form.hasColor) << '\n';
  };
  write(lines.front());
  write(rule);
  std::for_each(lines.begin() + 1, lines.end(), write);
  WriteFoot(out, report, form);
}

}  // namespace kivreport
