#include "hosts/kivadmin/checking/group_rights.h"

#include "hosts/kivadmin/session/action_log.h"

namespace kivadmin {

StoreParts PartsOf(const Session& session) {
  std::string root = session.Show(session.DataRoot());
  if (root.size() > 1 && root.back() == '/') {
    root.pop_back();
  }
  return {root,
          {session.Show(session.TopFolder().GetFileName()), "Deleted", "kivstore.conf", kActionLog,
           kActionLogLock}};
}

}  // namespace kivadmin
