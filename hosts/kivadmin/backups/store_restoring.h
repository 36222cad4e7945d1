// A whole backup becomes a store, where none is: in a data root that is missing or empty.
//
// It is unpacked in the folder `kivadmin-restoring` of the data root, each file read back, and then
// moved out of it, the classes folder last and in one rename: before that there is no store. What
// fails leaves the data root as it was; a program that is killed leaves that folder, which belongs
// to nobody.
#pragma once

#include <string>

#include "hosts/kivadmin/backups/backup_reader.h"

namespace kivadmin {

// Throws unless the folder is missing or empty.
void NeedEmptyRoot(const std::string& root);

// In a session that lays out the root. In a dry run all of the backup is read, and nothing written.
// `fileDone` is called after each file; what it throws ends it.
void RestoreStore(const Session& session, const BackupReader& backup,
                  const std::function<void()>& fileDone);

}  // namespace kivadmin
