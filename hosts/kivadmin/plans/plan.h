// What is to be done to a store, entry by entry, made and shown before any of it is done.
#pragma once

#include <string>
#include <vector>

#include "hosts/kivadmin/plans/school.h"

namespace kivadmin {

struct PlanStep {
  // In the order in which they are done.
  enum Kind {
    kRenameClass,
    kAddTeacher,
    kAddClass,
    kMoveClass,  // to another teacher, under its name
    kMoveStudent,
    kAddStudent,
    kRemoveStudent,
    kRemoveClass,
    kKinds
  };
  enum Outcome { kWaiting, kDone, kThere, kFailed };

  Kind kind;
  size_t line = 0;                     // of the file that asks for it; 0 for what none asks for
  std::string file = {};               // as in RosterLine
  std::string who;                     // the teacher, class or student, as shown
  SchoolClass* group = nullptr;        // the class, or where a student is or comes to be
  SchoolTeacher* teacher = nullptr;    // the teacher, or whose the class is at that moment
  SchoolClass* to = nullptr;           // where a student moves
  SchoolTeacher* toTeacher = nullptr;  // and whose it is then; or whose a class becomes
  kivstore::SLoginNameObj* student = nullptr;  // in the group's list
  PersonName name = {};                        // new: of a student; in `first` of a class
  std::string at = {};                         // where it is, as shown when it was planned
  std::string target = {};                     // where it goes, or the new name
  int students = 0;                            // of a class that goes
  Outcome outcome = kWaiting;
  std::string why = {};  // it failed
};

// A line of the file that is left undone, or several for the one reason.
struct PlanRefusal {
  size_t line;
  std::string file;
  std::string why;
  size_t lines = 1;
};

struct Plan {
  std::vector<PlanStep> steps;
  std::vector<PlanRefusal> refused;
  std::vector<std::string> notes;  // what was decided, a sentence each
  size_t there = 0;                // lines that ask for nothing new
  size_t left = 0;                 // students who are not in the file, and stay
  size_t lines = 0;                // of the file

  size_t Count(PlanStep::Kind kind) const;
  size_t Count(PlanStep::Kind kind, PlanStep::Outcome outcome) const;
  size_t CountFailed() const;
  // Students who leave, alone or with their class.
  size_t Removals() const;
  size_t NotTaken() const;
  // Orders the steps by kind and class, each in the order of the file.
  void Sort();
};

}  // namespace kivadmin
