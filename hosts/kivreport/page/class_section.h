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
  bool sheets;    // a sheet for each student, and no table

  // "Room 12, Ms Hill", escaped.
  std::string FullName() const;
};

std::string ClassSection(const ClassPlace& place, const Words& words);

// How a column is laid out and sorted: as numbers, or not at all.
inline constexpr const char* kNumberColumn = "num";
inline constexpr const char* kFixedColumn = "fixed";

std::string ColumnHead(std::string_view text, const char* kind = nullptr);

}  // namespace kivreport
