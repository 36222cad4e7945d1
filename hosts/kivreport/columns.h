// What can stand in a row of a report, one row a student: every form takes its fields from here.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "hosts/kivreport/model.h"

namespace kivreport {

struct Row {
  const Report& report;
  const std::string& teacher;
  const std::string& group;
  const Student& student;
};

struct NamedCount {
  std::string name;
  KeyCount count;
};

// Not known, a number, a text, texts, numbers, and counts by name.
using Value = std::variant<std::monostate, int64_t, std::string, std::vector<std::string>,
                           std::vector<int>, std::vector<NamedCount>>;

struct Column {
  const char* name;       // in CSV, in JSON and behind --columns
  const char* head;       // for people
  const char* upperHead;  // the same on two short lines
  const char* lowerHead;
  bool isNumber;
  enum Source { kNames, kProgress, kComparison } source;  // what has to be read for it
  Value (*value)(const Row& row);
};

// Names that lead to a student are columns too.
inline constexpr const char* kTeacherColumn = "teacher";
inline constexpr const char* kClassColumn = "class";
inline constexpr const char* kStudentColumn = "student";

using Columns = std::vector<const Column*>;

// Throws wrong usage for a name that is none, telling what is near: "student,last_work".
Columns ParseColumns(const std::string& names);
// Throws wrong usage for a column that the report does not read: it has progress, or names only,
// and it is compared with another.
void NeedKnown(const Columns& columns, bool progress, bool compared);
// Of the names, each of which there is.
Columns ColumnsOf(const std::vector<const char*>& names);
// All of them, for the help.
std::string ColumnNames();

// As a table and CSV have it: "A 12/3 B 5/0" are keystrokes and errors.
std::string TextOf(const Value& value);

}  // namespace kivreport
