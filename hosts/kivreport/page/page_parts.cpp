#include "hosts/kivreport/page/page_parts.h"

#include <initializer_list>
#include <string_view>

#include "hosts/kivreport/class_figures.h"
#include "hosts/kivreport/page/markup.h"
#include "hosts/kivreport/page/page_assets.h"

namespace kivreport {
namespace {

constexpr size_t kLargeReport = 2000;  // students: more take a browser seconds to lay out

// "22 Nov 2026, 10:15"
std::string TimeMarkup(const std::string& when, const Words& words) {
  constexpr size_t kClock = 11, kClockLength = 5;
  const std::string clock = when.size() > kClock ? ", " + when.substr(kClock, kClockLength) : "";
  return "<time datetime=\"" + Escaped(when) + "\">" + words.Date(when) + clock + "</time>";
}

std::string Quiet(const std::string& text) {
  return "<p class=\"quiet\">" + text + "</p>\n";
}

// "<bdi>Ms Hill</bdi>, <bdi>Room 12</bdi>", of those that are not empty.
std::string NamesMarkup(std::initializer_list<std::string_view> names) {
  std::string markup;
  for (const std::string_view name : names) {
    if (!name.empty()) {
      markup += (markup.empty() ? "<bdi>" : ", <bdi>") + Escaped(name) + "</bdi>";
    }
  }
  return markup;
}

std::string PartLine(const Report& report, const Words& words) {
  std::string names;
  for (const auto& [kind, name] : report.part) {
    names += (names.empty() ? "<bdi>" : ", <bdi>") + Escaped(name) + "</bdi>";
  }
  return names.empty() ? "" : Quiet(words.Filled(Word::kPart, {names}));
}

std::string Count(const char* kind, size_t count, std::string_view what) {
  return std::string("<li") + kind + "><b>" + std::to_string(count) + "</b> " + std::string(what) +
         "</li>\n";
}

}  // namespace

void PageCounts::Add(const Report& report) {
  hasTeachers |= report.network;
  teachers += report.network ? report.teachers.size() : 0;
  classes += report.CountClasses();
  students += report.CountStudents();
  const ClassFigures figures = FiguresOf(report);
  notBegun += figures.notBegun;
  idle += figures.idle;
}

std::string PageBegin(const Report& report, size_t students, bool isComplete, const Words& words) {
  std::string page = "<!DOCTYPE html>\n<html lang=\"" + std::string(CodeOf(words.In())) +
                     "\">\n<head>\n<meta charset=\"utf-8\">\n"
                     "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
                     "style-src '";
  page.append(kPageStyleHash).append("'; script-src '").append(kPageScriptHash);
  page +=
      "'; base-uri 'none'; form-action 'none'\">\n"
      "<meta name=\"referrer\" content=\"no-referrer\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
      Escaped(report.school) + ": " + std::string(words[Word::kReport]) + "</title>\n<style>";
  page.append(kPageStyle).append("</style>\n</head>\n<body");
  page += students > kLargeReport ? " class=\"large\"" : "";
  page += ">\n<a class=\"skip\" href=\"#classes\">" + std::string(words[Word::kSkip]) +
          "</a>\n<header>\n" + Quiet(std::string(words[Word::kReport])) + "<h1><bdi>" +
          Escaped(report.school) + "</bdi></h1>\n" + OriginLine(report, words) +
          PartLine(report, words);
  return page + (isComplete ? Quiet(std::string(words[Word::kComplete])) : "") +
         "</header>\n<main>\n";
}

std::string PageEnd(const Words& words) {
  return "</main>\n<footer class=\"quiet\">" + words.Filled(Word::kMade, {KIVSTORE_VERSION}) +
         "</footer>\n<script>" + std::string(kPageScript) + "</script>\n</body>\n</html>\n";
}

std::string OriginLine(const Report& report, const Words& words) {
  return Quiet(words.Filled(Word::kAsOf, {TimeMarkup(report.when, words)}) + " · <bdi>" +
               Escaped(report.root) + "</bdi>");
}

std::string UnreadItem(const std::string& place, const std::string& reason) {
  return "<li>" + place + ": " + Escaped(reason) + "</li>\n";
}

std::string UnreadItems(const Report& report, const std::string& school, const Words& words) {
  std::string items;
  for (const UnreadPlace& place : ListUnread(report)) {
    const std::string names = NamesMarkup({school, place.teacher, place.group, place.student});
    items += UnreadItem(names.empty() ? std::string(words[Word::kWholeStore]) : names,
                        place.unread->reason);
  }
  return items;
}

std::string UnreadSection(const std::string& items, const Words& words) {
  return items.empty()
             ? ""
             : "<section class=\"notice\" aria-labelledby=\"unread\">\n<h2 id=\"unread\">" +
                   std::string(words[Word::kIncomplete]) + "</h2>\n<ul>\n" + items +
                   "</ul>\n</section>\n";
}

std::string CountsList(const PageCounts& counts, const Report& report, const Words& words) {
  const auto counted = [&words](size_t count, Word word) {
    return Count("", count, words.FormFor(word, count));
  };
  return "<ul class=\"counts\">\n" +
         (counts.schools > 0 ? counted(counts.schools, Word::kSchools) : "") +
         (counts.hasTeachers ? counted(counts.teachers, Word::kTeachers) : "") +
         counted(counts.classes, Word::kClasses) + counted(counts.students, Word::kStudents) +
         (!report.progress
              ? ""
              : Count(" class=\"n\"", counts.notBegun, words[Word::kNever]) +
                    Count(" class=\"i\"", counts.idle,
                          words.Filled(Word::kIdleOrMore, {std::to_string(report.idleDays)}))) +
         "</ul>\n";
}

std::string SearchForm(Word label, bool hasProgress, const Words& words) {
  const auto option = [&words](const char* value, Word word) {
    return std::string("<option value=\"") + value + "\">" + std::string(words[word]) + "</option>";
  };
  std::string form =
      "<form id=\"find\" role=\"search\" hidden>\n<div class=\"words\"><label "
      "for=\"words\">" +
      std::string(words[label]) +
      "</label><input id=\"words\" type=\"search\" autocomplete=\"off\" "
      "spellcheck=\"false\"></div>\n";
  if (hasProgress) {
    form += "<div><label for=\"standing\">" + std::string(words[Word::kShow]) +
            "</label><select id=\"standing\">" + option("", Word::kEverybody) +
            option("n", Word::kNotBegun) + option("i", Word::kIdle) + "</select></div>\n";
  }
  form += "<output id=\"found\" data-none=\"" + std::string(words[Word::kNoneFound]);
  form.append("\" data-one=\"").append(words.FormFor(Word::kFound, 1));
  form.append("\" data-many=\"").append(words.FormFor(Word::kFound, 2));
  return form + "\"></output>\n</form>\n";
}

}  // namespace kivreport
