#include "hosts/kivadmin/commands/laying_out.h"

#include <filesystem>

#include "hosts/common/interruption.h"
#include "hosts/kivadmin/rosters/layout_maker.h"

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

}  // namespace

void LayOut(const CommonOptions& common, bool isQuiet) {
  if (common.charset) {
    kivhost::NeedCharset(*common.charset);  // ahead of making anything
  }
  if (!common.dryRun) {
    NeedRoot(common);
  }
  const Session session(common, Session::Access::kLayOut);
  const bool wasThere = session.TopFolder().IsExistingFolder();
  if (!session.IsDryRun()) {
    Complete(session);
  }
  const std::string did = !wasThere ? "laid out a"
                          : session.HasChanged() || session.IsDryRun()
                              ? "completed the"
                              : "nothing to complete in the";
  const std::string done = did + " store of kind " + std::string(NameOf(session.Kind())) + " at " +
                           kivhost::HeldRoot(common.root);
  if (isQuiet) {
    session.Log(done);
    session.TellShortfall();
  } else {
    session.Say(done);
  }
}

}  // namespace kivadmin
