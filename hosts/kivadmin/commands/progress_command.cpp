// `progress`: puts a student where another store left off, in the options and the automatic game.
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/options/student_progress.h"
#include "hosts/kivadmin/rosters/rosters.h"

namespace kivadmin {
namespace {

struct ProgressArguments {
  EntryNames names;
  std::optional<std::string> mission;
  std::optional<std::string> lessonsDone;
  std::optional<std::string> learnedKeys;
};

Progress Parse(const ProgressArguments& line) {
  Progress progress;
  if (line.mission) {
    const Limits limits = LimitsOf("TOGameDob.CurrentMissionNumber");
    progress.mission = ParseNumber(*line.mission, limits);
    if (!progress.mission) {
      throw HostError(kWrongUsage, "--mission " + *line.mission + ": a mission from 1 to 25");
    }
  }
  if (line.lessonsDone) {
    progress.lessonsDone = ParseMissions(*line.lessonsDone);
    if (!progress.lessonsDone) {
      throw HostError(kWrongUsage, "--lessons-done " + *line.lessonsDone +
                                       ": missions from 1 to 25, as in 1-4,7, or none");
    }
  }
  if (line.learnedKeys) {
    progress.learnedKeys = ParseYesNo(*line.learnedKeys);
    if (!progress.learnedKeys) {
      throw HostError(kWrongUsage, "--learned-keys " + *line.learnedKeys + ": yes or no");
    }
  }
  if (progress.IsEmpty()) {
    throw HostError(kWrongUsage, "one of --mission, --lessons-done, --learned-keys is wanted");
  }
  return progress;
}

void SetProgress(const CommonOptions& common, const ProgressArguments& arguments) {
  const Progress progress = Parse(arguments);
  const Session session(common, Session::Access::kChange);
  ChooseTeacher(session, arguments.names.teacher);
  const auto group = FindClass(session, arguments.names.group);
  const auto student = FindStudent(session, group, arguments.names.student);
  WriteProgress(session, {&group, &student}, progress);
  session.Say("student " + session.Show(student) + ": " + Text(progress));
}

}  // namespace

void AddProgressCommand(const Command& app, CommonOptions& common) {
  const Command command =
      app.AddCommand("progress", "Says how far a student has come, in options and game");
  ProgressArguments& arguments = AddRun(command, common, SetProgress);
  AddChangeArguments(command, common);
  AddTeacherOption(command, arguments.names);
  AddClassOption(command, arguments.names).Require();
  AddStudentOption(command, arguments.names).Require();
  command.AddOption("--mission", arguments.mission, "The mission the student is at, 1 to 25")
      .Takes("N");
  command
      .AddOption("--lessons-done", arguments.lessonsDone,
                 "All missions whose lesson is done, as in 1-4,7, or none")
      .Takes("LIST");
  command
      .AddOption("--learned-keys", arguments.learnedKeys,
                 "Whether the new keys of the mission are learned; one at whose start they are "
                 "not is reported as the mission before")
      .Takes("yes|no");
}

}  // namespace kivadmin
