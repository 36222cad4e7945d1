#include "hosts/kivadmin/checking/store_repair.h"

#include <algorithm>
#include <iostream>
#include <iterator>

#include "hosts/common/interruption.h"
#include "hosts/common/progress_bar.h"
#include "hosts/kivadmin/checking/store_mending.h"
#include "hosts/kivadmin/rosters/layout_maker.h"

namespace kivadmin {
namespace {

bool IsIn(const std::vector<Finding>& all, const Finding& one) {
  return std::any_of(all.begin(), all.end(),
                     [&](const Finding& other) { return one.IsSame(other); });
}

// Throws if it is interrupted; what else keeps it from its end is told, and found again.
void Repair(const CommonOptions& common) {
  const kivhost::Interruption interruption;
  try {
    const Session session(common, Session::Access::kChange);
    kivhost::ProgressBar bar("classes", 2 * StoreCheck::CountClasses(session), false);
    const auto classDone = [&] {
      bar.Advance();
      interruption.NeedNone("a part of the store is repaired; the same command goes on from there");
    };
    LayoutMaker(session, false).CompleteStore(classDone);
    MendStore(session, classDone);
    session.Log("repaired the store");
  } catch (const HostError& error) {
    if (interruption.IsAsked()) {
      throw;
    }
    std::cerr << "kivadmin: " << error.what() << '\n';
  }
}

}  // namespace

std::vector<Finding> FindAll(const CommonOptions& common) {
  const Session session(common, Session::Access::kLook);
  kivhost::ProgressBar bar("classes", StoreCheck::CountClasses(session), false);
  return StoreCheck(session, [&bar] { bar.Advance(); }).Run();
}

std::vector<Finding> RepairAll(const CommonOptions& common, const std::vector<Finding>& before) {
  Repair(common);
  const std::vector<Finding> after = FindAll(common);
  std::vector<Finding> merged = before;
  for (Finding& finding : merged) {
    finding.repaired = !IsIn(after, finding);
  }
  std::copy_if(after.begin(), after.end(), std::back_inserter(merged),
               [&](const Finding& finding) { return !IsIn(before, finding); });
  return merged;
}

}  // namespace kivadmin
