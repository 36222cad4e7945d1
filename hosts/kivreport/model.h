// What a report says, whatever form it is written in. Texts are UTF-8.
#pragma once

#include <string>
#include <vector>

namespace kivreport {

struct Student {
  std::string name;
  int currentMission = 0;
  int previousMission = 0;
  int vocabLevel = 0;
};

struct Class {
  std::string name;
  std::vector<Student> students;
};

// A local store has one, without a name.
struct Teacher {
  std::string name;
  std::vector<Class> classes;
};

struct Report {
  bool network = false;   // a teacher level
  bool progress = false;  // missions and levels, or names and counts only
  std::vector<Teacher> teachers;

  size_t CountStudents() const;
  size_t CountClasses() const;
};

}  // namespace kivreport
