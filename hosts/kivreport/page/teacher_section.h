// A teacher on the page, with his classes; of a store without teachers, its classes.
#pragma once

#include <string>

#include "hosts/kivreport/page/class_section.h"

namespace kivreport {

// The first of the classes has the number `firstClass`.
std::string TeacherSection(const SchoolPlace& school, const Teacher& teacher, size_t firstClass,
                           const Words& words);

// For a school without a teacher; empty for others.
std::string NoTeachers(const Report& report, const Words& words);

}  // namespace kivreport
