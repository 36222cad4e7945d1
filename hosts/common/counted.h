// Numbers in texts: "2,016", "1 student", "2,016 students".
#pragma once

#include <cstddef>
#include <string>

namespace kivhost {

std::string Grouped(size_t count);
// `many` where it is not `one` with an s behind it.
std::string Counted(size_t count, const std::string& one, const std::string& many = "");

}  // namespace kivhost
