#include "hosts/kivreport/page/overview.h"

#include "hosts/kivreport/page/charts.h"
#include "hosts/kivreport/page/class_figures.h"
#include "hosts/kivreport/page/class_section.h"
#include "hosts/kivreport/page/markup.h"

namespace kivreport {
namespace {

std::string OverviewHead(const Report& report, const Words& words) {
  std::string row = "<thead><tr>" + ColumnHead(words[Word::kClass]) +
                    ColumnHead(words[Word::kHowMany], kNumberColumn);
  if (report.progress) {
    row += ColumnHead(words[Word::kMedian], kNumberColumn) +
           ColumnHead(words[Word::kFromTo], kNumberColumn) +
           ColumnHead(words[Word::kStand], kFixedColumn) +
           ColumnHead(words[Word::kNotBegun], kNumberColumn) +
           ColumnHead(words[Word::kIdle], kNumberColumn);
  }
  return row + "</tr></thead>\n";
}

// Empty fields where nobody's mission is known.
std::string FiguresCells(const ClassPlace& place, const Words& words) {
  const ClassFigures figures = FiguresOf(place.report, place.group);
  if (figures.known == 0) {
    return "<td><td><td class=\"at\"><td><td>";
  }
  return "<td>" + words.Half(figures.median) + "<td>" + std::to_string(figures.least) + "–" +
         std::to_string(figures.most) + "<td class=\"at\">" +
         Strip(figures, place.FullName(), words) + "<td>" + std::to_string(figures.notBegun) +
         "<td>" + std::to_string(figures.idle);
}

std::string ClassRow(const ClassPlace& place, const Words& words) {
  std::string row = "<tr><th scope=\"row\"><a href=\"#c" + std::to_string(place.number) +
                    "\"><bdi>" + Escaped(place.group.name) + "</bdi></a>";
  if (!place.teacher.name.empty()) {
    row += "<small><bdi>" + Escaped(place.teacher.name) + "</bdi></small>";
  }
  row += "<td>" + (place.group.IsKnown() ? std::to_string(place.group.students.size()) : "");
  return row + (place.report.progress ? FiguresCells(place, words) : "") + '\n';
}

}  // namespace

std::string OverviewSection(const Report& report, const Words& words) {
  std::string rows;
  size_t number = 0;
  for (const Teacher& teacher : report.teachers) {
    for (const Class& group : teacher.classes) {
      rows += ClassRow({report, teacher, group, ++number, false}, words);
    }
  }
  if (rows.empty()) {
    return "";
  }
  const std::string legend =
      report.progress ? "<p class=\"quiet\">" + std::string(words[Word::kLegend]) + "</p>\n" : "";
  return "<section id=\"overview\" aria-labelledby=\"glance\">\n<h2 id=\"glance\">" +
         std::string(words[Word::kOverview]) + "</h2>\n<div class=\"box\">\n" + legend +
         "<div class=\"scroll\"><table class=\"overview sortable\"><caption class=\"unseen\">" +
         std::string(words[Word::kOverviewCaption]) + "</caption>\n" + OverviewHead(report, words) +
         "<tbody>\n" + rows + "</tbody></table></div>\n</div>\n</section>\n";
}

}  // namespace kivreport
