// What a report says, whatever form it is written in. Texts are UTF-8.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kivreport {

// Why something could not be read.
struct Unread {
  std::string path;
  std::string what;    // alone: "locked by someone else"
  std::string reason;  // with the path, and what to do
};

struct Progress {
  int currentMission = 0;
  int previousMission = 0;
  int vocabLevel = 0;
  int lessonsDone = 0;  // of the course's missions
  std::string lastWork =
      {};  // "2026-11-20T10:15:00", local time as the store keeps it; empty: never
};

struct Student {
  std::string name;
  std::optional<Progress> progress;  // nothing if it was not asked for or could not be read
  std::optional<Unread> unread;
};

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
  bool network = false;   // a teacher level
  bool progress = false;  // missions and levels, or names and counts only
  std::vector<Teacher> teachers;
  std::optional<Unread> unread;

  bool IsKnown() const { return !unread || !teachers.empty(); }
  size_t CountStudents() const;
  size_t CountClasses() const;
};

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
