// What a student has done of the course: the per-game options record. It exists twice for a
// student, inside the game file and inside the teacher options; the second is the one that the
// progress of a student is told from. Its fields merge by stamps, since teachers and students
// change them on different workstations.
//
// In a file, 276 bytes for 25 missions:
//
//   2, 8        CurrentMissionNumber and its stamp; then Accuracy, Speed
//   2 + n, 8    LessonDone: count, n bools; its stamp; then the six other arrays
//   1           AllMissionsCompleted
#pragma once

#include "archive/file_version.h"
#include "records/activity.h"
#include "records/field_record.h"

namespace kivstore {

// The type by which the product-neutral records know it. Adds nothing.
class SKivTeacherOptionsGameDob : public SFieldRecord<SKivTeacherOptionsGameDob, SDob> {
 public:
  uint32_t GetVersion() const override { return gFileVersion; }

  static constexpr auto Fields() { return std::tuple<>(); }
};

class STeacherOptionsGameDob
    : public SFieldRecord<STeacherOptionsGameDob, SKivTeacherOptionsGameDob> {
 public:
  using BoolArray = SHandleArray<bool>;

  STeacherOptionsGameDob();

  // False for an activity without an array and for a mission that the array lacks.
  bool IsDone(int activity, int mission) const;
  // Arrays grow on demand. A mission below 1 stores nothing but gives the array a fresh stamp.
  void SetDone(int activity, int mission, bool done);

  // The array's stamp becomes fresh, and the record dirty; or it becomes 0 and nothing else.
  void MarkNotebookChanged(bool fresh) { MarkChanged(NotebookDone, fresh); }
  void MarkTypelineChanged(bool fresh) { MarkChanged(TypelineDone, fresh); }
  void MarkWindshieldTypersChanged(bool fresh) { MarkChanged(WindshieldTypersDone, fresh); }
  void MarkWarpSpeedChanged(bool fresh) { MarkChanged(WarpSpeedDone, fresh); }

  SStamped<int16_t> CurrentMissionNumber;
  SStamped<int16_t> Accuracy;  // asked of the student, in the playing code's units
  SStamped<int16_t> Speed;
  SStamped<BoolArray> LessonDone;  // by mission, like the six below
  SStamped<BoolArray> NotebookDone;
  SStamped<BoolArray> TypelineDone;
  SStamped<BoolArray> WindshieldTypersDone;
  SStamped<BoolArray> WarpSpeedDone;
  SStamped<BoolArray> DictationStationDone;
  SStamped<BoolArray> KeyFiguresDone;
  bool AllMissionsCompleted = false;  // no stamp: a merge always takes the other's

  static constexpr auto Fields() {
    using R = STeacherOptionsGameDob;
    constexpr ArrayDefault<bool> kNothingDone{kMissionCount, false};
    return std::tuple(StampedField(&R::CurrentMissionNumber, "CurrentMissionNumber", 1),
                      StampedField(&R::Accuracy, "Accuracy", 80),
                      StampedField(&R::Speed, "Speed", 10),
                      StampedField(&R::LessonDone, "LessonDone", kNothingDone),
                      StampedField(&R::NotebookDone, "NotebookDone", kNothingDone),
                      StampedField(&R::TypelineDone, "TypelineDone", kNothingDone),
                      StampedField(&R::WindshieldTypersDone, "WindshieldTypersDone", kNothingDone),
                      StampedField(&R::WarpSpeedDone, "WarpSpeedDone", kNothingDone),
                      StampedField(&R::DictationStationDone, "DictationStationDone", kNothingDone),
                      StampedField(&R::KeyFiguresDone, "KeyFiguresDone", kNothingDone),
                      PlainField(&R::AllMissionsCompleted, "AllMissionsCompleted", false));
  }

 private:
  using DoneField = SStamped<BoolArray> STeacherOptionsGameDob::*;

  // Null for an activity without an array.
  static DoneField ArrayOf(int activity);
  void MarkChanged(SStamped<BoolArray>& field, bool fresh);
};

}  // namespace kivstore
