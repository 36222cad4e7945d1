#include "hosts/kivadmin/checking/store_trial.h"

#include <algorithm>
#include <ctime>
#include <string_view>

#include "hosts/common/console.h"
#include "hosts/common/store_opening.h"
#include "hosts/kivadmin/checking/mount_facts.h"
#include "hosts/kivadmin/checking/trial_post.h"

namespace kivadmin {
namespace {

using namespace kivstore;

constexpr const char* kTrialFolder = "kivadmin-trial";

SFileSpec TrialFolderIn(SFileSpec root) {
  root.Down(kTrialFolder);
  return root;
}

SFileSpec TrialFolderOf(const Session& session) {
  SFileSpec root = session.TopFolder();
  root.Up();
  return TrialFolderIn(root);
}

// The folder of a trial, as long as it lasts.
class TrialFolder {
 public:
  // The other machine may have made it since the look that `place` remembers.
  explicit TrialFolder(const SFileSpec& place) : spec(place), isOurs(spec.CreateFolder(0)) {
    spec.Refresh();
  }
  ~TrialFolder() {
    if (isOurs) {
      spec.Delete(true);
    }
  }
  TrialFolder(const TrialFolder&) = delete;
  TrialFolder& operator=(const TrialFolder&) = delete;

  bool IsOurs() const { return isOurs; }
  const SFileSpec& Get() const { return spec; }

 private:
  SFileSpec spec;
  bool isOurs;
};

TrialSide SideOf(LocalSide& side) {
  return [&side](const std::string& request) { return side.Answer(request); };
}

void NeedLayout(const Session& session, LocalSide& side, const SFileSpec& folder) {
  session.Need("lay out the trial", folder, [&] { return side.Answer("lay out") == "yes"; });
}

// A copy of the store may hold the rest of a trial too.
bool IsOnePlace(LocalSide& a, LocalSide& b) {
  const std::string mark = "mark" + std::to_string(std::time(nullptr));
  a.Answer("make " + mark);
  const bool isOne = b.Answer("list") == mark + ' ';
  a.Answer("remove " + mark);
  return isOne;
}

}  // namespace

std::vector<TrialResult> TryThrough(const Session& session, const std::string& other) {
  const SFileSpec place = TrialFolderOf(session);
  if (place.Exists()) {
    throw HostError(
        kRefused,
        session.Show(place) + ": another trial is at work there; if none is, remove the folder");
  }
  const TrialFolder folder(place);
  LocalSide a(folder.Get());
  NeedLayout(session, a, place);
  LocalSide b(
      TrialFolderIn(SFileSpec(SString(kivhost::ToLibraryPath(kivhost::HeldRoot(other)).c_str()))));
  if (!IsOnePlace(a, b)) {
    throw HostError(kRefused, other + ": does not lead to the store at " + session.Show(place) +
                                  "; give two ways to one data root");
  }
  constexpr int kRounds = 20;
  return TrySides(SideOf(a), SideOf(b), kRounds);
}

std::vector<TrialResult> TryWithOtherMachine(const Session& session) {
  const TrialFolder folder(TrialFolderOf(session));
  TrialPost post(session, folder.Get());
  if (!folder.IsOurs()) {
    post.Serve();
    return {};
  }
  SFileSpec inner = post.SidesFolder();
  session.Need("lay out the trial", inner, [&] { return inner.CreateFolder(0); });
  LocalSide side(inner);
  NeedLayout(session, side, inner);
  const TrialSide partner = [&post](const std::string& request) { return post.Ask(request); };
  // Each word takes a moment on its way.
  constexpr int kRounds = 4;
  const std::vector<TrialResult> results = TrySides(SideOf(side), partner, kRounds);
  partner("end");
  return results;
}

std::string AdviceFor(const std::vector<TrialResult>& results,
                      const std::vector<std::string>& roots) {
  const auto isBad = [](const TrialResult& result) { return !result.IsGood(); };
  const auto bad = std::find_if(results.begin(), results.end(), isBad);
  if (bad == results.end()) {
    return {};
  }
  const bool isOfLocks = bad->kind == std::string_view("locks");
  std::string known;
  for (const std::string& root : roots) {
    const auto mount = MountOf(root);
    if (mount && known.empty()) {
      known = isOfLocks ? LocksNotShared(*mount) : HowToReadFresh(*mount);
    }
  }
  if (isOfLocks) {
    return "locks are not shared, so that students will be lost; " +
           (known.empty() ? "use a file system that shares them: NFS, SMB or GlusterFS" : known);
  }
  return "what one side does the other sees too late; " +
         (known.empty() ? "mount it without caches" : known);
}

}  // namespace kivadmin
