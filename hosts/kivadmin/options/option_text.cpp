#include "hosts/kivadmin/options/option_text.h"

#include <charconv>
#include <set>
#include <sstream>

#include "hosts/common/charset.h"
#include "records/activity.h"

namespace kivadmin {
namespace {

constexpr Limits kMissionLimits{1, kivstore::kMissionCount};

bool IsOneOf(const std::string& text, std::initializer_list<const char*> words) {
  for (const char* const word : words) {
    if (kivhost::EqualNoCase(text, word)) {
      return true;
    }
  }
  return false;
}

// "7" or "1-4".
bool AddRange(const std::string& text, std::set<int>& missions) {
  const size_t dash = text.find('-');
  const auto first = ParseNumber(text.substr(0, dash), kMissionLimits);
  const auto last =
      dash == std::string::npos ? first : ParseNumber(text.substr(dash + 1), kMissionLimits);
  if (!first || !last || *first > *last) {
    return false;
  }
  for (int mission = *first; mission <= *last; ++mission) {
    missions.insert(mission);
  }
  return true;
}

}  // namespace

std::optional<bool> ParseYesNo(const std::string& text) {
  if (IsOneOf(text, {"yes", "true", "1"})) {
    return true;
  }
  if (IsOneOf(text, {"no", "false", "0"})) {
    return false;
  }
  return std::nullopt;
}

std::optional<int16_t> ParseNumber(const std::string& text, Limits limits) {
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number < limits.lowest || number > limits.highest) {
    return std::nullopt;
  }
  return static_cast<int16_t>(number);
}

std::optional<std::vector<int>> ParseMissions(const std::string& text) {
  std::set<int> missions;
  if (text.empty() || kivhost::EqualNoCase(text, "none")) {
    return std::vector<int>();
  }
  size_t start = 0;
  while (start != std::string::npos) {
    const size_t comma = text.find(',', start);
    const size_t length = comma == std::string::npos ? comma : comma - start;
    if (!AddRange(text.substr(start, length), missions)) {
      return std::nullopt;
    }
    start = comma == std::string::npos ? comma : comma + 1;
  }
  return std::vector<int>(missions.begin(), missions.end());
}

std::string MissionsText(const std::vector<int>& missions) {
  std::string text;
  for (size_t i = 0; i < missions.size();) {
    size_t last = i;
    while (last + 1 < missions.size() && missions[last + 1] == missions[last] + 1) {
      ++last;
    }
    text += (text.empty() ? "" : ",") + std::to_string(missions[i]);
    if (last > i) {
      text += '-' + std::to_string(missions[last]);
    }
    i = last + 1;
  }
  return text.empty() ? "none" : text;
}

}  // namespace kivadmin
