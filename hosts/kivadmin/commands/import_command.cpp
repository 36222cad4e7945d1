// `import`: the rosters of a CSV file.
#include <iostream>

#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/roster_csv.h"
#include "hosts/kivadmin/rosters/roster_import.h"

namespace kivadmin {
namespace {

struct ImportArguments {
  std::string file;
};

std::string Summary(const ImportCounts& counts, const std::string& file) {
  return "imported " + file + ": " + std::to_string(counts.teachers) + " teachers, " +
         std::to_string(counts.classes) + " classes, " + std::to_string(counts.students) +
         " students added; " + std::to_string(counts.there) + " lines there already, " +
         std::to_string(counts.notTaken) + " not taken";
}

void Import(const CommonOptions& common, const ImportArguments& arguments) {
  const std::vector<CsvLine> lines = ReadRosterFile(arguments.file);
  const Session session(common, Session::Access::kChange);
  const ImportCounts counts =
      ImportRosters(session, lines, [&](const CsvLine& line, const std::string& why) {
        std::cerr << arguments.file << ':' << line.number << ": " << why << '\n';
      });
  session.Say(Summary(counts, arguments.file));
  if (counts.notTaken > 0) {
    throw HostError(kRefused, std::to_string(counts.notTaken) + " of " +
                                  std::to_string(lines.size()) + " lines were not taken");
  }
}

}  // namespace

void AddImportCommand(const Command& app, CommonOptions& common) {
  const Command import = app.AddCommand(
      "import",
      "Add the teachers, classes and students of a CSV file, UTF-8, with the header\n"
      "teacher,class,first_name,last_name. A line without a student adds the class, one without\n"
      "a class the teacher. What is there already stays as it is; a line that cannot be taken is\n"
      "reported with its number, and the rest is taken.");
  ImportArguments& arguments = AddRun(import, common, Import);
  AddChangeArguments(import, common);
  import.AddOption("FILE", arguments.file, "The CSV file").Require();
}

}  // namespace kivadmin
