#include "hosts/kivreport/json_report.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "hosts/kivreport/json_reading.h"

namespace kivreport {
namespace {

using nlohmann::json;

std::string TextAt(const json& object, const char* key) {
  return ValueAt<std::string>(object, key, "");
}

int NumberAt(const json& object, const char* key) {
  return static_cast<int>(ValueAt<int64_t>(object, key, 0));
}

std::optional<Keys> KeysOf(const json& student) {
  static const std::map<std::string, size_t> kPlaces = [] {
    std::map<std::string, size_t> places;
    for (int key = 0; key < kivstore::kKeyCount; ++key) {
      places.emplace(KeyName(key), static_cast<size_t>(key));
    }
    return places;
  }();
  if (!student.contains("keys") || !student["keys"].is_object()) {
    return std::nullopt;
  }
  Keys keys;
  for (const auto& [name, count] : student["keys"].items()) {
    if (const auto place = kPlaces.find(name); place != kPlaces.end()) {
      keys.byKey[place->second] = {ValueAt<int64_t>(count, "keystrokes", 0),
                                   ValueAt<int64_t>(count, "errors", 0)};
    }
  }
  return keys;
}

Progress ProgressOf(const json& student) {
  Progress progress;
  progress.currentMission = NumberAt(student, "current_mission");
  progress.previousMission = NumberAt(student, "previous_mission");
  progress.vocabLevel = NumberAt(student, "vocab_level");
  progress.lessonsDone = NumberAt(student, "lessons_done");
  progress.lastWork = TextAt(student, "last_work");
  for (const json& lesson : ListAt(student, "lessons")) {
    const int mission = lesson.is_number_integer() ? lesson.get<int>() : 0;
    if (mission >= 1 && mission <= kMissions) {
      progress.lessons.set(static_cast<size_t>(mission - 1));
    }
  }
  progress.keys = KeysOf(student);
  return progress;
}

class Reading {
 public:
  Reading(const json& document, const Report& asked) : unread(ListAt(document, "unread")) {
    report.school = TextAt(document, "school");
    report.root = TextAt(document, "root");
    report.when = TextAt(document, "written_at");
    report.network = TextAt(document, "mode") == "network";
    report.progress = asked.progress;
    report.idleDays = asked.idleDays;
    report.part = asked.part;
    if (report.network) {
      report.unread = TakeUnread("", "", "");
      for (const json& teacher : ListAt(document, "teachers")) {
        AddTeacher(teacher);
      }
    } else {
      AddTeacher(document);
    }
  }

  Report Take() { return std::move(report); }

 private:
  void AddTeacher(const json& entry) {
    Teacher& teacher = report.teachers.emplace_back();
    teacher.name = TextAt(entry, "name");
    teacher.unread = TakeUnread(teacher.name, "", "");
    for (const json& group : ListAt(entry, "classes")) {
      AddClass(teacher, group);
    }
  }

  void AddClass(Teacher& teacher, const json& entry) {
    Class& group = teacher.classes.emplace_back();
    group.name = TextAt(entry, "name");
    group.unread = TakeUnread(teacher.name, group.name, "");
    for (const json& own : ListAt(entry, "students")) {
      Student& student = group.students.emplace_back();
      student.name = TextAt(own, "name");
      if (ValueAt<int64_t>(own, "current_mission", 0) > 0) {
        student.progress = ProgressOf(own);
      } else {
        student.unread = TakeUnread(teacher.name, group.name, student.name);
      }
    }
  }

  // The list is in the order of what it tells of, so that the next of it is here or further on.
  std::optional<Unread> TakeUnread(const std::string& teacher, const std::string& group,
                                   const std::string& student) {
    if (next == unread.size()) {
      return std::nullopt;
    }
    const json& entry = unread[next];
    if (TextAt(entry, "teacher") != teacher || TextAt(entry, "class") != group ||
        TextAt(entry, "student") != student) {
      return std::nullopt;
    }
    ++next;
    return Unread{TextAt(entry, "path"), TextAt(entry, "reason"), TextAt(entry, "message")};
  }

  const json& unread;
  size_t next = 0;
  Report report;
};

}  // namespace

std::optional<Report> ReportOfJson(std::string_view text, const Report& asked) {
  const json document = json::parse(text, nullptr, false);
  if (!document.is_object() || !document.contains("mode")) {
    return std::nullopt;
  }
  return Reading(document, asked).Take();
}

}  // namespace kivreport
