// `undelete` and `purge`: what was deleted comes back, or goes for good.
#include <cstdlib>
#include <iostream>

#include "hosts/common/interruption.h"
#include "hosts/common/unicode.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/commands/confirmation.h"
#include "hosts/kivadmin/rosters/deleted_entries.h"

namespace kivadmin {
namespace {

struct UndeleteArguments {
  std::string name;
};

struct PurgeArguments {
  std::string days = "0";
  bool yes = false;
};

// What a death has left is for purge alone.
std::vector<DeletedEntry> WholeOnes(const Session& session) {
  std::vector<DeletedEntry> all = ListDeleted(session);
  std::erase_if(all, [](const DeletedEntry& deleted) { return !deleted.CanComeBack(); });
  return all;
}

void PrintAll(const std::vector<DeletedEntry>& all) {
  if (all.empty()) {
    std::cout << "nothing was deleted\n";
  }
  for (size_t i = 0; i < all.size(); ++i) {
    std::cout << '#' << i + 1 << "  " << all[i].when << "  " << all[i].Text() << ", by "
              << all[i].by << '\n';
  }
}

const DeletedEntry& FindDeleted(const std::vector<DeletedEntry>& all, const std::string& name) {
  if (const auto place = PlaceOf(name)) {
    if (*place < 1 || static_cast<size_t>(*place) > all.size()) {
      throw HostError(kRefused,
                      "no " + name + ": kivadmin undelete lists " + std::to_string(all.size()));
    }
    return all[static_cast<size_t>(*place - 1)];
  }
  const DeletedEntry* found = nullptr;
  for (const DeletedEntry& deleted : all) {
    if (!kivhost::EqualLetters(deleted.name, name)) {
      continue;
    }
    if (found != nullptr) {
      throw HostError(kRefused, "more than one \"" + name + "\" was deleted: say which by #N");
    }
    found = &deleted;
  }
  if (found == nullptr) {
    throw HostError(kRefused, "no \"" + name + "\" was deleted");
  }
  return *found;
}

void Undelete(const CommonOptions& common, const UndeleteArguments& arguments) {
  const Session session(common, Session::Access::kChange);
  const std::vector<DeletedEntry> all = WholeOnes(session);
  if (arguments.name.empty()) {
    PrintAll(all);
    return;
  }
  const DeletedEntry& deleted = FindDeleted(all, arguments.name);
  PutBack(session, deleted);
  session.Say("put back " + deleted.Text());
}

long NumberOfDays(const std::string& text) {
  char* end = nullptr;
  const long days = std::strtol(text.c_str(), &end, 10);
  constexpr long kMostDays = 36500;
  if (text.empty() || *end != '\0' || days < 0 || days > kMostDays) {
    throw HostError(kWrongUsage, "--older-than " + text + ": is no number of days");
  }
  return days;
}

void PurgeOld(const CommonOptions& common, const PurgeArguments& arguments) {
  const long days = NumberOfDays(arguments.days);
  const Session session(common, Session::Access::kChange);
  std::vector<DeletedEntry> all = ListDeleted(session);
  if (days > 0) {
    std::erase_if(all,
                  [&](const DeletedEntry& deleted) { return deleted.when > WhenDeleted(days); });
  }
  if (!all.empty() && !session.IsDryRun()) {
    Confirm("remove for good what was deleted, " + std::to_string(all.size()) + " in all",
            arguments.yes);
  }
  if (all.empty()) {
    session.Say("nothing to purge");
  }
  const kivhost::Interruption interruption;
  for (size_t i = 0; i < all.size(); ++i) {
    interruption.NeedNone(std::to_string(i) + " of " + std::to_string(all.size()) +
                          " purged; the same command goes on from there");
    Purge(session, all[i]);
    session.Say(all[i].CanComeBack() ? "purged " + all[i].Text()
                                     : "purged what was left of a delete or a purge");
  }
}

}  // namespace

void AddDeletedCommands(const Command& app, CommonOptions& common) {
  const Command undelete = app.AddCommand(
      "undelete",
      "List what was deleted, the newest first, or put one of it back into its list, under a new\n"
      "folder name if its own is taken.");
  UndeleteArguments& ofUndelete = AddRun(undelete, common, Undelete);
  AddChangeArguments(undelete, common);
  undelete.AddOption("NAME", ofUndelete.name, "The name, or #N for its place in what is listed");

  const Command purge = app.AddCommand(
      "purge", "Remove for good what was deleted; asks first, without a terminal needs --yes");
  PurgeArguments& ofPurge = AddRun(purge, common, PurgeOld);
  AddChangeArguments(purge, common);
  purge.AddOption("--older-than", ofPurge.days, "Only what was deleted so many days ago or more")
      .Takes("DAYS");
  purge.AddFlag("-y,--yes", ofPurge.yes, "Do not ask");
}

}  // namespace kivadmin
