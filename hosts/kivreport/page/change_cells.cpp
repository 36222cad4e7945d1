#include "hosts/kivreport/page/change_cells.h"

#include "hosts/kivreport/page/class_section.h"
#include "hosts/kivreport/page/markup.h"

namespace kivreport {
namespace {

// The comparison's own words, whatever language the page is in.
std::string NoteMarkup(const std::string& note) {
  return note.empty() ? "" : "<small lang=\"en\">" + Escaped(note) + "</small>";
}

std::string_view KindText(Change::Kind kind, const Words& words) {
  switch (kind) {
    case Change::kNew:
      return words[Word::kNew];
    case Change::kOtherClass:
      return words[Word::kOtherClass];
    case Change::kUnsure:
      return words[Word::kUnsure];
    case Change::kLeft:
      return words[Word::kLeft];
    case Change::kStayed:
      break;
  }
  return {};
}

std::string LeftRow(const Departed& departed) {
  return "<tr><th scope=\"row\">" + Escaped(departed.name) + "<td>" + Escaped(departed.group) +
         "<td>" + Escaped(departed.teacher) + "<td>" +
         (departed.mission ? std::to_string(*departed.mission) : "") + "<td>" +
         NoteMarkup(departed.note) + '\n';
}

}  // namespace

std::string ChangeInWords(const Change& change, const Words& words) {
  std::string text(KindText(change.kind, words));
  return text + (text.empty() || change.note.empty() ? "" : ": ") + change.note;
}

std::string ChangeMarkup(const Change& change, const Words& words) {
  std::string text;
  if (change.missions) {
    text = (*change.missions > 0 ? "+" : "") + std::to_string(*change.missions);
  }
  const std::string_view kind = KindText(change.kind, words);
  if (!kind.empty()) {
    text.append(text.empty() ? "" : " · ").append(kind);
  }
  return text + NoteMarkup(change.note);
}

std::string LeftSection(const Report& report, const Words& words) {
  if (!report.since || report.since->left.empty()) {
    return "";
  }
  const std::string title =
      words.Filled(Word::kLeftSince, {words.Date(Escaped(report.since->Name()))});
  std::string rows;
  for (const Departed& departed : report.since->left) {
    rows += LeftRow(departed);
  }
  return "<section aria-labelledby=\"left\">\n<h2 id=\"left\">" + title +
         "</h2>\n<div class=\"box\"><div class=\"scroll\"><table class=\"sortable\"><caption "
         "class=\"unseen\">" +
         title + "</caption>\n<thead><tr>" + ColumnHead(words[Word::kStudent]) +
         ColumnHead(words[Word::kClass]) + ColumnHead(words[Word::kTeacher]) +
         ColumnHead(words[Word::kMission], kNumberColumn) + ColumnHead(words[Word::kRemark]) +
         "</tr></thead>\n<tbody>\n" + rows + "</tbody></table></div></div>\n</section>\n";
}

}  // namespace kivreport
