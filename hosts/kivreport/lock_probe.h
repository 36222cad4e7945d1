// Whether a lock file could be taken now.
#pragma once

#include <string>

namespace kivreport {

enum class LockState { kFree, kHeld, kRefused };

LockState ProbeLock(const std::string& path);

}  // namespace kivreport
