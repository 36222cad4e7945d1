#include "hosts/kivreport/texts.h"

#include <array>
#include <cmath>
#include <cstdlib>

namespace kivreport {
namespace {

struct Entry {
  Word word;
  std::array<std::string_view, 2> texts;  // by Language
};

constexpr Entry kEntries[] = {
    {Word::kReport, {"Progress report", "Lernstand"}},
    {Word::kSkip, {"Skip to the classes", "Zu den Klassen springen"}},
    {Word::kAsOf, {"As of {}", "Stand: {}"}},
    {Word::kComplete, {"Complete: everything could be read.", "Vollständig: alles war lesbar."}},
    {Word::kIncomplete,
     {"Not complete: this could not be read", "Unvollständig: das war nicht lesbar"}},
    {Word::kWholeStore, {"The whole store", "Die ganze Datenablage"}},
    {Word::kNotRead, {"not read: {}", "nicht gelesen: {}"}},
    {Word::kNotAllRead, {"not all read: {}", "nicht alles gelesen: {}"}},
    {Word::kTeachers, {"teacher|teachers", "Lehrkraft|Lehrkräfte"}},
    {Word::kClasses, {"class|classes", "Klasse|Klassen"}},
    {Word::kStudents, {"student|students", "Lernende/r|Lernende"}},
    {Word::kStudent, {"Student", "Name"}},
    {Word::kTeacher, {"Teacher", "Lehrkraft"}},
    {Word::kClass, {"Class", "Klasse"}},
    {Word::kOverview, {"The classes at a glance", "Die Klassen im Überblick"}},
    {Word::kOverviewCaption,
     {"Classes, with how far their students have come",
      "Klassen und wie weit ihre Lernenden sind"}},
    {Word::kStudentsOf, {"Students of {}", "Lernende der Klasse {}"}},
    {Word::kHowMany, {"Students", "Anzahl"}},
    {Word::kLegend,
     {"A column's blocks are students at that mission; the line under them goes from the lowest to "
      "the highest mission, the mark on it is the median. In the strips a darker field has more "
      "students.",
      "Die Kästchen einer Säule sind Lernende bei dieser Mission; die Linie darunter reicht von "
      "der niedrigsten zur höchsten Mission, die Marke darauf ist der Median. In den Streifen "
      "stehen "
      "dunklere Felder für mehr Lernende."}},
    {Word::kMedian, {"Median mission", "Mission im Median"}},
    {Word::kFromTo, {"From – to", "Von – bis"}},
    {Word::kFrom, {"Lowest mission", "Niedrigste Mission"}},
    {Word::kTo, {"Highest mission", "Höchste Mission"}},
    {Word::kStand, {"Missions 1 to 25", "Missionen 1 bis 25"}},
    {Word::kNotBegun, {"Not begun", "Nicht begonnen"}},
    {Word::kIdle, {"Idle", "Pause"}},
    {Word::kIdleFor, {"idle for {} days", "{} Tage ohne Übung"}},
    {Word::kMission, {"Current mission", "Jetzige Mission"}},
    {Word::kPrevious, {"Previous mission", "Vorige Mission"}},
    {Word::kVocabulary, {"Vocab. level", "Wort\u00ADschatz"}},
    {Word::kLessons, {"Lessons done", "Lektionen fertig"}},
    {Word::kLastWork, {"Last work", "Zuletzt gearbeitet"}},
    {Word::kRemark, {"Remark", "Hinweis"}},
    {Word::kNever, {"not begun", "nicht begonnen"}},
    {Word::kNoStudents, {"No students.", "Keine Lernenden."}},
    {Word::kNoClasses, {"No classes.", "Keine Klassen."}},
    {Word::kCountStudents, {"{} student|{} students", "{} Lernende/r|{} Lernende"}},
    {Word::kMedianIs, {"median mission {}", "Median: Mission {}"}},
    {Word::kRangeIs, {"from {} to {}", "von {} bis {}"}},
    {Word::kCountNotBegun, {"{} not begun", "{} nicht begonnen"}},
    {Word::kIdleOrMore, {"idle for {} days or more", "seit {} Tagen oder länger ohne Übung"}},
    {Word::kCountIdle, {"{} idle for {} days or more", "{} seit {} Tagen oder länger ohne Übung"}},
    {Word::kChart, {"Students of {} by mission: ", "Lernende der Klasse {} nach Mission: "}},
    {Word::kChartAt, {"mission {}: {}", "Mission {}: {}"}},
    {Word::kStrip,
     {"Missions of {}: from {} to {}, median {}",
      "Missionen der Klasse {}: von {} bis {}, Median {}"}},
    {Word::kSearch, {"Search students, classes", "Namen oder Klassen suchen"}},
    {Word::kShow, {"Show", "Zeigen"}},
    {Word::kEverybody, {"Everybody", "Alle"}},
    {Word::kFound, {"{} student found|{} students found", "{} Name gefunden|{} Namen gefunden"}},
    {Word::kNoneFound, {"No student found", "Kein Name gefunden"}},
    {Word::kMade, {"Written by kivreport {}", "Geschrieben von kivreport {}"}},
    {Word::kSummary, {"Summary", "Übersicht"}},
    {Word::kStore, {"Store", "Datenablage"}},
    {Word::kWritten, {"As of", "Stand"}},
    {Word::kNew, {"new", "neu"}},
    {Word::kOtherClass, {"from another class", "aus einer anderen Klasse"}},
    {Word::kUnsure, {"not sure", "nicht sicher"}},
    {Word::kLeft, {"left", "nicht mehr da"}},
    {Word::kLeftSince, {"No longer there since {}", "Nicht mehr da seit {}"}},
    {Word::kChangeSince, {"Since {}", "Seit {}"}},
    {Word::kChange, {"Change", "Veränderung"}},
    {Word::kTimeline, {"Median mission over time", "Mission im Median im Lauf der Zeit"}},
    {Word::kTimelineOf,
     {"Median mission of {} over time: ", "Mission im Median der Klasse {} im Lauf der Zeit: "}},
    {Word::kCourse, {"Over time", "Verlauf"}},
    {Word::kWeakest,
     {"Keys with the largest share of errors:", "Tasten mit dem größten Fehleranteil:"}},
    {Word::kSpaceBar, {"space", "Leertaste"}},
    {Word::kKeys, {"How the keys go", "Wie die Tasten gehen"}},
    {Word::kBothHands, {"All keys", "Alle Tasten"}},
    {Word::kLeftHand, {"Left hand", "Linke Hand"}},
    {Word::kRightHand, {"Right hand", "Rechte Hand"}},
    {Word::kKeystrokes, {"{} keystrokes, {} errors ({})", "{} Anschläge, {} Fehler ({})"}},
    {Word::kLessonDone, {"lesson done", "Lektion fertig"}},
    {Word::kMissionsLegend,
     {"Filled: the lesson is done. Framed: the current mission.",
      "Gefüllt: die Lektion ist fertig. Umrahmt: die jetzige Mission."}},
    {Word::kNoGame, {"No saved game.", "Kein gespeichertes Spiel."}},
    {Word::kPart, {"Only: {}", "Nur: {}"}},
    {Word::kNothingFound,
     {"Nothing here of what was asked for.", "Hier ist nichts von dem, was gesucht wurde."}},
    {Word::kSchools, {"school|schools", "Schule|Schulen"}},
    {Word::kSchool, {"School", "Schule"}},
    {Word::kClassCount, {"Classes", "Klassen"}},
    {Word::kSearchSchools,
     {"Search students, classes, schools", "Namen, Klassen oder Schulen suchen"}},
    {Word::kSchoolsOverview, {"The schools at a glance", "Die Schulen im Überblick"}},
    {Word::kSchoolsCaption,
     {"Schools, with how far their students have come",
      "Schulen und wie weit ihre Lernenden sind"}},
    {Word::kOverviewOf,
     {"Classes of {}, with how far their students have come",
      "Klassen von {} und wie weit ihre Lernenden sind"}},
    {Word::kPartlyRead, {"not all read", "nicht alles gelesen"}},
};

constexpr bool IsInOrder() {
  size_t at = 0;
  for (const Entry& entry : kEntries) {
    if (static_cast<size_t>(entry.word) != at++) {
      return false;
    }
  }
  return at == static_cast<size_t>(Word::kCount);
}
static_assert(IsInOrder());

constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::string FilledIn(std::string_view pattern, std::initializer_list<std::string_view> values) {
  std::string text;
  for (const std::string_view value : values) {
    const size_t place = pattern.find("{}");
    if (place == std::string_view::npos) {
      break;
    }
    text.append(pattern.substr(0, place)).append(value);
    pattern.remove_prefix(place + 2);
  }
  return text.append(pattern);
}

}  // namespace

Language LanguageOfEnvironment() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = std::getenv(name);
    if (value != nullptr && *value != '\0') {
      return std::string_view(value).starts_with("de") ? Language::kGerman : Language::kEnglish;
    }
  }
  return Language::kEnglish;
}

const char* CodeOf(Language language) {
  return language == Language::kGerman ? "de" : "en";
}

std::string_view Words::operator[](Word word) const {
  return kEntries[static_cast<size_t>(word)].texts[static_cast<size_t>(language)];
}

std::string Words::Filled(Word word, std::initializer_list<std::string_view> values) const {
  return FilledIn((*this)[word], values);
}

std::string_view Words::FormFor(Word word, size_t count) const {
  const std::string_view forms = (*this)[word];
  const size_t bar = forms.find('|');
  return count == 1 ? forms.substr(0, bar) : forms.substr(bar + 1);
}

std::string Words::Counted(Word word, size_t count) const {
  return FilledIn(FormFor(word, count), {std::to_string(count)});
}

std::string Words::Date(std::string_view time) const {
  constexpr size_t kDateLength = 10;
  const int month = time.size() < kDateLength ? 0 : (time[5] - '0') * 10 + (time[6] - '0');
  if (month < 1 || month > 12) {
    return std::string(time);
  }
  const std::string year(time.substr(0, 4));
  std::string day(time.substr(8, 2));
  if (language == Language::kGerman) {
    return day + '.' + std::string(time.substr(5, 2)) + '.' + year;
  }
  day.erase(0, day[0] == '0');
  return day + ' ' + kMonths[month - 1] + ' ' + year;
}

std::string Words::Half(double number) const {
  const double whole = std::floor(number);
  const char* const sign = language == Language::kGerman ? ",5" : ".5";
  return std::to_string(static_cast<int>(whole)) + (number > whole ? sign : "");
}

}  // namespace kivreport
