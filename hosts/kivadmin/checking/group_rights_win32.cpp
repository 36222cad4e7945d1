#include "hosts/kivadmin/checking/group_rights.h"

namespace kivadmin {

uint32_t NeedGroup(const std::string& name) {
  throw HostError(kWrongUsage,
                  "--group " + name +
                      ": Windows has no such groups; give rights to the store's folder "
                      "in its properties");
}

void GiveToGroup(const StoreParts&, uint32_t, bool) {}

std::vector<RightsTrouble> FindRightsTroubles(const StoreParts&) {
  return {};
}

}  // namespace kivadmin
