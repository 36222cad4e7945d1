#include "hosts/kivreport/command_line.h"

#include <charconv>

#include "hosts/common/command_line.h"
#include "hosts/common/host_error.h"

namespace kivreport {
namespace {

using kivhost::HostError;
using kivhost::kWrongUsage;

constexpr int kMostMissions = 32767;
constexpr int kMostDays = 36500;
constexpr int kMostColumns = 10000;
constexpr int kMostJobs = 256;

std::optional<int> NumberOf(const char* option, const std::optional<std::string>& text, int lowest,
                            int highest) {
  if (!text) {
    return std::nullopt;
  }
  int number = 0;
  const char* const end = text->data() + text->size();
  const auto [stop, error] = std::from_chars(text->data(), end, number);
  if (error != std::errc() || stop != end || number < lowest || number > highest) {
    throw HostError(kWrongUsage, std::string(option) + ": \"" + *text + "\" is no number from " +
                                     std::to_string(lowest) + " to " + std::to_string(highest));
  }
  return number;
}

// What stands in the line as texts.
struct Numbers {
  std::optional<std::string> lowestMission, highestMission, idleDays, width, jobs;
};

void TakeNumbers(CommandLine& line, const Numbers& numbers) {
  line.lowestMission = NumberOf("--min-mission", numbers.lowestMission, 1, kMostMissions);
  line.highestMission = NumberOf("--max-mission", numbers.highestMission, 1, kMostMissions);
  line.idleDays = NumberOf("--idle-days", numbers.idleDays, 1, kMostDays);
  line.jobs = NumberOf("--jobs", numbers.jobs, 1, kMostJobs).value_or(line.jobs);
  line.width = NumberOf("--width", numbers.width, 0, kMostColumns);
}

void Refuse(bool isWrong, const std::string& why) {
  if (isWrong) {
    throw HostError(kWrongUsage, why);
  }
}

// Options that contradict each other are no line.
void NeedSense(const CommandLine& line) {
  const bool missions = line.lowestMission || line.highestMission;
  const std::string noMissions = ": --roster tells names only";
  Refuse(line.roster && missions, "--min-mission, --max-mission" + noMissions);
  Refuse(line.roster && line.sort == Sort::kMission, "--sort mission" + noMissions);
  Refuse(line.roster && !line.history.empty(), "--history" + noMissions);
  Refuse(line.roster && line.idleDays, "--idle-days" + noMissions);
  Refuse(missions && line.lowestMission.value_or(1) > line.highestMission.value_or(kMostMissions),
         "--min-mission is above --max-mission");
  const bool hasRows = line.format == Format::kCsv || line.format == Format::kNdjson;
  Refuse(hasRows && !line.history.empty(), "--history: a row a student has no place for it");
  Refuse(line.width && line.format != Format::kTable, "--width: only a table has one");
  Refuse(line.color == kivhost::ColorWish::kAlways && line.format != Format::kTable,
         "--color: only a table has one");
  Refuse(line.raw && line.format != Format::kCsv, "--raw: only CSV is changed for spreadsheets");
}

// A list of stores has no root, and what tells of one store only has no list.
void NeedStore(CommandLine& line) {
  if (line.stores.empty() && line.root.empty()) {
    line.root = kivhost::RootOfEnvironment();
  }
  Refuse(line.stores.empty() && line.root.empty(),
         "DATA_ROOT is wanted, or --stores; kivreport help tells more");
  Refuse(!line.stores.empty() && !line.root.empty(), "--stores: not with a DATA_ROOT too");
  Refuse(!line.stores.empty() && (!line.since.empty() || !line.history.empty()),
         "--stores: --since and --history tell of one store");
}

void AddContents(const kivhost::CommandLine& app, CommandLine& line, Numbers& numbers) {
  app.AddFlag("--roster", line.roster, "Names and counts only, each list read once");
  app.AddOption("-t,--teacher", line.teacher, "Only this teacher: a name, or #N for its place")
      .Takes("NAME|#N");
  app.AddOption("-c,--class", line.group, "Only this class: a name, or #N for its place")
      .Takes("NAME|#N");
  app.AddOption("-s,--student", line.student,
                "Only this student, with all that is known: missions, hands, the weakest keys")
      .Takes("NAME|#N");
  app.AddOption("--min-mission", numbers.lowestMission, "Only who is at this mission or above")
      .Takes("N");
  app.AddOption("--max-mission", numbers.highestMission, "Only who is at this mission or below")
      .Takes("N");
  app.AddOption("--idle-days", numbers.idleDays,
                "Mark who has not worked for so many days; a terminal shows it anyway [14]")
      .Takes("N");
  app.AddChoice<Sort>("--sort", line.sort, "The order of a class's students", kSortWords, "store");
  static const std::string columns = "These columns in this order, of " + ColumnNames();
  app.AddOption("--columns", line.columns, columns.c_str()).Takes("NAME,...");
  app.AddOption("--since", line.since,
                "Compare with a report in JSON that was kept: who moved on, is new, has left")
      .Takes("OLD.json");
  app.AddOption("--history", line.history,
                "Each class's median, and each student's missions, over the reports in JSON that a "
                "folder keeps")
      .Takes("FOLDER");
}

void AddSources(const kivhost::CommandLine& app, CommandLine& line, Numbers& numbers) {
  app.AddRoot("DATA_ROOT", line.root, "The data root of the store").MayBeLeftOut();
  app.AddChoice<Format>("-f,--format", line.format, "The form of the report", kFormatWords,
                        "table");
  app.AddOption("-o,--output", line.output,
                "Write to this file, which is there only when it is whole; - is standard output")
      .Takes("FILE");
  app.AddOption(
         "--stores", line.stores,
         "Instead of DATA_ROOT: many stores, of a CSV file with the heading name,data root; in "
         "front stands the school")
      .Takes("LIST.csv");
  app.AddOption("--jobs", numbers.jobs, "So many of them are read at a time [4]").Takes("N");
}

void AddReading(const kivhost::CommandLine& app, CommandLine& line) {
  app.AddChoice<Mode>("--mode", line.mode, "The kind of store; auto looks at its folders",
                      kModeWords, "auto");
  app.AddFlag("--force", line.force,
              "Take --mode although the folders tell another; replace a file that is there");
  app.AddOption("--charset", line.charset,
                "The character set of the store's texts; else what kivstore.conf says, or "
                "windows-1252")
      .Takes("NAME");
}

void AddLooks(const kivhost::CommandLine& app, CommandLine& line, Numbers& numbers) {
  app.AddFlag("--bom", line.byteOrderMark, "Begin with a byte order mark, for spreadsheets");
  app.AddFlag("--raw", line.raw,
              "CSV: no apostrophe before a name that a spreadsheet would take for a formula, one "
              "that begins with = + - @ or a tab");
  app.AddOption("--width", numbers.width,
                "Fit the table to so many columns, 0 for as many as it takes; else to the "
                "terminal's")
      .Takes("N");
  kivhost::AddColorOption(app, line.color);
  app.AddChoice<Language>("--lang", line.language,
                          "The language of a page and of a workbook; else what LC_ALL, LC_MESSAGES "
                          "or LANG says",
                          {{"en", Language::kEnglish}, {"de", Language::kGerman}});
  app.AddFlag("--quiet", line.quiet, "No progress bar");
}

}  // namespace

const std::vector<std::pair<std::string, Format>> kFormatWords{
    {"table", Format::kTable},   {"csv", Format::kCsv},   {"json", Format::kJson},
    {"ndjson", Format::kNdjson}, {"html", Format::kHtml}, {"xlsx", Format::kXlsx}};
const std::vector<std::pair<std::string, Sort>> kSortWords{
    {"store", Sort::kStore}, {"name", Sort::kName}, {"mission", Sort::kMission}};
const std::vector<std::pair<std::string, Mode>> kModeWords{
    {"auto", Mode::kAuto}, {"local", Mode::kLocal}, {"network", Mode::kNetwork}};

std::optional<CommandLine> ParseCommandLine(int argc, char** argv,
                                            const std::function<std::string()>& version) {
  CommandLine line;
  Numbers numbers;
  const kivhost::CommandLine app(
      "kivreport", "Prints the rosters of a store and how far each student has come.", version);
  AddSources(app, line, numbers);
  AddContents(app, line, numbers);
  AddReading(app, line);
  AddLooks(app, line, numbers);
  app.SetFooter(
      "Exit codes:\n"
      "  0  good\n"
      "  1  the store has nothing of what was asked for\n"
      "  2  wrong usage\n"
      "  3  no store there, or it cannot be read, or not all of it");
  if (!app.Run(argc, argv)) {
    return std::nullopt;
  }
  TakeNumbers(line, numbers);
  NeedSense(line);
  NeedStore(line);
  return line;
}

}  // namespace kivreport
