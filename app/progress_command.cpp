// Command 6: where the roster, the layered options and a student's saved game meet.
#include <algorithm>

#include "app/commands.h"
#include "foundation/application.h"
#include "game/game_dob.h"
#include "records/game_options_dob.h"
#include "records/tutor_options_dob.h"
#include "store/list/listing.h"
#include "store/place/layout.h"

namespace kivstore::commands {
namespace {

constexpr int16_t kFirstMission = 1;

// The store-wide options with the class's and the student's laid over them.
const STeacherOptionsDob* LoadOptions(const SLoginNameObj& classEntry,
                                      const SLoginNameObj& student) {
  gApp->LoadTeacherOptions(nullptr, nullptr, false, nullptr, nullptr, nullptr, nullptr);
  gApp->LoadTeacherOptions(&classEntry, &student, false, nullptr, nullptr, nullptr, nullptr);
  return static_cast<const STeacherOptionsDob*>(gApp->options);
}

// False without a game that can be read.
bool HasLearnedNewKeys(const SLoginNameObj& classEntry, const SLoginNameObj& student) {
  SFileSpec spec;
  EntryFile(spec, &classEntry, &student, gApp->AutoGameName());
  SGameDob game;
  game.LoadGame(spec);
  return game.lessonDob.HasLearnedNewKeys();
}

// Options without a game record are those of a student at the very start.
void ReturnMissions(SGeneralParams& params, const STeacherOptionsGameDob* progress,
                    bool learnedNewKeys) {
  int32_t current = progress != nullptr ? progress->CurrentMissionNumber.value : kFirstMission;
  const int32_t previous = current - 1;
  const bool lessonDone = progress != nullptr && progress->IsDone(kActivityLesson, current);
  if (!learnedNewKeys && !lessonDone) {
    --current;
  }
  params.currentMission = std::max<int32_t>(current, kFirstMission);
  params.previousMission = std::max<int32_t>(previous, kFirstMission);
}

bool ReportStudent(SGeneralParams& params, const SLoginNameObj& classEntry,
                   const SLoginNameObj& student) {
  ReturnName(params, params.studentName, params.studentNameSize, student);
  params.studentIndex = params.studentListIndex - 1;
  const STeacherOptionsDob* const options = LoadOptions(classEntry, student);
  if (options == nullptr) {
    return false;
  }
  ReturnMissions(params, options->GetGameOptions(), HasLearnedNewKeys(classEntry, student));
  params.vocabLevel = options->VocabLevel.value;
  return true;
}

}  // namespace

bool StudentProgress(SGeneralParams& params) {
  if (!SelectTeacherByIndex(params)) {
    return false;
  }
  SLoginList classes;
  LoadClassList(classes.Array(), true);
  const SLoginNameObj* const classEntry = EntryAt(classes, params.classIndex);
  if (classEntry == nullptr) {
    return false;
  }
  SLoginList students;
  LoadStudentList(students.Array(), *classEntry, true, true);
  const SLoginNameObj* const student = EntryNumber(students, params.studentListIndex);
  return student != nullptr && ReportStudent(params, *classEntry, *student);
}

}  // namespace kivstore::commands
