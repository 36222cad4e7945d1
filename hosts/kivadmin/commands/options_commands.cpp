// `options show` and `options set`, and what the options commands share.
#include "hosts/kivadmin/commands/options_commands.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <nlohmann/json.hpp>

#include "hosts/common/nearest.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/options/option_meanings.h"
#include "hosts/kivadmin/rosters/rosters.h"

namespace kivadmin {
namespace {

struct ShowArguments {
  EntryNames names;
  bool json = false;
  bool all = false;
};

struct ExplainArguments {
  std::string key;
};

struct SetArguments {
  EntryNames names;
  std::vector<std::string> assignments;
};

void PrintJson(const std::vector<DecidedOption>& decided) {
  using Json = nlohmann::ordered_json;
  Json json = Json::object();
  for (const DecidedOption& entry : decided) {
    const std::string when = IsoTime(entry.option.stamp);
    const Json value = std::visit([](const auto& held) { return Json(held); }, entry.option.value);
    json[entry.option.key] = {{"value", value}, {"level", entry.level}, {"changed", when}};
  }
  std::cout << json.dump(2) << '\n';
}

void PrintTable(const std::vector<DecidedOption>& decided) {
  using Row = std::array<std::string, 4>;
  std::vector<Row> rows{{"Option", "Value", "Level", "Changed"}};
  for (const DecidedOption& entry : decided) {
    rows.push_back({entry.option.key, ValueText(entry.option.value), entry.level,
                    IsoTime(entry.option.stamp)});
  }
  std::array<size_t, 3> width{};
  for (const Row& row : rows) {
    for (size_t i = 0; i < width.size(); ++i) {
      width[i] = std::max(width[i], row[i].size());
    }
  }
  for (const Row& row : rows) {
    std::string line;
    for (size_t i = 0; i < width.size(); ++i) {
      line += row[i] + std::string(width[i] - row[i].size() + 2, ' ');
    }
    line += row.back();
    line.erase(line.find_last_not_of(' ') + 1);
    std::cout << line << '\n';
  }
}

bool IsDecided(const DecidedOption& one) {
  return std::string_view(one.level) != "default";
}

void Show(const CommonOptions& common, const ShowArguments& arguments) {
  const Session session(common, Session::Access::kLook);
  const ChosenPlace chosen(session, arguments.names);
  std::vector<DecidedOption> options = LayerOptions(session, chosen.Get());
  const size_t all = options.size();
  if (!arguments.all && !arguments.json) {
    std::erase_if(options, [](const DecidedOption& one) { return !IsDecided(one); });
  }
  if (arguments.json) {
    PrintJson(options);
  } else if (options.empty()) {
    std::cout << "nothing is decided for " << chosen.Text(session) << "; --all tells the " << all
              << " defaults\n";
  } else {
    PrintTable(options);
  }
}

void PrintMeaning(const Option& option) {
  std::cout << option.key << ": " << MeaningOf(option.key) << ".\n  " << TypeText(option)
            << "; default " << ValueText(option.value) << '\n';
}

void Explain(const CommonOptions&, const ExplainArguments& arguments) {
  kivstore::STeacherOptionsDob defaults;
  std::vector<std::string> keys;
  bool isKnown = false;
  for (const Option& option : ListOptions(defaults)) {
    keys.push_back(option.key);
    if (arguments.key.empty() || kivhost::EqualNoCase(option.key, arguments.key)) {
      PrintMeaning(option);
      isKnown = true;
    }
  }
  if (!isKnown) {
    const std::string closest = kivhost::Nearest(arguments.key, keys);
    throw HostError(kWrongUsage, "no option \"" + arguments.key + '"' +
                                     (closest.empty() ? "; kivadmin options explain tells all"
                                                      : "; did you mean \"" + closest + "\"?"));
  }
}

void Apply(kivstore::STeacherOptionsDob& options, const std::vector<std::string>& assignments) {
  for (const std::string& assignment : assignments) {
    const size_t equals = assignment.find('=');
    if (equals == std::string::npos) {
      throw HostError(kWrongUsage, assignment + ": KEY=VALUE is wanted");
    }
    SetOption(options, assignment.substr(0, equals), assignment.substr(equals + 1));
  }
}

void Set(const CommonOptions& common, const SetArguments& arguments) {
  kivstore::STeacherOptionsDob trial;
  Apply(trial, arguments.assignments);
  const Session session(common, Session::Access::kChange);
  const ChosenPlace chosen(session, arguments.names);
  ChangeOptions(session, chosen.Get(),
                [&](auto& options) { Apply(options, arguments.assignments); });
  std::string said;
  for (const std::string& assignment : arguments.assignments) {
    said += (said.empty() ? "set " : ", ") + assignment;
  }
  session.Say(said + " for " + chosen.Text(session));
}

void AddShow(const Command& options, CommonOptions& common) {
  const Command command = options.AddCommand(
      "show", "The options that somebody decided: value, the level that decided it, and when");
  ShowArguments& arguments = AddRun(command, common, Show);
  AddStoreArguments(command, common);
  AddLevelOptions(command, arguments.names);
  AddFormat(command, arguments.json, "table");
  command.AddFlag("--all", arguments.all,
                  "Also those that stand at their defaults, as JSON always does");
}

void AddExplain(const Command& options, CommonOptions& common) {
  const Command command = options.AddCommand(
      "explain", "What an option is for, what it takes, and its default; without KEY of all");
  ExplainArguments& arguments = AddRun(command, common, Explain);
  command.AddOption("KEY", arguments.key, "As `options show --all` lists them");
}

void AddSet(const Command& options, CommonOptions& common) {
  const Command command =
      options.AddCommand("set", "Decides options for the store, or for the class or student named");
  SetArguments& arguments = AddRun(command, common, Set);
  AddChangeArguments(command, common);
  AddLevelOptions(command, arguments.names);
  command
      .AddOption("KEY=VALUE", arguments.assignments,
                 "What to decide: yes or no, a number, or missions as in 1-4,7")
      .Require();
  command.SetFooter(
      "Keys are those that `options show` lists: SoundOn, Missions.4.Typeline (0 to 2),\n"
      "TOGameDob.CurrentMissionNumber (1 to 25), TOGameDob.LessonDone (missions), ...");
}

}  // namespace

ChosenPlace::ChosenPlace(const Session& session, const EntryNames& names) {
  ChooseTeacher(session, names.teacher);
  if (names.group.empty()) {
    return;
  }
  classEntry = FindClass(session, names.group);
  place.classEntry = &classEntry;
  if (!names.student.empty()) {
    student = FindStudent(session, classEntry, names.student);
    place.student = &student;
  }
}

std::string ChosenPlace::Text(const Session& session) const {
  if (place.student != nullptr) {
    return "student " + session.Show(student);
  }
  if (place.classEntry != nullptr) {
    return "class " + session.Show(classEntry);
  }
  const kivstore::SLoginNameObj* const teacher = session.Site().GetCurrentTeacher();
  return teacher != nullptr ? "teacher " + session.Show(*teacher) : "the store";
}

void AddLevelOptions(const Command& command, EntryNames& names) {
  AddTeacherOption(command, names);
  const CommandOption group = AddClassOption(command, names);
  AddStudentOption(command, names).Needs(group);
}

void AddOptionsCommands(const Command& app, CommonOptions& common) {
  const Command options = app.AddCommand("options", "What the teacher decided");
  options.RequireCommand();
  AddShow(options, common);
  AddExplain(options, common);
  AddSet(options, common);
  AddOptionsExport(options, common);
  AddOptionsImport(options, common);
}

}  // namespace kivadmin
