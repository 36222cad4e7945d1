// What keeps a mistaken file from emptying a store.
#pragma once

#include "hosts/kivadmin/plans/roster_plan.h"

namespace kivadmin {

// Throws if more would be removed than a mistaken file should take: more than a fifth of a class, a
// tenth of the store, or anybody while lines are not taken; unless so many are allowed. A torn file
// removes nobody.
void NeedModestRemovals(School& school, const Plan& plan, const RosterWish& wish,
                        const RosterFile& roster);

}  // namespace kivadmin
