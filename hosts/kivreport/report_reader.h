// Walks a store class by class and fills the model.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/common/charset.h"
#include "hosts/common/store_opening.h"
#include "hosts/kivreport/model.h"
#include "hosts/kivreport/selection.h"

namespace kivreport {

struct Request {
  Selector teacher;
  Selector group;
  bool progress = true;
  bool quiet = false;
  int idleDays = 14;                                      // what the report says of itself
  std::vector<std::pair<std::string, std::string>> part;  // likewise
};

// Each class of the report with its students, in order; null for a teacher who has none.
using ClassVisitor = std::function<void(const Report&, const Teacher&, Class*)>;

// The lists that were looked through go into `sought`, but for the students'.
Report ReadReport(const kivhost::OpenStore& store, const Request& request,
                  const kivhost::Charset& charset, Sought& sought);

// Hands out each class and lets its students go, so that memory does not grow with them. Of them
// the report that is answered has those who could not be read.
Report VisitReport(const kivhost::OpenStore& store, const Request& request,
                   const kivhost::Charset& charset, Sought& sought, const ClassVisitor& visit);

}  // namespace kivreport
