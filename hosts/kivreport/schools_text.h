// The parts of a report over many schools in the forms that are text, made of what each school's
// own report has printed.
#pragma once

#include <string>
#include <vector>

#include "hosts/common/child_process.h"
#include "hosts/kivreport/report_writer.h"

namespace kivreport {

class SchoolsText {
 public:
  explicit SchoolsText(const Form& form) : form(form) {}

  // The next of the schools.
  std::string Of(const std::string& school, const kivhost::ChildResult& result);
  std::string End(bool isComplete);

 private:
  std::string CsvRows(const std::string& school, const std::string& text);
  std::string CsvHeading(const std::vector<std::string>& heading);
  std::string CsvUnread(const std::string& school);

  const Form& form;
  bool isFirst = true;             // of the schools
  size_t columns = 0;              // of CSV's heading; 0 as long as there is none
  std::vector<std::string> ahead;  // schools that wait for it
};

}  // namespace kivreport
