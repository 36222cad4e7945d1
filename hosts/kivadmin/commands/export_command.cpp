// `export`: the rosters in the form that import takes.
#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/roster_files/roster_writer.h"
#include "hosts/kivadmin/rosters/roster_lines.h"

namespace kivadmin {
namespace {

struct ExportArguments {
  std::string output = "-";
};

void Export(const CommonOptions& common, const ExportArguments& arguments) {
  kivhost::NeedTarget(arguments.output, common.force);
  kivhost::WriteWholeFile(arguments.output,
                          RosterAsCsv(RosterLines(Session(common, Session::Access::kLook))),
                          common.force);
}

}  // namespace

void AddExportCommand(const Command& app, CommonOptions& common) {
  const Command command = app.AddCommand(
      "export", "Write the teachers, classes and students in the form that import takes");
  ExportArguments& arguments = AddRun(command, common, Export);
  AddStoreArguments(command, common);
  command.AddOption("--output", arguments.output, "Write to this file instead of standard output")
      .Takes("FILE");
}

}  // namespace kivadmin
