// What must hold, whatever the input: otherwise the rule is printed and the process ends, which the
// fuzzer takes for a finding.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace kivtest {

inline void Require(bool holds, const char* rule) {
  if (!holds) {
    std::fprintf(stderr, "broken rule: %s\n", rule);
    std::abort();
  }
}

}  // namespace kivtest
