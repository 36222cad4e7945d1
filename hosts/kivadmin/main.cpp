// kivadmin: lays out a store and runs it: entries, options, progress, order.
#include <iostream>

#include "hosts/common/console.h"
#include "hosts/kivadmin/commands/commands.h"

namespace kivadmin {
namespace {

void AddCommands(CLI::App& app, CommonOptions& common) {
  AddInitCommand(app, common);
  AddAddCommands(app, common);
  AddRenameCommands(app, common);
  AddMoveCommands(app, common);
  AddDeleteCommands(app, common);
  AddImportCommand(app, common);
  AddExportCommand(app, common);
  AddCheckCommand(app, common);
  AddOptionsCommands(app, common);
  AddProgressCommand(app, common);
  AddDumpCommand(app, common);
  AddAboutCommand(app);
}

int Run(int argc, char** argv) {
  kivhost::Console console(argc, argv);
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
  AddCommands(app, common);
  try {
    app.parse(console.GetCount(), console.GetArguments());
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kWrongUsage;
  } catch (const AdminError& error) {
    std::cout << std::flush;
    std::cerr << "kivadmin: " << error.message << '\n';
    return error.exitCode;
  }
  std::cout << std::flush;
  return std::cout ? kDone : kNoStore;
}

}  // namespace
}  // namespace kivadmin

int main(int argc, char** argv) {
  return kivadmin::Run(argc, argv);
}
