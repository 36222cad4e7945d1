// A store laid out, or completed where one is there.
#pragma once

#include <optional>
#include <string>

#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

struct LayOutWish {
  std::optional<std::string> group;  // whose the store becomes
  bool isQuiet = false;              // what was done is told to the log alone
};

// A dry run makes nothing.
void LayOut(const CommonOptions& common, const LayOutWish& wish);

}  // namespace kivadmin
