// The forms a report can have.
#pragma once

#include <ostream>

#include "hosts/kivreport/model.h"

namespace kivreport {

enum class Format { kTable, kCsv, kJson };

void WriteReport(std::ostream& out, const Report& report, Format format);

// What could not be read is never given a value: a table says it in the place and at its foot, the
// values are empty in a table and in CSV, and null in JSON.

// Columns, lined up, for people.
void WriteTable(std::ostream& out, const Report& report);

// RFC 4180, a row a student:
//   teacher,class,student,current_mission,previous_mission,vocab_level
// With names only, the first three columns. The teacher is empty in a local store.
void WriteCsv(std::ostream& out, const Report& report);

// {"mode":"network","teachers":[{"name":...,"classes":[{"name":...,"students":[{"name":...,
// "current_mission":3,"previous_mission":2,"vocab_level":1}]}]}]}; in a local store "classes"
// stands at the top. With names only, each level says its counts instead of missions. "complete" is
// true, or false with "unread":[{"teacher":...,"class":...,"student":...,"path":...,"reason":...}].
void WriteJson(std::ostream& out, const Report& report);

}  // namespace kivreport
