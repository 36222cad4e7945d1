#include "hosts/common/iso_time.h"

#include <chrono>
#include <cstdio>

namespace kivhost {

std::string IsoTime(kivstore::SDateTime time) {
  using namespace std::chrono;
  if (time == kivstore::SDateTime::None()) {
    return "";
  }
  const auto point = sys_days(year(1904) / 1 / 1) + seconds(time.Raw());
  const auto day = floor<days>(point);
  const year_month_day date(day);
  const hh_mm_ss clock(point - day);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02d", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text;
}

}  // namespace kivhost
