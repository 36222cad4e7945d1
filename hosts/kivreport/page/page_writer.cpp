#include "hosts/kivreport/page/page_writer.h"

#include <string>
#include <vector>

#include "hosts/kivreport/page/change_cells.h"
#include "hosts/kivreport/page/charts.h"
#include "hosts/kivreport/page/class_figures.h"
#include "hosts/kivreport/page/class_section.h"
#include "hosts/kivreport/page/markup.h"
#include "hosts/kivreport/page/overview.h"
#include "hosts/kivreport/page/page_assets.h"

namespace kivreport {
namespace {

constexpr size_t kLargeReport = 2000;  // students: more take a browser seconds to lay out

class Page {
 public:
  Page(std::ostream& out, const Report& report, Language language, bool sheets)
      : out(out), report(report), words(language), sheets(sheets) {}

  void Write() {
    WriteHead();
    WriteHeader();
    out << "<main>\n";
    WriteUnread();
    if (!sheets) {
      WriteCounts();
      WriteSearch();
      out << AxisDefinition() << OverviewSection(report, words);
    }
    out << LeftSection(report, words) << "<div id=\"classes\">\n";
    for (const Teacher& teacher : report.teachers) {
      WriteTeacher(teacher);
    }
    out << "</div>\n</main>\n<footer class=\"quiet\">"
        << words.Filled(Word::kMade, {KIVSTORE_VERSION}) << "</footer>\n<script>" << kPageScript
        << "</script>\n</body>\n</html>\n";
  }

 private:
  void WriteHead() {
    out << "<!DOCTYPE html>\n<html lang=\"" << CodeOf(words.In())
        << "\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src '"
        << kPageStyleHash << "'; script-src '" << kPageScriptHash
        << "'; base-uri 'none'; form-action 'none'\">\n"
           "<meta name=\"referrer\" content=\"no-referrer\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>"
        << Escaped(report.school) << ": " << words[Word::kReport] << "</title>\n<style>"
        << kPageStyle << "</style>\n</head>\n<body"
        << (report.CountStudents() > kLargeReport ? " class=\"large\"" : "")
        << ">\n<a class=\"skip\" href=\"#classes\">" << words[Word::kSkip] << "</a>\n";
  }

  void WriteHeader() {
    const bool isComplete = ListUnread(report).empty();
    out << "<header>\n<p class=\"quiet\">" << words[Word::kReport] << "</p>\n<h1><bdi>"
        << Escaped(report.school) << "</bdi></h1>\n<p class=\"quiet\">"
        << words.Filled(Word::kAsOf, {TimeMarkup()}) << " · <bdi>" << Escaped(report.root)
        << "</bdi></p>\n";
    WritePart();
    if (isComplete) {
      out << "<p class=\"quiet\">" << words[Word::kComplete] << "</p>\n";
    }
    out << "</header>\n";
  }

  void WritePart() {
    std::string names;
    for (const auto& [kind, name] : report.part) {
      names += (names.empty() ? "<bdi>" : ", <bdi>") + Escaped(name) + "</bdi>";
    }
    if (!names.empty()) {
      out << "<p class=\"quiet\">" << words.Filled(Word::kPart, {names}) << "</p>\n";
    }
  }

  // "22 Nov 2026, 10:15"
  std::string TimeMarkup() const {
    constexpr size_t kClock = 11, kClockLength = 5;
    const std::string clock =
        report.when.size() > kClock ? ", " + report.when.substr(kClock, kClockLength) : "";
    return "<time datetime=\"" + Escaped(report.when) + "\">" + words.Date(report.when) + clock +
           "</time>";
  }

  void WriteUnread() {
    const std::vector<UnreadPlace> places = ListUnread(report);
    if (places.empty()) {
      return;
    }
    out << "<section class=\"notice\" aria-labelledby=\"unread\">\n<h2 id=\"unread\">"
        << words[Word::kIncomplete] << "</h2>\n<ul>\n";
    for (const UnreadPlace& place : places) {
      out << "<li>" << PlaceMarkup(place) << ": " << Escaped(place.unread->reason) << "</li>\n";
    }
    out << "</ul>\n</section>\n";
  }

  std::string PlaceMarkup(const UnreadPlace& place) const {
    std::string names;
    for (const std::string* name : {&place.teacher, &place.group, &place.student}) {
      if (!name->empty()) {
        names += (names.empty() ? "<bdi>" : ", <bdi>") + Escaped(*name) + "</bdi>";
      }
    }
    return names.empty() ? std::string(words[Word::kWholeStore]) : names;
  }

  void WriteCount(const char* kind, size_t count, std::string_view what) {
    out << "<li" << kind << "><b>" << count << "</b> " << what << "</li>\n";
  }

  void WriteCounts() {
    out << "<ul class=\"counts\">\n";
    const auto write = [this](size_t count, Word word) {
      WriteCount("", count, words.FormFor(word, count));
    };
    if (report.network) {
      write(report.teachers.size(), Word::kTeachers);
    }
    write(report.CountClasses(), Word::kClasses);
    write(report.CountStudents(), Word::kStudents);
    if (report.progress) {
      WriteStandings();
    }
    out << "</ul>\n";
  }

  void WriteStandings() {
    size_t notBegun = 0, idle = 0;
    for (const Teacher& teacher : report.teachers) {
      for (const Class& group : teacher.classes) {
        const ClassFigures figures = FiguresOf(report, group);
        notBegun += figures.notBegun;
        idle += figures.idle;
      }
    }
    WriteCount(" class=\"n\"", notBegun, words[Word::kNever]);
    WriteCount(" class=\"i\"", idle,
               words.Filled(Word::kIdleOrMore, {std::to_string(report.idleDays)}));
  }

  // For the script, which shows it.
  void WriteSearch() {
    out << "<form id=\"find\" role=\"search\" hidden>\n<div class=\"words\"><label for=\"words\">"
        << words[Word::kSearch]
        << "</label><input id=\"words\" type=\"search\" autocomplete=\"off\" "
           "spellcheck=\"false\"></div>\n";
    if (report.progress) {
      out << "<div><label for=\"standing\">" << words[Word::kShow]
          << "</label><select id=\"standing\"><option value=\"\">" << words[Word::kEverybody]
          << "</option><option value=\"n\">" << words[Word::kNotBegun]
          << "</option><option value=\"i\">" << words[Word::kIdle] << "</option></select></div>\n";
    }
    out << "<output id=\"found\" data-none=\"" << words[Word::kNoneFound] << "\" data-one=\""
        << words.FormFor(Word::kFound, 1) << "\" data-many=\"" << words.FormFor(Word::kFound, 2)
        << "\"></output>\n</form>\n";
  }

  void WriteTeacher(const Teacher& teacher) {
    out << "<section class=\"teacher\">\n";
    if (report.network) {
      out << "<h2><bdi>" << Escaped(teacher.name) << "</bdi></h2>\n";
    } else {
      out << "<h2 class=\"unseen\">" << words.FormFor(Word::kClasses, 2) << "</h2>\n";
    }
    if (teacher.unread) {
      out << "<p>"
          << words.Filled(teacher.IsKnown() ? Word::kNotAllRead : Word::kNotRead,
                          {Escaped(teacher.unread->what)})
          << "</p>\n";
    } else if (teacher.classes.empty()) {
      out << "<p>" << words[Word::kNoClasses] << "</p>\n";
    }
    for (const Class& group : teacher.classes) {
      out << ClassSection({report, teacher, group, ++place, sheets}, words);
    }
    out << "</section>\n";
  }

  std::ostream& out;
  const Report& report;
  const Words words;
  const bool sheets;
  size_t place = 0;  // of the last class written
};

}  // namespace

void WritePage(std::ostream& out, const Report& report, Language language, bool sheets) {
  Page(out, report, language, sheets).Write();
}

}  // namespace kivreport
