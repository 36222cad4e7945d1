// One student of a backup comes back into the class of that name, with options and games.
//
// Names are those of the backup; a place, #N, is one in its lists, which stand in the order of
// their folders' names, as the store lists them. The folder is unpacked among what was deleted,
// read back, and put into the class in one rename, under its list's lock.
#pragma once

#include <string>

#include "hosts/kivadmin/backups/backup_reader.h"

namespace kivadmin {

struct WantedStudent {
  std::string teacher;  // may be left out if the backup has only one
  std::string group;    // the class
  std::string student;
  bool mayReplace = false;  // somebody of that name is set aside first, for undelete
};

// The answer is the line of what was done; in a dry run, in which all of it is read, what would be.
// What fails leaves the store as it was.
std::string RestoreStudent(const Session& session, const BackupReader& backup,
                           const WantedStudent& wanted);

}  // namespace kivadmin
