#include "hosts/kivreport/table_foot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "hosts/common/counted.h"
#include "hosts/kivreport/cells.h"

namespace kivreport {
namespace {

using kivhost::Counted;

void WriteCounts(std::ostream& out, const Report& report) {
  if (report.network) {
    out << Counted(report.teachers.size(), "teacher") << ", ";
  }
  out << Counted(report.CountClasses(), "class", "classes") << ", "
      << Counted(report.CountStudents(), "student") << '\n';
}

size_t CountStanding(const Report& report, Standing standing) {
  size_t count = 0;
  for (const Teacher& teacher : report.teachers) {
    for (const Class& group : teacher.classes) {
      count += static_cast<size_t>(std::count_if(
          group.students.begin(), group.students.end(),
          [&](const Student& student) { return StandingOf(report, student) == standing; }));
    }
  }
  return count;
}

void WriteStandings(std::ostream& out, const Report& report) {
  const size_t idle = CountStanding(report, Standing::kIdle);
  const size_t notBegun = CountStanding(report, Standing::kNotBegun);
  if (idle > 0) {
    out << "idle, no work for " << Counted(static_cast<size_t>(report.idleDays), "day")
        << " or more: " << idle << '\n';
  }
  if (notBegun > 0) {
    out << "not begun: " << notBegun << '\n';
  }
}

void WriteLeft(std::ostream& out, const Since& since) {
  out << "\nLeft since " << Printable(since.Name()) << ": "
      << (since.left.empty() ? "nobody" : std::to_string(since.left.size())) << '\n';
  for (const Departed& student : since.left) {
    out << "  " << Printable(student.name) << " of "
        << Printable(PlaceName(student.teacher, student.group));
    if (student.mission) {
      out << ", at mission " << *student.mission;
    }
    out << (student.note.empty() ? "" : "; " + Printable(student.note)) << '\n';
  }
}

// "7", "7.5".
std::string MedianText(double median) {
  char text[32];
  std::snprintf(text, sizeof text, std::floor(median) == median ? "%.0f" : "%.1f", median);
  return text;
}

std::string DateOf(const std::string& time) {
  constexpr size_t kDate = 10;  // of "2026-11-20T10:15:00"
  return time.substr(0, kDate);
}

// The last of each day.
void WriteMedians(std::ostream& out, const Report& report, const Class& group, bool unicode) {
  for (size_t i = 0; i < group.history.size(); ++i) {
    const MedianPoint& point = group.history[i];
    const std::string date = DateOf(report.times[point.at]);
    if (i + 1 < group.history.size() && DateOf(report.times[group.history[i + 1].at]) == date) {
      continue;
    }
    const int rounded = static_cast<int>(std::lround(point.median));
    out << "    " << date << "  " << (unicode ? Bar(rounded, kMissions) + "  " : "")
        << PadLeft(MedianText(point.median), 4) << "  " << Counted(point.students, "student")
        << '\n';
  }
}

void WriteHistory(std::ostream& out, const Report& report, bool unicode) {
  out << "\nMedian missions by date\n";
  for (const Teacher& teacher : report.teachers) {
    for (const Class& group : teacher.classes) {
      out << "  " << Printable(PlaceName(teacher.name, group.name)) << '\n'
          << (group.history.empty() ? "    none\n" : "");
      WriteMedians(out, report, group, unicode);
    }
  }
}

}  // namespace

std::string PlaceName(const std::string& teacher, const std::string& group) {
  return teacher.empty() ? group : teacher + ", " + group;
}

void WriteReasons(std::ostream& out, const Report& report, const Form& form) {
  for (const std::string& reason : ReasonsOf(report)) {
    out << ColoredNote("incomplete: " + Printable(reason), form.hasColor) << '\n';
  }
}

void WriteFoot(std::ostream& out, const Report& report, const Form& form) {
  out << '\n';
  WriteCounts(out, report);
  if (form.width || form.marksStanding) {
    WriteStandings(out, report);
  }
  if (report.since) {
    WriteLeft(out, *report.since);
  }
  if (!report.times.empty()) {
    WriteHistory(out, report, form.width && form.showsUnicode);
  }
  WriteReasons(out, report, form);
}

}  // namespace kivreport
