// A report over the stores of many schools. Each is read by a process of its own, so that one that
// is slow, broken or huge holds up no other; what it prints gets the school's name in front, in
// every form:
//
//   csv      a column `school` in front, the heading once
//   ndjson   "school" first in each line
//   json     {"schools":[{"school":..., and what the school's own report has}], "complete":...}
//   table    the school's own table below its name
//   html     the schools at a glance, and each with its classes
//   xlsx     a column in front on every sheet
//
// A school that cannot be read, or not to its end, is told so: a row without values in CSV,
// {"school":...,"complete":false,"reason":...} as a line of JSON, in the other forms as its own
// report tells it, and below its name if there is none. For a page and a workbook the processes
// give JSON, which is read back into the model.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "hosts/kivreport/report_writer.h"

namespace kivreport {

struct ManyStores {
  std::string list;  // a CSV file with the heading name,data root
  size_t jobs = 1;   // so many are read at a time
  Form form;
  std::vector<std::string> arguments;  // for each process, but for the root
  bool quiet = false;                  // no progress bar
  // As the model has it.
  int idleDays = 14;
  std::vector<std::pair<std::string, std::string>> part;
  bool progress = true;
};

struct SchoolsRead {
  size_t unread = 0;   // could not be read, or not all of it
  size_t without = 0;  // have nothing of what was asked for
  size_t with = 0;
};

// Writes the schools in the order of the list; what those said that have not all is told behind
// them on standard error. Throws wrong usage for a list that is none.
SchoolsRead ReportManyStores(const ManyStores& task,
                             const std::function<void(std::string_view)>& write);

}  // namespace kivreport
