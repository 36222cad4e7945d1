#include "hosts/kivreport/page/page_writer.h"

#include "hosts/kivreport/page/change_cells.h"
#include "hosts/kivreport/page/charts.h"
#include "hosts/kivreport/page/overview.h"
#include "hosts/kivreport/page/page_parts.h"
#include "hosts/kivreport/page/teacher_section.h"

namespace kivreport {

void WritePage(std::ostream& out, const Report& report, Language language, bool sheets) {
  const Words words(language);
  const SchoolPlace school{report, 1, sheets, false};
  const std::string unread = UnreadItems(report, "", words);
  out << PageBegin(report, report.CountStudents(), unread.empty(), words)
      << UnreadSection(unread, words);
  if (!sheets) {
    PageCounts counts;
    counts.Add(report);
    out << CountsList(counts, report, words) << SearchForm(Word::kSearch, report.progress, words)
        << AxisDefinition() << OverviewSection(school, words);
  }
  out << LeftSection(report, words) << "<div id=\"classes\">\n";
  size_t number = 1;
  for (const Teacher& teacher : report.teachers) {
    out << TeacherSection(school, teacher, number, words);
    number += teacher.classes.size();
  }
  out << NoTeachers(report, words) << "</div>\n" << PageEnd(words);
}

}  // namespace kivreport
