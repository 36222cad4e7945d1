// One command on one store: sets up what the store's operations need (the application object with
// its records, the kind of site, the data path, the file services that create) and takes it down.
// One at a time.
//
// What cannot be done throws AdminError, which main turns into a line and an exit code.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/general_call.h"
#include "foundation/files/file_spec.h"
#include "foundation/login_name.h"
#include "foundation/text/string.h"
#include "hosts/common/charset.h"
#include "platform/file_services.h"
#include "store/list/entries.h"
#include "store/lock/lock_file.h"

namespace kivadmin {

// kRefused: full, locked, in use, name taken or unknown. kNoStore: none there, or it cannot be read
// or written.
enum ExitCode { kDone = 0, kRefused = 1, kWrongUsage = 2, kNoStore = 3 };

struct AdminError {
  int exitCode;
  std::string message;
};

enum class SiteKind { kLocal, kShared, kTeachers };

const char* NameOf(SiteKind kind);

// What the commands have in common on the command line.
struct CommonOptions {
  std::string root;
  std::optional<SiteKind> kind;  // unset: read off the tree
  std::string charset = "windows-1252";
  bool dryRun = false;
};

// The character set of that name; wrong usage if the system does not know it.
std::unique_ptr<kivhost::Charset> OpenCharset(const std::string& name);

// A list of the store with the folder it stands in.
struct Roster {
  kivstore::SFileSpec folder;
  kivstore::SLoginList list;

  bool IsFull() const { return list.GetSize() >= kivstore::kMaxStudents; }
};

class Session {
 public:
  enum class Access {
    kChange,  // unless the command line says --dry-run
    kLook,    // nothing on disk changes, whatever is called
    kLayOut,  // as kChange, and a store that is not there is none that fails
  };

  Session(const CommonOptions& options, Access access);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  SiteKind Kind() const { return kind; }
  bool HasTeachers() const { return kind == SiteKind::kTeachers; }
  bool HasLocks() const { return kind != SiteKind::kLocal; }
  bool IsDryRun() const { return dryRun; }

  // UTF-8 in, the store's bytes out. `what` names the argument in the error.
  kivstore::SString ToStore(const std::string& text, const std::string& what) const;
  // As ToStore, for a name that is to enter the store: neither empty nor with control characters.
  kivstore::SString NewName(const std::string& text, const std::string& what) const;
  std::string Show(const kivstore::SString& text) const;
  std::string Show(const kivstore::SLoginNameObj& entry) const;  // its display name, quoted
  std::string Show(const kivstore::SFileSpec& spec) const;       // its path as the host writes it

  // The folders of the lists. Unlike the store's own placing these give an empty class list no
  // default class. A teacher's classes folder is made if it is missing.
  kivstore::SFileSpec TopFolder() const;  // the list of teachers, or of classes
  kivstore::SFileSpec ClassesFolder() const;
  kivstore::SFileSpec StudentsFolder(const kivstore::SLoginNameObj& classEntry) const;
  // Under its lock, repaired as by any listing.
  std::unique_ptr<Roster> Teachers() const;
  std::unique_ptr<Roster> Classes() const;  // of the selected teacher
  std::unique_ptr<Roster> Students(const kivstore::SLoginNameObj& classEntry) const;

  // The entry that a NAME of the command line means: a display name, letter case ignored, or #N for
  // its place. `level` is "teacher", "class" or "student", for the error.
  kivstore::SLoginNameObj* Find(const Roster& roster, const std::string& name,
                                const std::string& level) const;
  // Null if the list has no such display name.
  static kivstore::SLoginNameObj* FindName(const Roster& roster, const kivstore::SString& first,
                                           const kivstore::SString& last);
  // Selects the teacher for what follows. Without a name the only one there is; in a store without
  // teachers a name is wrong usage, and nobody is selected.
  void ChooseTeacher(const std::string& name);
  kivstore::SLoginNameObj FindTeacher(const std::string& name) const;
  kivstore::SLoginNameObj FindClass(const std::string& name) const;  // of the selected teacher
  kivstore::SLoginNameObj FindStudent(const kivstore::SLoginNameObj& classEntry,
                                      const std::string& name) const;

  // Takes the lock of a list's index; throws with the reason if it cannot be had.
  void TakeIndexLock(kivstore::SLockFile& lock, const kivstore::SFileSpec& folder,
                     kivstore::LockKind lockKind) const;
  // Why the store answered false to `what`, found out afterwards: a lock of the list, a file below
  // the entry's folder that somebody has open, or no permission.
  AdminError WhyRefused(const std::string& what, const kivstore::SFileSpec& listFolder,
                        const kivstore::SFileSpec* entryFolder = nullptr) const;

  // The one line of what was done.
  void Say(const std::string& line) const;

 private:
  void SetDataPath(const std::string& root, bool layOut);
  void SetSite(std::optional<SiteKind> given);
  SiteKind ReadKind() const;
  std::unique_ptr<Roster> Load(const kivstore::SFileSpec& folder,
                               kivstore::LockKind lockKind) const;

  std::unique_ptr<kivhost::Charset> charset;
  std::unique_ptr<kivstore::IFileServices> lookingServices;  // in place if nothing may change
  kivstore::IFileServices* previousServices;
  std::unique_ptr<kivstore::SGeneralCall> call;  // the application object, as one call has it
  SiteKind kind = SiteKind::kLocal;
  bool dryRun;
};

}  // namespace kivadmin
