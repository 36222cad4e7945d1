// All classes in one table on the page: where they stand, side by side, and the way to each.
#pragma once

#include <string>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/page/texts.h"

namespace kivreport {

std::string OverviewSection(const Report& report, const Words& words);

}  // namespace kivreport
