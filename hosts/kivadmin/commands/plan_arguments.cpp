#include "hosts/kivadmin/commands/plan_arguments.h"

#include <algorithm>
#include <iostream>
#include <map>

#include "hosts/common/counted.h"
#include "hosts/kivadmin/commands/confirmation.h"
#include "hosts/kivadmin/plans/plan_deed.h"
#include "hosts/kivadmin/plans/plan_text.h"

namespace kivadmin {
namespace {

std::string Place(const PlanSource& source, const std::string& file, size_t line) {
  return "kivadmin: " + source.name + (file.empty() ? "" : '/' + file) +
         (line > 0 ? ':' + std::to_string(line) : "") + ": ";
}

// Of many lines with one reason the first are told, and how many more there are.
void TellRefused(const Plan& plan, const PlanSource& source) {
  constexpr size_t kMostOfOne = 20;
  std::map<std::string, size_t> told;
  for (const PlanRefusal& one : plan.refused) {
    if (++told[one.why] <= kMostOfOne) {
      std::cerr << Place(source, one.file, one.line) << one.why
                << (one.lines > 1 ? " (" + kivhost::Grouped(one.lines) + " lines)" : "") << '\n';
    }
  }
  for (const auto& [why, count] : told) {
    if (count > kMostOfOne) {
      std::cerr << Place(source, "", 0) << kivhost::Grouped(count - kMostOfOne)
                << " more lines: " << why << '\n';
    }
  }
}

// What failed for one reason is told once.
void TellFailed(const Plan& plan, const PlanSource& source) {
  const std::string* last = nullptr;
  for (const PlanStep& step : plan.steps) {
    if (step.outcome != PlanStep::kFailed) {
      continue;
    }
    if (last == nullptr || *last != step.why) {
      std::cerr << Place(source, step.file, step.line) << '"' << step.who << "\": " << step.why
                << '\n';
    }
    last = &step.why;
  }
}

size_t CountWaiting(const Plan& plan) {
  return static_cast<size_t>(
      std::count_if(plan.steps.begin(), plan.steps.end(),
                    [](const PlanStep& step) { return step.outcome == PlanStep::kWaiting; }));
}

bool TakesAwayOrMoves(const Plan& plan) {
  for (const PlanStep& step : plan.steps) {
    if (step.kind != PlanStep::kAddTeacher && step.kind != PlanStep::kAddClass &&
        step.kind != PlanStep::kAddStudent) {
      return true;
    }
  }
  return false;
}

void ShowPlan(const Session& session, const Plan& plan, const PlanSource& source, bool isColored) {
  if (!source.readAs.empty()) {
    std::cout << "read as: " << source.readAs << '\n';
  }
  for (const std::string& note : plan.notes) {
    std::cout << "note: " << note << '\n';
  }
  PrintPlan(std::cout, plan, session.IsDryRun(), isColored);
  std::cout << std::flush;
}

// Throws if the plan is not to be carried out. A script then has it as nothing but a plan.
void NeedLeave(const Session& session, const Plan& plan, const PlanSource& source,
               const PlanArguments& arguments) {
  try {
    source.isSafe();
    if (!session.IsDryRun() && TakesAwayOrMoves(plan)) {
      Confirm(ToDo(plan), arguments.yes);
    }
  } catch (const HostError&) {
    if (arguments.isJson) {
      std::cout << PlanJson(plan, source.readAs, session.IsDryRun()) << std::flush;
    }
    throw;
  }
}

// Throws if not all of it is done.
void NeedAll(const Plan& plan) {
  if (const size_t waiting = CountWaiting(plan); waiting > 0) {
    throw HostError(kRefused, "stopped; " + kivhost::Grouped(waiting) + " of " +
                                  kivhost::Counted(plan.steps.size(), "step") +
                                  " are not done; the same command goes on from there");
  }
  const size_t left = plan.NotTaken() + plan.CountFailed();
  if (left > 0) {
    throw HostError(kRefused, kivhost::Grouped(left) + " of " +
                                  kivhost::Counted(std::max(left, plan.lines), "line") +
                                  (left == 1 ? " was" : " were") + " not taken");
  }
}

}  // namespace

void AddPlanArguments(const Command& command, CommonOptions& common, PlanArguments& arguments) {
  AddChangeArguments(command, common);
  AddFormat(command, arguments.isJson, "table");
  kivhost::AddColorOption(command, arguments.color);
  command.AddFlag("-y,--yes", arguments.yes, "Do not ask");
}

void NeedName(const std::string& name) {
  if (name.empty()) {
    throw HostError(kWrongUsage, "NAME is wanted, or --from-file");
  }
}

void NeedClass(const std::string& group) {
  if (group.empty()) {
    throw HostError(kWrongUsage, "--class is wanted, or --from-file");
  }
}

void RunPlan(const Session& session, School& school, Plan& plan, const PlanSource& source,
             const PlanArguments& arguments) {
  if (!arguments.isJson) {
    ShowPlan(session, plan, source, kivhost::HasColor(arguments.color));
  }
  TellRefused(plan, source);
  NeedLeave(session, plan, source, arguments);
  CarryOut(session, school, plan);
  TellFailed(plan, source);
  const std::string done = source.verb + ' ' + source.name + ": " + DoneText(plan);
  if (arguments.isJson) {
    std::cout << PlanJson(plan, source.readAs, session.IsDryRun());
    session.Log(done);
    session.TellShortfall();
  } else {
    session.Say(done);
  }
  NeedAll(plan);
}

}  // namespace kivadmin
