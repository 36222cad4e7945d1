// What a report says, whatever form it is written in. Texts are UTF-8.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
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

// What has become of a student since an older report.
struct Change {
  enum Kind { kStayed, kNew, kOtherClass, kUnsure, kLeft };
  Kind kind = kStayed;
  std::optional<int> missions;  // moved on by so many, back if below 0; nothing: not known
  std::string note;             // where from, or what is not sure
};

// How a class and a student went on over reports that were kept, the present one the last of them.
// One that lacks the class or the student gives no point.
struct MedianPoint {
  size_t at = 0;      // which of Report::times
  double median = 0;  // of the current missions
  size_t students = 0;
};
struct MissionPoint {
  size_t at = 0;
  int mission = 0;
};

struct Student {
  std::string name;
  std::optional<Progress> progress;  // nothing if it was not asked for or could not be read
  std::optional<Unread> unread;
  std::optional<Change> change = {};       // of a report that is compared
  std::vector<MissionPoint> history = {};  // of one that tells of kept ones
};

// What a teacher wants to be told of at a glance.
enum class Standing { kWorking, kIdle, kNotBegun };

// A list that could not be read, or not to its end.
struct Class {
  std::string name;
  std::vector<Student> students;
  std::optional<Unread> unread;
  std::vector<MedianPoint> history = {};

  bool IsKnown() const { return !unread || !students.empty(); }
};

// A store without teachers has one, without a name.
struct Teacher {
  std::string name;
  std::vector<Class> classes;
  std::optional<Unread> unread;

  bool IsKnown() const { return !unread || !classes.empty(); }
};

// A student of the older report who is not in this one.
struct Departed {
  std::string teacher;
  std::string group;
  std::string name;
  std::optional<int> mission;  // at that time
  std::string note;            // what is not sure
};

// The older report that this one is compared with.
struct Since {
  std::string when;  // as Report::when, or a date alone; empty if it does not tell
  std::string file;
  std::vector<Departed> left;

  const std::string& Name() const { return when.empty() ? file : when; }
};

struct Report {
  std::string school;  // what to call it: the name of the root's folder
  std::string root;    // the data root, as the host shows a path
  std::string when;    // it was read, in the form of Progress::lastWork
  int idleDays = 14;   // who has not worked for so many days is marked
  std::vector<std::pair<std::string, std::string>> part;  // what it was limited to: "class", a name
  bool network = false;                                   // a teacher level
  bool progress = false;  // missions and levels, or names and counts only
  std::vector<Teacher> teachers;
  std::optional<Unread> unread;
  std::optional<Since> since;
  std::vector<std::string> times;  // of the points of history, ascending; empty: none was asked for

  bool IsKnown() const { return !unread || !teachers.empty(); }
  size_t CountStudents() const;
  size_t CountClasses() const;
};

// Whole days since the student's last work; nothing if there is none, or it is not known.
std::optional<int> DaysIdle(const Report& report, const Student& student);
// Not begun is who has no work in the store and stands at the first mission. Working is also who
// is not known.
Standing StandingOf(const Report& report, const Student& student);

// Of the students whose mission is known; nothing if there is none.
std::optional<double> MedianMission(const Class& group);
std::optional<double> Median(std::vector<int> missions);

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
