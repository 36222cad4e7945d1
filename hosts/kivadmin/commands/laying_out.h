// A store laid out, or completed where one is there.
#pragma once

#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

// Tells what it did; with `isQuiet` the log alone. A dry run makes nothing.
void LayOut(const CommonOptions& common, bool isQuiet = false);

}  // namespace kivadmin
