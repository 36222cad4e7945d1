// The application object: current records, current user, data path, and the hooks to a user
// interface that this library does not have.
//
// SApplication is the framework's layer (the data path), SKivApp the product family's (the current
// user, the options, the game), SZEPApp the product's (which records to make). One instance exists
// at a time, reachable as gApp; in the library it lives for one call.
//
// The declarations stand on the lowest floor and know the records by name only, because the store
// asks the object for the data path and the records ask it for options. The bodies stand in app/.
#pragma once

#include <cstdint>

#include "foundation/files/file_spec.h"
#include "foundation/login_name.h"
#include "foundation/site_mode.h"
#include "foundation/text/string.h"

namespace kivstore {

class SDob;
class SKivGameDob;
class SKivTeacherOptionsDob;
class SKivTeacherOptionsGameDob;
class SLockFile;

// Who is logged in. Nobody is, in this library: it stays cleared.
class CurrentUser {
 public:
  CurrentUser() { Clear(); }
  CurrentUser(const CurrentUser& other) : CurrentUser() { *this = other; }
  CurrentUser& operator=(const CurrentUser& other);
  ~CurrentUser() { delete teacherEntry; }

  // Class "Default", a student without a name, no teacher, not valid.
  void Clear();
  void SetTeacher(const SLoginNameObj& entry);
  void ClearTeacher();

  SLoginNameObj classEntry;
  SLoginNameObj studentEntry;
  SLoginNameObj* teacherEntry = nullptr;  // owned
  bool valid = false;
};

// Virtual operations stand in the order of their slots, through all three classes. A notification
// answers true and does nothing here; a store operation never depends on it.
class SApplication {
 public:
  SApplication();
  virtual ~SApplication() = default;

  // Called ahead of a message that asks for a disk.
  virtual void PrepareMessage() {}

  // The data path; the key is not looked at.
  SString GetProperty(const char* key) const;
  // Stores the value if the key is "Data", letter case ignored; other keys are ignored.
  void SetProperty(const char* key, const SString& value);

 protected:
  SString platformName;
  SString dataPath;
};

class SKivApp : public SApplication {
 public:
  SKivApp();
  ~SKivApp() override;

  virtual SKivTeacherOptionsDob* CreateOptions();
  virtual SKivTeacherOptionsGameDob* CreateGameOptions();
  virtual void OptionsChanged() {}
  virtual bool Hook5(void*, void*) { return true; }
  virtual bool Hook6() { return true; }
  virtual bool OnStudentRenamed(const SString& classDisplay, const SString& oldLast,
                                const SString& oldFirst, const SString& newLast,
                                const SString& newFirst, const SString& teacher);
  virtual bool OnClassRenamed(const SString& oldDisplay, const SString& newName,
                              const SString& teacher);
  virtual bool OnStudentMoved(const SString& sourceClass, const SString& destinationClass,
                              const SString& last, const SString& first,
                              const SString& sourceTeacher, const SString& destinationTeacher);
  virtual bool OnTeacherRenamed(const SString& oldDisplay, const SString& newName);
  virtual bool OnClassMoved(const SString& sourceTeacher, const SString& destinationTeacher,
                            const SString& name);
  // What to do about an options file that did not load: 0 go on with what the record holds, 1 give
  // up, 2 try again. A file that is bad for good (wrong magic, another version) is deleted.
  virtual int16_t OptionsReadFailed(SDob& record, SFileSpec& spec);
  virtual void Hook13() {}
  virtual SKivGameDob* CreateGame() { return nullptr; }
  virtual void BeforeGameSwitch() {}
  virtual void AfterGameSwitch() {}
  virtual void Hook17() {}
  virtual void Hook18() {}
  virtual bool HasCurrentStudent() const;

  // The host may point at the data root or at the classes folder: cuts a trailing classes folder,
  // with or without its extension, off the data path. Both need the separator behind them.
  void ApplyDataPath();
  // "autogame." and the extension of the game file type.
  SString AutoGameName() const;

  // Lays the options of up to three levels over each other into `record` (null: the options field).
  // Entries and locks may be null; a level without a lock goes unlocked, and the locks stay held.
  // True unless a lock could not be had or a shared file stayed locked past the retries; the record
  // then holds the levels read so far.
  bool LoadTeacherOptions(const SLoginNameObj* classEntry, const SLoginNameObj* studentEntry,
                          bool useCurrent, SKivTeacherOptionsDob* record, SLockFile* rootLock,
                          SLockFile* classLock, SLockFile* studentLock);
  bool ReloadCurrentOptions();
  // Takes and keeps the lock that marks the student's folder as in use.
  bool CheckStudentFree(const SLoginNameObj* studentEntry);
  // The pending game belongs to the application from here on.
  void SetPendingGame(SKivGameDob* newGame);
  void CommitPendingGame();
  void SaveLastUser(const SString& fileName, const SString& extension);

  SKivGameDob* game = nullptr;               // owned
  SKivGameDob* pendingGame = nullptr;        // owned unless it is `game`
  SKivTeacherOptionsDob* options = nullptr;  // owned
  CurrentUser currentUser;
  SLockFile* studentLock = nullptr;  // owned, made on first use

 private:
  // The levels of LoadTeacherOptions.
  bool LoadStoreOptions(SKivTeacherOptionsDob& record, SLockFile* lock);
  bool MergeClassOptions(SKivTeacherOptionsDob& record, const SLoginNameObj* classEntry,
                         SLockFile* lock);
  bool MergeStudentOptions(SKivTeacherOptionsDob& record, const SLoginNameObj* classEntry,
                           const SLoginNameObj* studentEntry, SLockFile* lock);
  bool ReadWithRetry(SKivTeacherOptionsDob& record, SFileSpec* spec, bool merge);
  // Aims the game's file at the student's automatic game.
  void PlaceAutoGame();
};

class SZEPApp : public SKivApp {
 public:
  SKivTeacherOptionsDob* CreateOptions() override;
  SKivTeacherOptionsGameDob* CreateGameOptions() override;
  void OptionsChanged() override { SKivApp::OptionsChanged(); }
  SKivGameDob* CreateGame() override;
};

// Present only during a call.
extern SZEPApp* gApp;

}  // namespace kivstore
