// Reads a store class by class, for a report: a class is listed once, under its lock, and each of
// its students tells what the progress query tells (progress_command.cpp), the options of the store
// and of the class read once, each student's own options and game once.
//
// Nothing is guessed: a list, an options file or a game that is there and cannot be read makes what
// depends on it unread, with the reason. A student who has no options or no game of his own is at
// what the upper levels say. Whoever is deleted or moved while the class is read is passed over.
// The rules that fill an empty store (store/change/default_entries.h) are not run; a listing
// repairs its index as every listing does.
//
// Memory does not grow with the store: what is handed out holds until the next student.
#pragma once

#include <cstdint>
#include <functional>

#include "app/missions.h"
#include "app/zep_app.h"
#include "foundation/time/date_time.h"
#include "game/game_dob.h"
#include "records/tutor_options_dob.h"
#include "store/list/entries.h"
#include "store/place/failure.h"

namespace kivstore {

struct SStudentReading {
  const SLoginNameObj& student;
  const SFailure& why;  // set: what stands below is not known
  SMissions missions;
  int16_t vocabLevel;
  const STeacherOptionsDob& options;  // in force for the student
  const SGameDob* game;               // null: none
  SDateTime lastWork;                 // the newest stamp of the student's own options and game
};

class SClassReader {
 public:
  explicit SClassReader(SZEPApp& app);

  // The list as a listing gives it. A failure says that it could not be read; the list is empty
  // then. Teachers only at a site with a teacher level; classes are the selected teacher's.
  SFailure ReadTeachers(SLoginList& teachers);
  SFailure ReadClasses(SLoginList& classes);
  SFailure ReadStudents(const SLoginNameObj& classEntry, SLoginList& students);

  // Each student of the class in the order of its list. The failure is the list's own.
  using Visitor = std::function<void(const SStudentReading&)>;
  SFailure ReadProgress(const SLoginNameObj& classEntry, const Visitor& visit);

 private:
  SFailure ReadList(SLoginList& list, const SFileSpec& folder, ListKind kind);
  // The store's options, once for each teacher, and the class's over them; why they are not known.
  SFailure ReadUpperOptions(const SLoginNameObj& classEntry);
  void ReadStudent(const SFileSpec& students, const SLoginNameObj& student,
                   const SFailure& upperFailure, const Visitor& visit);
  // False if the file is there and cannot be read; a file that is bad for good counts as none, as
  // for every reader of options.
  bool TakeOptions(STeacherOptionsDob& record, SFileSpec& spec, bool merge, SFailure& why);
  bool TakeGame(SGameDob& game, const SFileSpec& spec, SFailure& why) const;

  SZEPApp& app;
  SSite& site;
  STeacherOptionsDob storeOptions;    // of the teacher below
  STeacherOptionsDob upperOptions;    // with the class's laid over them
  STeacherOptionsDob ownOptions;      // the student's alone
  STeacherOptionsDob studentOptions;  // the student's over those above
  SFailure storeFailure;
  SString teacherRead;
  bool hasReadStore = false;
  bool mayWait = true;  // no file has been waited for in this class yet
};

}  // namespace kivstore
