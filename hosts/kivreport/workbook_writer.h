// The report as a workbook (Office Open XML), by libxlsxwriter: a summary with the classes side by
// side, and a sheet for each class. Numbers are numbers and dates dates; a name is a text whatever
// it begins with.
#pragma once

#include <ostream>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/texts.h"

namespace kivreport {

// Throws HostError if no temporary file can be written.
void WriteWorkbook(std::ostream& out, const Report& report, Language language);

}  // namespace kivreport
