// A path that knows what stands there, and the steps from it.
//
// valid: the path is usable: it exists, or its folder does. exists, isFolder: what stands there.
// The flags are a snapshot of the last Set, Refresh or step down; nothing watches the disk. A
// folder's path ends in a backslash, a file's never; fileName is the last component, without a
// backslash.
//
// A path may come in with slashes, doubled separators, "." and ".."; it is held with backslashes
// and without the others (path_steps.h), and looked at as it is held: the flags always speak of the
// held path. One whose folder is missing cannot be held: it leaves the spec invalid. A link that is
// not followed (platform/file_services.h) is there and no folder, and the failure is noted.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "foundation/files/file_failure.h"
#include "foundation/files/file_type.h"
#include "foundation/text/string.h"
#include "platform/file_services.h"

namespace kivstore {

class SFileSpec {
 public:
  SFileSpec() = default;
  explicit SFileSpec(const SString& path) { Set(path); }

  bool IsValid() const { return valid; }
  bool Exists() const { return exists; }
  bool IsFolder() const { return isFolder; }
  bool IsExistingFolder() const { return valid && exists && isFolder; }
  bool IsExistingFile() const { return valid && exists && !isFolder; }
  // Empty on an invalid spec.
  const SString& GetPath() const { return path; }
  const SString& GetFileName() const { return fileName; }
  // The path itself, empty on an invalid spec; holds until the spec changes.
  const char* GetPathText() const { return path.GetText(); }
  // Same object, not same path.
  bool IsSame(const SFileSpec& other) const { return this == &other; }
  // All five fields.
  bool IsEqual(const SFileSpec& other) const;

  // Each is one look at the disk. The answer of Set and Refresh is whether something exists.
  bool Set(const SString& newPath);
  bool Refresh();
  void Reset();

  // One step down; the answer is whether the spec is valid then. On a spec that is not valid and
  // existing: false. On a file: Reset, false. A null name: true.
  bool Down(const char* name);
  bool Down(const SString& name) { return Down(name.GetText()); }
  // The step to the containing folder, which is taken to exist: no look at the disk.
  bool Up();

  // Several steps at once, with one look at the disk where the whole way is there. Only if it is
  // not do the single steps follow; the spec ends where they would leave it, and the answer is that
  // of the last step taken. The way must start on an existing folder, like Down.
  bool DownThrough(std::initializer_list<const SString*> names);
  // Down to a file that is about to be opened, taken to exist like the folder of Up: the opening is
  // the look at the disk. Only from an existing folder; otherwise false.
  bool DownAssumed(const char* name);
  // The entry that a walk of the folder at `folderPath` has just shown: no look at the disk.
  void SetFromEntry(const SString& folderPath, const FolderEntry& entry);

  SString GetRoot() const;
  // Each output may be null. The cluster size stays 1 where the system does not tell it.
  bool GetFreeSpace(uint64_t* total, uint64_t* free, uint32_t* cluster) const;
  // By the end of the path, letter case ignored; no dot is looked for.
  bool HasType(const SFileType& type) const;

  // Of existing plain files only; anything else answers false. A setter that finds the attribute as
  // wanted touches nothing and answers true, SetHidden false.
  bool IsHidden() const;
  bool SetHidden(bool hidden);
  bool IsReadOnly() const;
  bool SetReadOnly();
  bool ClearReadOnly();

  // The makers. With the library's own file services they are inert: CreateFile and CreateFolder
  // answer false and CopyTo true, and nothing is touched. With services that create, they do what
  // they are named for and the flags follow.
  bool CreateFile(const SFileType& type, int32_t a, int32_t b, int32_t c);
  bool CreateFile(int32_t a, int32_t b, int32_t c);
  bool CreateFolder(uint32_t mode);
  // Ends on a folder, which another program may make at the same moment. Makes none in place of a
  // file.
  bool EnsureFolder();
  // Copies this file, or this folder with all it holds, into `destination` under `name`.
  bool CopyTo(const SFileSpec& destination, const SString& name) const;
  // Checks that both are there, builds the target and answers false in every case.
  bool CopyToFolder(const SFileSpec& destination, const SString& name) const;

  // A file or a folder. With recursive the walk through a folder goes on past an entry that stays;
  // without, the first such entry ends it. A missing file is a success.
  bool Delete(bool recursive);
  bool Rename(const SString& newName);
  // To `place`, which must be free, in one stroke: at every moment it is at the one or the other.
  // Where another file system lies between them it fails with kNotSameDevice.
  bool RenameTo(const SFileSpec& place);
  // Into the folder `target` under its own name; falls back on MoveTree. A spec of nothing takes
  // the target's place.
  bool MoveTo(const SFileSpec& target);
  // To `target`, the place itself, which must be free: a folder by copying and deleting, as far as
  // the makers make anything; a file by renaming. A source that could not be removed once all of it
  // was copied does not show in the answer: the spec then stays on it, and it exists.
  bool MoveTree(const SFileSpec& target);

  // A name of eight digits, with the extension, that is free in this folder. The counter is the
  // process's and goes on from call to call.
  bool MakeUniqueName(SString& name, const SString& extension) const;

  // `rest` behind `folder` as a spec holds it, without a look: with backslashes, without the steps
  // that mean nothing or lead back. Empty for one too long to be held.
  static SString HeldForm(std::string_view folder, std::string_view rest);

  // What the last Set met: 0 none, 1 other, 2 not found, 3 sharing violation.
  static int16_t GetLastError();
  // Where and why the last file operation failed; see file_failure.h.
  static const SFileFailure& LastFailure() { return LastFileFailure(); }

 private:
  bool SetJoined(std::string_view folder, std::string_view rest);
  bool TakeAttributes(SString& asked);
  bool HoldFolderOf(const SString& asked, SystemError error) const;
  bool DownAtOnce(std::initializer_list<const SString*> names);
  void SplitFileName();

  bool MakeFolder(uint32_t mode, SystemError& error);
  SString WithoutBackslash() const;
  void LeaveCurrentFolder() const;
  bool DeleteStep(bool recursive, int depth);
  bool DeleteFile();
  bool DeleteFolder(bool recursive, int depth);
  bool DeleteEntries(bool recursive, int depth) const;
  bool RenameOnDisk(const SString& newName) const;
  static bool NoteRefusedMove(const SString& bare, SystemError error);
  bool CopyFolders(SFileSpec& target, int depth) const;
  bool CopyFiles(const SFileSpec& target, int depth) const;
  bool FullAttributesOfFile(FileAttributes& attributes) const;
  bool ChangeReadOnly(bool readOnly);
  bool PutAttributes(const FileAttributes& attributes) const;

  bool valid = false;
  bool exists = false;
  bool isFolder = false;
  SString path;
  SString fileName;
};

}  // namespace kivstore
