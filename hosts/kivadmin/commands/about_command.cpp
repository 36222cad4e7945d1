// `about`: the program, and the workstation as the probes see it.
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "hosts/kivadmin/commands/commands.h"
#include "platform/platform.h"
#include "probes/processor.h"
#include "probes/processor_speed.h"
#include "probes/system_info.h"

namespace kivadmin {
namespace {

using Json = nlohmann::ordered_json;
using kivstore::SSystemInfo;

// A null value is what the platform cannot tell.
struct Fact {
  const char* label;
  const char* key;
  Json value;
  const char* unit = "";
};

// Who says so: the system and the processor of themselves, or a measurement made just now.
struct Group {
  const char* source;
  std::vector<Fact> facts;
};

Json Known(bool isKnown, Json value) {
  return isKnown ? std::move(value) : Json();
}

// Of numbers that nothing real has as 0.
Json UnlessZero(int64_t value) {
  return Known(value != 0, value);
}

Json StatedMhz() {
  uint32_t mhz = 0;
  const bool isStated = kivstore::Platform().system->StatedMhz(mhz);
  return Known(isStated && mhz != 0, mhz);
}

std::string HexWord(uint32_t word) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(word));
  return text;
}

// Without CPUID the flags tell of processors older than any that runs this, so the family is none.
Group StatedFacts() {
  const bool hasVersion = SSystemInfo::osVersion != 0;
  const std::string processor = SSystemInfo::processorName.GetText();
  const uint32_t features = kivstore::ProcessorFeatures();
  const int16_t family = kivstore::HasCpuid() ? kivstore::ProcessorFamily() : int16_t{-1};
  return {"stated",
          {
              {"System, as the tutor counts it", "osName",
               Known(hasVersion, SSystemInfo::osName.GetText())},
              {"Version", "osVersion", Known(hasVersion, SSystemInfo::osVersionText.GetText())},
              {"NT family", "isNtFamily", Known(hasVersion, SSystemInfo::isNtFamily)},
              {"Memory", "memoryMegabytes", UnlessZero(SSystemInfo::memoryMegabytes), "MB"},
              {"Processor", "processorName", Known(processor != "???", processor)},
              {"CPUID", "hasCpuid", kivstore::HasCpuid()},
              {"Processor family", "processorFamily", Known(family >= 0, family)},
              {"Processor features", "processorFeatures", Known(features != 0, HexWord(features))},
              {"Processors in use", "processorCount", UnlessZero(kivstore::ProcessorCount())},
              {"Speed", "processorMhz", StatedMhz(), "MHz"},
              {"Colors", "colorDepth", UnlessZero(kivstore::ColorDepth()), "bits"},
              {"Font smoothing", "fontSmoothing",
               Known(SSystemInfo::fontSmoothingKnown, kivstore::FontSmoothing())},
          }};
}

Group MeasuredFacts() {
  const kivstore::SSpeedResult speed = kivstore::MeasureSpeed();
  return {"measured",
          {
              {"Speed", "processorMhz", UnlessZero(speed.roundedMhz), "MHz"},
              {"Speed, as processors are sold", "soldMhz",
               UnlessZero(kivstore::RoundMhz(speed.roundedMhz, false)), "MHz"},
              {"Cycles counted", "cycles", UnlessZero(speed.cycles)},
              {"Time taken", "microseconds", UnlessZero(speed.microseconds), "us"},
          }};
}

std::string ValueText(const Fact& fact) {
  if (fact.value.is_null()) {
    return "not known";
  }
  if (fact.value.is_boolean()) {
    return fact.value.get<bool>() ? "yes" : "no";
  }
  const std::string text =
      fact.value.is_string() ? fact.value.get<std::string>() : fact.value.dump();
  return *fact.unit != '\0' ? text + ' ' + fact.unit : text;
}

void PrintJson(const std::vector<Group>& groups) {
  Json json = {{"version", KIVSTORE_VERSION}};
  for (const Group& group : groups) {
    for (const Fact& fact : group.facts) {
      json[group.source][fact.key] = fact.value;
    }
  }
  std::cout << json.dump(2) << '\n';
}

void PrintTable(const std::vector<Group>& groups) {
  size_t width = 0;
  for (const Group& group : groups) {
    for (const Fact& fact : group.facts) {
      width = std::max(width, std::string(fact.label).size());
    }
  }
  std::cout << "kivadmin " KIVSTORE_VERSION "\n";
  for (const Group& group : groups) {
    std::cout << '\n' << group.source << '\n';
    for (const Fact& fact : group.facts) {
      const std::string label = fact.label;
      std::cout << "  " << label << std::string(width - label.size() + 2, ' ') << ValueText(fact)
                << '\n';
    }
  }
}

void About(bool json) {
  SSystemInfo::Probe();
  const std::vector<Group> groups{StatedFacts(), MeasuredFacts()};
  json ? PrintJson(groups) : PrintTable(groups);
}

}  // namespace

void AddAboutCommand(CLI::App& app) {
  const auto json = std::make_shared<bool>(false);
  CLI::App* const command = app.add_subcommand(
      "about", "This program's version, and what the workstation states of itself and measures");
  command->add_option("--format", *json, "The form of the list")
      ->transform(CLI::CheckedTransformer(
          std::map<std::string, bool>{{"table", false}, {"json", true}}, CLI::ignore_case))
      ->type_name("table|json")
      ->default_str("table");
  command->callback([json] { About(*json); });
}

}  // namespace kivadmin
