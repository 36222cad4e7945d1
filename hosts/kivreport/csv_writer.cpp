#include <csv.h>

#include <string>

#include "hosts/kivreport/report_writer.h"

namespace kivreport {
namespace {

constexpr const char* kLineEnd = "\r\n";

// Quotes only where the form asks for it.
std::string Field(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    return text;
  }
  std::string quoted(text.size() * 2 + 2, '\0');
  quoted.resize(csv_write(quoted.data(), quoted.size(), text.data(), text.size()));
  return quoted;
}

// Empty fields for what is not known.
void WriteProgress(std::ostream& out, const std::optional<Progress>& progress) {
  if (progress) {
    out << ',' << progress->currentMission << ',' << progress->previousMission << ','
        << progress->vocabLevel;
  } else {
    out << ",,,";
  }
}

}  // namespace

void WriteCsv(std::ostream& out, const Report& report) {
  out << "teacher,class,student";
  if (report.progress) {
    out << ",current_mission,previous_mission,vocab_level";
  }
  out << kLineEnd;
  for (const Teacher& teacher : report.teachers) {
    for (const Class& group : teacher.classes) {
      for (const Student& student : group.students) {
        out << Field(teacher.name) << ',' << Field(group.name) << ',' << Field(student.name);
        if (report.progress) {
          WriteProgress(out, student.progress);
        }
        out << kLineEnd;
      }
    }
  }
}

}  // namespace kivreport
