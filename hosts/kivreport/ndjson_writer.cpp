#include "hosts/kivreport/json_value.h"
#include "hosts/kivreport/report_writer.h"

namespace kivreport {
namespace {

void WriteStudent(std::ostream& out, const Row& row, const Columns& columns) {
  Json json{{"teacher", Known(row.report.network, row.teacher)},
            {"class", row.group},
            {"student", row.student.name}};
  AddColumns(json, row, columns);
  if (row.student.unread) {
    json["unread"] = row.student.unread->what;
  }
  out << Dumped(json);
}

void WriteStudents(std::ostream& out, const Report& report, const Teacher& teacher,
                   const Class* group, const Form& form) {
  if (group == nullptr) {
    return;
  }
  const Columns columns = ColumnsFor(report, form);
  for (const Student& student : group->students) {
    WriteStudent(out, {report, teacher.name, group->name, student}, columns);
  }
}

void WriteLeftStudents(std::ostream& out, const Report& report, const Form& form) {
  if (!report.since) {
    return;
  }
  const Columns columns = ColumnsFor(report, form);
  for (const Departed& departed : report.since->left) {
    WriteStudent(out, {report, departed.teacher, departed.group, AsStudent(departed)}, columns);
  }
}

}  // namespace

const RowForm kNdjsonForm{[](std::ostream&, const Report&, const Form&) {}, WriteStudents,
                          WriteLeftStudents};

}  // namespace kivreport
