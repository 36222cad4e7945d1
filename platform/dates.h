// Parsing a date that a person typed.
#pragma once

namespace kivstore {

class IDates {
 public:
  virtual ~IDates() = default;

  // Days since 30 December 1899, the fraction being the time of day. False, with `date` at 0, if
  // the text is no date. With dateOnly a time of day is accepted and dropped. Windows takes every
  // form of the user's locale; POSIX takes a fixed list, told beside its implementation.
  virtual bool Parse(const char* text, bool dateOnly, double& date) = 0;
};

}  // namespace kivstore
