#include "hosts/kivreport/matching.h"

#include <algorithm>

namespace kivreport {
namespace {

std::string PlaceKey(const std::string& teacher, const std::string& group,
                     const std::string& name) {
  return teacher + '\0' + group + '\0' + name;
}

// Whether everybody of the store is in it; of whom nothing but the name is known is there too.
bool IsWhole(const Report& report) {
  const auto limits = [](const auto& option) {
    return option.first == "teacher" || option.first == "class";
  };
  const auto places = ListUnread(report);
  return std::none_of(report.part.begin(), report.part.end(), limits) &&
         std::none_of(places.begin(), places.end(),
                      [](const UnreadPlace& place) { return place.student.empty(); });
}

}  // namespace

Matching::Matching(const Report& report, const KeptReport& before)
    : before(before), areWhole(IsWhole(report) && before.isComplete && !before.isPart) {
  Index places, names;
  size_t now = 0;
  for (const Teacher& teacher : report.teachers) {
    for (const Class& group : teacher.classes) {
      for (const Student& student : group.students) {
        places[PlaceKey(teacher.name, group.name, student.name)].now.push_back(now);
        names[student.name].now.push_back(now++);
      }
    }
  }
  for (size_t then = 0; then < before.students.size(); ++then) {
    const KeptStudent& kept = before.students[then];
    places[PlaceKey(kept.teacher, kept.group, kept.name)].then.push_back(then);
    names[kept.name].then.push_back(then);
  }
  matches.resize(now);
  isFound.resize(before.students.size());
  isUncertain.resize(before.students.size());
  for (const auto& [key, same] : places) {
    MatchPlace(same);
  }
  for (const auto& [name, same] : names) {
    MatchName(same);
  }
}

// As many of a name as there were are the same, though not which is which.
void Matching::MatchPlace(const Same& same) {
  const bool isSure = same.now.size() == 1 && same.then.size() == 1;
  for (size_t i = 0; i < std::min(same.now.size(), same.then.size()); ++i) {
    isFound[same.then[i]] = true;
    matches[same.now[i]] = isSure ? Match{Match::kSamePlace, &before.students[same.then[i]]}
                                  : Match{Match::kSeveralThere, nullptr};
  }
}

void Matching::MatchName(const Same& same) {
  const auto isLost = [this](size_t then) { return !isFound[then]; };
  const auto isNew = [this](size_t now) { return matches[now].kind == Match::kNone; };
  if (std::none_of(same.then.begin(), same.then.end(), isLost) ||
      std::none_of(same.now.begin(), same.now.end(), isNew)) {
    return;
  }
  if (areWhole && same.now.size() == 1 && same.then.size() == 1) {
    isFound[same.then[0]] = true;
    matches[same.now[0]] = {Match::kOtherPlace, &before.students[same.then[0]]};
    return;
  }
  for (const size_t then : same.then) {
    isUncertain[then] = isLost(then);
  }
  for (const size_t now : same.now) {
    if (isNew(now)) {
      matches[now].kind = Match::kSeveralElsewhere;
    }
  }
}

std::vector<Matching::Unmatched> Matching::ListUnmatched() const {
  std::vector<Unmatched> unmatched;
  for (size_t then = 0; then < before.students.size(); ++then) {
    if (!isFound[then]) {
      unmatched.push_back({&before.students[then], isUncertain[then]});
    }
  }
  return unmatched;
}

}  // namespace kivreport
