// One command on one store: the store opened with the file services that the command may use, the
// texts that go in and out, and how an operation is run and told. One at a time.
//
// What cannot be done throws HostError, which main turns into a line and an exit code.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "foundation/files/file_spec.h"
#include "foundation/text/string.h"
#include "hosts/common/charset.h"
#include "hosts/common/host_error.h"
#include "hosts/common/store_opening.h"
#include "hosts/kivadmin/session/file_services_scope.h"
#include "hosts/kivadmin/session/noting_services.h"
#include "platform/file_services.h"
#include "store/lock/lock_file.h"
#include "store/place/login_name.h"

namespace kivadmin {

using kivhost::HostError;
using kivhost::SiteKind;
using enum kivhost::ExitCode;

// What the commands have in common on the command line.
struct CommonOptions {
  std::string root;
  std::optional<SiteKind> kind;        // unset: read off the tree
  bool force = false;                  // the kind also against the tree
  std::optional<std::string> charset;  // unset: what the store has settled
  bool dryRun = false;
  bool noLog = false;  // what is done is not written into the log
};

class Session {
 public:
  enum class Access {
    kChange,  // unless the command line says --dry-run
    kLook,    // nothing on disk changes, whatever is called
    kLayOut,  // as kChange, and a store that is not there is none that fails
  };

  Session(const CommonOptions& options, Access access);
  ~Session();  // tells of texts that could not be shown
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  SiteKind Kind() const { return store.Kind(); }
  bool HasTeachers() const { return store.HasTeachers(); }
  bool HasLocks() const { return Kind() != SiteKind::kLocal; }
  bool IsDryRun() const { return dryRun; }
  // Since the last line in the log.
  bool HasChanged() const { return notingServices.HasChanged(); }
  bool IsLooking() const { return lookingServices != nullptr; }
  kivstore::SSite& Site() const { return store.Site(); }
  kivstore::SZEPApp& App() const { return store.App(); }
  // The list of teachers, or without teachers of classes.
  kivstore::SFileSpec TopFolder() const { return store.TopFolder(); }
  kivstore::SFileSpec DataRoot() const;
  const std::string& CharsetName() const { return charsetName; }

  // UTF-8 in, the store's bytes out. `what` names the argument in the error.
  kivstore::SString ToStore(const std::string& text, const std::string& what) const;
  // As ToStore, for a name that is to enter the store: neither empty nor with control characters,
  // nor one that a command line takes for a place.
  kivstore::SString NewName(const std::string& text, const std::string& what) const;
  std::string Show(const kivstore::SString& text) const;
  std::string Show(const kivstore::SLoginNameObj& entry) const;  // its display name, quoted
  std::string Show(const kivstore::SFileSpec& spec) const;       // its path as the host writes it

  // Runs an operation of the store, unless this is a dry run: "delete student "Ann Lee"". Where it
  // answers false the store's reason is thrown; what one that answers true could not write is told
  // behind the line of what was done.
  void Change(const std::string& what, const std::function<bool()>& operation) const;
  // The same for an operation on files alone, also in a dry run. `file` is named where the system
  // gave no reason.
  void Need(const std::string& what, const kivstore::SFileSpec& file,
            const std::function<bool()>& operation) const;
  // To be thrown where a folder should stand: what is in the way there, or `otherwise`.
  HostError NoFolder(kivstore::SFileSpec folder, const HostError& otherwise) const;
  void TakeLock(kivstore::SLockFile& lock, const std::string& what) const;
  // Of a list's index, or of an entry's folder.
  void TakeIndexLock(kivstore::SLockFile& lock, const kivstore::SFileSpec& folder,
                     kivstore::ListKind list) const;
  // Behind the lock of a student's folder: throws if it is not this student's any more.
  void NeedEntry(kivstore::SLockFile& lock, const kivstore::SFileSpec& folder,
                 const kivstore::SLoginNameObj& student) const;

  // The one line of what was done, which goes into the log if anything has changed; a log that
  // cannot be written is told and no failure. Throws if something of what was done could not be
  // written.
  void Say(const std::string& line) const;
  // The last of it alone.
  void TellShortfall() const;
  // And the line in the log, for what is told otherwise.
  void Log(const std::string& line) const;

 private:
  bool dryRun;
  mutable bool keepsLog;
  mutable NotingServices notingServices;
  std::unique_ptr<kivstore::IFileServices> lookingServices;  // in place if nothing may change
  FileServicesScope services;
  kivhost::OpenStore store;
  std::string charsetName;
  std::unique_ptr<kivhost::Charset> charset;
  mutable std::string shortfall;  // what could not be written, the first
};

// The N of "#N"; nothing for a plain name, 0 for a number beyond any list.
std::optional<long> PlaceOf(const std::string& name);

}  // namespace kivadmin
