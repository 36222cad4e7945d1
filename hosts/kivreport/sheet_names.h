// Names for the sheets of a workbook.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>

namespace kivreport {

// A sheet's name has 1 to 31 characters (of UTF-16), none of []:*?/\, no apostrophe at either end,
// and is no other sheet's, letter case ignored.
class SheetNames {
 public:
  // For a class: its own name as far as that may stand; with the teacher's behind it where another
  // class has it already, and else with a number. Of many schools each class has its school's name
  // behind it at once.
  std::string NameFor(const std::string& group, const std::string& teacher);
  std::string NameAmongSchools(const std::string& group, const std::string& school);

 private:
  std::string Numbered(const std::string& name);
  bool Take(const std::string& name);

  std::set<std::string> taken;         // folded
  std::map<std::string, size_t> last;  // number of a name, likewise
};

}  // namespace kivreport
