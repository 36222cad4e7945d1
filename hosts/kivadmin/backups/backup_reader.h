// A backup that was opened: its manifest, and the files and folders of the store in it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/common/charset.h"
#include "hosts/common/zip_file.h"
#include "hosts/kivadmin/backups/backup_manifest.h"
#include "hosts/kivadmin/session/session.h"

namespace kivadmin {

class BackupReader {
 public:
  // Throws HostError for a file that is no backup, or that does not hold what it was made with.
  explicit BackupReader(const std::string& path);
  // Throws if it has what no store has. What a store's folders are called is known once one is
  // open.
  void NeedNamesOfStore() const;

  const std::string& GetPath() const { return path; }
  const BackupManifest& GetManifest() const { return manifest; }
  // The whole of a file; throws if it is torn.
  std::string Read(const kivhost::ZipEntry& file) const;
  // Null if it is not in the backup.
  const kivhost::ZipEntry* Find(const std::string& name) const { return zip.Find(name); }
  // All that stands below `folder`, which ends with a slash; empty for the whole data root. Without
  // the manifest.
  std::vector<const kivhost::ZipEntry*> Below(const std::string& folder) const;
  // A name, or a way of names, in the bytes of the store.
  kivstore::SString InStore(std::string_view name) const;
  std::string Show(const kivstore::SString& text) const { return charset->ToUtf8(text.View()); }

 private:
  void CheckNames() const;
  void CheckList() const;

  std::string path;
  kivhost::ZipReader zip;
  BackupManifest manifest;
  std::unique_ptr<kivhost::Charset> charset;
};

// Writes all that the backup has below `folder` into the folder `target`, which is made and must
// not be there, and reads each file back. What fails is thrown and leaves what was written.
// `fileDone` is called after each file.
void Unpack(const Session& session, const BackupReader& backup, const std::string& folder,
            const kivstore::SFileSpec& target, const std::function<void()>& fileDone);

}  // namespace kivadmin
