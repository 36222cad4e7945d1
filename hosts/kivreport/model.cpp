#include "hosts/kivreport/model.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace kivreport {
namespace {

// A rarer key tells nothing yet.
constexpr int64_t kEnoughKeystrokes = 10;

bool TypesWith(int key, int finger) {
  const int own = kivstore::kFingerOfKey[key];
  if (finger == kivstore::kLeftHand || finger == kivstore::kRightHand) {
    return (own <= kivstore::kLeftThumb) == (finger == kivstore::kLeftHand);
  }
  return own == finger;
}

template <class Takes>
KeyCount Sum(const Keys& keys, Takes takes) {
  KeyCount sum;
  for (int key = 0; key < kivstore::kKeyCount; ++key) {
    if (takes(key)) {
      sum.keystrokes += keys.byKey[static_cast<size_t>(key)].keystrokes;
      sum.errors += keys.byKey[static_cast<size_t>(key)].errors;
    }
  }
  return sum;
}

// Of "2026-11-20T10:15:00".
std::optional<std::chrono::sys_days> DayOf(const std::string& time) {
  int year = 0;
  unsigned month = 0, day = 0;
  if (std::sscanf(time.c_str(), "%4d-%2u-%2u", &year, &month, &day) != 3) {
    return std::nullopt;
  }
  return std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day);
}

}  // namespace

KeyCount Keys::Of(int finger) const {
  return Sum(*this, [finger](int key) { return TypesWith(key, finger); });
}

KeyCount Keys::All() const {
  return Sum(*this, [](int) { return true; });
}

std::vector<int> Keys::Weakest(size_t most) const {
  const auto share = [this](int key) {
    const KeyCount& count = byKey[static_cast<size_t>(key)];
    return static_cast<double>(count.errors) / static_cast<double>(count.keystrokes);
  };
  std::vector<int> weak;
  for (int key = 0; key < kivstore::kKeyCount; ++key) {
    const KeyCount& count = byKey[static_cast<size_t>(key)];
    if (count.keystrokes >= kEnoughKeystrokes && count.errors > 0) {
      weak.push_back(key);
    }
  }
  std::stable_sort(weak.begin(), weak.end(), [&](int a, int b) { return share(a) > share(b); });
  weak.resize(std::min(weak.size(), most));
  return weak;
}

std::string KeyName(int index) {
  return index == kivstore::kSpaceKey ? "space" : std::string(1, kivstore::KeyCharacter(index));
}

std::optional<int> DaysIdle(const Report& report, const Student& student) {
  const auto today = DayOf(report.when);
  const auto last = student.progress ? DayOf(student.progress->lastWork) : std::nullopt;
  if (!today || !last) {
    return std::nullopt;
  }
  return std::max(static_cast<int>((*today - *last).count()), 0);
}

Standing StandingOf(const Report& report, const Student& student) {
  if (!student.progress) {
    return Standing::kWorking;
  }
  const Progress& progress = *student.progress;
  if (progress.lastWork.empty() && progress.currentMission <= 1 && progress.lessonsDone == 0) {
    return Standing::kNotBegun;
  }
  const auto idle = DaysIdle(report, student);
  return idle && *idle >= report.idleDays ? Standing::kIdle : Standing::kWorking;
}

std::optional<double> Median(std::vector<int> missions) {
  if (missions.empty()) {
    return std::nullopt;
  }
  std::sort(missions.begin(), missions.end());
  const size_t half = missions.size() / 2;
  const size_t other = missions.size() % 2 == 0 ? half - 1 : half;
  return (missions[half] + missions[other]) / 2.0;
}

std::optional<double> MedianMission(const Class& group) {
  std::vector<int> missions;
  for (const Student& student : group.students) {
    if (student.progress) {
      missions.push_back(student.progress->currentMission);
    }
  }
  return Median(std::move(missions));
}

size_t Report::CountStudents() const {
  size_t count = 0;
  for (const Teacher& teacher : teachers) {
    for (const Class& group : teacher.classes) {
      count += group.students.size();
    }
  }
  return count;
}

size_t Report::CountClasses() const {
  size_t count = 0;
  for (const Teacher& teacher : teachers) {
    count += teacher.classes.size();
  }
  return count;
}

std::vector<UnreadPlace> ListUnread(const Report& report) {
  std::vector<UnreadPlace> places;
  const auto note = [&](const std::optional<Unread>& unread, const std::string& teacher,
                        const std::string& group, const std::string& student) {
    if (unread) {
      places.push_back({teacher, group, student, &*unread});
    }
  };
  note(report.unread, "", "", "");
  for (const Teacher& teacher : report.teachers) {
    note(teacher.unread, teacher.name, "", "");
    for (const Class& group : teacher.classes) {
      note(group.unread, teacher.name, group.name, "");
      for (const Student& student : group.students) {
        note(student.unread, teacher.name, group.name, student.name);
      }
    }
  }
  return places;
}

std::vector<std::string> ReasonsOf(const Report& report) {
  std::vector<std::string> reasons;
  for (const UnreadPlace& place : ListUnread(report)) {
    if (std::find(reasons.begin(), reasons.end(), place.unread->reason) == reasons.end()) {
      reasons.push_back(place.unread->reason);
    }
  }
  return reasons;
}

}  // namespace kivreport
