#include "hosts/kivreport/report_reader.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
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
  const std::filesystem::path path(root);
  return (path.has_filename() ? path : path.parent_path()).filename().string();
}

class Reader {
 public:
  Reader(const kivhost::OpenStore& store, const Request& request, const kivhost::Charset& charset)
      : store(store), request(request), charset(charset), reader(store.App()) {}

  Report Run() {
    report.root = store.Root();
    report.school = FolderName(report.root);
    report.when = kivhost::IsoTime(kivstore::SDateTime());
    report.network = store.HasTeachers();
    report.progress = request.progress;
    report.network ? ReadTeachers() : ReadClasses("", nullptr);
    kivhost::ProgressBar bar("classes", report.CountClasses(), request.quiet);
    for (size_t i = 0; i < chosen.size(); ++i) {
      store.Site().SelectTeacher(chosen[i].teacher ? &*chosen[i].teacher : nullptr);
      for (size_t j = 0; j < chosen[i].classes.size(); ++j) {
        ReadClass(report.teachers[i].classes[j], chosen[i].classes[j]);
        bar.Advance();
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
      if (request.teacher.Takes(name, i + 1)) {
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
      if (request.group.Takes(className, i + 1)) {
        entry.classes.push_back({className, {}, {}});
        own.classes.push_back(classes[i]);
      }
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
  kivstore::SClassReader reader;
  Report report;
  std::vector<ChosenTeacher> chosen;  // one for each teacher of the report
};

}  // namespace

Selector::Selector(const std::string& text) {
  if (text.empty() || text[0] != '#') {
    name = text;
    return;
  }
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 1, end, place);
  if (error != std::errc() || stop != end || place < 1) {
    throw kivhost::HostError(kivhost::kWrongUsage,
                             text + ": a place in a list is # and a number from 1, as in #2");
  }
}

bool Selector::Takes(const std::string& candidate, int number) const {
  if (place > 0) {
    return number == place;
  }
  return name.empty() || kivhost::EqualNoCase(candidate, name);
}

Report ReadReport(const kivhost::OpenStore& store, const Request& request,
                  const kivhost::Charset& charset) {
  return Reader(store, request, charset).Run();
}

}  // namespace kivreport
