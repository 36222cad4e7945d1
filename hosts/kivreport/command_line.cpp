#include "hosts/kivreport/command_line.h"

#include "hosts/common/command_line.h"

namespace kivreport {

std::optional<CommandLine> ParseCommandLine(int argc, char** argv,
                                            const std::function<std::string()>& version) {
  CommandLine line;
  const kivhost::CommandLine app(
      "kivreport", "Prints the rosters of a store and how far each student has come.", version);
  app.AddRoot("DATA_ROOT", line.root, "The data root of the store");
  app.AddChoice<Format>("-f,--format", line.format, "The form of the report",
                        {{"table", Format::kTable}, {"csv", Format::kCsv}, {"json", Format::kJson}},
                        "table");
  app.AddOption("-o,--output", line.output,
                "Write to this file, which is there only when it is whole; - is standard output")
      .Takes("FILE");
  app.AddFlag("--roster", line.roster, "Names and counts only, each list read once");
  app.AddOption("-t,--teacher", line.teacher, "Only this teacher: a name, or #N for its place")
      .Takes("NAME|#N");
  app.AddOption("-c,--class", line.group, "Only this class: a name, or #N for its place")
      .Takes("NAME|#N");
  app.AddChoice<Mode>("--mode", line.mode, "The kind of store; auto looks at its folders",
                      {{"auto", Mode::kAuto}, {"local", Mode::kLocal}, {"network", Mode::kNetwork}},
                      "auto");
  app.AddFlag("--force", line.force,
              "Take --mode although the folders tell another; replace a file that is there");
  app.AddOption("--charset", line.charset,
                "The character set of the store's texts; else what kivstore.conf says, or "
                "windows-1252")
      .Takes("NAME");
  app.AddFlag("--bom", line.byteOrderMark, "Begin with a byte order mark, for spreadsheets");
  app.AddFlag("--quiet", line.quiet, "No progress bar");
  app.SetFooter(
      "Exit codes:\n"
      "  0  good\n"
      "  1  the store has nothing of what was asked for\n"
      "  2  wrong usage\n"
      "  3  no store there, or it cannot be read, or not all of it");
  return app.Run(argc, argv) ? std::optional(line) : std::nullopt;
}

}  // namespace kivreport
