#include <nlohmann/json.hpp>

#include "hosts/kivreport/report_writer.h"

namespace kivreport {
namespace {

using Json = nlohmann::ordered_json;

// Null is what is not known.
Json Known(bool isKnown, Json value) {
  return isKnown ? std::move(value) : Json();
}

Json StudentJson(const Student& student, bool progress) {
  Json json{{"name", student.name}};
  if (progress) {
    const bool isKnown = student.progress.has_value();
    const Progress values = student.progress.value_or(Progress());
    json["current_mission"] = Known(isKnown, values.currentMission);
    json["previous_mission"] = Known(isKnown, values.previousMission);
    json["vocab_level"] = Known(isKnown, values.vocabLevel);
  }
  return json;
}

Json StudentsJson(const Class& group, bool progress) {
  Json students = Json::array();
  for (const Student& student : group.students) {
    students.push_back(StudentJson(student, progress));
  }
  return students;
}

Json ClassesJson(const Teacher& teacher, bool progress) {
  Json classes = Json::array();
  for (const Class& group : teacher.classes) {
    Json entry{{"name", group.name}};
    if (!progress) {
      entry["student_count"] = Known(!group.unread, group.students.size());
    }
    entry["students"] = Known(group.IsKnown(), StudentsJson(group, progress));
    classes.push_back(std::move(entry));
  }
  return classes;
}

// A teacher, or a store without teachers.
void AddClasses(Json& json, const Teacher& teacher, bool progress) {
  if (!progress) {
    json["class_count"] = Known(!teacher.unread, teacher.classes.size());
  }
  json["classes"] = Known(teacher.IsKnown(), ClassesJson(teacher, progress));
}

void AddTeachers(Json& json, const Report& report) {
  if (!report.progress) {
    json["teacher_count"] = Known(!report.unread, report.teachers.size());
  }
  Json teachers = Json::array();
  for (const Teacher& teacher : report.teachers) {
    Json entry{{"name", teacher.name}};
    AddClasses(entry, teacher, report.progress);
    teachers.push_back(std::move(entry));
  }
  json["teachers"] = Known(report.IsKnown(), std::move(teachers));
}

Json UnreadJson(const Report& report) {
  Json unread = Json::array();
  for (const UnreadPlace& place : ListUnread(report)) {
    const auto name = [](const std::string& text) { return Known(!text.empty(), text); };
    unread.push_back({{"teacher", name(place.teacher)},
                      {"class", name(place.group)},
                      {"student", name(place.student)},
                      {"path", place.unread->path},
                      {"reason", place.unread->what}});
  }
  return unread;
}

}  // namespace

void WriteJson(std::ostream& out, const Report& report) {
  Json json{{"mode", report.network ? "network" : "local"}};
  if (report.network) {
    AddTeachers(json, report);
  } else {
    AddClasses(json, report.teachers.front(), report.progress);
  }
  Json unread = UnreadJson(report);
  json["complete"] = unread.empty();
  if (!unread.empty()) {
    json["unread"] = std::move(unread);
  }
  constexpr auto kReplace = Json::error_handler_t::replace;  // a path is what bytes it is
  out << json.dump(2, ' ', false, kReplace) << '\n';
}

}  // namespace kivreport
