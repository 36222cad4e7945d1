// Drawings over the days of the reports that were kept.
#pragma once

#include <string>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/texts.h"

namespace kivreport {

// The medians of a class as a line over time; empty if fewer than two reports tell of it. `name`
// is the class's, escaped.
std::string MedianTimeline(const Report& report, const Class& group, const std::string& name,
                           const Words& words);

// A student's missions as a small line, to stand in a row.
std::string MissionLine(const Report& report, const Student& student, const Words& words);

}  // namespace kivreport
