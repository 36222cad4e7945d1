#include "hosts/common/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "hosts/common/charset.h"
#include "hosts/common/host_error.h"
#include "hosts/common/nearest.h"

namespace kivhost {
namespace {

const char* RootVariable() {
  const char* const root = std::getenv("KIVSTORE_ROOT");
  return root != nullptr && *root != '\0' ? root : nullptr;
}

// The command that a line means: the words that name it, and where the rest begins.
struct NamedCommand {
  CLI::App* app;
  std::string words;
  size_t rest = 0;
};

std::vector<std::string> CommandsOf(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return names;
}

std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (size_t i = 0; i < names.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == names.size() ? " or " : ", ") + names[i];
  }
  return text;
}

std::string DidYouMean(const std::string& nearest) {
  return nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?";
}

std::string SeeHelp(const NamedCommand& command) {
  const size_t blank = std::min(command.words.find(' '), command.words.size());
  return "; " + command.words.substr(0, blank) + " help" + command.words.substr(blank) +
         " tells more";
}

// Throws if a word stands where a command should.
NamedCommand FindCommand(CLI::App* top, const std::vector<std::string>& arguments) {
  NamedCommand command{top, top->get_name()};
  for (; command.rest < arguments.size(); ++command.rest) {
    const std::string& word = arguments[command.rest];
    const std::vector<std::string> names = CommandsOf(*command.app);
    if (names.empty() || word.starts_with("-")) {
      break;
    }
    if (std::find(names.begin(), names.end(), word) == names.end()) {
      const std::string closest = Nearest(word, names);
      throw HostError(kWrongUsage,
                      "no command \"" + word + '"' +
                          (closest.empty() ? ": " + Joined(names) + " is wanted" + SeeHelp(command)
                                           : DidYouMean(closest)));
    }
    command.app = command.app->get_subcommand(word);
    command.words += ' ' + word;
  }
  return command;
}

// Throws if something stands there like an option that is none.
void NeedKnownOptions(const NamedCommand& command, const std::vector<std::string>& arguments) {
  std::vector<std::string> known;
  for (const CLI::Option* const option : command.app->get_options()) {
    for (const std::string& name : option->get_lnames()) {
      known.push_back("--" + name);
    }
  }
  for (size_t i = command.rest; i < arguments.size() && arguments[i] != "--"; ++i) {
    const std::string name = arguments[i].substr(0, arguments[i].find('='));
    if (name.starts_with("--") && std::find(known.begin(), known.end(), name) == known.end()) {
      const std::string closest = Nearest(name, known);
      throw HostError(kWrongUsage, "no option \"" + name + '"' +
                                       (closest.empty() ? SeeHelp(command) : DidYouMean(closest)));
    }
  }
}

// The option of that name; null if there is none.
const CLI::Option* FindOption(const CLI::App& app, const std::string& name) {
  for (const CLI::Option* const option : app.get_options()) {
    if (option->check_name(name)) {
      return option;
    }
  }
  return nullptr;
}

bool TakesValue(const CLI::Option* option) {
  return option != nullptr && option->get_type_size() > 0 && option->get_expected() > 0;
}

// "table|csv|json" as words; none if it is no list of choices.
std::vector<std::string> ChoicesOf(const CLI::Option& option) {
  std::istringstream names(option.get_type_name());
  std::vector<std::string> choices;
  for (std::string name; std::getline(names, name, '|');) {
    choices.push_back(name);
  }
  const bool isChoice = choices.size() > 1 &&
                        choices[0].find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string::npos;
  return isChoice ? choices : std::vector<std::string>();
}

// The argument that the word at its place is; null if there are not so many.
const CLI::Option* ArgumentAt(const CLI::App& app, size_t place) {
  for (const CLI::Option* const option : app.get_options()) {
    if (option->get_positional() && place-- == 0) {
      return option;
    }
  }
  return nullptr;
}

// The options ahead of the last word with their values; the first word that is neither is the root.
// Answers how many such words there are.
size_t TakeValues(const NamedCommand& command, const std::vector<std::string>& typed,
                  Completion& completion) {
  size_t arguments = 0;
  for (size_t i = command.rest; i + 1 < typed.size(); ++i) {
    const CLI::Option* const option =
        typed[i].starts_with("-") ? FindOption(*command.app, typed[i]) : nullptr;
    if (!typed[i].starts_with("-")) {
      ++arguments;
      completion.root = completion.root.empty() ? typed[i] : completion.root;
    } else if (TakesValue(option) && i + 2 < typed.size()) {
      completion.values["--" + option->get_lnames().front()] = typed[i + 1];
      ++i;
    }
  }
  return arguments;
}

// In the form of the other messages.
HostError WrongLine(const CLI::ParseError& error, const NamedCommand& command) {
  const std::vector<std::string> commands = CommandsOf(*command.app);
  if (!commands.empty()) {
    return {kWrongUsage, "a command is wanted: " + Joined(commands) + SeeHelp(command)};
  }
  std::string message = error.what();
  constexpr std::string_view kExtras = "The following argument";
  if (message.starts_with(kExtras)) {
    message = "too many arguments: " + message.substr(message.find(": ") + 2);
  }
  return {kWrongUsage, message + SeeHelp(command)};
}

}  // namespace

const CommandOption& CommandOption::Require() const {
  option->required();
  return *this;
}

const CommandOption& CommandOption::MayBeLeftOut() const {
  option->required(false);
  return *this;
}

const CommandOption& CommandOption::Needs(const CommandOption& other) const {
  option->needs(other.option);
  return *this;
}

const CommandOption& CommandOption::Takes(const char* what) const {
  option->type_name(what);
  return *this;
}

const CommandOption& CommandOption::ShowDefault() const {
  option->capture_default_str();
  return *this;
}

Command Command::AddCommand(const char* name, const std::string& help) const {
  return Command(app->add_subcommand(name, help));
}

void Command::RequireCommand() const {
  app->require_subcommand(1);
}

CommandOption Command::AddOption(const char* name, std::string& value, const char* help) const {
  return CommandOption(app->add_option(name, value, help));
}

CommandOption Command::AddOption(const char* name, std::optional<std::string>& value,
                                 const char* help) const {
  return CommandOption(app->add_option(name, value, help));
}

CommandOption Command::AddOption(const char* name, std::vector<std::string>& values,
                                 const char* help) const {
  return CommandOption(app->add_option(name, values, help));
}

void Command::AddFlag(const char* name, bool& value, const char* help) const {
  app->add_flag(name, value, help);
}

CommandOption Command::AddRoot(const char* name, std::string& value, const char* help,
                               bool mayBeNew) const {
  CLI::Option* const option = app->add_option(name, value, help)->required();
  if (RootVariable() != nullptr && !mayBeNew) {
    option->check(CLI::Validator(
        [](const std::string& path) {
          std::error_code unknown;
          return std::filesystem::exists(path, unknown) ? "" : path + ": no such folder";
        },
        ""));
  }
  return CommandOption(option);
}

CommandOption Command::AddNumbered(const char* name, const char* help, const Words& words,
                                   const char* shown, std::function<void(int)> take) const {
  std::string names;
  for (const auto& [word, number] : words) {
    names += (names.empty() ? "" : "|") + word;
  }
  const std::string longName = std::string(name).substr(std::string(name).rfind(',') + 1);
  const auto choose = [words, take = std::move(take), longName, names](const std::string& chosen) {
    for (const auto& [word, number] : words) {
      if (EqualNoCase(word, chosen)) {
        take(number);
        return;
      }
    }
    throw CLI::ValidationError(longName, '"' + chosen + "\" is none of " + names);
  };
  CLI::Option* const option = app->add_option_function<std::string>(name, choose, help);
  return CommandOption(option->type_name(names)->default_str(shown));
}

void Command::SetFooter(const char* text) const {
  app->footer(text);
}

void Command::OnRun(std::function<void()> action) const {
  app->callback(std::move(action));
}

std::string RootOfEnvironment() {
  return RootVariable() != nullptr ? RootVariable() : "";
}

CommandLine::CommandLine(const char* program, const char* description,
                         std::function<std::string()> version)
    : Command(nullptr), owned(std::make_unique<CLI::App>(description, program)) {
  app = owned.get();
  app->set_version_flag("-V,--version", std::move(version));
  app->allow_windows_style_options(false);
}

CommandLine::~CommandLine() = default;

bool CommandLine::Run(int argc, const char* const* argv) const {
  std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  if (!arguments.empty() && arguments[0] == "help") {
    arguments.erase(arguments.begin());
    arguments.emplace_back("--help");
  }
  const NamedCommand command = FindCommand(app, arguments);
  NeedKnownOptions(command, arguments);
  try {
    return Parse(arguments);
  } catch (const CLI::ParseError& error) {
    const char* const root = RootVariable();
    if (root == nullptr || !CommandsOf(*command.app).empty()) {
      throw WrongLine(error, command);
    }
    const CLI::Option* const first = ArgumentAt(*command.app, 0);
    const bool isFirst = first != nullptr && first->get_name().ends_with("ROOT");
    arguments.insert(
        isFirst ? arguments.begin() + static_cast<std::ptrdiff_t>(command.rest) : arguments.end(),
        root);
  }
  try {
    return Parse(arguments);
  } catch (const CLI::ParseError& error) {
    throw WrongLine(error, command);
  }
}

Completion CommandLine::Complete(const std::vector<std::string>& typed) const {
  Completion completion;
  if (typed.empty()) {
    return completion;
  }
  const NamedCommand command = FindCommand(app, {typed.begin(), typed.end() - 1});
  const size_t arguments = TakeValues(command, typed, completion);
  if (completion.root.empty() && RootVariable() != nullptr) {
    completion.root = RootVariable();
  }
  const CLI::Option* const before =
      typed.size() > command.rest + 1 ? FindOption(*command.app, typed[typed.size() - 2]) : nullptr;
  std::vector<std::string> words;
  if (TakesValue(before) && typed[typed.size() - 2].starts_with("-")) {
    completion.option = "--" + before->get_lnames().front();
    words = ChoicesOf(*before);
  } else if (typed.back().starts_with("-")) {
    for (const CLI::Option* const option : command.app->get_options()) {
      for (const std::string& name : option->get_lnames()) {
        words.push_back("--" + name);
      }
    }
  } else {
    const CLI::Option* const argument = ArgumentAt(*command.app, arguments);
    words = argument != nullptr ? ChoicesOf(*argument) : CommandsOf(*command.app);
  }
  for (std::string& word : words) {
    if (word.starts_with(typed.back())) {
      completion.words.push_back(std::move(word));
    }
  }
  return completion;
}

bool CommandLine::Parse(std::vector<std::string> arguments) const {
  std::reverse(arguments.begin(), arguments.end());  // as the parser takes them
  try {
    app->parse(std::move(arguments));
  } catch (const CLI::Success& shown) {
    app->exit(shown);
    return false;
  }
  return true;
}

}  // namespace kivhost
