// Copies a store into a zip file while others work in it.
//
// A list is copied under its lock, with all that its entries have of their own: an index and its
// folders are of one moment. A student's folder is copied under the student's lock too, if that is
// free. It is not waited for: a student at work holds it for a lesson, and who holds the list
// meanwhile would keep everybody out. No file is torn all the same: whoever writes one has it open
// alone, and is waited for as for a lock.
//
// The lists are copied one after the other. Whoever comes into one that was copied already is
// looked for at the end, so that a student who is moved meanwhile may stand in a backup twice, and
// is never missing.
//
// What cannot be read ends it, or with `goesOn` is told and left out. What is gone when its turn
// comes is nothing to tell.
#pragma once

#include <ctime>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "hosts/common/zip_file.h"
#include "hosts/kivadmin/backups/backup_manifest.h"
#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

class BackupWriter {
 public:
  // `classDone` is called after each class; what it throws ends it.
  BackupWriter(const Session& session, kivhost::ZipWriter& zip, bool goesOn,
               std::function<void()> classDone);

  // All of it, with the manifest behind; what the manifest says.
  BackupManifest Run();
  size_t CountAtWork() const { return atWork; }

 private:
  // What a folder has in it, by name. Hidden folders are no part of a store.
  struct Contents {
    std::vector<kivstore::SFileSpec> files, folders;
  };

  void CopyLists();
  void CopyList(const kivstore::SFileSpec& list, kivstore::ListKind kind);
  std::vector<kivstore::SFileSpec> CopyUnderLock(const kivstore::SFileSpec& list,
                                                 kivstore::ListKind kind);
  bool Lock(kivstore::SLockFile& lock, const kivstore::SFileSpec& list, kivstore::ListKind kind);
  void CopyEntry(const kivstore::SFileSpec& folder, kivstore::ListKind kind);
  void CopyStudent(const kivstore::SFileSpec& folder);
  void CopyTree(const kivstore::SFileSpec& folder, int depth);
  void CopyFiles(const std::vector<kivstore::SFileSpec>& files);
  void CopyFile(const kivstore::SFileSpec& file);
  void CopyAtRoot(const char* name);

  Contents Look(const kivstore::SFileSpec& folder);
  void Add(const kivstore::SFileSpec& what, const std::string& bytes);
  bool IsCopied(const kivstore::SFileSpec& what);
  std::string NameInZip(const kivstore::SFileSpec& what) const;
  uint64_t& CountOf(kivstore::ListKind kind);
  void CountEntries(const kivstore::SFileSpec& list, kivstore::ListKind kind);
  void MissLast(const kivstore::SFileSpec& what);
  void Miss(const kivstore::SFileSpec& what, const HostError& why);

  const Session& session;
  kivhost::ZipWriter& zip;
  bool goesOn;
  std::function<void()> classDone;
  size_t rootLength;  // of its path
  std::time_t now;
  bool isSecondLook = false;
  size_t atWork = 0;                          // students whose lock was held
  std::map<std::string, std::string> copied;  // names by their form without letter case
  BackupManifest manifest;
};

}  // namespace kivadmin
