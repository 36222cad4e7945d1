// Carrying out a plan. Each step is tested once more under the store's own locks: what somebody
// else has changed since the plan was made fails that step, with the reason, and the others go on.
#pragma once

#include "hosts/kivadmin/plans/plan.h"

namespace kivadmin {

// Leaves in each step what came of it: one that Ctrl-C has kept from being done waits still. In a
// dry run nothing is done, and each is told as done.
void CarryOut(const Session& session, School& school, Plan& plan);

}  // namespace kivadmin
