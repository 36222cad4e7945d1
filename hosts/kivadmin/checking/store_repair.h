// A check of a store, with the repair of what a listing puts right.
#pragma once

#include <vector>

#include "hosts/kivadmin/checking/store_check.h"

namespace kivadmin {

// Everything that is not in order; nothing changes.
std::vector<Finding> FindAll(const CommonOptions& common);

// Repairs, and looks again: those of `before`, marked if they are gone, and what only the second
// look found, since behind a disorder there may be another. What stops the repair is told on
// standard error.
std::vector<Finding> RepairAll(const CommonOptions& common, const std::vector<Finding>& before);

}  // namespace kivadmin
