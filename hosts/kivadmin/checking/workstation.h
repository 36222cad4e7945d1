// The workstation as the probes see it.
#pragma once

#include <nlohmann/json.hpp>
#include <vector>

namespace kivadmin {

// A null value is what the platform cannot tell.
struct Fact {
  const char* label;
  const char* key;
  nlohmann::ordered_json value;
  const char* unit = "";
};

// Who says so: "stated" by the system and the processor of themselves, or "measured" just now.
struct FactGroup {
  const char* source;
  std::vector<Fact> facts;
};

// Measuring the speed takes a moment.
std::vector<FactGroup> ProbeWorkstation();

}  // namespace kivadmin
