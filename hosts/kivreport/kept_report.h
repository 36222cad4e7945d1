// A report in JSON that was kept from another day, also one of an older kivreport.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kivreport {

struct KeptStudent {
  std::string teacher;  // empty in a local store
  std::string group;
  std::string name;
  std::optional<int> mission;  // nothing if it was not read, or only names were
};

struct KeptReport {
  std::string when;            // as Report::when, or a date in the file's name, or empty
  bool isComplete = true;      // all that it tells of was read
  bool isPart = false;         // it tells of some only
  bool lacksStudents = false;  // also in the classes that it tells of
  std::vector<KeptStudent> students;
};

// Throws wrong usage for a file that is no such report.
KeptReport ReadKeptReport(const std::string& path);

// The JSON files of a folder, sorted; throws wrong usage if there is no such folder.
std::vector<std::string> ListKeptReports(const std::string& folder);

}  // namespace kivreport
