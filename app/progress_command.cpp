// Command 6: where the roster, the layered options and a student's saved game meet.
#include "app/commands.h"
#include "app/missions.h"
#include "game/game_dob.h"
#include "records/tutor_options_dob.h"
#include "store/change/default_entries.h"
#include "store/place/placing.h"

namespace kivstore::commands {
namespace {

// The store-wide options with the class's and the student's laid over them.
const STeacherOptionsDob* LoadOptions(SZEPApp& app, const SLoginNameObj& classEntry,
                                      const SLoginNameObj& student) {
  SOptionsRequest request;
  request.goesOn = app.LoadTeacherOptions({});
  request.classEntry = &classEntry;
  request.studentEntry = &student;
  app.LoadTeacherOptions(request);
  return static_cast<const STeacherOptionsDob*>(app.options.get());
}

// False without a game that can be read.
bool HasLearnedNewKeys(SZEPApp& app, const SLoginNameObj& classEntry,
                       const SLoginNameObj& student) {
  PrepareClassList(app.GetSite());
  SFileSpec spec;
  EntryFileToOpen(app.GetSite(), spec, &classEntry, &student, app.AutoGameName());
  SGameDob game(&app);
  game.LoadGame(spec);
  return game.lessonDob.HasLearnedNewKeys();
}

void ReturnMissions(SGeneralParams& params, const SMissions& missions) {
  params.currentMission = missions.current;
  params.previousMission = missions.previous;
}

bool ReportStudent(SZEPApp& app, SGeneralParams& params, const SLoginNameObj& classEntry,
                   const SLoginNameObj& student) {
  ReturnName(params, params.studentName, params.studentNameSize, student);
  params.studentIndex = params.studentListIndex - 1;
  const STeacherOptionsDob* const options = LoadOptions(app, classEntry, student);
  if (options == nullptr) {
    return false;
  }
  ReturnMissions(
      params, MissionsOf(options->GetGameOptions(), HasLearnedNewKeys(app, classEntry, student)));
  params.vocabLevel = options->VocabLevel.value;
  return true;
}

}  // namespace

bool StudentProgress(SGeneralCall& call, SGeneralParams& params) {
  if (!SelectTeacherByIndex(call, params)) {
    return false;
  }
  SLoginList classes;
  ListClasses(call, classes);
  const SLoginNameObj* const classEntry = EntryAt(classes, params.classIndex);
  if (classEntry == nullptr) {
    return false;
  }
  SLoginList students;
  ListStudents(call, students, *classEntry);
  const SLoginNameObj* const student = EntryNumber(students, params.studentListIndex);
  return student != nullptr && ReportStudent(*call.GetApp(), params, *classEntry, *student);
}

}  // namespace kivstore::commands
