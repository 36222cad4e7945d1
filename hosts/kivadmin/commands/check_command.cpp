// `check`: what is not in order in a store.
#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>

#include "hosts/kivadmin/checking/exposure_note.h"
#include "hosts/kivadmin/checking/store_repair.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"

namespace kivadmin {
namespace {

struct CheckArguments {
  bool repair = false;
  bool json = false;
};

// A note is no fault: a store that has one may be in order.
void WriteText(const std::vector<Finding>& findings, size_t left, const std::string& note) {
  if (!note.empty()) {
    std::cout << "note: " << note << '\n';
  }
  for (const Finding& finding : findings) {
    std::cout << finding.path << ": " << finding.what << (finding.repaired ? " (repaired)" : "")
              << '\n';
  }
  if (findings.empty()) {
    std::cout << "the store is in order\n";
  } else {
    std::cout << "found " << findings.size() << ", repaired " << findings.size() - left << '\n';
  }
}

void WriteJson(const std::vector<Finding>& findings, size_t left, const std::string& note) {
  nlohmann::ordered_json problems = nlohmann::ordered_json::array();
  for (const Finding& finding : findings) {
    problems.push_back({{"kind", finding.kind},
                        {"path", finding.path},
                        {"what", finding.what},
                        {"repaired", finding.repaired}});
  }
  nlohmann::ordered_json report = {{"clean", left == 0}, {"problems", problems}};
  if (!note.empty()) {
    report["note"] = note;
  }
  constexpr auto kReplace = nlohmann::ordered_json::error_handler_t::replace;
  std::cout << report.dump(2, ' ', false, kReplace) << '\n';
}

void Check(const CommonOptions& common, const CheckArguments& arguments) {
  std::vector<Finding> findings = FindAll(common);
  if (arguments.repair && !common.dryRun && !findings.empty()) {
    findings = RepairAll(common, findings);
  }
  const auto left = static_cast<size_t>(std::count_if(
      findings.begin(), findings.end(), [](const Finding& f) { return !f.repaired; }));
  (arguments.json ? WriteJson : WriteText)(findings, left, ExposureNote(common));
  if (left > 0) {
    throw HostError(kRefused, kivhost::HeldRoot(common.root) + ": the store is not in order");
  }
}

}  // namespace

void AddCheckCommand(const Command& app, CommonOptions& common) {
  const Command check = app.AddCommand(
      "check",
      "Walk the whole store and say what is not in order: indexes that differ from their folders,\n"
      "folders nobody can name, missing lock files, options and game files that cannot be read,\n"
      "names that collide. Exit code 0 if all is in order or has been repaired, else 1.");
  CheckArguments& arguments = AddRun(check, common, Check);
  AddChangeArguments(check, common);
  check.AddFlag("--repair", arguments.repair,
                "Repair the lists as any listing does, and make missing lock files");
  AddFormat(check, arguments.json, "text");
}

}  // namespace kivadmin
