// kivadmin: lays out a store and runs it: entries, options, progress, order.
#include <iostream>

#include "hosts/common/console.h"
#include "hosts/kivadmin/commands/commands.h"

namespace kivadmin {
namespace {

using AddCommand = void (*)(CLI::App& app, CommonOptions& common);

constexpr AddCommand kCommands[] = {AddInitCommand,     AddAddCommands,    AddRenameCommands,
                                    AddMoveCommands,    AddDeleteCommands, AddImportCommand,
                                    AddExportCommand,   AddCheckCommand,   AddOptionsCommands,
                                    AddProgressCommand, AddDumpCommand,    AddAboutCommand};

int Run(int argc, char** argv) {
  CommonOptions common;
  CLI::App app("Lays out a store and runs it.", "kivadmin");
  app.set_version_flag("--version", "kivadmin " KIVSTORE_VERSION);
  app.require_subcommand(1);
  app.allow_windows_style_options(false);
  app.footer(
      "NAME is a name as shown, letter case ignored, or #N for its place in the list.\n"
      "Exit codes:\n"
      "  0  done\n"
      "  1  the store refused: full, locked, in use, name taken or unknown\n"
      "  2  wrong usage\n"
      "  3  no store there, or it cannot be read or written");
  for (const AddCommand add : kCommands) {
    add(app, common);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kWrongUsage;
  }
  std::cout << std::flush;
  return std::cout ? kDone : kNoStore;
}

}  // namespace
}  // namespace kivadmin

int main(int argc, char** argv) {
  return kivhost::RunHost("kivadmin", [&] {
    kivhost::Console console(argc, argv);
    return kivadmin::Run(console.GetCount(), console.GetArguments());
  });
}
