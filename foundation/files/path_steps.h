// The steps of a path, before anybody looks where it leads.
#pragma once

#include <cstddef>

namespace kivstore {

// Takes out of a path with backslashes, in place, what means nothing or leads back: doubled
// separators but for a leading pair, one at the end, each "." and each folder with the ".." behind
// it. By the letters alone: a link before ".." is left like any folder. The new length, at least 1.
//
// What the rest stands on stays: a server and its share, a drive, the first name of a path that
// begins with none of them, and a ".." with nothing to leave.
size_t NormalizePath(char* path, size_t length);

}  // namespace kivstore
