#include <algorithm>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>

#include "hosts/common/progress_bar.h"
#include "hosts/kivadmin/checking/store_check.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/layout_maker.h"

namespace kivadmin {
namespace {

enum class Format { kText, kJson };

struct CheckArguments {
  bool repair = false;
  Format format = Format::kText;
};

std::vector<Finding> FindAll(const CommonOptions& common) {
  const Session session(common, Session::Access::kLook);
  kivhost::ProgressBar bar("classes", StoreCheck::CountClasses(session), false);
  return StoreCheck(session, [&bar] { bar.Advance(); }).Run();
}

// What stops the repair is among what the next look finds, too.
void Repair(const CommonOptions& common) {
  try {
    const Session session(common, Session::Access::kChange);
    LayoutMaker(session, false).CompleteStore();
  } catch (const AdminError& error) {
    std::cerr << "kivadmin: " << error.message << '\n';
  }
}

// Those of the first look, marked if the second has them no more, and what only the second found:
// behind a disorder there may be another.
std::vector<Finding> Merge(std::vector<Finding> before, std::vector<Finding> after) {
  const auto isIn = [](const std::vector<Finding>& all, const Finding& one) {
    return std::any_of(all.begin(), all.end(),
                       [&one](const Finding& other) { return one.IsSame(other); });
  };
  std::vector<Finding> merged = before;
  for (Finding& finding : merged) {
    finding.repaired = !isIn(after, finding);
  }
  std::copy_if(after.begin(), after.end(), std::back_inserter(merged),
               [&](const Finding& finding) { return !isIn(before, finding); });
  return merged;
}

void WriteText(const std::vector<Finding>& findings, size_t left) {
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

void WriteJson(const std::vector<Finding>& findings, size_t left) {
  nlohmann::ordered_json problems = nlohmann::ordered_json::array();
  for (const Finding& finding : findings) {
    problems.push_back({{"kind", finding.kind},
                        {"path", finding.path},
                        {"what", finding.what},
                        {"repaired", finding.repaired}});
  }
  const nlohmann::ordered_json report = {{"clean", left == 0}, {"problems", problems}};
  constexpr auto kReplace = nlohmann::ordered_json::error_handler_t::replace;
  std::cout << report.dump(2, ' ', false, kReplace) << '\n';
}

void Check(const CommonOptions& common, const CheckArguments& arguments) {
  std::vector<Finding> findings = FindAll(common);
  if (arguments.repair && !common.dryRun && !findings.empty()) {
    Repair(common);
    findings = Merge(std::move(findings), FindAll(common));
  }
  const auto left = static_cast<size_t>(std::count_if(
      findings.begin(), findings.end(), [](const Finding& f) { return !f.repaired; }));
  (arguments.format == Format::kJson ? WriteJson : WriteText)(findings, left);
  if (left > 0) {
    throw AdminError{kRefused, common.root + ": the store is not in order"};
  }
}

}  // namespace

void AddCheckCommand(CLI::App& app, CommonOptions& common) {
  CLI::App* const check = app.add_subcommand(
      "check",
      "Walk the whole store and say what is not in order: indexes that differ from their folders,\n"
      "folders nobody can name, missing lock files, options and game files that cannot be read,\n"
      "names that collide. Exit code 0 if all is in order or has been repaired, else 1.");
  const auto arguments = std::make_shared<CheckArguments>();
  AddChangeArguments(*check, common);
  check->add_flag("--repair", arguments->repair,
                  "Repair the lists as any listing does, and make missing lock files");
  check->add_option("--format", arguments->format, "The form of the report")
      ->transform(CLI::CheckedTransformer(std::map<std::string, Format>{{"text", Format::kText},
                                                                        {"json", Format::kJson}},
                                          CLI::ignore_case)
                      .description(""))
      ->type_name("text|json")
      ->default_str("text");
  check->callback([&common, arguments] { Check(common, *arguments); });
}

}  // namespace kivadmin
