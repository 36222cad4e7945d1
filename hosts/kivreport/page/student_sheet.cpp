#include "hosts/kivreport/page/student_sheet.h"

#include "hosts/kivreport/page/keyboard_picture.h"
#include "hosts/kivreport/page/markup.h"
#include "hosts/kivreport/page/timeline.h"

namespace kivreport {
namespace {

// What the colours say is said to those who don't see them too.
std::string Mission(int mission, const Progress& progress, const Words& words) {
  const bool isCurrent = mission == progress.currentMission;
  const bool isDone = progress.lessons[static_cast<size_t>(mission - 1)];
  std::string kind, told;
  if (isDone) {
    kind = "done";
    told.append(", ").append(words[Word::kLessonDone]);
  }
  if (isCurrent) {
    kind += " current";
    told.append(", ").append(words[Word::kMission]);
  }
  return told.empty() ? "<li>" + std::to_string(mission) + "</li>"
                      : "<li class=\"" + kind + "\">" + std::to_string(mission) +
                            "<span class=\"unseen\">" + told + "</span></li>";
}

std::string Headed(const SchoolPlace& school, std::string_view text) {
  const std::string heading = school.Heading(5);
  return '<' + heading + '>' + std::string(text) + "</" + heading + ">\n";
}

std::string MissionRow(const SchoolPlace& school, const Progress& progress, const Words& words) {
  std::string row = Headed(school, words[Word::kStand]) + "<ol class=\"missions\">";
  for (int mission = 1; mission <= kMissions; ++mission) {
    row += Mission(mission, progress, words);
  }
  return row + "</ol>\n<p class=\"quiet\">" + std::string(words[Word::kMissionsLegend]) + "</p>\n";
}

std::string Hand(std::string_view name, const KeyCount& count, const Words& words) {
  return "<li>" + std::string(name) + ": " +
         words.Filled(Word::kKeystrokes, {std::to_string(count.keystrokes),
                                          std::to_string(count.errors), ErrorShare(count)}) +
         "</li>";
}

std::string KeysPart(const SchoolPlace& school, const Keys& keys, const Words& words) {
  return Headed(school, words[Word::kKeys]) + "<ul>" +
         Hand(words[Word::kBothHands], keys.All(), words) +
         Hand(words[Word::kLeftHand], keys.Of(kivstore::kLeftHand), words) +
         Hand(words[Word::kRightHand], keys.Of(kivstore::kRightHand), words) + "</ul>\n" +
         KeyboardPicture(keys, words);
}

std::string Facts(const Report& report, const Student& student, const Words& words) {
  const Progress& progress = *student.progress;
  const Standing standing = StandingOf(report, student);
  std::string last = words.Date(progress.lastWork);
  if (standing == Standing::kNotBegun) {
    last = words[Word::kNever];
  } else if (standing == Standing::kIdle) {
    const int days = DaysIdle(report, student).value_or(0);
    last += " (" + words.Filled(Word::kIdleFor, {std::to_string(days)}) + ')';
  }
  const auto fact = [&words](Word word, const std::string& value) {
    return "<li>" + std::string(words[word]) + " <b>" + value + "</b></li>";
  };
  return "<ul class=\"facts\">" + fact(Word::kMission, std::to_string(progress.currentMission)) +
         fact(Word::kPrevious, std::to_string(progress.previousMission)) +
         fact(Word::kVocabulary, std::to_string(progress.vocabLevel)) +
         fact(Word::kLessons, std::to_string(progress.lessonsDone)) +
         fact(Word::kLastWork, last.empty() ? "–" : last) + "</ul>\n";
}

}  // namespace

std::string StudentSheet(const SchoolPlace& school, const Student& student, const Words& words) {
  const std::string heading = school.Heading(4);
  std::string sheet =
      "<article>\n<" + heading + "><bdi>" + Escaped(student.name) + "</bdi></" + heading + ">\n";
  if (student.unread) {
    sheet += "<p>" + words.Filled(Word::kNotRead, {Escaped(student.unread->what)}) + "</p>\n";
  } else if (student.progress) {
    sheet += Facts(school.report, student, words) + MissionRow(school, *student.progress, words);
    if (student.history.size() > 1) {
      sheet += MissionLine(school.report, student, words) + '\n';
    }
    sheet += student.progress->keys ? KeysPart(school, *student.progress->keys, words)
                                    : "<p>" + std::string(words[Word::kNoGame]) + "</p>\n";
  }
  return sheet + "</article>\n";
}

}  // namespace kivreport
