#include "hosts/kivadmin/commands/laying_out.h"

#include <filesystem>

#include "hosts/common/interruption.h"
#include "hosts/kivadmin/checking/group_rights.h"
#include "hosts/kivadmin/rosters/layout_maker.h"
#include "platform/platform.h"

namespace kivadmin {
namespace {

void NeedRoot(const CommonOptions& common) {
  const std::string root = kivhost::HeldRoot(common.root);
  std::error_code error;
  if (!std::filesystem::create_directories(root, error) && error) {
    throw HostError(kNoStore, root + ": " + error.message());
  }
}

void Complete(const Session& session) {
  const kivhost::Interruption interruption;
  LayoutMaker(session).CompleteStore([&] {
    interruption.NeedNone("a part of the store is complete; the same command goes on from there");
  });
}

std::string Did(const Session& session, bool wasThere, bool hasGroup) {
  return !wasThere                                                ? "laid out a"
         : session.HasChanged() || session.IsDryRun() || hasGroup ? "completed the"
                                                                  : "nothing to complete in the";
}

}  // namespace

void LayOut(const CommonOptions& common, const LayOutWish& wish) {
  // Ahead of making anything.
  const uint32_t group = wish.group ? NeedGroup(*wish.group) : 0;
  if (common.charset) {
    kivhost::NeedCharset(*common.charset);
  }
  if (!common.dryRun) {
    NeedRoot(common);
  }
  const Session session(common, Session::Access::kLayOut);
  const bool wasThere = session.TopFolder().IsExistingFolder();
  if (!session.IsDryRun()) {
    Complete(session);
    if (wish.group) {
      GiveToGroup(PartsOf(session), group, !kivstore::Platform().files->IsShared());
    }
  }
  const std::string done = Did(session, wasThere, wish.group.has_value()) + " store of kind " +
                           std::string(NameOf(session.Kind())) + " at " +
                           kivhost::HeldRoot(common.root) +
                           (wish.group ? " for the group \"" + *wish.group + '"' : "");
  if (wish.isQuiet) {
    session.Log(done);
    session.TellShortfall();
  } else {
    session.Say(done);
  }
}

}  // namespace kivadmin
