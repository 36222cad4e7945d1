// A student alone: the missions in a row, and how the keys go.
#pragma once

#include <string>

#include "hosts/kivreport/model.h"
#include "hosts/kivreport/page/texts.h"

namespace kivreport {

std::string StudentSheet(const Report& report, const Student& student, const Words& words);

}  // namespace kivreport
