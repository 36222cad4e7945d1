// Search masks: "*" stands for any characters, "?" for one; letter case is ignored.
#pragma once

#include <string_view>

namespace kivstore {

bool MatchesWildcard(std::string_view name, std::string_view mask);

}  // namespace kivstore
