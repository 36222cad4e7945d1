// kivadmin: lays out a store and runs it: entries, options, progress, order.
#include <iostream>
#include <string_view>

#include "hosts/common/console.h"
#include "hosts/kivadmin/commands/commands.h"

namespace kivadmin {
namespace {

using AddCommand = void (*)(const kivhost::Command& app, CommonOptions& common);

constexpr AddCommand kCommands[] = {
    AddInitCommand,    AddAddCommands,     AddRenameCommands,   AddMoveCommands,
    AddDeleteCommands, AddDeletedCommands, AddImportCommand,    AddSyncCommand,
    AddPromoteCommand, AddExportCommand,   AddListCommands,     AddLogCommand,
    AddBackupCommands, AddCheckCommand,    AddOptionsCommands,  AddProgressCommand,
    AddDumpCommand,    AddAboutCommand,    AddCompletionCommand};

int RunCommandLine(int argc, char** argv) {
  CommonOptions common;
  const kivhost::CommandLine app("kivadmin", "Lays out a store and runs it.",
                                 [] { return "kivadmin " KIVSTORE_VERSION; });
  app.RequireCommand();
  app.SetFooter(
      "NAME is a name as shown, letter case ignored, or #N for its place in the list.\n"
      "Exit codes:\n"
      "  0  done\n"
      "  1  the store refused: full, locked, in use, name taken or unknown\n"
      "  2  wrong usage\n"
      "  3  no store there, or it cannot be read or written");
  for (const AddCommand add : kCommands) {
    add(app, common);
  }
  if (argc > 1 && std::string_view(argv[1]) == "__complete") {
    PrintCompletions(app, {argv + 2, argv + argc});
  } else {
    app.Run(argc, argv);
  }
  std::cout << std::flush;
  return std::cout ? kDone : kNoStore;
}

}  // namespace
}  // namespace kivadmin

int main(int argc, char** argv) {
  return kivhost::RunHost("kivadmin", [&] {
    kivhost::Console console(argc, argv);
    return kivadmin::RunCommandLine(console.GetCount(), console.GetArguments());
  });
}
