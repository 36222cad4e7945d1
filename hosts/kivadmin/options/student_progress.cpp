#include "hosts/kivadmin/options/student_progress.h"

#include "game/game_dob.h"
#include "hosts/common/empty_file.h"
#include "store/place/placing.h"

namespace kivadmin {
namespace {

using kivstore::SFileSpec;
using kivstore::SGameDob;
using kivstore::STeacherOptionsGameDob;

// In the student's options and in those of the game alike.
void Apply(const Progress& progress, STeacherOptionsGameDob& options) {
  if (progress.mission) {
    options.CurrentMissionNumber.value = *progress.mission;
    options.CurrentMissionNumber.MarkFresh();
  }
  if (progress.lessonsDone) {
    options.LessonDone.value = FlagsOf(*progress.lessonsDone);
    options.LessonDone.MarkFresh();
  }
  options.SetDirty(true);
}

void Apply(const Progress& progress, SGameDob& game) {
  if (auto* const options = dynamic_cast<STeacherOptionsGameDob*>(game.GetOptions())) {
    Apply(progress, *options);
  }
  if (progress.mission) {
    game.lessonDob.currentLessonNumber = *progress.mission;
  }
  if (progress.learnedKeys) {
    game.lessonDob.learnedNewKeys = *progress.learnedKeys;
  }
  game.SetDirty(true);
}

// The student's automatic game, or a new one in the student's name.
void ReadGame(const Session& session, SGameDob& game, const SFileSpec& file,
              const kivstore::SLoginNameObj& student) {
  game.SetFirstName(student.firstName);
  game.SetLastName(student.lastName);
  session.Need("read the student's automatic game", file, [&] {
    return !file.IsExistingFile() || kivhost::IsEmptyFile(file) || game.LoadGame(file);
  });
}

SFileSpec FolderOf(const Session& session, const OptionsPlace& place) {
  SFileSpec folder;
  kivstore::EntryFolder(session.Site(), folder, place.classEntry, place.student);
  if (!folder.IsExistingFolder()) {
    throw session.NoFolder(folder, {kNoStore, "the student's folder is missing"});
  }
  return folder;
}

}  // namespace

std::string Text(const Progress& progress) {
  std::string text;
  const auto add = [&](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  if (progress.mission) {
    add("mission " + std::to_string(*progress.mission));
  }
  if (progress.lessonsDone) {
    add("lessons done " + MissionsText(*progress.lessonsDone));
  }
  if (progress.learnedKeys) {
    add(*progress.learnedKeys ? "new keys learned" : "new keys not learned");
  }
  return text;
}

void WriteProgress(const Session& session, const OptionsPlace& place, const Progress& progress) {
  const SFileSpec folder = FolderOf(session, place);
  kivstore::SLockFile lock(session.Site());
  if (!session.IsDryRun()) {
    session.TakeIndexLock(lock, folder, kivstore::ListKind::kFiles);
    session.NeedEntry(lock, folder, *place.student);
  }
  SFileSpec file = folder;
  file.Down(session.App().AutoGameName());
  SGameDob game(&session.App());
  ReadGame(session, game, file, *place.student);
  ChangeOptions(session, place, [&](kivstore::STeacherOptionsDob& options) {
    if (STeacherOptionsGameDob* const own = options.GetGameOptions()) {
      Apply(progress, *own);
    }
  });
  Apply(progress, game);
  if (!session.IsDryRun()) {
    session.Need("write the student's automatic game", file,
                 [&] { return game.SaveFile(file, game.GetLongFileName(), nullptr); });
  }
}

}  // namespace kivadmin
