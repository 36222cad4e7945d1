#include "records/mission_dob.h"

namespace kivstore {

STOMissionDob::SettingField STOMissionDob::FieldOf(int activity) {
  switch (activity) {
    case kActivityDictationStation:
      return &STOMissionDob::DictationStation;
    case kActivityKeyFigures:
      return &STOMissionDob::KeyFigures;
    case kActivityNotebook:
      return &STOMissionDob::Notebook;
    case kActivityTypeline:
      return &STOMissionDob::Typeline;
    case kActivityWarpSpeed:
      return &STOMissionDob::WarpSpeed;
    case kActivityWindshieldTypers:
      return &STOMissionDob::WindshieldTypers;
    default:
      return nullptr;
  }
}

}  // namespace kivstore
