#include "records/game_options_dob.h"

namespace kivstore {

STeacherOptionsGameDob::STeacherOptionsGameDob() {
  ResetFields();
  SetDirty(false);
}

STeacherOptionsGameDob::DoneField STeacherOptionsGameDob::ArrayOf(int activity) {
  switch (activity) {
    case kActivityDictationStation:
      return &STeacherOptionsGameDob::DictationStationDone;
    case kActivityKeyFigures:
      return &STeacherOptionsGameDob::KeyFiguresDone;
    case kActivityLesson:
      return &STeacherOptionsGameDob::LessonDone;
    case kActivityNotebook:
      return &STeacherOptionsGameDob::NotebookDone;
    case kActivityTypeline:
      return &STeacherOptionsGameDob::TypelineDone;
    case kActivityWarpSpeed:
      return &STeacherOptionsGameDob::WarpSpeedDone;
    case kActivityWindshieldTypers:
      return &STeacherOptionsGameDob::WindshieldTypersDone;
    default:
      return nullptr;
  }
}

bool STeacherOptionsGameDob::IsDone(int activity, int mission) const {
  const DoneField array = ArrayOf(activity);
  if (array == nullptr || mission < 1) {
    return false;
  }
  const BoolArray& done = (this->*array).value;
  return mission <= done.GetCount() && done.At(mission - 1);
}

void STeacherOptionsGameDob::SetDone(int activity, int mission, bool done) {
  const DoneField array = ArrayOf(activity);
  if (array == nullptr) {
    return;
  }
  SStamped<BoolArray>& field = this->*array;
  if (mission >= 1) {
    const int index = mission - 1;
    if (index < field.value.GetCount() && field.value.At(index) == done && !field.differs) {
      return;
    }
    field.value.SetAt(index, done);
  }
  MarkChanged(field, true);
}

void STeacherOptionsGameDob::MarkChanged(SStamped<BoolArray>& field, bool fresh) {
  if (!fresh) {
    field.stamp = SDateTime::None();
    return;
  }
  field.MarkFresh();
  SetDirty(true);
}

}  // namespace kivstore
