// What stands below a table: how many there are, who is not there any more, the medians of kept
// reports, and what could not be read.
#pragma once

#include <ostream>

#include "hosts/kivreport/report_writer.h"

namespace kivreport {

// "incomplete: ", a line for each reason.
void WriteReasons(std::ostream& out, const Report& report, const Form& form);
void WriteFoot(std::ostream& out, const Report& report, const Form& form);

// "Ms Hill, Room 12".
std::string PlaceName(const std::string& teacher, const std::string& group);

}  // namespace kivreport
