// How the students of a class, or of a school, stand over the course's missions.
#pragma once

#include <array>
#include <cstddef>

#include "hosts/kivreport/model.h"

namespace kivreport {

// Of those whose progress is known.
struct ClassFigures {
  size_t known = 0;
  std::array<size_t, kMissions> atMission{};  // [0] is mission 1; a mission beyond the course's end
                                              // counts as its last
  double median = 0;                          // a whole mission, or half way between two
  int least = 0;
  int most = 0;
  size_t notBegun = 0;
  size_t idle = 0;
};

ClassFigures FiguresOf(const Report& report, const Class& group);
ClassFigures FiguresOf(const Report& report);

// The place of a mission in the course, 1 to 25.
int WithinCourse(int mission);

}  // namespace kivreport
