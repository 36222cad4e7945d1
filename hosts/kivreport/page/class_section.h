// A class on the page: how it stands, and its students in a table.
#pragma once

#include <cstddef>
#include <string>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/page/texts.h"

namespace kivreport {

struct ClassPlace {
  const Report& report;
  const Teacher& teacher;
  const Class& group;
  size_t number;  // from 1, over the whole report

  // "Room 12, Ms Hill", escaped.
  std::string FullName() const;
};

std::string ClassSection(const ClassPlace& place, const Words& words);

// The head of a column. A kind is how it is laid out and sorted: "num", or "fixed" for one that is
// not.
std::string ColumnHead(std::string_view text, const char* kind = nullptr);

}  // namespace kivreport
