// Who is in the lists of a backup.
#pragma once

#include <string>
#include <vector>

#include "hosts/kivadmin/backups/backup_reader.h"
#include "store/place/login_name.h"

namespace kivadmin {

struct BackupEntry {
  std::string folder;  // its way in the backup, with a slash behind
  kivstore::SLoginNameObj entry;
};

// The entries whose folders stand in `list`, in the order of these, by their longname.kiv or else
// by the index; a folder that neither names is nobody's.
std::vector<BackupEntry> EntriesOf(const BackupReader& backup, const std::string& list);

// The one that a NAME of the command line means. `level` is for the error.
BackupEntry FindEntry(const BackupReader& backup, const std::string& list, const std::string& name,
                      const std::string& level);

}  // namespace kivadmin
