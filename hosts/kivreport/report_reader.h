// Walks a store class by class and fills the model.
#pragma once

#include <optional>
#include <string>

#include "hosts/common/charset.h"
#include "hosts/common/store_opening.h"
#include "hosts/kivreport/model.h"

namespace kivreport {

// One entry of a list, by name (letter case ignored) or by its place: "#2". Empty takes all.
class Selector {
 public:
  // Throws wrong usage if a place is no number from 1.
  explicit Selector(const std::string& text);
  bool Takes(const std::string& name, int number) const;

 private:
  std::string name;
  int place = 0;
};

struct Request {
  Selector teacher;
  Selector group;
  bool progress = true;
  bool quiet = false;
};

Report ReadReport(const kivhost::OpenStore& store, const Request& request,
                  const kivhost::Charset& charset);

}  // namespace kivreport
