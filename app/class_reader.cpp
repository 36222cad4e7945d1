#include "app/class_reader.h"

#include <algorithm>

#include "app/file_outcome.h"
#include "archive/file_version.h"
#include "store/list/listing.h"
#include "store/lock/lock_file.h"
#include "store/place/placing.h"
#include "store/place/store_names.h"

namespace kivstore {
namespace {

constexpr int16_t kLastTry = 4;  // three tries more, with waits of 0.7 to 1.4 seconds in all

SFailure FailureOf(Outcome outcome, const SFileSpec& spec) {
  if (outcome != Outcome::kRefused) {
    return {FailureKind::kDamaged, ListKind::kFiles, SystemError::kNone, spec.GetPath(), 0, {}};
  }
  SFailure failure = FailureOfLastFile(ListKind::kFiles);
  if (failure.kind != FailureKind::kForeignLink) {
    failure.path = spec.GetPath();
  }
  return failure;
}

// The fresh mark, which no writer leaves in a file, is no time.
SDateTime NewestStamp(const STeacherOptionsDob* own, const SGameDob* game) {
  SDateTime newest = SDateTime::None();
  if (own != nullptr) {
    newest = own->GetModified();
  }
  if (game != nullptr && game->GetOptions() != nullptr) {
    newest = std::max(newest, game->GetOptions()->GetModified());
  }
  return newest.IsFresh() ? SDateTime::None() : newest;
}

}  // namespace

SClassReader::SClassReader(SZEPApp& app) : app(app), site(app.GetSite()) {}

SFailure SClassReader::ReadTeachers(SLoginList& teachers) {
  SFileSpec folder;
  TeachersFolder(site, folder);
  return ReadList(teachers, folder, ListKind::kTeachers);
}

SFailure SClassReader::ReadClasses(SLoginList& classes) {
  SFileSpec folder;
  ClassesFolder(site, folder);
  return ReadList(classes, folder, ListKind::kClasses);
}

SFailure SClassReader::ReadStudents(const SLoginNameObj& classEntry, SLoginList& students) {
  SFileSpec folder;
  StudentsFolder(site, folder, classEntry);
  return ReadList(students, folder, ListKind::kStudents);
}

SFailure SClassReader::ReadList(SLoginList& list, const SFileSpec& folder, ListKind kind) {
  site.ClearFailure();
  list.RemoveAll();
  LoadLoginsAt(site, list, folder, kind, true, true);
  return site.GetFailure();
}

SFailure SClassReader::ReadProgress(const SLoginNameObj& classEntry, const Visitor& visit) {
  SLoginList students;
  SFileSpec folder;
  StudentsFolder(site, folder, classEntry);
  const SFailure listFailure = ReadList(students, folder, ListKind::kStudents);
  if (students.IsEmpty()) {
    return listFailure;
  }
  mayWait = true;
  const SFailure upperFailure = ReadUpperOptions(classEntry);
  for (const SLoginNameObj& student : students) {
    ReadStudent(folder, student, upperFailure, visit);
  }
  return listFailure;
}

SFailure SClassReader::ReadUpperOptions(const SLoginNameObj& classEntry) {
  const SLoginNameObj* const teacher = site.GetCurrentTeacher();
  const SString teacherFolder = teacher != nullptr ? teacher->folderName : SString();
  SFileSpec spec;
  if (!hasReadStore || teacherRead != teacherFolder) {
    hasReadStore = true;
    teacherRead = teacherFolder;
    storeFailure = {};
    storeOptions.Clear();
    OptionsFile(site, spec, nullptr, nullptr);
    TakeOptions(storeOptions, spec, false, storeFailure);
  }
  SFailure failure = storeFailure;
  upperOptions.Copy(storeOptions);
  OptionsFile(site, spec, &classEntry, nullptr);
  TakeOptions(upperOptions, spec, true, failure);
  return failure;
}

void SClassReader::ReadStudent(const SFileSpec& students, const SLoginNameObj& student,
                               const SFailure& upperFailure, const Visitor& visit) {
  SFailure failure = upperFailure;
  const SFileSpec folder = ListedFolder(students, student.folderName);
  SFileSpec optionsFile(folder), gameFile(folder);
  optionsFile.DownAssumed(CachedText<kTextOptionsFile>().GetText());
  gameFile.DownAssumed(app.AutoGameName().GetText());
  studentOptions.Copy(upperOptions);
  SGameDob game(&app);
  const bool hasOptions = TakeOptions(ownOptions, optionsFile, false, failure);
  if (hasOptions) {
    studentOptions.Merge(ownOptions);
  }
  const bool hasGame = TakeGame(game, gameFile, failure);
  SFileSpec place(folder);
  if (!failure && !hasOptions && !hasGame && !place.Refresh()) {
    return;  // deleted or moved since the class was listed
  }
  const SMissions missions =
      MissionsOf(studentOptions.GetGameOptions(), game.lessonDob.HasLearnedNewKeys());
  const SGameDob* const ownGame = hasGame ? &game : nullptr;
  visit({student, failure, missions, studentOptions.VocabLevel.value, studentOptions, ownGame,
         NewestStamp(hasOptions ? &ownOptions : nullptr, ownGame)});
}

bool SClassReader::TakeOptions(STeacherOptionsDob& record, SFileSpec& spec, bool merge,
                               SFailure& why) {
  if (!spec.IsExistingFile()) {
    return false;
  }
  const auto read = [&] { return merge ? record.MergeFromFile(spec) : record.LoadFromFile(spec); };
  Outcome outcome = TryToRead(read);
  if (outcome == Outcome::kDamaged && app.OptionsReadFailed(record, spec) == SKivApp::kGoOn) {
    return false;
  }
  const bool waits = mayWait && site.IsShared();
  for (int16_t step = 1; outcome > Outcome::kNothingThere && waits && step <= kLastTry;) {
    mayWait = false;
    BackoffWait(step);
    outcome = TryToRead(read);
  }
  if (outcome > Outcome::kNothingThere && !why) {
    why = FailureOf(outcome, spec);
  }
  return outcome == Outcome::kRead;
}

bool SClassReader::TakeGame(SGameDob& game, const SFileSpec& spec, SFailure& why) const {
  const Outcome outcome = TryToRead([&] { return game.LoadGame(spec); });
  const bool isGame = outcome != Outcome::kDamaged || SKivGameDob::IsGameFile(spec);
  if (outcome > Outcome::kNothingThere && isGame && !why) {
    why = FailureOf(outcome, spec);
  }
  return outcome == Outcome::kRead;
}

}  // namespace kivstore
