// Option values as a person writes them on the command line and reads them in a table.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hosts/common/iso_time.h"

namespace kivadmin {

struct Limits {
  int lowest;
  int highest;
};

// yes, no, true, false, 1, 0, letter case ignored.
std::optional<bool> ParseYesNo(const std::string& text);
std::optional<int16_t> ParseNumber(const std::string& text, Limits limits);
// Missions as numbers and ranges, "1-4,7"; "none" or nothing for no mission. In rising order, each
// once.
std::optional<std::vector<int>> ParseMissions(const std::string& text);
// The same form, from missions in rising order.
std::string MissionsText(const std::vector<int>& missions);

using kivhost::IsoTime;

}  // namespace kivadmin
