// Where the students of the test with several workstations are.
#pragma once

#include "tests/support/site_fixture.h"

namespace kivtest {

struct ClassPlace {
  kivstore::SLoginNameObj teacher, entry;
  std::string list;
};

inline std::vector<ClassPlace> ClassPlaces() {
  std::vector<ClassPlace> places;
  for (const auto& [teacher, name] :
       {std::pair("Hill", "Room"), {"Hill", "Den"}, {"Oak", "Yard"}}) {
    places.push_back(
        {{teacher, "", teacher},
         {name, "", name},
         std::string("Classes.zep/") + teacher + "/Classes.zep/" + name + "/Students"});
  }
  return places;
}

}  // namespace kivtest
