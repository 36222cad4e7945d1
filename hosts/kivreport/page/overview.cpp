#include "hosts/kivreport/page/overview.h"

#include "hosts/kivreport/page/charts.h"
#include "hosts/kivreport/page/markup.h"

namespace kivreport {
namespace {

std::string ClassRow(const ClassPlace& place, const Words& words) {
  std::string row = "<tr><th scope=\"row\"><a href=\"#c" + std::to_string(place.number) +
                    "\"><bdi>" + Escaped(place.group.name) + "</bdi></a>";
  if (!place.teacher.name.empty()) {
    row += "<small><bdi>" + Escaped(place.teacher.name) + "</bdi></small>";
  }
  row += "<td>" + (place.group.IsKnown() ? std::to_string(place.group.students.size()) : "");
  const Report& report = place.school.report;
  return row +
         (report.progress ? FiguresCells(FiguresOf(report, place.group), place.FullName(), words)
                          : "") +
         '\n';
}

}  // namespace

std::string FiguresHeads(const Words& words) {
  return ColumnHead(words[Word::kMedian], kNumberColumn) +
         ColumnHead(words[Word::kFromTo], kNumberColumn) +
         ColumnHead(words[Word::kStand], kFixedColumn) +
         ColumnHead(words[Word::kNotBegun], kNumberColumn) +
         ColumnHead(words[Word::kIdle], kNumberColumn);
}

std::string FiguresCells(const ClassFigures& figures, const std::string& name, const Words& words) {
  if (figures.known == 0) {
    return "<td><td><td class=\"at\"><td><td>";
  }
  return "<td>" + words.Half(figures.median) + "<td>" + std::to_string(figures.least) + "–" +
         std::to_string(figures.most) + "<td class=\"at\">" + Strip(figures, name, words) + "<td>" +
         std::to_string(figures.notBegun) + "<td>" + std::to_string(figures.idle);
}

std::string GlanceSection(const Glance& glance) {
  const std::string legend =
      glance.legend.empty() ? "" : "<p class=\"quiet\">" + std::string(glance.legend) + "</p>\n";
  return "<section class=\"glance\" aria-labelledby=\"" + glance.id + "\">\n<" + glance.heading +
         " id=\"" + glance.id + "\">" + std::string(glance.title) + "</" + glance.heading +
         ">\n<div class=\"box\">\n" + legend +
         "<div class=\"scroll\"><table class=\"overview sortable\"><caption class=\"unseen\">" +
         glance.caption + "</caption>\n<thead><tr>" + glance.head + "</tr></thead>\n<tbody>\n" +
         glance.rows + "</tbody></table></div>\n</div>\n</section>\n";
}

std::string OverviewSection(const SchoolPlace& school, const Words& words) {
  const Report& report = school.report;
  std::string rows;
  size_t number = school.firstClass;
  for (const Teacher& teacher : report.teachers) {
    for (const Class& group : teacher.classes) {
      rows += ClassRow({school, teacher, group, number++}, words);
    }
  }
  if (rows.empty()) {
    return "";
  }
  const std::string caption = school.ofMany
                                  ? words.Filled(Word::kOverviewOf, {Escaped(report.school)})
                                  : std::string(words[Word::kOverviewCaption]);
  return GlanceSection(
      {"g" + std::to_string(school.firstClass), school.Heading(2), words[Word::kOverview], caption,
       ColumnHead(words[Word::kClass]) + ColumnHead(words[Word::kHowMany], kNumberColumn) +
           (report.progress ? FiguresHeads(words) : ""),
       rows, report.progress && !school.ofMany ? words[Word::kLegend] : ""});
}

}  // namespace kivreport
