// A report in JSON, as another process of this program wrote it, back in the model.
#pragma once

#include <optional>
#include <string_view>

#include "hosts/kivreport/model.h"

namespace kivreport {

// What was asked for is as in `asked`: whether there is progress, from how many days on a student
// is idle, and the part of the store. Which lessons are done and how the keys go is there if the
// JSON has these columns. Nothing for a text that is no such report.
std::optional<Report> ReportOfJson(std::string_view text, const Report& asked);

}  // namespace kivreport
