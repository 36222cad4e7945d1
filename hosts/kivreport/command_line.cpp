#include "hosts/kivreport/command_line.h"

#include <CLI/CLI.hpp>
#include <map>

#include "hosts/common/host_error.h"

namespace kivreport {

std::optional<CommandLine> ParseCommandLine(int argc, char** argv,
                                            const std::function<std::string()>& version,
                                            int& exitCode) {
  CommandLine line;
  CLI::App app("Prints the rosters of a store and how far each student has come.", "kivreport");
  app.allow_windows_style_options(false);
  app.add_option("DATA_ROOT", line.root, "The data root of the store")->required();
  app.add_option("--format", line.format, "The form of the report")
      ->transform(CLI::CheckedTransformer(
          std::map<std::string, Format>{
              {"table", Format::kTable}, {"csv", Format::kCsv}, {"json", Format::kJson}},
          CLI::ignore_case))
      ->type_name("table|csv|json")
      ->default_str("table");
  app.add_option("--output", line.output, "Write to this file instead of standard output")
      ->type_name("FILE");
  app.add_flag("--roster", line.roster, "Names and counts only, each list read once");
  app.add_option("--teacher", line.teacher, "Only this teacher: a name, or #N for its place")
      ->type_name("NAME|#N");
  app.add_option("--class", line.group, "Only this class: a name, or #N for its place")
      ->type_name("NAME|#N");
  app.add_option("--mode", line.mode, "The kind of store; auto looks at its folders")
      ->transform(CLI::CheckedTransformer(
          std::map<std::string, Mode>{
              {"auto", Mode::kAuto}, {"local", Mode::kLocal}, {"network", Mode::kNetwork}},
          CLI::ignore_case))
      ->type_name("auto|local|network")
      ->default_str("auto");
  app.add_option("--charset", line.charset, "The character set of the store's texts")
      ->type_name("NAME")
      ->capture_default_str();
  app.add_flag("--bom", line.byteOrderMark, "Begin with a byte order mark, for spreadsheets");
  app.add_flag("--quiet", line.quiet, "No progress bar");
  app.set_version_flag("--version", version);
  app.footer(
      "Exit codes:\n"
      "  0  good\n"
      "  1  the store has nothing of what was asked for\n"
      "  2  wrong usage\n"
      "  3  no store there, or it cannot be read, or not all of it");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    exitCode = app.exit(error) == 0 ? kivhost::kDone : kivhost::kWrongUsage;
    return std::nullopt;
  }
  return line;
}

}  // namespace kivreport
