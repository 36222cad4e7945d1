// The standard course: which activity each of the 25 missions is built around.
#pragma once

#include "records/mission_list.h"

namespace kivstore {

// Over default missions: Typeline is 0 in missions 1 to 3, and one activity of each mission is 1.
void LayStandardCourse(SMissionList& missions);

}  // namespace kivstore
