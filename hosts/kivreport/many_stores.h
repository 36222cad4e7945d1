// A report over the stores of many schools. Each is read by a process of its own, so that one that
// is slow, broken or huge holds up no other; what it prints gets the school's name in front, in
// every form that is text:
//
//   csv      a column `school` in front, the heading once
//   ndjson   "school" first in each line
//   json     {"schools":[{"school":..., and what the school's own report has}], "complete":...}
//   table    the school's own table below its name
//
// A school that cannot be read is told so: a row without a teacher in CSV, {"school":...,
// "complete":false,"reason":...} in both forms of JSON, a line below its name in a table.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/kivreport/report_writer.h"

namespace kivreport {

struct ManyStores {
  std::string list;                    // a CSV file with the heading name,data root
  size_t jobs = 1;                     // so many are read at a time
  Format format = Format::kTable;      // one of those above
  bool raw = false;                    // as Form::raw
  std::vector<std::string> arguments;  // for each process, but for the root
};

// Writes the schools in the order of the list, each as soon as those ahead of it are written.
// Answers how many could not be read, or not all of them; what each of them said is told on
// standard error. Throws wrong usage for a list that is none.
size_t ReportManyStores(const ManyStores& task, const std::function<void(std::string_view)>& write);

}  // namespace kivreport
