// `progress`: puts a student where another store left off, in the options and the automatic game.
#include <memory>

#include "foundation/application.h"
#include "game/game_dob.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/options/option_levels.h"
#include "store/place/layout.h"

namespace kivadmin {
namespace {

using kivstore::SFileSpec;
using kivstore::SGameDob;
using kivstore::SLoginNameObj;
using kivstore::STeacherOptionsGameDob;

struct Progress {
  std::optional<int16_t> mission;
  std::optional<std::vector<int>> lessonsDone;
  std::optional<bool> learnedKeys;

  bool IsEmpty() const { return !mission && !lessonsDone && !learnedKeys; }
};

struct ProgressLine {
  CommonOptions* common;
  EntryNames names;
  std::optional<std::string> mission;
  std::optional<std::string> lessonsDone;
  std::optional<std::string> learnedKeys;
};

Progress Parse(const ProgressLine& line) {
  Progress progress;
  if (line.mission) {
    const Limits limits = LimitsOf("TOGameDob.CurrentMissionNumber");
    progress.mission = ParseNumber(*line.mission, limits);
    if (!progress.mission) {
      throw AdminError{kWrongUsage, "--mission " + *line.mission + ": a mission from 1 to 25"};
    }
  }
  if (line.lessonsDone) {
    progress.lessonsDone = ParseMissions(*line.lessonsDone);
    if (!progress.lessonsDone) {
      throw AdminError{kWrongUsage, "--lessons-done " + *line.lessonsDone +
                                        ": missions from 1 to 25, as in 1-4,7, or none"};
    }
  }
  if (line.learnedKeys) {
    progress.learnedKeys = ParseYesNo(*line.learnedKeys);
    if (!progress.learnedKeys) {
      throw AdminError{kWrongUsage, "--learned-keys " + *line.learnedKeys + ": yes or no"};
    }
  }
  if (progress.IsEmpty()) {
    throw AdminError{kWrongUsage, "one of --mission, --lessons-done, --learned-keys is wanted"};
  }
  return progress;
}

// Decided now, in the student's options and in those of the game alike.
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
void ReadGame(SGameDob& game, const SFileSpec& file, const SLoginNameObj& student) {
  game.SetFirstName(student.firstName);
  game.SetLastName(student.lastName);
  if (file.IsExistingFile() && !game.LoadGame(file)) {
    throw AdminError{kNoStore, "the student's automatic game cannot be read"};
  }
}

std::string Said(const Progress& progress) {
  std::vector<std::string> parts;
  if (progress.mission) {
    parts.push_back("mission " + std::to_string(*progress.mission));
  }
  if (progress.lessonsDone) {
    parts.push_back("lessons done " + MissionsText(*progress.lessonsDone));
  }
  if (progress.learnedKeys) {
    parts.push_back(*progress.learnedKeys ? "new keys learned" : "new keys not learned");
  }
  std::string text;
  for (const std::string& part : parts) {
    text += (text.empty() ? "" : ", ") + part;
  }
  return text;
}

// The options first: they are what a report asks. Whoever works as the student holds the lock of
// the student's folder, and would write over the game.
void Write(const Session& session, const Progress& progress, const OptionsPlace& place) {
  SFileSpec folder;
  kivstore::EntryFolder(folder, place.classEntry, place.student, false, false);
  if (!folder.IsExistingFolder()) {
    throw AdminError{kNoStore, "the student's folder is missing"};
  }
  kivstore::SLockFile lock;
  if (!session.IsDryRun()) {
    session.TakeIndexLock(lock, folder, kivstore::LockKind::kFiles);
  }
  SFileSpec file = folder;
  file.Down(kivstore::gApp->AutoGameName());
  SGameDob game;
  ReadGame(game, file, *place.student);
  ChangeOptions(place, session.IsDryRun(), [&](kivstore::STeacherOptionsDob& options) {
    if (STeacherOptionsGameDob* const own = options.GetGameOptions()) {
      Apply(progress, *own);
    }
  });
  Apply(progress, game);
  if (!session.IsDryRun() && !game.SaveFile(file, game.GetLongFileName(), nullptr)) {
    throw AdminError{kNoStore, "the student's automatic game cannot be written"};
  }
}

void Run(const ProgressLine& line) {
  const Progress progress = Parse(line);
  Session session(*line.common, Session::Access::kChange);
  session.ChooseTeacher(line.names.teacher);
  const SLoginNameObj group = session.FindClass(line.names.group);
  const SLoginNameObj student = session.FindStudent(group, line.names.student);
  Write(session, progress, {&group, &student});
  session.Say("student " + session.Show(student) + ": " + Said(progress));
}

}  // namespace

void AddProgressCommand(CLI::App& app, CommonOptions& common) {
  const auto line = std::make_shared<ProgressLine>();
  line->common = &common;
  CLI::App* const command =
      app.add_subcommand("progress", "Says how far a student has come, in options and game");
  AddChangeArguments(*command, common);
  AddTeacherOption(*command, line->names);
  AddClassOption(*command, line->names)->required();
  AddStudentOption(*command, line->names)->required();
  command->add_option("--mission", line->mission, "The mission the student is at, 1 to 25")
      ->type_name("N");
  command
      ->add_option("--lessons-done", line->lessonsDone,
                   "All missions whose lesson is done, as in 1-4,7, or none")
      ->type_name("LIST");
  command
      ->add_option("--learned-keys", line->learnedKeys,
                   "Whether the new keys of the mission are learned; one at whose start they are "
                   "not is reported as the mission before")
      ->type_name("yes|no");
  command->callback([line] { Run(*line); });
}

}  // namespace kivadmin
