// The file system, as the store sees it: Windows rules on every platform.
//
// A path holds the Windows form (backslashes) and is a NUL-terminated byte text; nothing converts
// its characters. Letter case is ignored: a name is looked for as written first, and only if that
// finds nothing by looking through its folder; an exact match wins. A slash separates like a
// backslash.
//
// Sharing. A file open for reading may be opened for reading by others; one open for reading and
// writing excludes everyone, other handles of this process too. A file that any handle holds cannot
// be deleted or moved, and a folder that holds such a file cannot be removed or renamed. What is
// refused for that reason fails with SystemError::kSharingViolation.
//
// Links. Whoever may write in a store can plant a link in it. Below the folder of KeepDataRoot
// one that belongs neither to the system's administrator nor to the user of the process is not
// followed: whatever would go through it fails with kForeignLink. To delete or to move a link
// itself goes through those above it only. A look goes through: it tells no more than whether
// something is there, and of such a link itself that it is one. A pipe, a socket or a device is no
// file of a store: it is not opened.
//
// A listing is reading the folder: FolderEntry brings the attributes from the entry itself, at no
// call per entry. The exception is a folder that bears a file server's mark (user.DOSATTRIB) on
// POSIX: there each entry is asked for its own, or with AskFoldersOnly each folder.
//
// The last four operations make something. In the services that the library installs they are
// inert: CopyFileTo answers true, the others false, and nothing is touched.
#pragma once

#include <cstdint>
#include <memory>

namespace kivstore {

// Values are the system error numbers of Windows, so that both platforms tell a caller the same.
enum class SystemError : uint32_t {
  kNone = 0,
  kFileNotFound = 2,  // the folder is there and lacks the name
  kPathNotFound = 3,  // the folder itself is missing
  kAccessDenied = 5,
  kInvalidHandle = 6,
  kNotSameDevice = 17,
  kWriteProtected = 19,  // a medium or file system that takes no changes at all
  kSharingViolation = 32,
  kDeviceGone = 55,  // the disk, server or connection no longer answers
  kDiskFull = 112,   // or the user's share of it
  kInvalidName = 123,
  kFolderNotEmpty = 145,
  kAlreadyExists = 183,
  kOther = 31,
  // Of ours; Windows leaves numbers with this bit to programs.
  kForeignLink = 0x20000001,  // a link of somebody else's is in the way; see LastForeignLink
  kNoPlainFile = 0x20000002,  // a pipe, a socket or a device under a file's name
};

enum class FileAccess { kRead, kReadWrite };  // shared reading; exclusive
enum class SeekOrigin { kStart, kEnd, kCurrent };

struct FileAttributes {
  bool folder = false;
  bool hidden = false;
  bool readOnly = false;  // not told by a walk
  // A symbolic link or its like, entered as what it leads to and removed as itself. On Windows not
  // told by a walk.
  bool link = false;
  // A link that is not followed, seen as itself. Not told by a walk.
  bool foreign = false;
  bool special = false;  // a pipe, a socket or a device; told by a walk on POSIX alone
};

// A link below the data root that was not followed.
struct ForeignLink {
  const char* path;  // as the store holds paths; empty where nothing is known
  uint32_t owner;    // the user's number
};

struct FolderEntry {
  const char* name;  // valid until the next step of the walk
  int nameLength;
  FileAttributes attributes;
};

// One walk through a folder, in the file system's own order. "." and ".." are entries like any
// other.
class IFolderWalk {
 public:
  virtual ~IFolderWalk() = default;
  virtual bool Next(FolderEntry& entry) = 0;
  // Ahead of the first Next, by who does not care whether a file is hidden.
  virtual void AskFoldersOnly() {}
  // After Next answered false: the folder could not be read to its end.
  virtual bool HasFailed() const = 0;
};

// A file to be made, with its bytes.
struct NewFile {
  const char* name;
  const char* bytes;
  int32_t count;
};

struct OpenFile;  // the platform's own
using FileHandle = OpenFile*;

class IFileServices {
 public:
  virtual ~IFileServices() = default;

  // The folder that holds the store of the operations to come, as the store holds its path; empty
  // at the end of a command, which lets go of it. Services that need not know do nothing.
  virtual void KeepDataRoot(const char* /*path*/) {}
  // Whether other machines may change the file system of what lies there, so that what is cached
  // here may be old. Asked of the system once per file system, so that it costs nothing to ask.
  virtual bool IsShared() { return false; }

  // The link that made the last operation fail with kForeignLink.
  virtual ForeignLink LastForeignLink() { return {"", 0}; }

  // Opens a file that exists; null on failure, and for a folder. Never waits.
  virtual FileHandle Open(const char* path, FileAccess access, SystemError& error) = 0;
  virtual void Close(FileHandle file) = 0;
  // Bytes moved, 0 at the end or on failure.
  virtual int32_t Read(FileHandle file, void* buffer, int32_t count) = 0;
  virtual int32_t Write(FileHandle file, const void* buffer, int32_t count) = 0;
  virtual bool Seek(FileHandle file, SeekOrigin origin, int64_t offset) = 0;
  virtual int64_t Tell(FileHandle file) = 0;
  // -1 if the handle stands on something that has no size (a pipe).
  virtual int64_t Size(FileHandle file) = 0;
  // Cuts or extends the file to the position.
  virtual bool SetEnd(FileHandle file) = 0;
  virtual bool Flush(FileHandle file) = 0;
  // Of a file that is open for reading and writing: kNone if it is kept from programs on this
  // machine, too, that open files without asking for locks, or if another machine serves the file;
  // kAccessDenied if only the file's owner could keep it from them, kOther if nobody can here.
  virtual SystemError Exposure(FileHandle /*file*/) { return SystemError::kNone; }
  // Whether the path leads to the file that is open, whose folder may have been renamed since.
  // Where an open file keeps its folder in place it always does.
  virtual bool LeadsTo(const char* /*path*/, FileHandle /*file*/) { return true; }
  // Why the last Read, Write, SetEnd or Flush that moved less than asked or answered false did so:
  // kNone for a reading that met the end of the file. Services that cannot tell say kOther.
  virtual SystemError TransferError() { return SystemError::kOther; }

  // One look. Where the system keeps the marks of hidden and read-only apart from the rest,
  // `hidden` tells only what the name says and `readOnly` what the permissions do; FullAttributes
  // looks for the marks too.
  virtual bool Attributes(const char* path, FileAttributes& attributes, SystemError& error) = 0;
  virtual bool FullAttributes(const char* path, FileAttributes& attributes, SystemError& error) = 0;
  // Sets hidden and read-only of a plain file.
  virtual bool SetAttributes(const char* path, const FileAttributes& attributes,
                             SystemError& error) = 0;

  // A file, not a read-only one.
  virtual bool Delete(const char* path, SystemError& error) = 0;
  virtual bool RemoveFolder(const char* path, SystemError& error) = 0;  // an empty one, or a link
  // Moves a file or a folder with all it holds; fails if the target exists, whatever it is, and for
  // a folder if the target lies on another file system.
  virtual bool Move(const char* from, const char* to, SystemError& error) = 0;
  // The file below a folder whose being open kept the last Move from it; empty where the system
  // does not tell.
  virtual const char* BlockingFile() { return ""; }

  // Walks the entries of `folder` whose names match `mask` ("*.*" is all of them). Null on failure.
  virtual std::unique_ptr<IFolderWalk> Walk(const char* folder, const char* mask,
                                            SystemError& error) = 0;

  // Bytes in all, bytes free to the caller, bytes per cluster (1 where that is not told).
  virtual bool DiskSpace(const char* root, uint64_t& total, uint64_t& free, uint32_t& cluster) = 0;

  // False if it does not fit in `size` bytes.
  virtual bool CurrentFolder(char* buffer, int size) = 0;
  virtual bool SetCurrentFolder(const char* path) = 0;

  // An empty file; one that is there already is kept and is a success.
  virtual bool MakeFile(const char* path, SystemError& error) = 0;
  virtual bool MakeFolder(const char* path, uint32_t mode, SystemError& error) = 0;
  // A folder with these files in it, which appears with all of them: it is made as `making`, where
  // nobody looks, and then moved to `place`. The caller knows that neither name is there in another
  // letter case; kAlreadyExists for what is there as written. What fails leaves nothing.
  virtual bool MakeWhole(const char* making, const char* place, const NewFile* files, int count,
                         SystemError& error);
  // A file, or a folder with all it holds; the target must not exist.
  virtual bool CopyFileTo(const char* from, const char* to, SystemError& error) = 0;
};

// Passes every operation on to another services object: a base for doubles that change one thing.
class SForwardingFileServices : public IFileServices {
 public:
  explicit SForwardingFileServices(IFileServices& inner) : inner(inner) {}

  void KeepDataRoot(const char* path) override;
  bool IsShared() override;
  ForeignLink LastForeignLink() override;
  FileHandle Open(const char* path, FileAccess access, SystemError& error) override;
  void Close(FileHandle file) override;
  int32_t Read(FileHandle file, void* buffer, int32_t count) override;
  int32_t Write(FileHandle file, const void* buffer, int32_t count) override;
  bool Seek(FileHandle file, SeekOrigin origin, int64_t offset) override;
  int64_t Tell(FileHandle file) override;
  int64_t Size(FileHandle file) override;
  bool SetEnd(FileHandle file) override;
  bool Flush(FileHandle file) override;
  SystemError Exposure(FileHandle file) override;
  bool LeadsTo(const char* path, FileHandle file) override;
  SystemError TransferError() override;
  bool Attributes(const char* path, FileAttributes& attributes, SystemError& error) override;
  bool FullAttributes(const char* path, FileAttributes& attributes, SystemError& error) override;
  bool SetAttributes(const char* path, const FileAttributes& attributes,
                     SystemError& error) override;
  bool Delete(const char* path, SystemError& error) override;
  bool RemoveFolder(const char* path, SystemError& error) override;
  bool Move(const char* from, const char* to, SystemError& error) override;
  const char* BlockingFile() override;
  std::unique_ptr<IFolderWalk> Walk(const char* folder, const char* mask,
                                    SystemError& error) override;
  bool DiskSpace(const char* root, uint64_t& total, uint64_t& free, uint32_t& cluster) override;
  bool CurrentFolder(char* buffer, int size) override;
  bool SetCurrentFolder(const char* path) override;
  bool MakeFile(const char* path, SystemError& error) override;
  bool MakeFolder(const char* path, uint32_t mode, SystemError& error) override;
  bool MakeWhole(const char* making, const char* place, const NewFile* files, int count,
                 SystemError& error) override;
  bool CopyFileTo(const char* from, const char* to, SystemError& error) override;

 protected:
  IFileServices& inner;
};

// The services that really create. Defined in a source file of its own that libkivstore does not
// link; a program that administers a store installs it at start:
//   Platform().files = &CreatingFileServices();
IFileServices& CreatingFileServices();

}  // namespace kivstore
