// What the commands that go by a plan have in common: showing it, asking, carrying it out, and
// telling what came of it.
#pragma once

#include <string>

#include "hosts/common/color.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/plans/plan.h"

namespace kivadmin {

struct PlanArguments {
  bool isJson = false;
  bool yes = false;
  kivhost::ColorWish color = kivhost::ColorWish::kAuto;
};

// --format, --color, --yes and what every change takes.
void AddPlanArguments(const Command& command, CommonOptions& common, PlanArguments& arguments);

// For commands that take a file in place of a name: throw wrong usage where neither is told.
void NeedName(const std::string& name);
void NeedClass(const std::string& group);

// What a plan was made from.
struct PlanSource {
  std::string verb;         // "imported", for the line of what was done
  std::string name;         // the file, for messages
  std::string readAs = {};  // how it was understood; empty if nothing is to be said of it
  // Throws what keeps a plan from being done that has been shown.
  std::function<void()> isSafe = [] {};
};

// Shows the plan; asks where it takes away or moves; carries it out unless this is a dry run, and
// tells what came of it. Throws if not all of it could be done.
void RunPlan(const Session& session, School& school, Plan& plan, const PlanSource& source,
             const PlanArguments& arguments);

}  // namespace kivadmin
