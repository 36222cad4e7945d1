// The command line of kivreport.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/common/color.h"
#include "hosts/kivreport/report_writer.h"
#include "hosts/kivreport/selection.h"

namespace kivreport {

enum class Mode { kAuto, kLocal, kNetwork };

struct CommandLine {
  std::string root;    // empty with a list of stores
  std::string stores;  // the list
  int jobs = 4;
  Format format = Format::kTable;
  std::string output = "-";
  bool roster = false;
  std::string teacher;
  std::string group;
  std::string student;
  std::string columns;
  Sort sort = Sort::kStore;
  std::optional<int> lowestMission;
  std::optional<int> highestMission;
  std::optional<int> idleDays;
  std::string since;
  std::string history;
  std::optional<int> width;
  bool raw = false;
  Mode mode = Mode::kAuto;
  bool force = false;
  std::optional<std::string> charset;
  bool byteOrderMark = false;
  bool quiet = false;
  kivhost::ColorWish color = kivhost::ColorWish::kAuto;
  Language language = LanguageOfEnvironment();
};

// The words that the line has for them.
extern const std::vector<std::pair<std::string, Format>> kFormatWords;
extern const std::vector<std::pair<std::string, Sort>> kSortWords;
extern const std::vector<std::pair<std::string, Mode>> kModeWords;

// Nothing if the help or the version was asked for and shown. `version` is asked only for
// --version. Throws wrong usage.
std::optional<CommandLine> ParseCommandLine(int argc, char** argv,
                                            const std::function<std::string()>& version);

}  // namespace kivreport
