#include "hosts/kivadmin/options/options_text_archive.h"

#include <charconv>

#include "hosts/kivadmin/options/option_fields.h"

namespace kivadmin {
namespace {

constexpr Limits kWhatAFileHolds{INT16_MIN, INT16_MAX};

// The key as LimitsOf knows it.
std::string OptionKey(const std::string& section, const std::string& key) {
  constexpr std::string_view kGame = "TOGameDob_";
  if (section != kOptionsSection) {
    return "Missions." + key;
  }
  return key.starts_with(kGame) ? kGamePrefix + key.substr(kGame.size()) : key;
}

std::string Wanted(int64_t lowest, int64_t highest) {
  return "a number from " + std::to_string(lowest) + " to " + std::to_string(highest) +
         " is wanted";
}

}  // namespace

void OptionsTextArchive::Path::Push(const std::string& name) {
  lengths.push_back(text.size());
  text += (text.empty() || name.empty() ? "" : "_") + name;
}

void OptionsTextArchive::Path::Pop() {
  text.resize(lengths.back());
  lengths.pop_back();
}

template <class Parse>
bool OptionsTextArchive::TransferText(const char* name, const std::string& own, Parse parse) {
  PushKey(name);
  OptionsText::Line& line = text.Ask(section.text, key.text);
  PopKey();
  if (!reading) {
    line.own = own;
    return true;
  }
  return Take(line, parse);
}

template <class Parse>
bool OptionsTextArchive::Take(const OptionsText::Line& line, Parse parse) {
  if (!line.Value()) {
    text.Refuse(line, "is missing, and the Count of its list says that it is there");
    return false;
  }
  const std::string wanted = parse(line);
  if (!wanted.empty()) {
    text.Refuse(line, wanted);
  }
  return wanted.empty();
}

bool OptionsTextArchive::TransferBool(const char* name, bool& value) {
  return TransferText(name, value ? "1" : "0", [&](const OptionsText::Line& line) {
    value = *line.Value() == "1";
    return value || *line.Value() == "0" ? "" : "1 or 0 is wanted";
  });
}

// What the level has is not questioned.
bool OptionsTextArchive::TransferShort(const char* name, int16_t& value) {
  return TransferText(name, std::to_string(value), [&](const OptionsText::Line& line) {
    const bool isOwn = line.Value() == line.own;
    const Limits limits = isOwn ? kWhatAFileHolds : LimitsOf(OptionKey(line.section, line.key));
    const auto parsed = ParseNumber(*line.Value(), limits);
    value = parsed.value_or(value);
    return parsed ? "" : Wanted(limits.lowest, limits.highest);
  });
}

template <class Number>
bool OptionsTextArchive::TransferNumber(const char* name, Number& value, uint32_t highest) {
  return TransferText(name, std::to_string(value), [&](const OptionsText::Line& line) {
    const std::string& digits = *line.Value();
    uint32_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    if (error != std::errc() || stop != end || number > highest) {
      return Wanted(0, highest);
    }
    value = static_cast<Number>(number);
    return std::string();
  });
}

bool OptionsTextArchive::TransferUShort(const char* name, uint16_t& value) {
  return TransferNumber(name, value, UINT16_MAX);
}

// A time beside a value that is not given does not count. What only the text has was never decided
// by the level.
bool OptionsTextArchive::TransferTimeStamp(const char* name, kivstore::SDateTime& stamp) {
  uint32_t high = 0;
  uint32_t low = stamp.Raw();
  PushKey(name);
  const bool isValueGiven = text.GivesValue(section.text, key.text);
  PushKey("ts");
  for (const char* const half : {"_high", "_low"}) {
    std::optional<std::string>& own = text.Ask(section.text, key.text + half).own;
    own = own.value_or("0");
  }
  const bool taken =
      TransferNumber("high", high, UINT32_MAX) && TransferNumber("low", low, UINT32_MAX);
  const OptionsText::Line& line = text.Ask(section.text, key.text + "_low");
  PopKey();
  PopKey();
  if (reading && taken) {
    const bool isUntimed = isValueGiven && !line.given;
    const auto own = static_cast<uint32_t>(std::stoul(*line.own));
    stamp.SetRaw(isUntimed ? kivstore::SDateTime::kFresh : isValueGiven ? low : own);
  }
  return taken;
}

}  // namespace kivadmin
