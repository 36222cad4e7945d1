// `check`: what is not in order in a store.
#include <algorithm>
#include <iostream>
#include <nlohmann/json.hpp>

#include "hosts/kivadmin/checking/exposure_note.h"
#include "hosts/kivadmin/checking/mount_facts.h"
#include "hosts/kivadmin/checking/store_repair.h"
#include "hosts/kivadmin/checking/store_trial.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"

namespace kivadmin {
namespace {

struct CheckArguments {
  bool repair = false;
  bool json = false;
  std::string through;
  bool twoMachines = false;
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

void WriteResults(const std::vector<TrialResult>& results) {
  for (const TrialResult& result : results) {
    std::cout << result.kind << ": " << result.held << " of " << result.tries
              << " as they must be\n";
  }
}

void WriteResultsJson(const std::vector<TrialResult>& results) {
  nlohmann::ordered_json report = nlohmann::ordered_json::object();
  for (const TrialResult& result : results) {
    report[result.kind] = {{"tries", result.tries}, {"held", result.held}};
  }
  std::cout << report.dump(2) << '\n';
}

// On one mount the system itself keeps everything together.
bool IsOneMount(const std::string& a, const std::string& b) {
  const auto one = MountOf(a), other = MountOf(b);
  return one && other && one->place == other->place;
}

void Try(const CommonOptions& common, const CheckArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  const std::vector<TrialResult> results =
      arguments.twoMachines ? TryWithOtherMachine(session) : TryThrough(session, arguments.through);
  if (results.empty()) {
    std::cout << "answered the other machine, which tells the results\n";
    return;
  }
  (arguments.json ? WriteResultsJson : WriteResults)(results);
  const std::string advice = AdviceFor(results, {common.root, arguments.through});
  if (!advice.empty()) {
    throw HostError(kRefused, common.root + ": is not safe to work on from both sides: " + advice);
  }
  if (!arguments.twoMachines && IsOneMount(common.root, arguments.through)) {
    std::cerr << "kivadmin: both are one mount of this machine: that tells nothing of another "
                 "machine\n";
  }
}

void Check(const CommonOptions& common, const CheckArguments& arguments) {
  if (arguments.twoMachines || !arguments.through.empty()) {
    Try(common, arguments);
    return;
  }
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
  check
      .AddOption("--through", arguments.through,
                 "Try whether it is safe to work on through ROOT and through this other way to the "
                 "same\nstore at once: whether locks exclude, and what one does the other sees")
      .Takes("ROOT");
  check.AddFlag("--two-machines", arguments.twoMachines,
                "The same between two machines: run this on both, within a minute");
}

}  // namespace kivadmin
