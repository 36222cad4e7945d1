#include "hosts/kivreport/json_value.h"
#include "hosts/kivreport/report_writer.h"

namespace kivreport {
namespace {

class Writer {
 public:
  Writer(const Report& report, const Form& form)
      : report(report), columns(ColumnsFor(report, form)) {}

  Json Write() const {
    Json json{{"mode", report.network ? "network" : "local"}};
    if (report.network) {
      AddTeachers(json);
    } else {
      AddClasses(json, report.teachers.front());
    }
    AddUnread(json);
    AddOrigin(json);
    if (report.since) {
      json["since"] = SinceJson(*report.since);
    }
    if (!report.times.empty()) {
      json["history"] = HistoryJson();
    }
    return json;
  }

 private:
  Json StudentsJson(const Teacher& teacher, const Class& group) const {
    Json students = Json::array();
    for (const Student& student : group.students) {
      Json json{{"name", student.name}};
      AddColumns(json, {report, teacher.name, group.name, student}, columns);
      students.push_back(std::move(json));
    }
    return students;
  }

  Json ClassesJson(const Teacher& teacher) const {
    Json classes = Json::array();
    for (const Class& group : teacher.classes) {
      Json entry{{"name", group.name}};
      if (!report.progress) {
        entry["student_count"] = Known(!group.unread, group.students.size());
      }
      entry["students"] = Known(group.IsKnown(), StudentsJson(teacher, group));
      classes.push_back(std::move(entry));
    }
    return classes;
  }

  // A teacher, or a store without teachers.
  void AddClasses(Json& json, const Teacher& teacher) const {
    if (!report.progress) {
      json["class_count"] = Known(!teacher.unread, teacher.classes.size());
    }
    json["classes"] = Known(teacher.IsKnown(), ClassesJson(teacher));
  }

  void AddTeachers(Json& json) const {
    if (!report.progress) {
      json["teacher_count"] = Known(!report.unread, report.teachers.size());
    }
    Json teachers = Json::array();
    for (const Teacher& teacher : report.teachers) {
      Json entry{{"name", teacher.name}};
      AddClasses(entry, teacher);
      teachers.push_back(std::move(entry));
    }
    json["teachers"] = Known(report.IsKnown(), std::move(teachers));
  }

  void AddUnread(Json& json) const {
    Json unread = Json::array();
    for (const UnreadPlace& place : ListUnread(report)) {
      const auto name = [](const std::string& text) { return Known(!text.empty(), text); };
      unread.push_back({{"teacher", name(place.teacher)},
                        {"class", name(place.group)},
                        {"student", name(place.student)},
                        {"path", place.unread->path},
                        {"reason", place.unread->what},
                        {"message", place.unread->reason}});
    }
    json["complete"] = unread.empty();
    if (!unread.empty()) {
      json["unread"] = std::move(unread);
    }
  }

  void AddOrigin(Json& json) const {
    json["school"] = report.school;
    json["root"] = report.root;
    json["written_at"] = report.when;
    if (!report.part.empty()) {
      json["part"] = PartJson();
    }
  }

  Json PartJson() const {
    Json part = Json::object();
    for (const auto& [option, value] : report.part) {
      part[option] = value;
    }
    return part;
  }

  Json TeacherJson(const std::string& teacher) const { return Known(report.network, teacher); }

  Json SinceJson(const Since& since) const {
    Json left = Json::array();
    for (const Departed& student : since.left) {
      left.push_back({{"teacher", TeacherJson(student.teacher)},
                      {"class", student.group},
                      {"name", student.name},
                      {"mission", Known(student.mission.has_value(), student.mission.value_or(0))},
                      {"note", Known(!student.note.empty(), student.note)}});
    }
    return {{"written_at", Known(!since.when.empty(), since.when)},
            {"report", since.file},
            {"left", std::move(left)}};
  }

  Json HistoryJson() const {
    Json classes = Json::array();
    for (const Teacher& teacher : report.teachers) {
      for (const Class& group : teacher.classes) {
        Json points = Json::array();
        for (const MedianPoint& point : group.history) {
          points.push_back({{"written_at", report.times[point.at]},
                            {"median", point.median},
                            {"students", point.students}});
        }
        classes.push_back({{"teacher", TeacherJson(teacher.name)},
                           {"class", group.name},
                           {"points", std::move(points)},
                           {"students", LinesJson(group)}});
      }
    }
    return classes;
  }

  Json LinesJson(const Class& group) const {
    Json students = Json::array();
    for (const Student& student : group.students) {
      Json points = Json::array();
      for (const MissionPoint& point : student.history) {
        points.push_back({{"written_at", report.times[point.at]}, {"mission", point.mission}});
      }
      students.push_back({{"name", student.name}, {"points", std::move(points)}});
    }
    return students;
  }

  const Report& report;
  const Columns columns;
};

}  // namespace

void WriteJson(std::ostream& out, const Report& report, const Form& form) {
  out << Dumped(Writer(report, form).Write(), 2);
}

}  // namespace kivreport
