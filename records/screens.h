// The tutor's names for its screens, with a number for each.
#pragma once

#include "foundation/text/string.h"

namespace kivstore {

inline constexpr int kScreenCount = 22;
inline constexpr int kMainScreen = 7;  // the screen a game starts from

// One shared string for each screen; empty outside 0 to kScreenCount - 1.
const SString& GetScreenName(int id);

// -1 if the name is unknown. Letter case counts.
int GetScreenId(const SString& name);

}  // namespace kivstore
