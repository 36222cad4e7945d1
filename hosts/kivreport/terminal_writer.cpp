#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "hosts/common/counted.h"
#include "hosts/common/unicode.h"
#include "hosts/kivreport/cells.h"
#include "hosts/kivreport/report_writer.h"
#include "hosts/kivreport/table_foot.h"

namespace kivreport {
namespace {

constexpr const char* kIndent = "  ";
constexpr size_t kColumnGap = 2;
constexpr size_t kDateLength = 10;  // of "2026-11-20T10:15:00"
constexpr size_t kShortest = 12;    // to which a text is cut

// A group's name, a note, or a row.
struct TerminalLine {
  std::string text;  // of what is no row
  std::vector<std::string> cells;
};

bool IsNamed(const Column* column, const std::string& name) {
  return column->name == name;
}

// The class stands above its students. Of a comparison the missions are told by how they moved.
Columns ShownColumns(const Report& report, const Form& form) {
  std::vector<const char*> names{kStudentColumn};
  if (report.progress) {
    names.insert(names.end(), {"current_mission"});
    if (!report.since) {
      names.insert(names.end(), {"previous_mission", "vocab_level", "lessons_done"});
    }
    names.insert(names.end(), {"last_work", "standing"});
  }
  if (report.since && report.progress) {
    names.emplace_back("missions_moved");
  }
  if (report.since) {
    names.emplace_back("change");
  }
  Columns columns = form.columns ? *form.columns : ColumnsOf(names);
  std::erase_if(columns, [](const Column* column) {
    return IsNamed(column, kTeacherColumn) || IsNamed(column, kClassColumn);
  });
  return columns;
}

class TerminalTable {
 public:
  TerminalTable(const Report& report, const Form& form)
      : report(report), form(form), columns(ShownColumns(report, form)) {
    for (const Column* const column : columns) {
      widths.push_back(
          std::max(kivhost::CountCells(column->upperHead), kivhost::CountCells(column->lowerHead)));
    }
    AddNote("", "the store", report.unread, report.IsKnown());
    for (const Teacher& teacher : report.teachers) {
      AddTeacher(teacher);
    }
    FitToWidth();
  }

  void Write(std::ostream& out) const {
    WriteHead(out, &Column::upperHead);
    WriteHead(out, &Column::lowerHead);
    for (const TerminalLine& line : lines) {
      if (line.cells.empty()) {
        out << line.text << '\n';
      } else {
        WriteCells(out, line.cells);
      }
    }
  }

 private:
  void AddTeacher(const Teacher& teacher) {
    const std::string name = teacher.name.empty() ? "the store" : teacher.name;
    AddNote("", name, teacher.unread, teacher.IsKnown());
    if (teacher.classes.empty() && !teacher.unread) {
      AddHeading(name + ": no classes");
    }
    for (const Class& group : teacher.classes) {
      AddClass(teacher, group);
    }
  }

  void AddClass(const Teacher& teacher, const Class& group) {
    const std::string name = PlaceName(teacher.name, group.name);
    AddNote("", name, group.unread, group.IsKnown());
    if (!group.unread && group.students.empty()) {
      AddHeading(name + ": no students");
    } else if (group.IsKnown()) {
      AddHeading(name);
    }
    for (const Student& student : group.students) {
      AddNote(kIndent, student.name, student.unread, false);
      if (!student.unread) {
        AddRow({report, teacher.name, group.name, student});
      }
    }
  }

  void AddHeading(const std::string& text) {
    lines.push_back({CutTo(Printable(text), *form.width, form.showsUnicode), {}});
  }

  void AddNote(const std::string& indent, const std::string& name,
               const std::optional<Unread>& unread, bool isPart) {
    if (unread) {
      const std::string note =
          Printable(name) + (isPart ? ": not all read, " : ": not read, ") + unread->what;
      lines.push_back({indent + ColoredNote(note, form.hasColor), {}});
    }
  }

  void AddRow(const Row& row) {
    TerminalLine line;
    for (size_t i = 0; i < columns.size(); ++i) {
      line.cells.push_back(CellText(*columns[i], row));
      widths[i] = std::max(widths[i], kivhost::CountCells(line.cells[i]));
    }
    lines.push_back(std::move(line));
  }

  std::string CellText(const Column& column, const Row& row) const {
    const std::string text = Printable(TextOf(column.value(row)));
    if (IsNamed(&column, "last_work")) {
      return text.substr(0, kDateLength);
    }
    if (IsNamed(&column, "standing")) {
      return text == "working" ? "" : text;
    }
    if (IsNamed(&column, "change")) {
      return text == "stayed" ? "" : text;
    }
    if (IsNamed(&column, "current_mission") && form.showsUnicode && row.student.progress) {
      return Bar(row.student.progress->currentMission, kMissions) + PadLeft(text, 3);
    }
    return text;
  }

  // Texts are cut, the widest first, as long as there is one to be cut.
  void FitToWidth() {
    while (LineWidth() > *form.width) {
      size_t widest = columns.size();
      for (size_t i = 0; i < columns.size(); ++i) {
        const bool mayBeCut = !columns[i]->isNumber && widths[i] > kShortest;
        if (mayBeCut && (widest == columns.size() || widths[i] > widths[widest])) {
          widest = i;
        }
      }
      if (widest == columns.size()) {
        return;
      }
      --widths[widest];
    }
  }

  // Nothing behind the last column that has something.
  size_t LineWidth() const {
    size_t width = std::string(kIndent).size();
    for (const size_t column : widths) {
      width += column + kColumnGap;
    }
    return width - kColumnGap;
  }

  void WriteHead(std::ostream& out, const char* Column::*head) const {
    std::vector<std::string> cells;
    for (const Column* const column : columns) {
      cells.emplace_back(column->*head);
    }
    WriteCells(out, cells);
  }

  void WriteCells(std::ostream& out, const std::vector<std::string>& cells) const {
    std::string text = kIndent;
    for (size_t i = 0; i < cells.size(); ++i) {
      const std::string cell = CutTo(cells[i], widths[i], form.showsUnicode);
      text += columns[i]->isNumber
                  ? PadLeft(cell, widths[i])
                  : ColoredCell(PadRight(cell, widths[i]), columns[i]->name, form.hasColor);
      text += std::string(kColumnGap, ' ');
    }
    text.erase(text.find_last_not_of(' ') + 1);
    out << text << '\n';
  }

  const Report& report;
  const Form& form;
  const Columns columns;
  std::vector<size_t> widths;
  std::vector<TerminalLine> lines;
};

}  // namespace

void WriteTerminalTable(std::ostream& out, const Report& report, const Form& form) {
  TerminalTable(report, form).Write(out);
  WriteFoot(out, report, form);
}

}  // namespace kivreport
