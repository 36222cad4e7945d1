// Drawings of a class over the course's 25 missions, in SVG that stands in the page.
#pragma once

#include <string>

#include "hosts/kivreport/class_figures.h"
#include "hosts/kivreport/texts.h"

namespace kivreport {

// The axis that every column chart refers to: once on a page, ahead of them.
std::string AxisDefinition();

// A column of students over each mission, with their numbers, the range under it and the median on
// the range. `name` is the class's, escaped; somebody's mission is known.
std::string ColumnChart(const ClassFigures& figures, const std::string& name, const Words& words);

// The same as a strip of 25 fields, the darker the more students stand there.
std::string Strip(const ClassFigures& figures, const std::string& name, const Words& words);

}  // namespace kivreport
