// Walks a store through GeneralProc and fills the model.
#pragma once

#include <optional>
#include <string>

#include "hosts/common/charset.h"
#include "hosts/kivreport/model.h"
#include "hosts/kivreport/store_host.h"

namespace kivreport {

// One entry of a list, by name (letter case ignored) or by its place: "#2". Empty takes all.
class Selector {
 public:
  // Nothing if a place is no number from 1.
  static std::optional<Selector> Parse(const std::string& text);
  bool Takes(const std::string& name, int number) const;

 private:
  std::string name;
  int place = 0;
};

struct Request {
  Selector teacher;
  Selector group;
  bool network = false;
  bool progress = true;
  bool quiet = false;
};

struct Reading {
  Report report;
  bool emptyList = false;  // a list came back empty: it has no entries, or it could not be read
  bool failed = false;     // a list that was there a moment ago could not be read again
};

Reading ReadReport(StoreHost& host, const Request& request, const kivhost::Charset& charset);

}  // namespace kivreport
