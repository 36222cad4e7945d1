#include "foundation/time/date_time.h"

#include <algorithm>

#include "platform/platform.h"

namespace kivstore {
namespace {

constexpr uint32_t kUnixEpoch = 0x7C25B080;   // 1970-01-01, counted from 1904
constexpr uint32_t kUnixBeyond = 0x83DA4F7F;  // the first that would reach the fresh mark
constexpr uint32_t kEarliest = 1;
constexpr uint32_t kLatest = SDateTime::kFresh - 1;
constexpr double kDateOf1904 = 2.0 + 1460.0;  // days after 30 December 1899
constexpr double kLatestDate = 51172.0;
constexpr double kSecondsPerDay = 86400.0;

constexpr uint32_t kDaysBeforeMonth[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};

bool IsLeapYear(uint32_t year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

bool IsBeyondRange(uint32_t year, uint32_t month, uint32_t day) {
  return year > 2040 || (year == 2040 && (month > 2 || (month == 2 && day >= 7)));
}

// A month outside the year counts as its nearest.
uint32_t DaysBefore(uint32_t year, uint32_t month) {
  const uint32_t years = year - 1904;
  const uint32_t leapDay = month > 2 && IsLeapYear(year) ? 1 : 0;
  const uint32_t monthIndex = std::clamp(month, 1U, 12U) - 1;
  return years * 365 + (years + 3) / 4 + kDaysBeforeMonth[monthIndex] + leapDay;
}

uint32_t FromSeconds(double seconds) {
  if (!(seconds >= 1.0)) {
    return kEarliest;
  }
  return seconds >= 4294967295.0 ? kLatest : static_cast<uint32_t>(seconds);
}

}  // namespace

SDateTime::SDateTime() {
  const LocalTime now = Platform().clock->Now();
  Set(now.year, now.month, now.day, now.hour, now.minute, now.second);
}

void SDateTime::Set(uint16_t year, uint16_t month, uint16_t day, uint16_t hour, uint16_t minute,
                    uint16_t second) {
  if (IsBeyondRange(year, month, day)) {
    value = kNoTime;
    return;
  }
  if (year < 1904) {
    value = kEarliest;
    return;
  }
  const uint32_t days = DaysBefore(year, month) - 1 + day;
  value = std::clamp(((days * 24 + hour) * 60 + minute) * 60 + second, kEarliest, kLatest);
}

void SDateTime::SetUnix(uint32_t seconds) {
  value = seconds >= kUnixBeyond ? kLatest : seconds + kUnixEpoch;
}

uint32_t SDateTime::GetUnix() const {
  return value <= kUnixEpoch ? 1 : value - kUnixEpoch;
}

bool SDateTime::Parse(const SString& text, bool withTime) {
  double date = 0.0;
  const bool isDate = Platform().dates->Parse(text.GetText(), !withTime, date);
  if (date == 0.0) {
    return false;
  }
  if (!isDate) {
    value = kNoTime;
    return false;
  }
  value = date > kLatestDate ? kNoTime : FromSeconds((date - kDateOf1904) * kSecondsPerDay);
  return true;
}

}  // namespace kivstore
