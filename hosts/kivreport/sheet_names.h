// Names for the sheets of a workbook.
#pragma once

#include <set>
#include <string>

namespace kivreport {

// A sheet's name has 1 to 31 characters (of UTF-16), none of []:*?/\, no apostrophe at either end,
// and is no other sheet's, letter case ignored.
class SheetNames {
 public:
  // For a class: its own name as far as that may stand; with the teacher's behind it where another
  // class has it already, and else with a number.
  std::string NameFor(const std::string& group, const std::string& teacher);

 private:
  bool Take(const std::string& name);

  std::set<std::string> taken;  // folded
};

}  // namespace kivreport
