// The commands of kivadmin: each function adds its own to the command line. A command runs while
// the line is parsed, and throws HostError where it fails.
#pragma once

#include <string>
#include <vector>

#include "hosts/common/command_line.h"
#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

void AddInitCommand(const kivhost::Command& app, CommonOptions& common);
void AddAddCommands(const kivhost::Command& app, CommonOptions& common);
void AddRenameCommands(const kivhost::Command& app, CommonOptions& common);
void AddMoveCommands(const kivhost::Command& app, CommonOptions& common);
void AddDeleteCommands(const kivhost::Command& app, CommonOptions& common);
void AddDeletedCommands(const kivhost::Command& app, CommonOptions& common);
void AddImportCommand(const kivhost::Command& app, CommonOptions& common);
void AddSyncCommand(const kivhost::Command& app, CommonOptions& common);
void AddPromoteCommand(const kivhost::Command& app, CommonOptions& common);
void AddExportCommand(const kivhost::Command& app, CommonOptions& common);
void AddListCommands(const kivhost::Command& app, CommonOptions& common);
void AddBackupCommands(const kivhost::Command& app, CommonOptions& common);
void AddLogCommand(const kivhost::Command& app, CommonOptions& common);
void AddCheckCommand(const kivhost::Command& app, CommonOptions& common);
void AddOptionsCommands(const kivhost::Command& app, CommonOptions& common);
void AddProgressCommand(const kivhost::Command& app, CommonOptions& common);
void AddDumpCommand(const kivhost::Command& app, CommonOptions& common);
void AddAboutCommand(const kivhost::Command& app, CommonOptions& common);
void AddCompletionCommand(const kivhost::Command& app, CommonOptions& common);

// For a shell: what may stand in place of the last word, a line each.
void PrintCompletions(const kivhost::CommandLine& app, std::vector<std::string> typed);

}  // namespace kivadmin
