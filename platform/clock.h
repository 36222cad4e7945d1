// Time as the platform tells it.
#pragma once

#include <cstdint>

namespace kivstore {

struct LocalTime {
  uint16_t year, month, day;  // month and day from 1
  uint16_t hour, minute, second;
};

class IClock {
 public:
  virtual ~IClock() = default;
  // Milliseconds since system start; wraps after 49.7 days.
  virtual uint32_t Ticks() = 0;
  // Lets about a millisecond go by without keeping the processor busy. A clock moved by hand has
  // nothing to wait for.
  virtual void Pause() {}
  virtual LocalTime Now() = 0;
  // The system's warning sound.
  virtual void Beep(uint32_t kind) = 0;
};

}  // namespace kivstore
