// Prints the teachers, classes and students of a store, and the mission each student is at.
//
//   print_store [--charset NAME] ROOT          a networked store, with teachers
//   print_store [--charset NAME] --local ROOT  a store on this machine: classes stand at the top
//
// Names are shown in UTF-8; NAME is the character set of the store's texts, windows-1252 unless
// told. The exit code is 1 if something could not be read, 2 for wrong usage.
//
// Build: c++ -std=c++17 -o print_store print_store.cpp $(pkg-config --cflags --libs kivstore)
#include <kivstore/general_proc.h>

#include <iostream>
#include <string>

#include "to_utf8.h"

namespace {

struct Line {
  bool local = false;
  std::string charset = "windows-1252";
  const char* root = nullptr;
};

class Store {
 public:
  explicit Store(const Line& line) : charset(line.charset) {
    block.mode = line.local ? 0 : 1;
    block.dataPath = line.root;
    block.teacherNameSize = sizeof block.teacherName;
    block.classNameSize = sizeof block.className;
    block.studentNameSize = sizeof block.studentName;
  }

  // Whether all could be read.
  bool Print() {
    if (!Call(KIV_ANY_ENTRIES)) {
      std::cerr
          << "print_store: " << block.dataPath << ": no " << (block.mode != 0 ? "teacher" : "class")
          << " there: no store of this kind, nobody in it yet, or it cannot be read; kivadmin "
             "check tells which\n";
      return false;
    }
    if (block.mode != 0) {
      PrintTeachers();
    } else {
      PrintClasses(block.dataPath);
    }
    return failures == 0;
  }

 private:
  bool Call(int command) {
    block.command = command;
    GeneralProc(&block);
    return block.result != 0;
  }

  std::string Utf8(const char* name) const {
    char utf8[UTF8_NAME_SIZE];
    return to_utf8(charset.c_str(), name, utf8);
  }

  // The block does not tell why.
  void Fail(const std::string& what, const std::string& of) {
    std::cout.flush();
    std::cerr << "print_store: unable to read " << what << " of " << of << "; kivadmin check "
              << block.dataPath << " tells why\n";
    ++failures;
  }

  void PrintTeachers() {
    const int count = Call(KIV_CACHE_TEACHERS) ? block.topCount : 0;
    if (count == 0) {
      Fail("the teachers", block.dataPath);
    }
    for (int i = 1; i <= count; ++i) {
      block.teacherListIndex = block.teacherIndex = i;
      if (Call(KIV_CACHED_TEACHER_NAME)) {
        const std::string name = Utf8(block.teacherName);
        std::cout << name << '\n';
        PrintClasses(name);
      } else {
        Fail("teacher " + std::to_string(i), block.dataPath);
      }
    }
  }

  void PrintClasses(const std::string& of) {
    const int count = Call(KIV_CACHE_CLASSES) ? block.classCount : 0;
    // A list without a class is counted as the one that a tutor would make there; one that cannot
    // be read is not.
    if (count == 0 && !Call(KIV_COUNT_CLASSES)) {
      Fail("the classes", of);
    }
    for (int i = 1; i <= count; ++i) {
      block.classListIndex = i;
      if (Call(KIV_CACHED_CLASS_NAME)) {  // sets classIndex for the students
        const std::string name = Utf8(block.className);
        std::cout << "  " << name << '\n';
        PrintStudents(name);
      } else {
        Fail("class " + std::to_string(i), of);
      }
    }
  }

  void PrintStudents(const std::string& of) {
    if (!Call(KIV_CACHE_STUDENTS)) {
      Fail("the students", of);
      return;
    }
    const int count = block.studentCount;
    if (count == 0) {
      // An empty class and one that cannot be read are answered alike.
      std::cout.flush();
      std::cerr << "print_store: note: no student of " << of
                << ": nobody is in it, or it cannot be read\n";
    }
    for (int i = 1; i <= count; ++i) {
      block.studentListIndex = i;
      if (Call(KIV_STUDENT_PROGRESS)) {
        std::cout << "    " << Utf8(block.studentName) << ": mission " << block.currentMission
                  << '\n';
      } else {
        Fail("student " + std::to_string(i), of);
      }
    }
  }

  SGeneralParams block{};
  std::string charset;
  int failures = 0;
};

// Whether there is a line to go by.
bool Take(int argc, char** argv, Line& line) {
  int i = 1;
  for (; i < argc - 1; ++i) {
    const std::string word = argv[i];
    if (word == "--local") {
      line.local = true;
    } else if (word == "--charset") {
      line.charset = argv[++i];
    } else {
      return false;
    }
  }
  line.root = argv[argc - 1];
  return i == argc - 1 && line.root[0] != '-';
}

}  // namespace

int main(int argc, char** argv) {
  Line line;
  if (!Take(argc, argv, line)) {
    std::cerr << "print_store: usage: print_store [--charset NAME] [--local] ROOT\n";
    return 2;
  }
  if (!is_charset(line.charset.c_str())) {
    std::cerr << "print_store: " << line.charset << ": this system has no such character set\n";
    return 2;
  }
  return Store(line).Print() ? 0 : 1;
}
