// The teachers, classes and students of a store as a plan finds them, and as it will leave them:
// what a plan adds stands here too, marked as planned.
//
// Each list is read when it is first asked for, under its lock, and once: one that is locked or not
// permitted is waited for once, and each further question gets the same answer.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "hosts/kivadmin/rosters/roster_changes.h"
#include "hosts/kivadmin/rosters/rosters.h"

namespace kivadmin {

// A list that could not be read: whatever a plan wants of it is left undone, told once.
class UnreadList : public HostError {
 public:
  using HostError::HostError;
};

// What is read at the first question; the fault is kept as well.
class ReadOnce {
 public:
  void Do(const std::function<void()>& read);

 private:
  bool isAsked = false;
  std::unique_ptr<UnreadList> fault;
};

struct SchoolTeacher;

struct SchoolClass {
  SchoolTeacher* teacher;
  kivstore::SLoginNameObj entry;  // without a folder name while it is planned
  std::string name;               // as it is shown, or will be
  Roster students = {};
  std::map<std::string, std::vector<kivstore::SLoginNameObj*>> byName = {};  // by NameKey
  int planned = 0;  // students that will come, less those who will go
  ReadOnce reading = {};

  bool IsPlanned() const { return entry.folderName.IsEmpty(); }
  bool IsFull() const { return students.list.GetSize() + planned >= kivstore::kMaxStudents; }
};

// In a store without teachers there is one, nobody, without a name.
struct SchoolTeacher {
  kivstore::SLoginNameObj entry;
  std::string name;
  Roster classList = {};
  std::vector<std::unique_ptr<SchoolClass>> classes = {};
  std::map<std::string, SchoolClass*> byName = {};  // by NameKey
  ReadOnce reading = {};

  bool IsPlanned() const { return !name.empty() && entry.folderName.IsEmpty(); }
};

class School {
 public:
  using Teachers = std::vector<std::unique_ptr<SchoolTeacher>>;
  using Classes = std::vector<std::unique_ptr<SchoolClass>>;

  explicit School(const Session& session) : session(session) {}

  // Each throws UnreadList.
  Teachers& GetTeachers();
  Classes& GetClasses(SchoolTeacher& teacher);
  Roster& GetStudents(SchoolClass& group);
  Roster& GetTeacherList() { return teacherList; }

  // By name, letter case ignored; null if there is none.
  SchoolTeacher* FindTeacher(const std::string& name);
  SchoolClass* FindClass(SchoolTeacher& teacher, const std::string& name);
  // All of that display name.
  std::vector<kivstore::SLoginNameObj*> FindStudents(SchoolClass& group,
                                                     const std::string& display);

  // Planned ones; the names are good and not there yet.
  SchoolTeacher& PlanTeacher(const kivstore::SString& name);
  SchoolClass& PlanClass(SchoolTeacher& teacher, const kivstore::SString& name);
  // Where a class will be; with nothing for `teacher` nowhere.
  void PlanPlace(SchoolClass& group, SchoolTeacher* teacher, const std::string& name);

  // The teacher for what follows in the store.
  void Select(const SchoolTeacher& teacher) const;

 private:
  SchoolTeacher& Note(SchoolTeacher teacher);
  SchoolClass& Note(SchoolTeacher& teacher, const kivstore::SLoginNameObj& entry) const;
  void ReadTeachers();
  void ReadClasses(SchoolTeacher& teacher) const;
  void ReadStudents(SchoolClass& group) const;

  const Session& session;
  ReadOnce reading;
  Roster teacherList;
  Teachers teachers;
  std::map<std::string, SchoolTeacher*> byName;
};

// By which names are the same: letter case by the character set ignored.
std::string NameKey(const std::string& name);
// "Ann Lee", the display name as the store composes it.
std::string DisplayText(const Session& session, const kivstore::SLoginNameObj& entry);

// "5a, Ms Hill"; "5a" in a store without teachers.
std::string Text(const SchoolClass& group);

}  // namespace kivadmin
