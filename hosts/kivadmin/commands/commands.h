// The commands of kivadmin: each function adds its own to the command line. A command runs while
// the line is parsed, and throws HostError where it fails.
#pragma once

#include <CLI/CLI.hpp>

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
void AddAboutCommand(CLI::App& app, CommonOptions& common);

}  // namespace kivadmin
