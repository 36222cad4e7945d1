// `init`: lays out a store, or completes one that is there.
#include <filesystem>

#include "hosts/common/interruption.h"
#include "hosts/kivadmin/commands/command_line.h"
#include "hosts/kivadmin/commands/commands.h"
#include "hosts/kivadmin/rosters/layout_maker.h"

namespace kivadmin {
namespace {

struct NoArguments {};

void Init(const CommonOptions& common, const NoArguments&) {
  if (common.charset) {
    kivhost::NeedCharset(*common.charset);  // ahead of making anything
  }
  const std::string root = kivhost::HeldRoot(common.root);
  std::error_code error;
  if (!common.dryRun && !std::filesystem::create_directories(root, error) && error) {
    throw HostError(kNoStore, root + ": " + error.message());
  }
  const Session session(common, Session::Access::kLayOut);
  const bool wasThere = session.TopFolder().IsExistingFolder();
  if (!session.IsDryRun()) {
    const kivhost::Interruption interruption;
    LayoutMaker(session).CompleteStore([&] {
      interruption.NeedNone("a part of the store is complete; the same command goes on from there");
    });
  }
  session.Say((wasThere ? "completed the store of kind " : "laid out a store of kind ") +
              std::string(NameOf(session.Kind())) + " at " + root);
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
