// All classes in one table on the page: where they stand, side by side, and the way to each.
#pragma once

#include <string>
#include <string_view>

#include "hosts/kivreport/class_figures.h"
#include "hosts/kivreport/page/class_section.h"
#include "hosts/kivreport/texts.h"

namespace kivreport {

std::string OverviewSection(const SchoolPlace& school, const Words& words);

// The same for the figures of anybody: the heads and the cells from the median on.
std::string FiguresHeads(const Words& words);
// Empty cells where nobody's mission is known. `name` is escaped.
std::string FiguresCells(const ClassFigures& figures, const std::string& name, const Words& words);

// A table with its heading, which has that id.
struct Glance {
  std::string id;
  std::string heading;  // "h2"
  std::string_view title;
  std::string caption;
  std::string head;
  std::string rows;
  std::string_view legend;  // empty: none
};
std::string GlanceSection(const Glance& glance);

}  // namespace kivreport
