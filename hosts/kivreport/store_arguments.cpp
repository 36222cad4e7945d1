#include "hosts/kivreport/store_arguments.h"

#include <optional>

namespace kivreport {
namespace {

class Arguments {
 public:
  void Flag(const char* name, bool isSet) {
    if (isSet) {
      words.emplace_back(name);
    }
  }
  // Empty is not given.
  void Option(const std::string& name, const std::string& value) {
    if (!value.empty()) {
      words.push_back(name + '=' + value);
    }
  }
  template <class Number>
  void Option(const std::string& name, const std::optional<Number>& number) {
    if (number) {
      words.push_back(name + '=' + std::to_string(*number));
    }
  }

  std::vector<std::string> words;
};

const char* FormatFor(Format format) {
  switch (format) {
    case Format::kTable:
      return "table";
    case Format::kCsv:
      return "csv";
    case Format::kNdjson:
      return "ndjson";
    default:
      return "json";
  }
}

const char* NameOf(Sort sort) {
  return sort == Sort::kStore ? "store" : sort == Sort::kName ? "name" : "mission";
}

const char* NameOf(Mode mode) {
  return mode == Mode::kAuto ? "auto" : mode == Mode::kLocal ? "local" : "network";
}

}  // namespace

std::vector<std::string> ArgumentsForEach(const CommandLine& line, const Form& form) {
  Arguments each;
  each.Option("--format", FormatFor(form.format));
  each.Flag("--roster", line.roster);
  each.Option("--teacher", line.teacher);
  each.Option("--class", line.group);
  each.Option("--student", line.student);
  each.Option("--min-mission", line.lowestMission);
  each.Option("--max-mission", line.highestMission);
  each.Option("--idle-days", line.idleDays);
  each.Option("--sort", NameOf(line.sort));
  each.Option("--columns", line.columns);
  each.Option("--mode", NameOf(line.mode));
  each.Option("--charset", line.charset.value_or(""));
  each.Flag("--raw", line.raw);
  each.Flag("--force", line.force);
  each.Flag("--quiet", true);
  if (form.format == Format::kTable) {
    each.Option("--width", form.width);
    each.Option("--color", form.hasColor ? "always" : "never");
  }
  return each.words;
}

}  // namespace kivreport
