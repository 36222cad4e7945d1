// The forms in which a date is taken:
//
//   2001-02-03         year, month, day
//   2/3/2001           month, day, year
//   3 February 2001    the month by its English name or the first three letters of it
//   3-Feb-2001
//   February 3, 2001   with or without the comma
//
// and a time of day behind it, or alone, which is then one of day 0:
//
//   14:05    14:05:06    2:05 PM    2:05:06 pm
//
// Letter case does not count; blanks may stand around and between the parts. A year of one or two
// digits lies in 1930 to 2029. Dates that the calendar lacks are no dates.
#include <chrono>
#include <string_view>

#include "platform/base/bytes.h"
#include "platform/base/never_destroyed.h"
#include "platform/posix/services.h"

namespace kivstore {
namespace {

constexpr int kDaysTo1970 = 25569;  // from 30 December 1899
constexpr int kFirstYear = 100;
constexpr int kMaxDigits = 4;

constexpr std::string_view kMonthNames[] = {"January",   "February", "March",    "April",
                                            "May",       "June",     "July",     "August",
                                            "September", "October",  "November", "December"};

struct Number {
  int value = 0;
  int digits = 0;
};

struct Date {
  Number year;
  int month = 0;
  int day = 0;
};

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// Each operation takes what it names off the front of the text; false if that is not there.
class Reader {
 public:
  explicit Reader(std::string_view text) : rest(text) {}

  bool AtEnd() const { return rest.empty(); }

  void SkipBlanks() {
    TakeWhile([](char c) { return c == ' ' || c == '\t'; });
  }

  bool Take(char c) {
    if (rest.empty() || rest.front() != c) {
      return false;
    }
    rest.remove_prefix(1);
    return true;
  }

  bool TakeNumber(Number& number) {
    const std::string_view digits = TakeWhile(IsDigit);
    number = {};
    if (digits.empty() || digits.size() > kMaxDigits) {
      return false;
    }
    for (const char digit : digits) {
      number.value = number.value * 10 + (digit - '0');
    }
    number.digits = static_cast<int>(digits.size());
    return true;
  }

  bool TakeNumber(int& value) {
    Number number;
    const bool taken = TakeNumber(number);
    value = number.value;
    return taken;
  }

  bool TakeMonth(int& month) {
    const std::string_view word = TakeWord();
    for (int i = 0; i < 12; ++i) {
      const std::string_view name = kMonthNames[i];
      if (EqualBytesNoCase(word, name) || EqualBytesNoCase(word, name.substr(0, 3))) {
        month = i + 1;
        return true;
      }
    }
    return false;
  }

  std::string_view TakeWord() { return TakeWhile(IsLetter); }

 private:
  template <class Test>
  std::string_view TakeWhile(Test test) {
    size_t count = 0;
    while (count < rest.size() && test(rest[count])) {
      ++count;
    }
    const std::string_view taken = rest.substr(0, count);
    rest.remove_prefix(count);
    return taken;
  }

  std::string_view rest;
};

// Each form is tried on a copy of the reader, which takes the place of the original if it fits.
using Form = bool (*)(Reader& reader, Date& date);

bool YearFirst(Reader& reader, Date& date) {
  return reader.TakeNumber(date.year) && date.year.digits == 4 && reader.Take('-') &&
         reader.TakeNumber(date.month) && reader.Take('-') && reader.TakeNumber(date.day);
}

bool WithSlashes(Reader& reader, Date& date) {
  return reader.TakeNumber(date.month) && reader.Take('/') && reader.TakeNumber(date.day) &&
         reader.Take('/') && reader.TakeNumber(date.year);
}

bool WithDashes(Reader& reader, Date& date) {
  return reader.TakeNumber(date.day) && reader.Take('-') && reader.TakeMonth(date.month) &&
         reader.Take('-') && reader.TakeNumber(date.year);
}

bool DayFirst(Reader& reader, Date& date) {
  if (!reader.TakeNumber(date.day)) {
    return false;
  }
  reader.SkipBlanks();
  if (!reader.TakeMonth(date.month)) {
    return false;
  }
  reader.SkipBlanks();
  return reader.TakeNumber(date.year);
}

bool MonthFirst(Reader& reader, Date& date) {
  if (!reader.TakeMonth(date.month)) {
    return false;
  }
  reader.SkipBlanks();
  if (!reader.TakeNumber(date.day)) {
    return false;
  }
  reader.Take(',');
  reader.SkipBlanks();
  return reader.TakeNumber(date.year);
}

constexpr Form kForms[] = {YearFirst, WithSlashes, WithDashes, DayFirst, MonthFirst};

bool TakeDate(Reader& reader, Date& date) {
  for (const Form form : kForms) {
    Reader trial = reader;
    if (form(trial, date)) {
      reader = trial;
      return true;
    }
  }
  return false;
}

bool ToHalfDay(std::string_view word, int& hour) {
  const bool afternoon = EqualBytesNoCase(word, "PM");
  if ((!afternoon && !EqualBytesNoCase(word, "AM")) || hour < 1 || hour > 12) {
    return false;
  }
  hour = hour % 12 + (afternoon ? 12 : 0);
  return true;
}

// Seconds since midnight.
bool TakeTime(Reader& reader, int& seconds) {
  int hour = 0, minute = 0, second = 0;
  if (!reader.TakeNumber(hour) || !reader.Take(':') || !reader.TakeNumber(minute)) {
    return false;
  }
  if (reader.Take(':') && !reader.TakeNumber(second)) {
    return false;
  }
  reader.SkipBlanks();
  const std::string_view word = reader.TakeWord();
  if (!word.empty() && !ToHalfDay(word, hour)) {
    return false;
  }
  seconds = (hour * 60 + minute) * 60 + second;
  return hour < 24 && minute < 60 && second < 60;
}

int FullYear(const Number& year) {
  if (year.digits > 2) {
    return year.value;
  }
  return year.value + (year.value < 30 ? 2000 : 1900);
}

// Days since 30 December 1899.
bool ToDays(const Date& date, int& days) {
  const int year = FullYear(date.year);
  const std::chrono::year_month_day day{std::chrono::year(year),
                                        std::chrono::month(static_cast<unsigned>(date.month)),
                                        std::chrono::day(static_cast<unsigned>(date.day))};
  if (year < kFirstYear || date.month > 12 || date.day > 31 || !day.ok()) {
    return false;
  }
  days = static_cast<int>(std::chrono::sys_days(day).time_since_epoch().count()) + kDaysTo1970;
  return true;
}

bool ReadAll(std::string_view text, int& days, int& seconds) {
  Reader reader(text);
  reader.SkipBlanks();
  Date date;
  const bool hasDate = TakeDate(reader, date);
  if (hasDate && !ToDays(date, days)) {
    return false;
  }
  reader.SkipBlanks();
  if ((!hasDate || !reader.AtEnd()) && !TakeTime(reader, seconds)) {
    return false;
  }
  reader.SkipBlanks();
  return reader.AtEnd();
}

class DateForms final : public IDates {
 public:
  bool Parse(const char* text, bool dateOnly, double& date) override {
    date = 0.0;
    int days = 0, seconds = 0;
    if (text == nullptr || !ReadAll(text, days, seconds)) {
      return false;
    }
    const double time = dateOnly ? 0.0 : seconds / 86400.0;
    date = days < 0 ? days - time : days + time;  // the fraction counts away from day 0
    return true;
  }
};

constinit NeverDestroyed<DateForms> gDateForms;

}  // namespace

IDates& PosixDates() {
  return gDateForms.object;
}

}  // namespace kivstore
