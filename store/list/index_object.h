// The two halves of one index in memory. A half that is not wanted is not there.
#pragma once

#include <optional>

#include "store/list/entries.h"

namespace kivstore {

class SIndexObj {
 public:
  SIndexObj() = default;
  virtual ~SIndexObj() = default;
  SIndexObj(const SIndexObj&) = delete;
  SIndexObj& operator=(const SIndexObj&) = delete;

  // Make the half, or empty it.
  void NeedLogins() { logins.emplace(); }
  void NeedFiles() { files.emplace(); }
  // The entry at a place from 0; null if the half is not there.
  SLoginNameObj* LoginAt(int32_t i) { return logins ? logins->At(i) : nullptr; }
  SOurFileObj* FileAt(int32_t i) { return files ? files->At(i) : nullptr; }
  // The half's entries take the place of the list's; the half is empty then.
  void MoveLoginsTo(SLoginList& list);
  void MoveFilesTo(SFileList& list);
  // By extension, letter case ignored. To Move an empty one means all; the other files go.
  int32_t CountFilesOf(const SString& extension) const;
  void MoveFilesOf(SFileList& list, const SString& extension);
  void RemoveFilesOf(const SString& extension);  // nothing for an empty one

  std::optional<SLoginList> logins;
  std::optional<SFileList> files;
  bool readLogins = true;  // ReadIndex fills `logins` if that half is there
  bool readFiles = true;
  // ReadIndex met a file that it could not open or not read to the end of what was asked for, so
  // that writing this index would drop what the file holds: WriteIndex leaves the file alone.
  bool incomplete = false;
  // ReadIndex met bytes that no writer left on purpose: a writer has died between two calls. Its
  // names are not to be trusted, and WriteIndex leaves it so until a listing has asked the folders.
  bool torn = false;
};

}  // namespace kivstore
