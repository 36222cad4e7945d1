// A class on the page: how it stands, and its students in a table.
#pragma once

#include <cstddef>
#include <string>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/texts.h"

namespace kivreport {

// A school on the page: the only one, or one of many. These stand a level of headings deeper, and
// each class names its school.
struct SchoolPlace {
  const Report& report;
  size_t firstClass;  // its number, from 1, over the whole page
  bool sheets;        // a sheet for each student, and no table
  bool ofMany;

  // "h3", or "h4" among many.
  std::string Heading(int level) const { return 'h' + std::to_string(level + (ofMany ? 1 : 0)); }
};

struct ClassPlace {
  const SchoolPlace& school;
  const Teacher& teacher;
  const Class& group;
  size_t number;

  // "Room 12, Ms Hill, East", escaped.
  std::string FullName() const;
};

std::string ClassSection(const ClassPlace& place, const Words& words);

// How a column is laid out and sorted: as numbers, or not at all.
inline constexpr const char* kNumberColumn = "num";
inline constexpr const char* kFixedColumn = "fixed";

std::string ColumnHead(std::string_view text, const char* kind = nullptr);

}  // namespace kivreport
