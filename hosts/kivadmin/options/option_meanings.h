// What the options are for, in words. What the numbers of an option stand for is the tutor's, which
// plays by them: where this store does not know it, it says no more than what the option is about.
#pragma once

#include <string>

namespace kivadmin {

// Of an option's key as it is listed; that of a mission's activity is the same for every mission.
// Every option has one.
std::string MeaningOf(const std::string& key);

}  // namespace kivadmin
