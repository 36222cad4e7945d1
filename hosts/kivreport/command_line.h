// The command line of kivreport.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "hosts/kivreport/report_writer.h"

namespace kivreport {

enum class Mode { kAuto, kLocal, kNetwork };

struct CommandLine {
  std::string root;
  Format format = Format::kTable;
  std::string output;
  bool roster = false;
  std::string teacher;
  std::string group;
  Mode mode = Mode::kAuto;
  bool force = false;
  std::optional<std::string> charset;
  bool byteOrderMark = false;
  bool quiet = false;
};

// Nothing if the program is to end at once, with `exitCode`. `version` is asked only for --version.
std::optional<CommandLine> ParseCommandLine(int argc, char** argv,
                                            const std::function<std::string()>& version,
                                            int& exitCode);

}  // namespace kivreport
