#include <csv.h>

#include <string>
#include <string_view>

#include "hosts/kivreport/report_writer.h"

namespace kivreport {
namespace {

constexpr const char* kLineEnd = "\r\n";

// Quotes only where the form asks for it.
std::string Quoted(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    return text;
  }
  std::string quoted(text.size() * 2 + 2, '\0');
  quoted.resize(csv_write(quoted.data(), quoted.size(), text.data(), text.size()));
  return quoted;
}

// A spreadsheet takes a text that begins so for a formula, and runs it.
bool IsFormula(const std::string& text) {
  return !text.empty() && std::string_view("=+-@\t\r").find(text[0]) != std::string_view::npos;
}

std::string Field(const Value& value, bool raw) {
  const std::string text = TextOf(value);
  const bool isNumber = std::holds_alternative<int64_t>(value);
  return Quoted(GuardedName(text, raw || isNumber));
}

void WriteRow(std::ostream& out, const Row& row, const Columns& columns, bool raw) {
  for (size_t i = 0; i < columns.size(); ++i) {
    out << (i > 0 ? "," : "") << Field(columns[i]->value(row), raw);
  }
  out << kLineEnd;
}

void WriteHead(std::ostream& out, const Report& report, const Form& form) {
  const Columns columns = ColumnsFor(report, form);
  for (size_t i = 0; i < columns.size(); ++i) {
    out << (i > 0 ? "," : "") << columns[i]->name;
  }
  out << kLineEnd;
}

// With names only a roster is told, and an empty class is part of that.
void WriteClass(std::ostream& out, const Report& report, const Teacher& teacher, const Class* group,
                const Form& form) {
  const Columns columns = ColumnsFor(report, form);
  const Class none;
  const Class& own = group != nullptr ? *group : none;
  for (const Student& student : own.students) {
    WriteRow(out, {report, teacher.name, own.name, student}, columns, form.raw);
  }
  const bool isEntry = group != nullptr ? !group->unread : report.network && !teacher.unread;
  if (own.students.empty() && isEntry && !report.progress) {
    WriteRow(out, {report, teacher.name, own.name, Student()}, columns, form.raw);
  }
}

void WriteDeparted(std::ostream& out, const Report& report, const Form& form) {
  if (!report.since) {
    return;
  }
  const Columns columns = ColumnsFor(report, form);
  for (const Departed& departed : report.since->left) {
    WriteRow(out, {report, departed.teacher, departed.group, AsStudent(departed)}, columns,
             form.raw);
  }
}

}  // namespace

std::string GuardedName(const std::string& name, bool raw) {
  return !raw && IsFormula(name) ? "'" + name : name;
}

const RowForm kCsvForm{WriteHead, WriteClass, WriteDeparted};

}  // namespace kivreport
