// The words of the page and of the workbook, in the languages that they are written in.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kivreport {

enum class Language { kEnglish, kGerman };

// What LC_ALL, LC_MESSAGES or LANG says, the first that is set; English unless it begins with "de".
Language LanguageOfEnvironment();
// "en", "de".
const char* CodeOf(Language language);

enum class Word {
  kReport,
  kSkip,
  kAsOf,
  kComplete,
  kIncomplete,
  kWholeStore,
  kNotRead,
  kNotAllRead,
  kTeachers,
  kClasses,
  kStudents,
  kStudent,
  kTeacher,
  kClass,
  kOverview,
  kOverviewCaption,
  kStudentsOf,
  kHowMany,
  kLegend,
  kMedian,
  kFromTo,
  kFrom,
  kTo,
  kStand,
  kNotBegun,
  kIdle,
  kIdleFor,
  kMission,
  kPrevious,
  kVocabulary,
  kLessons,
  kLastWork,
  kRemark,
  kNever,
  kNoStudents,
  kNoClasses,
  kCountStudents,
  kMedianIs,
  kRangeIs,
  kCountNotBegun,
  kIdleOrMore,
  kCountIdle,
  kChart,
  kChartAt,
  kStrip,
  kSearch,
  kShow,
  kEverybody,
  kFound,
  kNoneFound,
  kMade,
  kSummary,
  kStore,
  kWritten,
  kNew,
  kOtherClass,
  kUnsure,
  kLeft,
  kLeftSince,
  kChangeSince,
  kChange,
  kTimeline,
  kTimelineOf,
  kCourse,
  kWeakest,
  kSpaceBar,
  kKeys,
  kBothHands,
  kLeftHand,
  kRightHand,
  kKeystrokes,
  kLessonDone,
  kMissionsLegend,
  kNoGame,
  kPart,
  kNothingFound,
  kSchools,
  kSchool,
  kClassCount,
  kSearchSchools,
  kSchoolsOverview,
  kSchoolsCaption,
  kOverviewOf,
  kPartlyRead,
  kCount
};

class Words {
 public:
  explicit Words(Language language) : language(language) {}

  Language In() const { return language; }
  std::string_view operator[](Word word) const;
  // With each "{}" replaced by the next value.
  std::string Filled(Word word, std::initializer_list<std::string_view> values) const;
  // Of a word that has two forms, "{} student|{} students".
  std::string Counted(Word word, size_t count) const;
  // One of them, as it stands.
  std::string_view FormFor(Word word, size_t count) const;
  // "2026-11-02T10:15:00" as "2 Nov 2026", "02.11.2026"; as it is if it is no such time.
  std::string Date(std::string_view time) const;
  // A half has a decimal sign of the language: "3.5", "3,5".
  std::string Half(double number) const;

 private:
  Language language;
};

}  // namespace kivreport
