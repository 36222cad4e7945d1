// What the teacher set for one mission's activities. The meaning of the values is the playing
// code's: 2 is the default, 1 marks the activity that a mission is built around.
//
// In a file, 60 bytes: the six fields as they stand, each 2 bytes and its stamp of 8.
#pragma once

#include "platform/base/small_blocks.h"
#include "records/activity.h"
#include "records/field_record.h"

namespace kivstore {

class STOMissionDob : public SFieldRecord<STOMissionDob, SDob> {
 public:
  using Setting = SStamped<int16_t>;
  using SettingField = Setting STOMissionDob::*;

  STOMissionDob();

  // Every options record makes and frees 25. Null when there is no memory.
  static void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return AllocateSmall(size);
  }
  static void* operator new(size_t size) noexcept { return AllocateSmall(size); }
  static void operator delete(void* object, size_t size) noexcept { FreeSmall(object, size); }

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
