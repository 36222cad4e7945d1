// `init`: lays out a store, or completes one that is there.
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/commands/laying_out.h"

namespace kivadmin {
namespace {

struct NoArguments {};

void Init(const CommonOptions& common, const NoArguments&) {
  LayOut(common);
}

}  // namespace

void AddInitCommand(const Command& app, CommonOptions& common) {
  const Command init = app.AddCommand(
      "init",
      "Lay out a store: classes folder, indexes, options, and the lock files of a networked "
      "store.\n"
      "A store that is there is completed. Without --kind a new store is one with teachers.");
  AddRun(init, common, Init);
  AddChangeArguments(init, common, true);
}

}  // namespace kivadmin
