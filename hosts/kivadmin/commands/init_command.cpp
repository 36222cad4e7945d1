// `init`: lays out a store, or completes one that is there.
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/commands/laying_out.h"

namespace kivadmin {
namespace {

void Init(const CommonOptions& common, const LayOutWish& wish) {
  LayOut(common, wish);
}

}  // namespace

void AddInitCommand(const Command& app, CommonOptions& common) {
  const Command init = app.AddCommand(
      "init",
      "Lay out a store: classes folder, indexes, options, and the lock files of a networked "
      "store.\n"
      "A store that is there is completed. Without --kind a new store is one with teachers.");
  LayOutWish& wish = AddRun(init, common, Init);
  AddChangeArguments(init, common, true);
  init.AddOption("--group", wish.group,
                 "Give the store to the members of this group: folders set-group, everything open "
                 "to the group\nand to nobody else. Not on Windows")
      .Takes("NAME");
}

}  // namespace kivadmin
