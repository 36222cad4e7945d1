// `import`: the rosters of a file.
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/commands/laying_out.h"
#include "hosts/kivadmin/commands/plan_arguments.h"
#include "hosts/kivadmin/commands/roster_arguments.h"
#include "hosts/kivadmin/plans/roster_plan.h"

namespace kivadmin {
namespace {

struct ImportArguments {
  std::string file;
  RosterFormat format;
  bool keepsTwins = false;
  bool laysOut = false;
  PlanArguments plan;
};

void Import(const CommonOptions& common, const ImportArguments& arguments) {
  RosterFile roster = ReadRosterFile(arguments.file, arguments.format);
  if (arguments.laysOut) {
    LayOut(common, {.group = {}, .isQuiet = arguments.plan.isJson});
  }
  const Session session(common,
                        arguments.laysOut ? Session::Access::kLayOut : Session::Access::kChange);
  FitToStore(roster, session.HasTeachers());
  School school(session);
  Plan plan = PlanRoster(session, school, roster, {.keepsTwins = arguments.keepsTwins});
  RunPlan(session, school, plan, {.verb = "imported", .name = roster.name, .readAs = roster.readAs},
          arguments.plan);
}

}  // namespace

void AddImportCommand(const Command& app, CommonOptions& common) {
  const Command import = app.AddCommand(
      "import",
      "Add the teachers, classes and students of a roster: a table whose heading tells teacher,\n"
      "class, first name and last name in one of nine languages, or a OneRoster bundle. A row\n"
      "without a student adds the class, one without a class the teacher. What is there already\n"
      "stays as it is; a row that cannot be taken is told with its line, and the rest is taken.");
  ImportArguments& arguments = AddRun(import, common, Import);
  AddPlanArguments(import, common, arguments.plan);
  AddRosterArguments(import, arguments.file, arguments.format);
  AddTwins(import, arguments.keepsTwins);
  import.AddFlag("--init", arguments.laysOut, "Lay the store out first, as init does");
}

}  // namespace kivadmin
