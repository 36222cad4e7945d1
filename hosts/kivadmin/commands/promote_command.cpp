// `promote`: the change of year.
#include "hosts/common/whole_file.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/commands/plan_arguments.h"
#include "hosts/kivadmin/plans/class_plan.h"
#include "hosts/kivadmin/roster_files/named_columns.h"

namespace kivadmin {
namespace {

struct PromoteArguments {
  PlanArguments plan;
  std::string map;
};

std::vector<Promotion> ReadPromotions(const std::string& path, bool hasTeachers) {
  std::vector<Promotion> promotions;
  for (const NamedRow& row : ReadNamedColumns(path, {{"from_teacher", hasTeachers},
                                                     {"from_class", true},
                                                     {"to_teacher", hasTeachers},
                                                     {"to_class", true}})) {
    promotions.push_back({row.number, row.fields[0], row.fields[1], row.fields[2], row.fields[3]});
  }
  return promotions;
}

void Promote(const CommonOptions& common, const PromoteArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  const std::vector<Promotion> promotions = ReadPromotions(arguments.map, session.HasTeachers());
  School school(session);
  Plan plan = PlanPromotions(session, school, promotions);
  RunPlan(session, school, plan,
          {.verb = "promoted by",
           .name = kivhost::NameOfFile(arguments.map),
           .isSafe =
               [&] {
                 if (!plan.refused.empty()) {
                   throw HostError(kRefused,
                                   "nothing done: a class that cannot go may be in the way "
                                   "of another");
                 }
               }},
          arguments.plan);
}

}  // namespace

void AddPromoteCommand(const Command& app, CommonOptions& common) {
  const Command promote = app.AddCommand(
      "promote",
      "The change of year: whole classes go to a new name, a new teacher, or both, with options\n"
      "and games. The map is a CSV file with the header\n"
      "from_teacher,from_class,to_teacher,to_class; an empty to_class leaves school, which\n"
      "kivadmin undelete brings back. Into a class that is there and stays the students move.\n"
      "With a line that cannot be taken nothing is done. Shows the plan first, and asks; without\n"
      "a terminal it needs --yes.");
  PromoteArguments& arguments = AddRun(promote, common, Promote);
  AddPlanArguments(promote, common, arguments.plan);
  promote.AddOption("--map", arguments.map, "The file, or - for standard input")
      .Takes("FILE")
      .Require();
}

}  // namespace kivadmin
