// Rosters as comma-separated values in UTF-8, with the header teacher,class,first_name,last_name. A
// line without a student stands for an empty class, one without a class for a teacher without any.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "hosts/kivadmin/rosters/csv_reader.h"
#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

std::string ExportRosters(const Session& session);

// The lines below the header; throws wrong usage if the file, or its header, is none.
std::vector<CsvLine> ReadRosterFile(const std::string& path);

struct ImportCounts {
  size_t teachers = 0;
  size_t classes = 0;
  size_t students = 0;
  size_t there = 0;  // lines that added nothing
  size_t notTaken = 0;
};

// Adds what the lines have and the store has not. A line that cannot be taken is told to `refused`,
// and the rest is taken.
ImportCounts ImportRosters(
    const Session& session, const std::vector<CsvLine>& lines,
    const std::function<void(const CsvLine& line, const std::string& why)>& refused);

}  // namespace kivadmin
