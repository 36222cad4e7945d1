#include "hosts/kivreport/report_reader.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "app/class_reader.h"
#include "hosts/common/console.h"
#include "hosts/common/failure_text.h"
#include "hosts/common/iso_time.h"
#include "hosts/common/progress_bar.h"
#include "store/place/display_name.h"

namespace kivreport {
namespace {

using kivstore::SFailure;
using kivstore::SLoginList;
using kivstore::SLoginNameObj;

std::optional<Unread> UnreadOf(const SFailure& failure) {
  if (!failure) {
    return std::nullopt;
  }
  return Unread{kivhost::FromLibraryPath(failure.path.GetText()), kivhost::WhatText(failure),
                kivhost::ReasonText(failure)};
}

// A table out of a file may be shorter, and its counts anything.
Keys KeysOf(const kivstore::SDErrorDob& counts) {
  Keys keys;
  for (int key = 0; key < kivstore::kKeyCount; ++key) {
    keys.byKey[static_cast<size_t>(key)] = {std::max(counts.keyTypedTotal.At(key), 0),
                                            std::max(counts.keyTypedWrong.At(key), 0)};
  }
  return keys;
}

Progress ProgressOf(const kivstore::SStudentReading& reading) {
  Progress progress;
  progress.currentMission = reading.missions.current;
  progress.previousMission = reading.missions.previous;
  progress.vocabLevel = reading.vocabLevel;
  progress.lastWork = kivhost::IsoTime(reading.lastWork);
  const auto* const course = reading.options.GetGameOptions();
  for (int mission = 1; course != nullptr && mission <= kMissions; ++mission) {
    progress.lessons[static_cast<size_t>(mission - 1)] =
        course->IsDone(kivstore::kActivityLesson, mission);
  }
  progress.lessonsDone = static_cast<int>(progress.lessons.count());
  if (reading.game != nullptr) {
    progress.keys = KeysOf(reading.game->errorDob);
  }
  return progress;
}

// "Hill School" of ".../Hill School".
std::string FolderName(const std::string& root) {
  constexpr const char* kSeparators = "/\\";
  const std::string path = root.substr(0, root.find_last_not_of(kSeparators) + 1);
  return path.substr(path.find_last_of(kSeparators) + 1);
}

class Reader {
 public:
  Reader(const kivhost::OpenStore& store, const Request& request, const kivhost::Charset& charset,
         Sought& sought, const ClassVisitor& visit)
      : store(store),
        request(request),
        charset(charset),
        sought(sought),
        visit(visit),
        reader(store.App()) {}

  Report Run() {
    report.root = store.Root();
    report.school = FolderName(report.root);
    report.when = kivhost::IsoTime(kivstore::SDateTime());
    report.idleDays = request.idleDays;
    report.part = request.part;
    report.network = store.HasTeachers();
    report.progress = request.progress;
    sought.hasTeachers = report.network;
    report.network ? ReadTeachers() : ReadClasses("", nullptr);
    kivhost::ProgressBar bar("classes", report.CountClasses(), request.quiet);
    for (size_t i = 0; i < chosen.size(); ++i) {
      store.Site().SelectTeacher(chosen[i].teacher ? &*chosen[i].teacher : nullptr);
      for (size_t j = 0; j < chosen[i].classes.size(); ++j) {
        ReadClass(report.teachers[i].classes[j], chosen[i].classes[j]);
        HandOut(report.teachers[i], &report.teachers[i].classes[j]);
        bar.Advance();
      }
      if (chosen[i].classes.empty()) {
        HandOut(report.teachers[i], nullptr);
      }
    }
    return std::move(report);
  }

 private:
  // The entries that stand behind a teacher of the model.
  struct ChosenTeacher {
    std::optional<SLoginNameObj> teacher;
    std::vector<SLoginNameObj> classes;
  };

  std::string Show(const SLoginNameObj& entry) const {
    return charset.ToUtf8(kivstore::DisplayName(entry).View());
  }

  // A listing that had to repair an index shows it in display order once, and in folder order from
  // then on. A report is always in folder order.
  void ReadTeachers() {
    SLoginList teachers;
    report.unread = UnreadOf(reader.ReadTeachers(teachers));
    kivstore::SortByFolder(teachers);
    for (int32_t i = 0; i < teachers.GetSize(); ++i) {
      const std::string name = Show(teachers[i]);
      sought.teachers.push_back(name);
      if (request.teacher.Takes(name, static_cast<size_t>(i) + 1)) {
        ++sought.teachersTaken;
        ReadClasses(name, &teachers[i]);
      }
    }
  }

  void ReadClasses(const std::string& name, const SLoginNameObj* teacher) {
    store.Site().SelectTeacher(teacher);
    SLoginList classes;
    Teacher& entry = report.teachers.emplace_back();
    entry.name = name;
    entry.unread = UnreadOf(reader.ReadClasses(classes));
    kivstore::SortByFolder(classes);
    ChosenTeacher& own = chosen.emplace_back();
    if (teacher != nullptr) {
      own.teacher = *teacher;
    }
    for (int32_t i = 0; i < classes.GetSize(); ++i) {
      const std::string className = Show(classes[i]);
      sought.classes.push_back(className);
      if (request.group.Takes(className, static_cast<size_t>(i) + 1)) {
        ++sought.classesTaken;
        entry.classes.push_back({className, {}, {}});
        own.classes.push_back(classes[i]);
      }
    }
    const bool isOther = !request.group.IsAll() && entry.classes.empty() && !entry.unread;
    if (teacher != nullptr && isOther) {
      report.teachers.pop_back();
      chosen.pop_back();
    }
  }

  using Students = std::vector<std::pair<SLoginNameObj, Student>>;

  void ReadClass(Class& group, const SLoginNameObj& entry) {
    Students students;
    group.unread = UnreadOf(
        (this->*(request.progress ? &Reader::ReadProgress : &Reader::ReadNames))(entry, students));
    std::stable_sort(students.begin(), students.end(), [](const auto& a, const auto& b) {
      return kivstore::CompareByFolder(a.first, b.first) < 0;
    });
    for (auto& student : students) {
      group.students.push_back(std::move(student.second));
    }
  }

  void HandOut(const Teacher& teacher, Class* group) {
    if (visit) {
      visit(report, teacher, group);
      if (group != nullptr) {
        std::erase_if(group->students, [](const Student& student) { return !student.unread; });
        group->students.shrink_to_fit();
      }
    }
  }

  SFailure ReadProgress(const SLoginNameObj& entry, Students& students) {
    return reader.ReadProgress(entry, [&](const kivstore::SStudentReading& reading) {
      Student student{Show(reading.student), {}, UnreadOf(reading.why)};
      if (!reading.why) {
        student.progress = ProgressOf(reading);
      }
      students.emplace_back(reading.student, std::move(student));
    });
  }

  SFailure ReadNames(const SLoginNameObj& entry, Students& students) {
    SLoginList list;
    const SFailure failure = reader.ReadStudents(entry, list);
    for (const SLoginNameObj& student : list) {
      students.emplace_back(student, Student{Show(student), {}, {}});
    }
    return failure;
  }

  const kivhost::OpenStore& store;
  const Request& request;
  const kivhost::Charset& charset;
  Sought& sought;
  const ClassVisitor& visit;
  kivstore::SClassReader reader;
  Report report;
  std::vector<ChosenTeacher> chosen;  // one for each teacher of the report
};

}  // namespace

Report ReadReport(const kivhost::OpenStore& store, const Request& request,
                  const kivhost::Charset& charset, Sought& sought) {
  return Reader(store, request, charset, sought, {}).Run();
}

Report VisitReport(const kivhost::OpenStore& store, const Request& request,
                   const kivhost::Charset& charset, Sought& sought, const ClassVisitor& visit) {
  return Reader(store, request, charset, sought, visit).Run();
}

}  // namespace kivreport
