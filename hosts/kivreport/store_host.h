// GeneralProc as a C++ host likes it: one operation a command, failure as an empty answer. Texts
// are the store's bytes.
#pragma once

#include <optional>
#include <string>

#include "kivstore/general_proc.h"

namespace kivreport {

struct Progress {
  std::string name;
  int currentMission;
  int previousMission;
  int vocabLevel;
};

struct Product {
  std::string id;
  int generation;
};

// Indices count from 1, but for a class's, which counts from 0, as the commands have it.
class StoreHost {
 public:
  StoreHost(const std::string& dataPath, bool network);

  // The cached chain: each list is read once, the names come from memory.
  std::optional<int> CacheTeachers();
  std::optional<int> CacheClasses(int teacher);
  std::optional<int> CacheStudents(int teacher, int classIndex);
  std::string TeacherName(int teacher);
  std::string ClassName(int teacher, int classNumber);
  std::string StudentName(int teacher, int classIndex, int student);

  std::optional<Progress> StudentProgress(int teacher, int classIndex, int student);
  Product GetProduct();

 private:
  bool Call(int command);

  std::string dataPath;
  SGeneralParams params{};
};

}  // namespace kivreport
