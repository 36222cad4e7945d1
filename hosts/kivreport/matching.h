// Which student of a report is which of a kept one.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "hosts/kivreport/kept_report.h"
#include "hosts/kivreport/model.h"

namespace kivreport {

struct Match {
  enum Kind { kNone, kSamePlace, kOtherPlace, kSeveralThere, kSeveralElsewhere };
  Kind kind = kNone;
  const KeptStudent* kept = nullptr;  // of the two kinds that are sure
};

class Matching {
 public:
  // Both stay where they are meanwhile.
  Matching(const Report& report, const KeptReport& before);

  // By the order of the report's students.
  const std::vector<Match>& GetMatches() const { return matches; }
  // Those of the kept report who are nobody of the report's.
  struct Unmatched {
    const KeptStudent* kept;
    bool mayBeElsewhere;  // somebody of that name is there who is not found in the kept report
  };
  std::vector<Unmatched> ListUnmatched() const;

 private:
  struct Same {
    std::vector<size_t> now;
    std::vector<size_t> then;
  };
  using Index = std::unordered_map<std::string, Same>;

  void MatchPlace(const Same& same);
  void MatchName(const Same& same);

  const KeptReport& before;
  const bool areWhole;  // both tell of everybody, so that a name that is there once is somebody
  std::vector<Match> matches;
  std::vector<bool> isFound;      // of the kept report's
  std::vector<bool> isUncertain;  // not found, but somebody of the name is new elsewhere
};

}  // namespace kivreport
