#include "hosts/kivadmin/checking/store_repair.h"

#include <algorithm>
#include <iostream>
#include <iterator>

#include "hosts/common/progress_bar.h"
#include "hosts/kivadmin/checking/store_mending.h"
#include "hosts/kivadmin/rosters/layout_maker.h"

namespace kivadmin {
namespace {

bool IsIn(const std::vector<Finding>& all, const Finding& one) {
  return std::any_of(all.begin(), all.end(),
                     [&](const Finding& other) { return one.IsSame(other); });
}

void Repair(const CommonOptions& common) {
  try {
    const Session session(common, Session::Access::kChange);
    LayoutMaker(session, false).CompleteStore();
    MendStore(session);
    session.Log("repaired the store");
  } catch (const HostError& error) {
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
