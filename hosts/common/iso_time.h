// A time of a store in words that sort.
#pragma once

#include <string>

#include "foundation/time/date_time.h"

namespace kivhost {

// "2026-03-01T08:30:00", local time as the store keeps it; empty for no time.
std::string IsoTime(kivstore::SDateTime time);

}  // namespace kivhost
