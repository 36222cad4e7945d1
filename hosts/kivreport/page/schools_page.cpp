// The page of many schools: all of them at a glance, and each with its classes below. What stands
// at the page's begin is known at the end, so that the schools wait in a file.
#include <fstream>

#include "hosts/common/host_error.h"
#include "hosts/common/scratch_folder.h"
#include "hosts/kivreport/class_figures.h"
#include "hosts/kivreport/page/charts.h"
#include "hosts/kivreport/page/markup.h"
#include "hosts/kivreport/page/overview.h"
#include "hosts/kivreport/page/page_parts.h"
#include "hosts/kivreport/page/teacher_section.h"
#include "hosts/kivreport/schools_form.h"

namespace kivreport {
namespace {

class Page : public SchoolsForm {
 public:
  Page(const Report& whole, const Form& form)
      : whole(whole),
        words(form.language),
        sheets(form.sheets),
        waiting(scratch.PathOf("schools.html"),
                std::ios::binary | std::ios::in | std::ios::out | std::ios::trunc) {}

  void Add(const Report& school) override {
    ++counts.schools;
    counts.Add(school);
    unread += UnreadItems(school, school.school, words);
    rows += Row(school);
    std::string section = Begin(school.school) + OriginLine(school, words);
    if (school.unread) {
      const Word word = school.IsKnown() ? Word::kNotAllRead : Word::kNotRead;
      section += "<p>" + words.Filled(word, {Escaped(school.unread->what)}) + "</p>\n";
    }
    const SchoolPlace place{school, nextClass, sheets, true};
    section += sheets ? "" : OverviewSection(place, words);
    Wait(section);
    for (const Teacher& teacher : school.teachers) {
      Wait(TeacherSection(place, teacher, nextClass, words));
      nextClass += teacher.classes.size();
    }
    Wait(NoTeachers(school, words) + "</section>\n");
  }

  void AddUnread(const std::string& school, const std::string& reason) override {
    ++counts.schools;
    const std::string told = words.Filled(Word::kNotRead, {Escaped(reason)});
    unread += UnreadItem("<bdi>" + Escaped(school) + "</bdi>", reason);
    rows += "<tr class=\"u\">" + NameCell(school, "") + "<td colspan=\"" +
            (whole.progress ? "7" : "2") + "\">" + told + '\n';
    Wait(Begin(school) + "<p>" + told + "</p>\n</section>\n");
  }

  void Finish(const WriteText& write) override {
    write(PageBegin(whole, counts.students, unread.empty(), words));
    write(UnreadSection(unread, words));
    write(CountsList(counts, whole, words));
    if (!sheets) {
      write(SearchForm(Word::kSearchSchools, whole.progress, words));
      write(AxisDefinition());
    }
    write(Glanced());
    write("<div id=\"classes\">\n");
    WriteWaiting(write);
    write("</div>\n" + PageEnd(words));
  }

 private:
  std::string Begin(const std::string& school) const {
    const std::string number = std::to_string(counts.schools);
    return "<section class=\"school\" id=\"s" + number + "\" aria-labelledby=\"t" + number +
           "\">\n<h2 id=\"t" + number + "\"><bdi>" + Escaped(school) + "</bdi></h2>\n";
  }

  void Wait(const std::string& text) { waiting << text; }

  void WriteWaiting(const WriteText& write) {
    waiting.flush();
    waiting.seekg(0);
    if (!waiting) {
      throw kivhost::HostError(kivhost::kNoStore, scratch.Path() + ": cannot be written to");
    }
    scratch.WriteFrom(waiting, write);
  }

  std::string NameCell(const std::string& school, std::string_view remark) const {
    std::string cell = "<th scope=\"row\"><a href=\"#s" + std::to_string(counts.schools) +
                       "\"><bdi>" + Escaped(school) + "</bdi></a>";
    return remark.empty() ? cell : cell + "<small>" + std::string(remark) + "</small>";
  }

  std::string Row(const Report& school) const {
    const bool isWhole = ListUnread(school).empty();
    std::string row = "<tr>" + NameCell(school.school, isWhole ? "" : words[Word::kPartlyRead]);
    row += "<td>" + std::to_string(school.CountClasses()) + "<td>" +
           std::to_string(school.CountStudents());
    return row +
           (school.progress ? FiguresCells(FiguresOf(school), Escaped(school.school), words) : "") +
           '\n';
  }

  std::string Glanced() const {
    return GlanceSection(
        {"glance", "h2", words[Word::kSchoolsOverview], std::string(words[Word::kSchoolsCaption]),
         ColumnHead(words[Word::kSchool]) + ColumnHead(words[Word::kClassCount], kNumberColumn) +
             ColumnHead(words[Word::kHowMany], kNumberColumn) +
             (whole.progress ? FiguresHeads(words) : ""),
         rows, whole.progress && !sheets ? words[Word::kLegend] : ""});
  }

  const Report& whole;
  const Words words;
  const bool sheets;
  const kivhost::ScratchFolder scratch;
  std::fstream waiting;
  PageCounts counts;
  size_t nextClass = 1;
  std::string unread;  // items
  std::string rows;    // of the schools
};

}  // namespace

std::unique_ptr<SchoolsForm> SchoolsPage(const Report& whole, const Form& form) {
  return std::make_unique<Page>(whole, form);
}

}  // namespace kivreport
