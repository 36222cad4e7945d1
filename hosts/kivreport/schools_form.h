// A report over many schools in a form that is written from the model.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/report_writer.h"

namespace kivreport {

using WriteText = std::function<void(std::string_view)>;

class SchoolsForm {
 public:
  virtual ~SchoolsForm() = default;

  // In the order of the list. Of a school no student is kept in memory longer than the form needs.
  virtual void Add(const Report& school) = 0;
  virtual void AddUnread(const std::string& school, const std::string& reason) = 0;
  virtual void Finish(const WriteText& write) = 0;
};

// `whole` is a report without teachers that tells what all of them are of: the list's name and
// place, the time, and what was asked for; it outlives the form.
std::unique_ptr<SchoolsForm> SchoolsPage(const Report& whole, const Form& form);
std::unique_ptr<SchoolsForm> SchoolsWorkbook(const Report& whole, const Form& form);

}  // namespace kivreport
