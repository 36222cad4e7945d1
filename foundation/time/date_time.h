// The system's time stamp: 32 bits, seconds since midnight of 1 January 1904, local time. Reaches
// to 6 February 2040, 06:28:15.
//
// Two values are reserved and drive the merge of records. 0 is no time: nobody ever decided this.
// 0xFFFFFFFF is the fresh mark: changed since the record was last stored; it outranks every real
// time. Conversions never give either: 0 becomes 1 and the fresh mark 0xFFFFFFFE.
#pragma once

#include <compare>
#include <cstdint>

#include "foundation/text/string.h"

namespace kivstore {

class SDateTime {
 public:
  static constexpr uint32_t kNoTime = 0;
  static constexpr uint32_t kFresh = 0xFFFFFFFF;

  SDateTime();  // now, local time
  constexpr explicit SDateTime(uint32_t value) : value(value) {}
  static constexpr SDateTime None() { return SDateTime(kNoTime); }
  static constexpr SDateTime Fresh() { return SDateTime(kFresh); }

  uint32_t Raw() const { return value; }
  void SetRaw(uint32_t raw) { value = raw; }
  bool IsFresh() const { return value == kFresh; }

  // A date from 7 February 2040 on gives 0, a year below 1904 gives 1; nothing else is tested.
  void Set(uint16_t year, uint16_t month, uint16_t day, uint16_t hour, uint16_t minute,
           uint16_t second);
  // Seconds since 1970-01-01.
  void SetUnix(uint32_t seconds);
  uint32_t GetUnix() const;

  // A date as a person types it, in the forms the platform takes. False for what is no date.
  bool Parse(const SString& text, bool withTime);

  friend constexpr auto operator<=>(const SDateTime&, const SDateTime&) = default;

 private:
  uint32_t value;
};

}  // namespace kivstore
