// Zip files that a user names: read whole or in pieces, and written so that one appears only when
// all of it is there and reads back as it was meant. What goes wrong throws HostError with the path
// and what is the matter.
//
// Names of entries are UTF-8, with slashes between folders; that of a folder ends with one. They
// are marked as UTF-8 when written; a name without the mark is read as UTF-8 if it is that, else in
// code page 437. Entries above 4 GB are read and not written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/common/host_error.h"

namespace kivhost {

struct ZipEntry {
  std::string name;
  uint64_t size = 0;  // of its bytes as they are read
  uint32_t crc = 0;   // of the same: the CRC-32 of the format
  // Where the list of entries speaks of it; for the reader alone.
  uint64_t listed = 0;
  uint64_t number = 0;

  bool IsFolder() const { return name.ends_with('/'); }
};

// The CRC-32 of a list of entries, each as its name, a NUL, and "SIZE CRC" with a line feed: names
// have no checksum of the format's own.
uint32_t ChecksumOf(const std::vector<ZipEntry>& entries);

class ZipReader {
 public:
  // Refuses what is no zip file or a torn one, and one with a name that leads out of the folder it
  // would be unpacked in, or with a name twice.
  explicit ZipReader(const std::string& path);
  ~ZipReader();
  ZipReader(const ZipReader&) = delete;
  ZipReader& operator=(const ZipReader&) = delete;

  // As the file lists them.
  const std::vector<ZipEntry>& GetEntries() const { return entries; }
  // Null if there is none of that name, letter for letter.
  const ZipEntry* Find(std::string_view name) const;

  // The whole of an entry; throws if it is larger than `most`, if it is encrypted or compressed in
  // an unknown way, and if its bytes do not fit its checksum.
  std::string Read(const ZipEntry& entry, size_t most) const;
  // The same in pieces, whatever its size. Only after the last one is the checksum known to fit.
  using TakePiece = std::function<void(std::string_view piece)>;
  void Read(const ZipEntry& entry, const TakePiece& take) const;

  // The error that something is the matter with an entry: "PATH: NAME in it " and `what`.
  HostError Refuse(const ZipEntry& entry, const std::string& what) const;

 private:
  struct State;

  void List();
  ZipEntry ReadListed() const;
  void CheckNames() const;
  void Open(const ZipEntry& entry) const;

  std::string path;
  std::unique_ptr<State> state;
  std::vector<ZipEntry> entries;
};

// Writes beside `path`, as `path`.new, and gives it its name in Finish. Without Finish nothing
// stays; what a killed program left as `path`.new the next one replaces. One at a time: another
// that writes the same file is told that it is in use.
class ZipWriter {
 public:
  // Throws if something has the name already and may not be replaced, if it is no plain file, and
  // if it would lie in a store.
  ZipWriter(const std::string& path, bool mayReplace);
  ~ZipWriter();
  ZipWriter(const ZipWriter&) = delete;
  ZipWriter& operator=(const ZipWriter&) = delete;

  // Whether an entry can have the name.
  static bool Takes(std::string_view name);
  // A name that ends with a slash is that of a folder, which has no bytes. `when` is shown as the
  // entry's local time.
  void Add(const std::string& name, std::string_view bytes, std::time_t when);
  const std::vector<ZipEntry>& GetEntries() const { return written; }

  // Writes the list of entries, brings all to the disk, reads every entry back and compares it with
  // what was added, and only then gives the file its name.
  void Finish();

 private:
  struct State;

  void NeedDone(int result) const;
  void WriteEntry(std::string_view bytes) const;
  void Close();
  void Verify() const;
  void Name() const;

  std::string path;
  std::string making;  // the name it has until it is whole
  bool mayReplace;
  bool isMade = false;           // the file that is being made stands there
  std::unique_ptr<State> state;  // null once all is written
  std::vector<ZipEntry> written;
};

}  // namespace kivhost
