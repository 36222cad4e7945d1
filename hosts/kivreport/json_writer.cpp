#include <nlohmann/json.hpp>

#include "hosts/kivreport/report_writer.h"

namespace kivreport {
namespace {

using Json = nlohmann::ordered_json;

Json StudentJson(const Student& student, bool progress) {
  Json json{{"name", student.name}};
  if (progress) {
    json["current_mission"] = student.currentMission;
    json["previous_mission"] = student.previousMission;
    json["vocab_level"] = student.vocabLevel;
  }
  return json;
}

Json ClassesJson(const Teacher& teacher, bool progress) {
  Json classes = Json::array();
  for (const Class& group : teacher.classes) {
    Json students = Json::array();
    for (const Student& student : group.students) {
      students.push_back(StudentJson(student, progress));
    }
    Json entry{{"name", group.name}};
    if (!progress) {
      entry["student_count"] = group.students.size();
    }
    entry["students"] = std::move(students);
    classes.push_back(std::move(entry));
  }
  return classes;
}

Json TeachersJson(const Report& report) {
  Json teachers = Json::array();
  for (const Teacher& teacher : report.teachers) {
    Json entry{{"name", teacher.name}};
    if (!report.progress) {
      entry["class_count"] = teacher.classes.size();
    }
    entry["classes"] = ClassesJson(teacher, report.progress);
    teachers.push_back(std::move(entry));
  }
  return teachers;
}

}  // namespace

void WriteJson(std::ostream& out, const Report& report) {
  Json json{{"mode", report.network ? "network" : "local"}};
  if (report.network) {
    if (!report.progress) {
      json["teacher_count"] = report.teachers.size();
    }
    json["teachers"] = TeachersJson(report);
  } else {
    const Teacher none;
    const Teacher& store = report.teachers.empty() ? none : report.teachers.front();
    if (!report.progress) {
      json["class_count"] = store.classes.size();
    }
    json["classes"] = ClassesJson(store, report.progress);
  }
  out << json.dump(2) << '\n';
}

}  // namespace kivreport
