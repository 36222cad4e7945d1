// A student alone: the missions in a row, and how the keys go.
#pragma once

#include <string>

#include "hosts/kivreport/page/class_section.h"

namespace kivreport {

std::string StudentSheet(const SchoolPlace& school, const Student& student, const Words& words);

}  // namespace kivreport
