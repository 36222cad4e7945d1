// What a report says, whatever form it is written in. Texts are UTF-8.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "records/key_index.h"

namespace kivreport {

// Why something could not be read.
struct Unread {
  std::string path;
  std::string what;    // alone: "locked by someone else"
  std::string reason;  // with the path, and what to do
};

inline constexpr int kMissions = 25;  // of the course

struct KeyCount {
  int64_t keystrokes = 0;  // times it was wanted
  int64_t errors = 0;      // times something else was hit
};

// The keystrokes of the saved game.
struct Keys {
  // By key index (records/key_index.h), whose fingers and characters are those of an American
  // keyboard.
  std::array<KeyCount, kivstore::kKeyCount> byKey;

  // The sum over the keys of a finger or of a hand (kivstore::Finger).
  KeyCount Of(int finger) const;
  KeyCount All() const;
  // Key indices, those with the largest share of errors first; of keys that were wanted ten times
  // or more, and never one without an error.
  std::vector<int> Weakest(size_t most = 5) const;
};

// "A", "7", ";", "space".
std::string KeyName(int index);

struct Progress {
  int currentMission = 0;
  int previousMission = 0;
  int vocabLevel = 0;
  int lessonsDone = 0;             // of the course's missions
  std::string lastWork;            // "2026-11-20T10:15:00", local time as the store keeps it, the
                                   // newest in the student's own options and game; empty: never
  std::bitset<kMissions> lessons;  // whose lesson is done; bit 0 is mission 1
  std::optional<Keys> keys;        // nothing without a saved game
};

struct Student {
  std::string name;
  std::optional<Progress> progress;  // nothing if it was not asked for or could not be read
  std::optional<Unread> unread;
};

// What a teacher wants to be told of at a glance.
enum class Standing { kWorking, kIdle, kNotBegun };

// A list that could not be read, or not to its end.
struct Class {
  std::string name;
  std::vector<Student> students;
  std::optional<Unread> unread;

  bool IsKnown() const { return !unread || !students.empty(); }
};

// A store without teachers has one, without a name.
struct Teacher {
  std::string name;
  std::vector<Class> classes;
  std::optional<Unread> unread;

  bool IsKnown() const { return !unread || !classes.empty(); }
};

struct Report {
  std::string school;     // what to call it: the name of the root's folder
  std::string root;       // the data root, as the host shows a path
  std::string when;       // it was read, in the form of Progress::lastWork
  int idleDays = 14;      // who has not worked for so many days is marked
  bool network = false;   // a teacher level
  bool progress = false;  // missions and levels, or names and counts only
  std::vector<Teacher> teachers;
  std::optional<Unread> unread;

  bool IsKnown() const { return !unread || !teachers.empty(); }
  size_t CountStudents() const;
  size_t CountClasses() const;
};

// Whole days since the student's last work; nothing if there is none, or it is not known.
std::optional<int> DaysIdle(const Report& report, const Student& student);
// Not begun is who has no work in the store and stands at the first mission. Working is also who
// is not known.
Standing StandingOf(const Report& report, const Student& student);

// What could not be read, where it is in the store; names that lead to it, as far as there are any.
struct UnreadPlace {
  std::string teacher;
  std::string group;
  std::string student;
  const Unread* unread;
};
std::vector<UnreadPlace> ListUnread(const Report& report);

// The reasons of it, each once.
std::vector<std::string> ReasonsOf(const Report& report);

}  // namespace kivreport
