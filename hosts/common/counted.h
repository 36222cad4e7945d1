// "1 student", "2 students".
#pragma once

#include <cstddef>
#include <string>

namespace kivhost {

// `many` where it is not `one` with an s behind it.
std::string Counted(size_t count, const std::string& one, const std::string& many = "");

}  // namespace kivhost
