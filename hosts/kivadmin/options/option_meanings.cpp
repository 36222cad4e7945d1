#include "hosts/kivadmin/options/option_meanings.h"

#include <map>
#include <string_view>

namespace kivadmin {
namespace {

const std::map<std::string_view, const char*> kMeanings = {
    {"SoundOn", "How the tutor sounds"},
    {"StudAddOwnName", "Students may add themselves to their class"},
    {"SeparateLastName", "Students have a first and a last name, kept apart"},
    {"DisplayFirstLastName", "Lists show the first name first, and sort by it"},
    {"AutoGameSaving", "The tutor saves each student's game by itself, to go on from there"},
    {"MaxGameFiles", "So many games a student may keep"},
    {"AutoOpenStudFile", "A student's last game opens by itself"},
    {"UseSystemIODialogs", "Files are chosen in the system's own dialogs"},
    {"StudentPrint", "Students may print"},
    {"CentralFileLocation", "Students' files lie in the store, and not on the workstation"},
    {"RecordStudentProgress", "What a student does is recorded"},
    {"TopScoreAllClasses", "Top scores of all classes are shown"},
    {"TopScoreIndivClass", "Top scores of the class are shown"},
    {"TopScoreIndivStudent", "A student's own top scores are shown"},
    {"StudentLevelRemembered", "A student goes on at the level of the last time"},
    {"UseJournal", "Students have a journal"},
    {"WordLists", "Word lists may be used"},
    {"UseCamera", "The camera may be used"},
    {"KeyboardShortcut", "Shortcuts of the keyboard work"},
    {"TabBetweenAll", "The tab key goes to everything on a screen"},
    {"StudentsHavePassword", "Students sign in with a password"},
    {"VocabLevel", "The level of the vocabulary in lessons and games"},
    {"AllowPrinting", "The tutor prints"},
    {"SpacesAfterPeriod", "So many blanks are typed behind a full stop"},
    {"KeyVoiceOver", "Keys are spoken"},
    {"InstructionalDirections", "Directions are given"},
    {"FatherTimeNarration", "The narrator speaks"},
    {"BackgroundMusic", "Music plays in the background"},
    {"SoundEffects", "Sounds go with what happens"},
    {"RolloverButtons", "Buttons tell what they are when the pointer is on them"},
    {"TextSize", "The size of the text to type"},
    {"AllowPowerBooster", "Students who make many errors get extra practice"},
    {"NumberErrorsPowerBooster", "So many errors bring the extra practice"},
    {"AllowAutoGoalAdj", "Goals adjust themselves to the student"},
    {"MinAccuracyGoal", "The lowest goal for accuracy"},
    {"MinWPMGoal", "The lowest goal for speed, in words a minute"},
    {"Checkpoint", "When what was learned is checked"},
    {"AllowPostTest", "There is a test at the end"},
    {"Teach6Key", "Which hand types the 6"},
    {"GamebreakInterval", "How often a game comes between the lessons"},
    {"BackgroundAnimationOn", "The background moves"},
    {"LeftRightGame", "Whether games are for one hand or for both"},
    {"CurrentKeyProvided", "The key to type is shown"},
    {"AllowPause_DS", "Dictation may be paused"},
    {"AllowRepeatLine", "A line of a dictation may be heard again"},
    {"AllowCorrectionDuringTest_DS", "Errors may be corrected during a dictation"},
    {"AllowCorrectionDuringTest_Warp", "Errors may be corrected during a test of speed"},
    {"AllowTimeLimit", "A test of speed ends by the clock"},
    {"TimeLimitWarp", "How long a test of speed takes"},
    {"WarpspeedView", "How a test of speed looks"},
    {"ShowTimer", "The time is shown"},
    {"AllowPause_Warp", "A test of speed may be paused"},
    {"AllowPlayandPracticeMode", "Students may play and practise beside the course"},
    {"TOGameDob.CurrentMissionNumber", "The mission that the student is at"},
    {"TOGameDob.Accuracy", "The accuracy that is asked of the student"},
    {"TOGameDob.Speed", "The speed that is asked of the student"},
    {"TOGameDob.LessonDone", "The missions whose lesson is done"},
    {"TOGameDob.NotebookDone", "The missions whose notebook is done"},
    {"TOGameDob.TypelineDone", "The missions whose typing line is done"},
    {"TOGameDob.WindshieldTypersDone", "The missions whose windshield game is done"},
    {"TOGameDob.WarpSpeedDone", "The missions whose test of speed is done"},
    {"TOGameDob.DictationStationDone", "The missions whose dictation is done"},
    {"TOGameDob.KeyFiguresDone", "The missions whose key figures are done"},
    {"TOGameDob.AllMissionsCompleted", "The whole course is done"},
    {".Notebook", "The notebook in this mission"},
    {".Typeline", "The typing line in this mission"},
    {".WindshieldTypers", "The windshield game in this mission"},
    {".WarpSpeed", "The test of speed in this mission"},
    {".DictationStation", "The dictation in this mission"},
    {".KeyFigures", "The key figures in this mission"},
};

}  // namespace

std::string MeaningOf(const std::string& key) {
  const bool isOfMission = key.starts_with("Missions.");
  const std::string_view name = std::string_view(key).substr(isOfMission ? key.rfind('.') : 0);
  return std::string(kMeanings.at(name)) +
         (isOfMission ? ": 0 is out, 1 what the mission is built around, 2 one among others" : "");
}

}  // namespace kivadmin
