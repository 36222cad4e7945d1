// Trying what a store asks of its file system, in a folder at the data root that is there
// meanwhile.
#pragma once

#include <string>
#include <vector>

#include "hosts/kivadmin/checking/mount_trial.h"
#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

// Between the session's root and `other`, which leads to the same store by another way. Throws
// HostError if it leads elsewhere.
std::vector<TrialResult> TryThrough(const Session& session, const std::string& other);

// With another machine that runs the same. Whoever comes first tries and is told the results; the
// other answers, and is told none.
std::vector<TrialResult> TryWithOtherMachine(const Session& session);

// What to change where a result is not good, one line; `roots` are the ways that were tried.
std::string AdviceFor(const std::vector<TrialResult>& results,
                      const std::vector<std::string>& roots);

}  // namespace kivadmin
