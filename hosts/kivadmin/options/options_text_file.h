// The text file of a level's options (options_text.h), on the user's own disk.
#pragma once

#include <string>

#include "records/tutor_options_dob.h"

namespace kivadmin {

// Beside the file and then into its place, so that one that is there stays until the new is whole;
// "-" is standard output.
void WriteOptionsText(kivstore::STeacherOptionsDob& options, const std::string& file);
// Throws wrong usage for a file that cannot be read or is too large; "-" is standard input.
std::string ReadOptionsText(const std::string& file);

}  // namespace kivadmin
