// What a check tells of a store that is no disorder: that programs on this machine which take no
// locks are not kept out.
#pragma once

#include <string>

#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

// Empty if they are, and where another machine serves the store. Tried on the top list's lock.
std::string ExposureNote(const CommonOptions& common);

}  // namespace kivadmin
