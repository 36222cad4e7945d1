// "index.kiv": the index of a list folder or of a folder of files.
//
//   4   login count N, signed, big-endian
//   N times: folderName, firstName, lastName, each its bytes and one NUL
//   4   file count M, signed, big-endian
//   M times: fileName, longName, extension, each its bytes and one NUL
//
// No header, no version. A teacher list, a class list and a student list have the same form; in a
// student's own folder N is 0. An empty index is eight zero bytes, and a file of length 0 reads as
// an empty login half. Example: one class "Room" in the folder "Rm", no files:
//
//   00 00 00 01 'R' 'm' 00 'R' 'o' 'o' 'm' 00 00 00 00 00 00
//
// A reader takes the records in the order they stand. When the file ends early the rest of the
// records counted is made with empty texts. A count below 0 is 0, and one above what the file's
// remaining bytes could hold (3 a record) is cut to that and the one record being torn. Of each
// half at most 32,767 entries are kept.
//
// Nothing here locks. Reading, changing and writing an index is safe only under its list's lock.
#pragma once

#include <cstdint>

#include "foundation/containers/array.h"
#include "foundation/files/file_spec.h"
#include "store/list/entries.h"

namespace kivstore {

// The two halves of one index in memory. A half that is not wanted stays null.
class SIndexObj {
 public:
  SIndexObj() = default;
  // New arrays with the same entry pointers; a null list leaves its half null.
  SIndexObj(const SPtrArray* loginList, const SPtrArray* fileList);
  virtual ~SIndexObj();
  SIndexObj(const SIndexObj&) = delete;
  SIndexObj& operator=(const SIndexObj&) = delete;

  // Make the array, or empty it, deleting entries if owned.
  void NeedLogins();
  void NeedFiles();
  SLoginNameObj* LoginAt(int32_t i) const { return logins ? LoginIn(*logins, i) : nullptr; }
  SOurFileObj* FileAt(int32_t i) const { return files ? FileIn(*files, i) : nullptr; }
  // Replace the list's entries (deleting them if owned) by the half's. The half keeps its pointers
  // too, so `owns` must be false by then.
  void MoveLoginsTo(SPtrArray* list);
  void MoveFilesTo(SPtrArray* list);
  // By extension, letter case ignored. To Copy and Move an empty one means all.
  int32_t CountFilesOf(const SString& extension) const;
  void CopyFilesOf(SPtrArray* list, const SString& extension) const;
  void MoveFilesOf(SPtrArray* list, const SString& extension);  // deletes the others
  void RemoveFilesOf(const SString& extension);                 // nothing for an empty one

  SPtrArray* logins = nullptr;
  SPtrArray* files = nullptr;
  bool ownsLogins = true;
  bool ownsFiles = true;
  bool readLogins = true;  // ReadIndex fills `logins` if that list exists
  bool readFiles = true;
  // ReadIndex met a file that it could not open or not read to the end of what was asked for, so
  // that writing this index would drop what the file holds: WriteIndex leaves the file alone.
  bool incomplete = false;
};

// `spec` stands on the index.kiv; every way out leaves it on the folder. False if there is no file
// or it cannot be opened. A spec that only assumes its file (DownAssumed) does as well.
bool ReadIndex(SFileSpec& spec, SIndexObj* index);

// `spec` stands on the folder. A half that `index` lacks is taken from the disk first. False only
// for an error during writing: a file that cannot be opened stays as it was.
bool WriteIndex(const SFileSpec& spec, SIndexObj& index);

// The first count of the folder's index, 0 without one.
int32_t ReadIndexCount(const SFileSpec& spec);

// Adds a login to the folder's index, unless one of that name and folder is there. False if the
// index holds `limit` entries or more, also for an entry that is there; kNoLimit for no test.
bool EnsureEntry(const SFileSpec& spec, const SString& folderName, const SString& first,
                 const SString& last, int16_t limit);

// File entries by their long name, byte for byte, in the folder `spec` or the folder of the file
// `spec`. An empty extension takes any.
bool FindEntryByLongName(const SFileSpec& spec, const SString& longName, const SString& extension);
SString FindFileOfLongName(const SFileSpec& spec, const SString& longName,
                           const SString& extension);
SString FindLongNameOfFile(const SFileSpec& file, const SString& extension);
// Appends without looking for an existing one.
bool AddEntry(const SFileSpec& spec, const SString& longName, const SString& fileName,
              const SString& extension);
bool AddEntryFor(const SLoginNameObj* classEntry, const SLoginNameObj* student,
                 const SString& longName, const SString& fileName, const SString& extension,
                 bool removable);

}  // namespace kivstore
