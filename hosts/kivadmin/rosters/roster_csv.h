// Rosters as comma-separated values in UTF-8, with the header teacher,class,first_name,last_name. A
// line without a student stands for an empty class, one without a class for a teacher without any.
#pragma once

#include <string>
#include <vector>

#include "hosts/kivadmin/rosters/csv_reader.h"
#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

std::string ExportRosters(const Session& session);

// The lines below the header; throws wrong usage if the file, or its header, is none.
std::vector<CsvLine> ReadRosterFile(const std::string& path);

}  // namespace kivadmin
