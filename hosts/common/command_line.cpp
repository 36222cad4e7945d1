#include "hosts/common/command_line.h"

#include <CLI/CLI.hpp>

namespace kivhost {

const CommandOption& CommandOption::Require() const {
  option->required();
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

void Command::AddNumbered(const char* name, const char* help, const Words& words, const char* shown,
                          std::function<void(int)> take) const {
  std::string names;
  for (const auto& [word, number] : words) {
    names += (names.empty() ? "" : "|") + word;
  }
  CLI::Option* const option = app->add_option_function<int>(name, std::move(take), help);
  option->transform(CLI::CheckedTransformer(words, CLI::ignore_case).description(""))
      ->type_name(names)
      ->default_str(shown);
}

void Command::SetFooter(const char* text) const {
  app->footer(text);
}

void Command::OnRun(std::function<void()> action) const {
  app->callback(std::move(action));
}

CommandLine::CommandLine(const char* program, const char* description,
                         std::function<std::string()> version)
    : Command(nullptr), owned(std::make_unique<CLI::App>(description, program)) {
  app = owned.get();
  app->set_version_flag("--version", std::move(version));
  app->allow_windows_style_options(false);
}

CommandLine::~CommandLine() = default;

CommandLine::Result CommandLine::Run(int argc, const char* const* argv) const {
  try {
    app->parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app->exit(error) == 0 ? Result::kShown : Result::kWrong;
  }
  return Result::kRun;
}

}  // namespace kivhost
