// The word that somebody may have meant.
#pragma once

#include <string>
#include <vector>

namespace kivhost {

// By the letters that would have to be changed, added, left out or swapped; empty if all are too
// far.
std::string Nearest(const std::string& word, const std::vector<std::string>& words);

}  // namespace kivhost
