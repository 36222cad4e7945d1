// The stores that the benchmarks and counts run on: networked, with teachers, options at all three
// levels and a saved game for every student.
#pragma once

#include <string>

namespace kivbench {

// One teacher, one class of so many students.
void LayClassOf(const std::string& root, int students);
// So many teachers with so many classes of so many students each.
void LaySchool(const std::string& root, int teachers, int classes, int students);

}  // namespace kivbench
