#include "hosts/kivreport/report_writer.h"

#include "hosts/kivreport/page/page_writer.h"
#include "hosts/kivreport/workbook_writer.h"

namespace kivreport {
namespace {

void Add(Columns& columns, const std::vector<const char*>& names) {
  const Columns more = ColumnsOf(names);
  columns.insert(columns.end(), more.begin(), more.end());
}

void WriteRows(std::ostream& out, const Report& report, const Form& form, const RowForm& rows) {
  rows.writeHead(out, report, form);
  for (const Teacher& teacher : report.teachers) {
    for (const Class& group : teacher.classes) {
      rows.writeClass(out, report, teacher, &group, form);
    }
    if (teacher.classes.empty()) {
      rows.writeClass(out, report, teacher, nullptr, form);
    }
  }
  rows.writeDeparted(out, report, form);
}

}  // namespace

void WriteReport(std::ostream& out, const Report& report, const Form& form) {
  switch (form.format) {
    case Format::kTable:
      return form.sheets  ? WriteSheets(out, report, form)
             : form.width ? WriteTerminalTable(out, report, form)
                          : WriteTable(out, report, form);
    case Format::kJson:
      return WriteJson(out, report, form);
    case Format::kCsv:
    case Format::kNdjson:
      return WriteRows(out, report, form, *RowFormOf(form.format));
    case Format::kHtml:
      return WritePage(out, report, form.language, form.sheets);
    case Format::kXlsx:
      return WriteWorkbook(out, report, form.language);
  }
}

const RowForm* RowFormOf(Format format) {
  return format == Format::kCsv ? &kCsvForm : format == Format::kNdjson ? &kNdjsonForm : nullptr;
}

Columns ColumnsFor(const Report& report, const Form& form) {
  if (form.columns) {
    return *form.columns;
  }
  Columns columns = ColumnsOf({kTeacherColumn, kClassColumn, kStudentColumn});
  if (report.progress) {
    Add(columns, {"current_mission", "previous_mission", "vocab_level", "lessons_done", "last_work",
                  "keystrokes", "errors", "left_keystrokes", "left_errors", "right_keystrokes",
                  "right_errors", "weakest_keys"});
  }
  if (form.sheets) {
    Add(columns, {"lessons", "keys"});
  }
  if (report.since) {
    Add(columns, ChangeColumns(report));
  }
  return columns;
}

std::vector<const char*> ChangeColumns(const Report& report) {
  return report.progress ? std::vector<const char*>{"change", "missions_moved", "change_note"}
                         : std::vector<const char*>{"change", "change_note"};
}

Student AsStudent(const Departed& departed) {
  return {departed.name, {}, {}, Change{Change::kLeft, {}, departed.note}};
}

}  // namespace kivreport
