// `import`: the rosters of a file.
#include <algorithm>
#include <iostream>
#include <tuple>

#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/commands/roster_arguments.h"
#include "hosts/kivadmin/rosters/roster_import.h"

namespace kivadmin {
namespace {

struct ImportArguments {
  std::string file;
  RosterFormat format;
};

std::string Summary(const ImportCounts& counts, const std::string& file) {
  return "imported " + file + ": " + std::to_string(counts.teachers) + " teachers, " +
         std::to_string(counts.classes) + " classes, " + std::to_string(counts.students) +
         " students added; " + std::to_string(counts.there) + " lines there already, " +
         std::to_string(counts.notTaken) + " not taken";
}

// In the order of the file.
void TellRefused(RosterFile& roster) {
  std::stable_sort(roster.refused.begin(), roster.refused.end(),
                   [](const RefusedLine& a, const RefusedLine& b) {
                     return std::tie(a.file, a.number) < std::tie(b.file, b.number);
                   });
  for (const RefusedLine& line : roster.refused) {
    std::cerr << PlaceIn(roster, line.file, line.number) << ": " << line.why << '\n';
  }
}

void Import(const CommonOptions& common, const ImportArguments& arguments) {
  RosterFile roster = ReadRosterFile(arguments.file, arguments.format);
  const Session session(common, Session::Access::kChange);
  FitToStore(roster, session.HasTeachers());
  TellReading(roster);
  const size_t rows = roster.lines.size() + roster.refused.size();
  const size_t notRead = roster.refused.size();
  ImportCounts counts =
      ImportRosters(session, roster.lines, [&](const RosterLine& line, const std::string& why) {
        roster.refused.push_back({line.number, line.file, why});
      });
  counts.notTaken += notRead;
  TellRefused(roster);
  session.Say(Summary(counts, roster.name));
  if (counts.notTaken > 0) {
    throw HostError(kRefused, std::to_string(counts.notTaken) + " of " + std::to_string(rows) +
                                  " lines were not taken");
  }
}

}  // namespace

void AddImportCommand(const Command& app, CommonOptions& common) {
  const Command import = app.AddCommand(
      "import",
      "Add the teachers, classes and students of a roster: of a table whose heading tells "
      "teacher,\n"
      "class, first name, last name in one of nine languages, or of a OneRoster bundle. A row\n"
      "without a student adds the class, one without a class the teacher. What is there already\n"
      "stays as it is; a row that cannot be taken is reported with its line, and the rest is "
      "taken.");
  ImportArguments& arguments = AddRun(import, common, Import);
  AddChangeArguments(import, common);
  AddRosterArguments(import, arguments.file, arguments.format);
}

}  // namespace kivadmin
