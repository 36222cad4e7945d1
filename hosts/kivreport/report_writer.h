// The forms a report can have.
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>

#include "hosts/kivreport/columns.h"
#include "hosts/kivreport/model.h"
#include "hosts/kivreport/texts.h"

namespace kivreport {

enum class Format { kTable, kCsv, kJson, kNdjson, kHtml, kXlsx };

// A page and a workbook have columns of their own.
constexpr bool HasOwnLayout(Format format) {
  return format == Format::kHtml || format == Format::kXlsx;
}

// How it is written.
struct Form {
  Format format = Format::kTable;
  std::optional<Columns> columns;  // nothing: the form's own
  bool raw = false;                // CSV: names that a spreadsheet takes for formulas as they are
  bool sheets = false;             // a student each, with all that is known
  std::optional<size_t> width;     // of the terminal that a table is to fit; nothing: a pipe
  bool showsUnicode = false;       // that terminal
  bool marksStanding = false;      // also in a pipe
  bool hasColor = false;           // of a table's marks: idle, not begun, not read
  Language language = Language::kEnglish;  // of a page and of a workbook
};

void WriteReport(std::ostream& out, const Report& report, const Form& form);

// What could not be read is never given a value: a table says it in the place and at its foot, the
// values are empty in a table and in CSV, and null in JSON.

// Columns, lined up, for people: the names and the missions, and what else is asked for.
void WriteTable(std::ostream& out, const Report& report, const Form& form);

// The same for a terminal: by class, as wide as it, names cut where they must be.
void WriteTerminalTable(std::ostream& out, const Report& report, const Form& form);

// Each student with the row of missions and the keys that go worst.
void WriteSheets(std::ostream& out, const Report& report, const Form& form);

// {"mode":"network","teachers":[{"name":...,"classes":[{"name":...,"students":[{"name":...,
// "current_mission":3,"previous_mission":2,"vocab_level":1, and the other columns}]}]}]}; in a
// local store "classes" stands at the top. With names only, each level says its counts instead of
// missions. "complete" is true, or false with
// "unread":[{"teacher":...,"class":...,"student":...,"path":...,"reason":...,"message":...}], the
// message being the reason with its path and what to do. Behind it "school", "root", "written_at",
// "part" if it was limited to one, and of a comparison
// "since":{"written_at":...,"report":...,"left":[{"teacher":...,"class":...,"name":...,"mission":...,
// "note":...}]}, of kept reports "history":[{"teacher":...,"class":...,
// "points":[{"written_at":...,"median":...,"students":...}],
// "students":[{"name":...,"points":[{"written_at":...,"mission":...}]}]}].
void WriteJson(std::ostream& out, const Report& report, const Form& form);

// Forms of a row a student, which are written class by class: the head, each class as it comes, a
// null for a teacher without any, and at the end those who are not there any more.
struct RowForm {
  void (*writeHead)(std::ostream& out, const Report& report, const Form& form);
  void (*writeClass)(std::ostream& out, const Report& report, const Teacher& teacher,
                     const Class* group, const Form& form);
  void (*writeDeparted)(std::ostream& out, const Report& report, const Form& form);
};

// RFC 4180:
//   teacher,class,student,current_mission,previous_mission,vocab_level, and the other columns
// With names only, the first three columns, and a row without a student for an empty class. The
// teacher is empty in a local store. A name that a spreadsheet would take for a formula has an
// apostrophe in front, unless it is wanted raw.
extern const RowForm kCsvForm;

// An object a line: {"teacher":...,"class":...,"student":..., and the other columns}, with "unread"
// for the reason if there is one. The teacher is null in a local store.
extern const RowForm kNdjsonForm;

// A name as CSV has it ahead of its quotes: with that apostrophe, or `raw`.
std::string GuardedName(const std::string& name, bool raw);

// Null for a form that wants the whole report.
const RowForm* RowFormOf(Format format);

// What a row has unless columns were chosen, for CSV and JSON.
Columns ColumnsFor(const Report& report, const Form& form);

// Of a report that is compared; with names only nobody moves.
std::vector<const char*> ChangeColumns(const Report& report);

// Who is not there any more, as a row.
Student AsStudent(const Departed& departed);

}  // namespace kivreport
