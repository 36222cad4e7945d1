// Prints the teachers, classes and students of a store, and the mission each student is at.
//
//   print_store ROOT          a networked store, with teachers
//   print_store --local ROOT  a store on this machine: classes stand at the top
//
// Build: c++ -std=c++17 -o print_store print_store.cpp $(pkg-config --cflags --libs kivstore)
#include <kivstore/general_proc.h>

#include <iostream>
#include <string_view>

namespace {

class Store {
 public:
  Store(const char* root, bool local) {
    block.mode = local ? 0 : 1;
    block.dataPath = root;
    block.teacherNameSize = sizeof block.teacherName;
    block.classNameSize = sizeof block.className;
    block.studentNameSize = sizeof block.studentName;
  }

  bool Call(int command) {
    block.command = command;
    GeneralProc(&block);
    return block.result != 0;
  }

  void PrintTeachers() {
    const int count = Call(KIV_CACHE_TEACHERS) ? block.topCount : 0;
    for (int i = 1; i <= count; ++i) {
      block.teacherListIndex = block.teacherIndex = i;
      if (Call(KIV_CACHED_TEACHER_NAME)) {
        std::cout << block.teacherName << '\n';
        PrintClasses();
      }
    }
  }

  void PrintClasses() {
    const int count = Call(KIV_CACHE_CLASSES) ? block.classCount : 0;
    for (int i = 1; i <= count; ++i) {
      block.classListIndex = i;
      if (Call(KIV_CACHED_CLASS_NAME)) {  // sets classIndex for the students
        std::cout << "  " << block.className << '\n';
        PrintStudents();
      }
    }
  }

  void PrintStudents() {
    const int count = Call(KIV_CACHE_STUDENTS) ? block.studentCount : 0;
    for (int i = 1; i <= count; ++i) {
      block.studentListIndex = i;
      if (Call(KIV_STUDENT_PROGRESS)) {
        std::cout << "    " << block.studentName << ": mission " << block.currentMission << '\n';
      }
    }
  }

 private:
  SGeneralParams block{};
};

}  // namespace

int main(int argc, char** argv) {
  const bool local = argc == 3 && std::string_view(argv[1]) == "--local";
  if (argc != 2 && !local) {
    std::cerr << "print_store [--local] ROOT\n";
    return 2;
  }
  Store store(argv[argc - 1], local);
  if (local) {
    store.PrintClasses();
  } else {
    store.PrintTeachers();
  }
  return 0;
}
