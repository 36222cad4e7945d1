#include "hosts/kivreport/page/teacher_section.h"

#include "hosts/kivreport/page/markup.h"

namespace kivreport {
namespace {

std::string Paragraph(std::string_view text) {
  return "<p>" + std::string(text) + "</p>\n";
}

// Why there are no classes.
std::string_view NoClasses(const Report& report, const Words& words) {
  return words[report.part.empty() ? Word::kNoClasses : Word::kNothingFound];
}

}  // namespace

std::string TeacherSection(const SchoolPlace& school, const Teacher& teacher, size_t firstClass,
                           const Words& words) {
  const std::string heading = school.Heading(2);
  std::string section = "<section class=\"teacher\">\n<" + heading;
  if (school.report.network) {
    section += "><bdi>" + Escaped(teacher.name) + "</bdi>";
  } else {
    section += " class=\"unseen\">" + std::string(words.FormFor(Word::kClasses, 2));
  }
  section += "</" + heading + ">\n";
  if (teacher.unread) {
    section += Paragraph(words.Filled(teacher.IsKnown() ? Word::kNotAllRead : Word::kNotRead,
                                      {Escaped(teacher.unread->what)}));
  } else if (teacher.classes.empty()) {
    section += Paragraph(NoClasses(school.report, words));
  }
  for (const Class& group : teacher.classes) {
    section += ClassSection({school, teacher, group, firstClass++}, words);
  }
  return section + "</section>\n";
}

std::string NoTeachers(const Report& report, const Words& words) {
  return report.teachers.empty() && !report.unread ? Paragraph(NoClasses(report, words)) : "";
}

}  // namespace kivreport
