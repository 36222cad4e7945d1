// What the teacher set for one mission's activities. The meaning of the values is the playing
// code's: 2 is the default, 1 marks the activity that a mission is built around.
//
// In a file, 60 bytes: the six fields as they stand, each 2 bytes and its stamp of 8.
#pragma once

#include "records/activity.h"
#include "records/field_record.h"

namespace kivstore {

class STOMissionDob final : public SFieldRecord<STOMissionDob, SDob> {
 public:
  using Setting = SStamped<int16_t>;
  using SettingField = Setting STOMissionDob::*;

  STOMissionDob() { ResetFields(); }

  // The field of an activity; null for the lesson and for what is no activity.
  static SettingField FieldOf(int activity);

  Setting Notebook;
  Setting Typeline;
  Setting WindshieldTypers;
  Setting WarpSpeed;
  Setting DictationStation;
  Setting KeyFigures;

  static constexpr auto Fields() {
    using R = STOMissionDob;
    return std::tuple(StampedField(&R::Notebook, "Notebook", 2),
                      StampedField(&R::Typeline, "Typeline", 2),
                      StampedField(&R::WindshieldTypers, "WindshieldTypers", 2),
                      StampedField(&R::WarpSpeed, "WarpSpeed", 2),
                      StampedField(&R::DictationStation, "DictationStation", 2),
                      StampedField(&R::KeyFigures, "KeyFigures", 2));
  }
};

}  // namespace kivstore
