// The commands of kivadmin: each function adds its own to the command line. A command runs while
// the line is parsed, and throws AdminError where it fails.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

void AddInitCommand(CLI::App& app, CommonOptions& common);
void AddAddCommands(CLI::App& app, CommonOptions& common);
void AddRenameCommands(CLI::App& app, CommonOptions& common);
void AddMoveCommands(CLI::App& app, CommonOptions& common);
void AddDeleteCommands(CLI::App& app, CommonOptions& common);
void AddImportCommand(CLI::App& app, CommonOptions& common);
void AddExportCommand(CLI::App& app, CommonOptions& common);
void AddCheckCommand(CLI::App& app, CommonOptions& common);
void AddOptionsCommands(CLI::App& app, CommonOptions& common);
void AddProgressCommand(CLI::App& app, CommonOptions& common);
void AddDumpCommand(CLI::App& app, CommonOptions& common);
void AddAboutCommand(CLI::App& app);

// ROOT, --kind and --charset: what every command on a store takes.
void AddStoreArguments(CLI::App& command, CommonOptions& common);
// And --dry-run.
void AddChangeArguments(CLI::App& command, CommonOptions& common);

// Where an entry is, as options tell it.
struct EntryNames {
  std::string teacher;
  std::string group;  // the class
  std::string student;
};

void AddTeacherOption(CLI::App& command, EntryNames& names);
CLI::Option* AddClassOption(CLI::App& command, EntryNames& names);
CLI::Option* AddStudentOption(CLI::App& command, EntryNames& names);

}  // namespace kivadmin
