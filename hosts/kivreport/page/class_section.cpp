#include "hosts/kivreport/page/class_section.h"

#include "hosts/kivreport/class_figures.h"
#include "hosts/kivreport/page/change_cells.h"
#include "hosts/kivreport/page/charts.h"
#include "hosts/kivreport/page/markup.h"
#include "hosts/kivreport/page/student_sheet.h"
#include "hosts/kivreport/page/timeline.h"

namespace kivreport {
namespace {

// Rows without end tags, which HTML does not ask for: a page has many.
class StudentRows {
 public:
  StudentRows(const Report& report, const Words& words) : report(report), words(words) {}

  void Add(const Student& student) {
    const Standing standing = StandingOf(report, student);
    rows += student.unread                    ? "<tr class=\"u\">"
            : standing == Standing::kNotBegun ? "<tr class=\"n\">"
            : standing == Standing::kIdle     ? "<tr class=\"i\">"
                                              : "<tr>";
    rows += "<th scope=\"row\">" + Escaped(student.name);
    if (student.unread) {
      rows += "<td colspan=\"6\">" + words.Filled(Word::kNotRead, {Escaped(student.unread->what)});
    } else if (student.progress) {
      AddProgress(*student.progress);
      AddRemark(student, standing);
      AddChange(student);
    }
    rows += '\n';
  }

  std::string Take() { return std::move(rows); }

 private:
  void AddProgress(const Progress& progress) {
    rows += "<td class=\"m" + std::to_string(WithinCourse(progress.currentMission)) + "\">" +
            std::to_string(progress.currentMission);
    for (const int number : {progress.previousMission, progress.vocabLevel, progress.lessonsDone}) {
      rows += "<td>" + std::to_string(number);
    }
    rows += "<td>";
    if (!progress.lastWork.empty()) {
      constexpr size_t kDateLength = 10;
      rows += "<time datetime=\"" + progress.lastWork.substr(0, kDateLength) + "\">" +
              words.Date(progress.lastWork) + "</time>";
    }
  }

  void AddRemark(const Student& student, Standing standing) {
    rows += "<td>";
    if (standing == Standing::kNotBegun) {
      rows.append("<b>").append(words[Word::kNever]).append("</b>");
    } else if (standing == Standing::kIdle) {
      const int days = DaysIdle(report, student).value_or(0);
      rows += "<b>" + words.Filled(Word::kIdleFor, {std::to_string(days)}) + "</b>";
    }
  }

  void AddChange(const Student& student) {
    if (report.since) {
      rows += "<td class=\"num\">" +
              (student.change ? ChangeMarkup(*student.change, words) : std::string());
    }
    if (!report.times.empty()) {
      rows += "<td>" + MissionLine(report, student, words);
    }
  }

  const Report& report;
  const Words& words;
  std::string rows;
};

std::string StudentHead(const Report& report, const Words& words) {
  std::string row = "<thead><tr>" + ColumnHead(words[Word::kStudent]);
  if (report.progress) {
    for (const Word word : {Word::kMission, Word::kPrevious, Word::kVocabulary, Word::kLessons}) {
      row += ColumnHead(words[word], kNumberColumn);
    }
    row += ColumnHead(words[Word::kLastWork]) + ColumnHead(words[Word::kRemark]);
    if (report.since) {
      const std::string when = words.Date(Escaped(report.since->Name()));
      row += ColumnHead(words.Filled(Word::kChangeSince, {when}), kNumberColumn);
    }
    if (!report.times.empty()) {
      row += ColumnHead(words[Word::kCourse], kFixedColumn);
    }
  }
  return row + "</tr></thead>\n";
}

std::string StudentTable(const ClassPlace& place, const Words& words) {
  StudentRows rows(place.school.report, words);
  for (const Student& student : place.group.students) {
    rows.Add(student);
  }
  return "<div class=\"scroll\"><table class=\"students sortable\"><caption class=\"unseen\">" +
         words.Filled(Word::kStudentsOf, {place.FullName()}) + "</caption>\n" +
         StudentHead(place.school.report, words) + "<tbody>\n" + rows.Take() +
         "</tbody></table></div>\n";
}

// "12 students · median mission 3 · from 3 to 9"
std::string FiguresLine(const ClassPlace& place, const ClassFigures& figures, const Words& words) {
  std::string line = words.Counted(Word::kCountStudents, place.group.students.size());
  const auto add = [&line](const std::string& text) { line += " · " + text; };
  if (figures.known > 0) {
    add(words.Filled(Word::kMedianIs, {words.Half(figures.median)}));
    add(words.Filled(Word::kRangeIs,
                     {std::to_string(figures.least), std::to_string(figures.most)}));
  }
  if (figures.notBegun > 0) {
    add(words.Filled(Word::kCountNotBegun, {std::to_string(figures.notBegun)}));
  }
  if (figures.idle > 0) {
    add(words.Filled(Word::kCountIdle,
                     {std::to_string(figures.idle), std::to_string(place.school.report.idleDays)}));
  }
  return "<p class=\"quiet\">" + line + "</p>\n";
}

std::string StudentSheets(const ClassPlace& place, const Words& words) {
  std::string sheets;
  for (const Student& student : place.group.students) {
    sheets += StudentSheet(place.school, student, words);
  }
  return sheets;
}

std::string ClassContents(const ClassPlace& place, const Words& words) {
  std::string contents;
  if (place.group.unread) {
    const Word word = place.group.IsKnown() ? Word::kNotAllRead : Word::kNotRead;
    contents = "<p>" + words.Filled(word, {Escaped(place.group.unread->what)}) + "</p>\n";
  }
  if (place.group.students.empty()) {
    return place.group.unread ? contents : "<p>" + std::string(words[Word::kNoStudents]) + "</p>\n";
  }
  if (place.school.sheets) {
    return contents + StudentSheets(place, words);
  }
  const ClassFigures figures = FiguresOf(place.school.report, place.group);
  contents += FiguresLine(place, figures, words);
  if (figures.known > 0) {
    contents += ColumnChart(figures, place.FullName(), words);
  }
  contents += MedianTimeline(place.school.report, place.group, place.FullName(), words);
  return contents + StudentTable(place, words);
}

}  // namespace

std::string ClassPlace::FullName() const {
  return Escaped(group.name) + (teacher.name.empty() ? "" : ", " + Escaped(teacher.name)) +
         (school.ofMany ? ", " + Escaped(school.report.school) : "");
}

std::string ColumnHead(std::string_view text, const char* kind) {
  const std::string laid = kind == nullptr ? "" : std::string(" class=\"") + kind + '"';
  return "<th scope=\"col\"" + laid + '>' + std::string(text) + "</th>";
}

std::string ClassSection(const ClassPlace& place, const Words& words) {
  const std::string number = std::to_string(place.number);
  const std::string heading = place.school.Heading(3);
  std::string whose;
  const auto add = [&whose](const std::string& name) {
    whose += (whose.empty() ? " <small><bdi>" : ", <bdi>") + Escaped(name) + "</bdi>";
  };
  if (!place.teacher.name.empty()) {
    add(place.teacher.name);
  }
  if (place.school.ofMany) {
    add(place.school.report.school);
  }
  return "<section class=\"group\" id=\"c" + number + "\" aria-labelledby=\"h" + number + "\">\n<" +
         heading + " id=\"h" + number + "\"><bdi>" + Escaped(place.group.name) + "</bdi>" + whose +
         (whose.empty() ? "</" : "</small></") + heading + ">\n" + ClassContents(place, words) +
         "</section>\n";
}

}  // namespace kivreport
