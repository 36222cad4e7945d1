// `sync`: the store as a roster file says.
#include <cstdlib>

#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/commands/plan_arguments.h"
#include "hosts/kivadmin/commands/roster_arguments.h"
#include "hosts/kivadmin/plans/removal_guard.h"

namespace kivadmin {
namespace {

struct SyncArguments {
  std::string file;
  RosterFormat format;
  bool keepsTwins = false;
  PlanArguments plan;
  std::vector<std::string> renames;
  bool removesMissing = false;
  std::string allowed;
};

std::optional<size_t> NumberOf(const std::string& text) {
  if (text.empty()) {
    return std::nullopt;
  }
  char* end = nullptr;
  const unsigned long number = std::strtoul(text.c_str(), &end, 10);
  if (*end != '\0' || text[0] == '-') {
    throw HostError(kWrongUsage, "--allow-removals " + text + ": a number of students is wanted");
  }
  return number;
}

void Sync(const CommonOptions& common, const SyncArguments& arguments) {
  const RosterWish wish = {.keepsTwins = arguments.keepsTwins,
                           .moves = true,
                           .removesMissing = arguments.removesMissing,
                           .renames = arguments.renames,
                           .allowed = NumberOf(arguments.allowed)};
  RosterFile roster = ReadRosterFile(arguments.file, arguments.format);
  const Session session(common, Session::Access::kChange);
  FitToStore(roster, session.HasTeachers());
  School school(session);
  Plan plan = PlanRoster(session, school, roster, wish);
  RunPlan(session, school, plan,
          {.verb = "synced with",
           .name = roster.name,
           .readAs = roster.readAs,
           .isSafe = [&] { NeedModestRemovals(school, plan, wish, roster); }},
          arguments.plan);
}

}  // namespace

void AddSyncCommand(const Command& app, CommonOptions& common) {
  const Command sync = app.AddCommand(
      "sync",
      "Make the store as a roster file says: who is new is added, who is in another class by the\n"
      "file moves there with options and game. Who is not in the file stays, unless\n"
      "--remove-missing. Shows the plan first, and asks; without a terminal it needs --yes.");
  SyncArguments& arguments = AddRun(sync, common, Sync);
  AddPlanArguments(sync, common, arguments.plan);
  AddRosterArguments(sync, arguments.file, arguments.format);
  AddTwins(sync, arguments.keepsTwins);
  sync.AddOption("--rename-class", arguments.renames,
                 "Classes that have another name in the file, ahead of all else; TEACHER/OLD=NEW\n"
                 "where more than one teacher has such a class")
      .Takes("OLD=NEW ...");
  sync.AddFlag("--remove-missing", arguments.removesMissing,
               "Delete who is not in the file; kivadmin undelete brings them back");
  sync.AddOption(
          "--allow-removals", arguments.allowed,
          "Delete up to so many, also if that is more than a fifth of a class or a tenth of\n"
          "the store")
      .Takes("N");
}

}  // namespace kivadmin
