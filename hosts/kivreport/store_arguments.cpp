#include "hosts/kivreport/store_arguments.h"

#include <algorithm>
#include <optional>
#include <utility>

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

template <class Value>
std::string WordOf(const std::vector<std::pair<std::string, Value>>& words, Value value) {
  return std::find_if(words.begin(), words.end(),
                      [&](const auto& word) { return word.second == value; })
      ->first;
}

}  // namespace

std::vector<std::string> ArgumentsForEach(const CommandLine& line, const Form& form) {
  Arguments each;
  each.Option("--format",
              WordOf(kFormatWords, HasOwnLayout(form.format) ? Format::kJson : form.format));
  each.Flag("--roster", line.roster);
  each.Option("--teacher", line.teacher);
  each.Option("--class", line.group);
  each.Option("--student", line.student);
  each.Option("--min-mission", line.lowestMission);
  each.Option("--max-mission", line.highestMission);
  each.Option("--idle-days", line.idleDays);
  each.Option("--sort", WordOf(kSortWords, line.sort));
  each.Option("--columns", line.columns);
  each.Option("--mode", WordOf(kModeWords, line.mode));
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
