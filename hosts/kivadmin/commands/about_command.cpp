// `about`: the program, and the workstation as the probes see it.
#include <algorithm>
#include <iostream>

#include "hosts/kivadmin/checking/workstation.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"

namespace kivadmin {
namespace {

struct AboutArguments {
  bool json = false;
};

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

void PrintJson(const std::vector<FactGroup>& groups) {
  nlohmann::ordered_json json = {{"version", KIVSTORE_VERSION}};
  for (const FactGroup& group : groups) {
    for (const Fact& fact : group.facts) {
      json[group.source][fact.key] = fact.value;
    }
  }
  std::cout << json.dump(2) << '\n';
}

void PrintTable(const std::vector<FactGroup>& groups) {
  size_t width = 0;
  for (const FactGroup& group : groups) {
    for (const Fact& fact : group.facts) {
      width = std::max(width, std::string(fact.label).size());
    }
  }
  std::cout << "kivadmin " KIVSTORE_VERSION "\n";
  for (const FactGroup& group : groups) {
    std::cout << '\n' << group.source << '\n';
    for (const Fact& fact : group.facts) {
      const std::string label = fact.label;
      std::cout << "  " << label << std::string(width - label.size() + 2, ' ') << ValueText(fact)
                << '\n';
    }
  }
}

void About(const CommonOptions&, const AboutArguments& arguments) {
  (arguments.json ? PrintJson : PrintTable)(ProbeWorkstation());
}

}  // namespace

void AddAboutCommand(const Command& app, CommonOptions& common) {
  const Command command = app.AddCommand(
      "about", "This program's version, and what the workstation states of itself and measures");
  AddFormat(command, AddRun(command, common, About).json, "table");
}

}  // namespace kivadmin
