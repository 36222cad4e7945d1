// The command line that each store of a list is read with.
#pragma once

#include <string>
#include <vector>

#include "hosts/kivreport/command_line.h"

namespace kivreport {

// What is about a store, as it was asked for, and the form: as wide and as coloured as this process
// would write it, or JSON for one that is written from the model. Where the report goes is not in
// it.
std::vector<std::string> ArgumentsForEach(const CommandLine& line, const Form& form);

}  // namespace kivreport
