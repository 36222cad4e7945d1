// A program's command line: its commands, their options, and what each command runs. The parser
// behind it is CLI11, which stands in command_line.cpp alone: its headers cost every file that
// includes them seconds.
//
// "help COMMAND" is "COMMAND --help". A root that is left out is taken from the environment.
//
// Commands and options belong to the CommandLine; the handles below are passed by value.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace kivhost {

class CommandOption {
 public:
  explicit CommandOption(CLI::Option* option) : option(option) {}

  const CommandOption& Require() const;
  const CommandOption& MayBeLeftOut() const;
  const CommandOption& Needs(const CommandOption& other) const;
  // What the help says it takes: "FILE", "NAME|#N".
  const CommandOption& Takes(const char* what) const;
  // The help shows the value that it has now.
  const CommandOption& ShowDefault() const;

 private:
  CLI::Option* option;
};

class Command {
 public:
  explicit Command(CLI::App* app) : app(app) {}

  Command AddCommand(const char* name, const std::string& help) const;
  // One of its commands has to follow.
  void RequireCommand() const;

  // A name without dashes is that of an argument, found by its place.
  CommandOption AddOption(const char* name, std::string& value, const char* help) const;
  CommandOption AddOption(const char* name, std::optional<std::string>& value,
                          const char* help) const;
  CommandOption AddOption(const char* name, std::vector<std::string>& values,
                          const char* help) const;
  // The root of a store, which may be left out where KIVSTORE_ROOT has it: whoever sets that gives
  // as the first argument an existing folder, or none.
  CommandOption AddRoot(const char* name, std::string& value, const char* help,
                        bool mayBeNew = false) const;
  void AddFlag(const char* name, bool& value, const char* help) const;
  // One of the words, letter case ignored. `shown` is the word that the help shows as the default.
  template <class Value, class Target>
  CommandOption AddChoice(const char* name, Target& target, const char* help,
                          const std::vector<std::pair<std::string, Value>>& words,
                          const char* shown = "") const {
    Words numbers;
    for (const auto& [word, value] : words) {
      numbers.emplace_back(word, static_cast<int>(value));
    }
    return AddNumbered(name, help, numbers, shown,
                       [&target](int number) { target = static_cast<Value>(number); });
  }

  void SetFooter(const char* text) const;
  // What runs while the line is parsed, once all of it is known to be right.
  void OnRun(std::function<void()> action) const;

 private:
  using Words = std::vector<std::pair<std::string, int>>;
  CommandOption AddNumbered(const char* name, const char* help, const Words& words,
                            const char* shown, std::function<void(int)> take) const;

 protected:
  CLI::App* app;
};

// What KIVSTORE_ROOT has; empty if nothing.
std::string RootOfEnvironment();

// What may stand in place of the last word of a line that is being typed.
struct Completion {
  std::vector<std::string> words;
  std::string option;  // whose value it is, "--class"; its choices, if it has any, are `words`
  std::string root;    // of the store that the line is about; empty if it does not tell
  std::map<std::string, std::string> values;  // of the options ahead of it
};

class CommandLine : public Command {
 public:
  // `version` is what --version prints; asked only for that.
  CommandLine(const char* program, const char* description, std::function<std::string()> version);
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  // Runs the command that the line names, or prints the help or the version if it asks for that;
  // false then. Throws wrong usage, naming what is near, for a line that is none. What a command
  // throws comes through.
  bool Run(int argc, const char* const* argv) const;

  // The words behind the program's name, the last of them as far as it is typed.
  Completion Complete(const std::vector<std::string>& typed) const;

 private:
  bool Parse(std::vector<std::string> arguments) const;

  std::unique_ptr<CLI::App> owned;
};

}  // namespace kivhost
