#include "hosts/kivadmin/plans/school.h"

#include "hosts/common/unicode.h"
#include "store/place/display_name.h"

namespace kivadmin {

using kivstore::SLoginNameObj;
using kivstore::SString;

void ReadOnce::Do(const std::function<void()>& read) {
  if (!isAsked) {
    isAsked = true;
    try {
      read();
    } catch (const HostError& error) {
      fault = std::make_unique<UnreadList>(error.exitCode, error.what());
    }
  }
  if (fault != nullptr) {
    throw UnreadList(*fault);
  }
}

std::string NameKey(const std::string& name) {
  return kivhost::FoldCase(name);
}

std::string DisplayText(const Session& session, const SLoginNameObj& entry) {
  return session.Show(kivstore::DisplayName(entry));
}

std::string Text(const SchoolClass& group) {
  return group.name + (group.teacher->name.empty() ? "" : ", " + group.teacher->name);
}

void School::Select(const SchoolTeacher& teacher) const {
  session.Site().SelectTeacher(teacher.name.empty() ? nullptr : &teacher.entry);
}

// Of one name the first is the one that is found.
SchoolTeacher& School::Note(SchoolTeacher teacher) {
  SchoolTeacher& noted =
      *teachers.emplace_back(std::make_unique<SchoolTeacher>(std::move(teacher)));
  byName.emplace(NameKey(noted.name), &noted);
  return noted;
}

SchoolClass& School::Note(SchoolTeacher& teacher, const SLoginNameObj& entry) const {
  SchoolClass& noted = *teacher.classes.emplace_back(
      std::make_unique<SchoolClass>(SchoolClass{&teacher, entry, session.Show(entry.firstName)}));
  teacher.byName.emplace(NameKey(noted.name), &noted);
  return noted;
}

void School::ReadTeachers() {
  if (!session.HasTeachers()) {
    Note({});
    return;
  }
  teacherList = kivadmin::Teachers(session);
  for (const SLoginNameObj& entry : teacherList.list) {
    Note({entry, session.Show(entry.firstName)});
  }
}

School::Teachers& School::GetTeachers() {
  reading.Do([this] { ReadTeachers(); });
  return teachers;
}

void School::ReadClasses(SchoolTeacher& teacher) const {
  if (teacher.IsPlanned()) {
    return;
  }
  Select(teacher);
  teacher.classList = kivadmin::Classes(session);
  for (const SLoginNameObj& entry : teacher.classList.list) {
    Note(teacher, entry);
  }
}

School::Classes& School::GetClasses(SchoolTeacher& teacher) {
  teacher.reading.Do([&] { ReadClasses(teacher); });
  return teacher.classes;
}

void School::ReadStudents(SchoolClass& group) const {
  if (group.IsPlanned()) {
    return;
  }
  Select(*group.teacher);
  group.students = Students(session, group.entry);
  for (SLoginNameObj& student : group.students.list) {
    group.byName[NameKey(DisplayText(session, student))].push_back(&student);
  }
}

Roster& School::GetStudents(SchoolClass& group) {
  group.reading.Do([&] { ReadStudents(group); });
  return group.students;
}

SchoolTeacher* School::FindTeacher(const std::string& name) {
  GetTeachers();
  const auto found = byName.find(NameKey(name));
  return found != byName.end() ? found->second : nullptr;
}

SchoolClass* School::FindClass(SchoolTeacher& teacher, const std::string& name) {
  GetClasses(teacher);
  const auto found = teacher.byName.find(NameKey(name));
  return found != teacher.byName.end() ? found->second : nullptr;
}

std::vector<SLoginNameObj*> School::FindStudents(SchoolClass& group, const std::string& display) {
  GetStudents(group);
  const auto found = group.byName.find(NameKey(display));
  return found != group.byName.end() ? found->second : std::vector<SLoginNameObj*>();
}

SchoolTeacher& School::PlanTeacher(const SString& name) {
  GetTeachers();
  return Note({SLoginNameObj(name, SString(), SString()), session.Show(name)});
}

SchoolClass& School::PlanClass(SchoolTeacher& teacher, const SString& name) {
  GetClasses(teacher);
  return Note(teacher, SLoginNameObj(name, SString(), SString()));
}

void School::PlanPlace(SchoolClass& group, SchoolTeacher* teacher, const std::string& name) {
  std::erase_if(group.teacher->byName, [&](const auto& one) { return one.second == &group; });
  if (teacher != nullptr) {
    group.teacher = teacher;
    group.name = name;
    teacher->byName.insert_or_assign(NameKey(name), &group);
  }
}

}  // namespace kivadmin
