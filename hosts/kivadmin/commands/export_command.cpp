// `export`: the rosters in the forms that import takes.
#include <filesystem>

#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/roster_files/roster_writer.h"
#include "hosts/kivadmin/rosters/roster_lines.h"

namespace kivadmin {
namespace {

struct ExportArguments {
  std::string file = "-";
  std::string output;
  bool isOneRoster = false;
  std::string school;
};

std::string NameOfRoot(const std::string& root) {
  return std::filesystem::path(kivhost::HeldRoot(root)).filename().string();
}

void ExportTo(const std::string& file, const CommonOptions& common,
              const ExportArguments& arguments) {
  const std::vector<RosterLine> lines = RosterLines(Session(common, Session::Access::kLook));
  if (arguments.isOneRoster) {
    WriteOneRoster(file, common.force,
                   arguments.school.empty() ? NameOfRoot(common.root) : arguments.school, lines);
  } else {
    kivhost::WriteWholeFile(file, RosterAsCsv(lines), common.force);
  }
}

void Export(const CommonOptions& common, const ExportArguments& arguments) {
  const std::string& file = arguments.output.empty() ? arguments.file : arguments.output;
  if (arguments.isOneRoster && file == "-") {
    throw HostError(kWrongUsage, "--format oneroster: a FILE.zip to write is needed");
  }
  kivhost::NeedTarget(file, common.force);
  ExportTo(file, common, arguments);
}

}  // namespace

void AddExportCommand(const Command& app, CommonOptions& common) {
  const Command command = app.AddCommand(
      "export", "Write the teachers, classes and students in a form that import takes");
  ExportArguments& arguments = AddRun(command, common, Export);
  AddStoreArguments(command, common);
  command.AddOption("FILE", arguments.file, "The file to write; without it, or -, standard output");
  command.AddOption("-o,--output", arguments.output, "The same as FILE").Takes("FILE");
  command.AddChoice<bool>("-f,--format", arguments.isOneRoster,
                          "A table (CSV, UTF-8), or a zip of OneRoster 1.1",
                          {{"csv", false}, {"oneroster", true}}, "csv");
  command
      .AddOption("--school", arguments.school,
                 "The school's name in the zip; else that of the store's folder")
      .Takes("NAME");
}

}  // namespace kivadmin
