// Where the students of the test with several workstations are.
#pragma once

#include <string>

#include "foundation/login_name.h"
#include "tests/store/store_scope.h"

namespace kivtest {

struct ClassPlace {
  const char* teacher;
  const char* teacherName;
  const char* folder;
};
inline constexpr ClassPlace kClassPlaces[] = {
    {"aHill", "Ms Hill", "Room"}, {"aHill", "Ms Hill", "Den"}, {"Oak", "Mr Oak", "Yard"}};

inline kivstore::SLoginNameObj TeacherOf(const ClassPlace& place) {
  return {Text(place.teacherName), kivstore::SString(), Text(place.teacher)};
}
inline kivstore::SLoginNameObj ClassOf(const ClassPlace& place) {
  return {Text(place.folder), kivstore::SString(), Text(place.folder)};
}
inline std::string ListOf(const ClassPlace& place) {
  return std::string("Classes.zep/") + place.teacher + "/Classes.zep/" + place.folder + "/Students";
}

}  // namespace kivtest
