#include "hosts/kivreport/report_reader.h"

#include <charconv>

#include "hosts/common/progress_bar.h"

namespace kivreport {
namespace {

// Where a student stands in the store's lists.
struct Place {
  int teacher;
  int classIndex;
  int student;
};

class Reader {
 public:
  Reader(StoreHost& host, const Request& request, const kivhost::Charset& charset)
      : host(host), request(request), charset(charset) {}

  Reading Run() {
    ReadRoster();
    // Without a student a second reading would only wait again for a list that is locked.
    if (request.progress && !places.empty()) {
      // A listing that had to repair an index shows it in display order once and in folder order
      // from then on. The places that the progress query takes are those of the second reading.
      ReadRoster();
      ReadProgress();
    }
    return std::move(reading);
  }

 private:
  void ReadRoster() {
    reading = {};
    places.clear();
    reading.report.network = request.network;
    reading.report.progress = request.progress;
    if (!request.network) {
      ReadTeacher(1, "");
      return;
    }
    const int count = host.CacheTeachers().value_or(0);
    if (count == 0) {
      reading.emptyList = true;
    }
    for (int i = 1; i <= count; ++i) {
      const std::string name = charset.ToUtf8(host.TeacherName(i));
      if (request.teacher.Takes(name, i)) {
        ReadTeacher(i, name);
      }
    }
  }

  void ReadTeacher(int teacher, const std::string& name) {
    Teacher& entry = reading.report.teachers.emplace_back(Teacher{name, {}});
    const int count = host.CacheClasses(teacher).value_or(0);
    if (count == 0) {
      reading.emptyList = true;
    }
    for (int i = 1; i <= count; ++i) {
      const std::string className = charset.ToUtf8(host.ClassName(teacher, i));
      if (request.group.Takes(className, i)) {
        entry.classes.push_back(ReadClass(teacher, i, className));
      }
    }
  }

  Class ReadClass(int teacher, int number, const std::string& name) {
    Class group{name, {}};
    const int count = host.CacheStudents(teacher, number - 1).value_or(0);
    if (count == 0) {
      reading.emptyList = true;
    }
    for (int i = 1; i <= count; ++i) {
      group.students.push_back({charset.ToUtf8(host.StudentName(teacher, number - 1, i)), 0, 0, 0});
      places.push_back({teacher, number - 1, i});
    }
    return group;
  }

  // The places were noted in the order of the model.
  void ReadProgress() {
    kivhost::ProgressBar bar("students", places.size(), request.quiet);
    auto place = places.begin();
    for (Teacher& teacher : reading.report.teachers) {
      for (Class& group : teacher.classes) {
        for (Student& student : group.students) {
          if (!ReadStudent(*place++, student)) {
            return;
          }
          bar.Advance();
        }
      }
    }
  }

  bool ReadStudent(const Place& place, Student& student) {
    const auto progress = host.StudentProgress(place.teacher, place.classIndex, place.student);
    reading.failed = !progress;
    if (progress) {
      student = {charset.ToUtf8(progress->name), progress->currentMission,
                 progress->previousMission, progress->vocabLevel};
    }
    return progress.has_value();
  }

  StoreHost& host;
  const Request& request;
  const kivhost::Charset& charset;
  Reading reading;
  std::vector<Place> places;
};

}  // namespace

std::optional<Selector> Selector::Parse(const std::string& text) {
  Selector selector;
  if (text.empty() || text[0] != '#') {
    selector.name = text;
    return selector;
  }
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 1, end, selector.place);
  if (error != std::errc() || stop != end || selector.place < 1) {
    return std::nullopt;
  }
  return selector;
}

bool Selector::Takes(const std::string& candidate, int number) const {
  if (place > 0) {
    return number == place;
  }
  return name.empty() || kivhost::EqualNoCase(candidate, name);
}

Reading ReadReport(StoreHost& host, const Request& request, const kivhost::Charset& charset) {
  return Reader(host, request, charset).Run();
}

}  // namespace kivreport
