#include <algorithm>
#include <cmath>
#include <string>

#include "hosts/common/counted.h"
#include "hosts/kivreport/cells.h"
#include "hosts/kivreport/report_writer.h"
#include "hosts/kivreport/table_foot.h"

namespace kivreport {
namespace {

// Marks of a mission in the row.
struct Marks {
  const char* done;
  const char* current;
  const char* open;
};
constexpr Marks kAsciiMarks{"x", ">", "."};
constexpr Marks kUnicodeMarks{"●", "▶", "·"};

std::string Share(const KeyCount& count) {
  const double share = count.keystrokes > 0 ? static_cast<double>(count.errors) * 100.0 /
                                                  static_cast<double>(count.keystrokes)
                                            : 0;
  return std::to_string(std::lround(share)) + " %";
}

std::string CountText(const KeyCount& count) {
  return kivhost::Counted(static_cast<size_t>(count.keystrokes), "keystroke") + ", " +
         kivhost::Counted(static_cast<size_t>(count.errors), "error") + " (" + Share(count) + ")";
}

void WriteMissions(std::ostream& out, const Progress& progress, bool unicode) {
  const Marks& marks = unicode ? kUnicodeMarks : kAsciiMarks;
  std::string numbers, row;
  for (int mission = 1; mission <= kMissions; ++mission) {
    const bool isDone = progress.lessons[static_cast<size_t>(mission - 1)];
    numbers += PadLeft(std::to_string(mission), 3);
    row += PadLeft(mission == progress.currentMission ? marks.current
                   : isDone                           ? marks.done
                                                      : marks.open,
                   3);
  }
  out << '\n' << numbers << '\n' << row << '\n';
  out << "  " << marks.done << " lesson done, " << marks.current << " current mission\n";
}

void WriteKeys(std::ostream& out, const Keys& keys) {
  out << "\n  Keys          " << CountText(keys.All()) << '\n';
  out << "  Left hand     " << CountText(keys.Of(kivstore::kLeftHand)) << '\n';
  out << "  Right hand    " << CountText(keys.Of(kivstore::kRightHand)) << '\n';
  for (const int key : keys.Weakest()) {
    const KeyCount& count = keys.byKey[static_cast<size_t>(key)];
    out << "  " << PadRight("Weak: " + KeyName(key), 14) << count.errors << " of "
        << count.keystrokes << " (" << Share(count) << ")\n";
  }
}

// "2026-11-20T10:15:00" is told to the minute.
std::string WorkText(const Report& report, const Student& student) {
  constexpr size_t kMinutes = 16;
  const std::string& time = student.progress->lastWork;
  if (time.empty()) {
    return StandingOf(report, student) == Standing::kNotBegun ? "none, not begun" : "not known";
  }
  std::string text = time.substr(0, kMinutes);
  std::replace(text.begin(), text.end(), 'T', ' ');
  if (StandingOf(report, student) == Standing::kIdle) {
    text +=
        ", idle for " + kivhost::Counted(static_cast<size_t>(*DaysIdle(report, student)), "day");
  }
  return text;
}

void WriteChange(std::ostream& out, const Since& since, const Change& change) {
  constexpr const char* kWords[] = {"", "new", "from another class", "not sure", "left"};
  out << "  Since then    ";
  if (change.missions == 0) {
    out << "at the same mission";
  } else if (change.missions) {
    out << (*change.missions < 0 ? "back" : "on") << " by "
        << kivhost::Counted(static_cast<size_t>(std::abs(*change.missions)), "mission");
  } else {
    out << (change.kind == Change::kNew ? "new" : "missions not known");
  }
  if (change.kind != Change::kStayed && change.kind != Change::kNew) {
    out << ", " << kWords[change.kind];
  }
  out << (change.note.empty() ? "" : ": " + Printable(change.note)) << " ("
      << Printable(since.Name()) << ")\n";
}

void WriteSheet(std::ostream& out, const Row& row, const Form& form) {
  out << Printable(row.student.name) << '\n'
      << Printable(PlaceName(row.teacher, row.group)) << "\n\n";
  if (row.student.unread) {
    out << "  " << ColoredNote("not read, " + row.student.unread->what, form.hasColor) << '\n';
    return;
  }
  const Progress& progress = *row.student.progress;
  out << "  Mission       " << progress.currentMission << ", previous " << progress.previousMission
      << '\n';
  out << "  Vocabulary    level " << progress.vocabLevel << '\n';
  out << "  Lessons done  " << progress.lessonsDone << " of " << kMissions << '\n';
  out << "  Last work     " << WorkText(row.report, row.student) << '\n';
  if (row.report.since && row.student.change) {
    WriteChange(out, *row.report.since, *row.student.change);
  }
  WriteMissions(out, progress, form.width && form.showsUnicode);
  if (progress.keys) {
    WriteKeys(out, *progress.keys);
  } else {
    out << "\n  no saved game\n";
  }
}

}  // namespace

void WriteSheets(std::ostream& out, const Report& report, const Form& form) {
  bool isFirst = true;
  for (const Teacher& teacher : report.teachers) {
    for (const Class& group : teacher.classes) {
      for (const Student& student : group.students) {
        out << (isFirst ? "" : "\n");
        isFirst = false;
        WriteSheet(out, {report, teacher.name, group.name, student}, form);
      }
    }
  }
  WriteReasons(out, report, form);
}

}  // namespace kivreport
