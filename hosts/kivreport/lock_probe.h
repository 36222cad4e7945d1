// Whether a lock file could be taken now.
#pragma once

#include <filesystem>

namespace kivreport {

enum class LockState { kFree, kHeld, kRefused };

LockState ProbeLock(const std::filesystem::path& path);

}  // namespace kivreport
