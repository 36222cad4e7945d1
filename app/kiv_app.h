// The product family's application object: the current user, the options, the game, and what the
// store and the games ask of an application.
//
// A change of user, a game that is saved and the lock of a student at work belong to a playing
// tutor; the library loads the options and nothing else.
#pragma once

#include <cstdint>
#include <memory>

#include "app/application.h"
#include "app/file_outcome.h"
#include "game/game_host.h"
#include "store/lock/lock_file.h"
#include "store/place/site.h"

namespace kivstore {

class SDob;

// Which options are wanted, in which record, and under which locks. A level without a lock goes
// unlocked; the locks are the caller's and stay held.
struct SOptionsRequest {
  const SLoginNameObj* classEntry = nullptr;
  const SLoginNameObj* studentEntry = nullptr;
  bool useCurrent = false;                  // entries that are not given are the current user's
  SKivTeacherOptionsDob* record = nullptr;  // null: the application's own
  bool goesOn = false;                      // the record holds the store's options already
  SLockFile* rootLock = nullptr;
  SLockFile* classLock = nullptr;
  SLockFile* studentLock = nullptr;
};

class SKivApp : public SApplication, public ISiteOwner, public IGameHost {
 public:
  explicit SKivApp(SSite& site);
  ~SKivApp() override;

  virtual SKivTeacherOptionsDob* CreateOptions();
  SKivTeacherOptionsGameDob* CreateGameOptions() override;
  void OptionsChanged() override {}
  // Places in the order for operations of a tutor's; nothing here calls them.
  virtual bool ReservedForTutor1(void*, void*) { return true; }
  virtual bool ReservedForTutor2() { return true; }
  bool OnStudentRenamed(const SString& classDisplay, const SString& oldLast,
                        const SString& oldFirst, const SString& newLast, const SString& newFirst,
                        const SString& teacher) override;
  bool OnClassRenamed(const SString& oldDisplay, const SString& newName,
                      const SString& teacher) override;
  bool OnStudentMoved(const SString& sourceClass, const SString& destinationClass,
                      const SString& last, const SString& first, const SString& sourceTeacher,
                      const SString& destinationTeacher) override;
  bool OnTeacherRenamed(const SString& oldDisplay, const SString& newName) override;
  bool OnClassMoved(const SString& sourceTeacher, const SString& destinationTeacher,
                    const SString& name) override;
  // What to do about an options file that did not load: kGoOn with what the record holds, kGiveUp
  // or kTryAgain. A file that is bad for good (wrong magic, another version) is deleted.
  static constexpr int16_t kGoOn = 0;
  static constexpr int16_t kGiveUp = 1;
  static constexpr int16_t kTryAgain = 2;
  virtual int16_t OptionsReadFailed(SDob& record, SFileSpec& spec);
  virtual void ReservedForTutor3() {}
  SKivGameDob* CreateGame() override { return nullptr; }
  virtual void BeforeGameSwitch() {}
  virtual void AfterGameSwitch() {}
  virtual void ReservedForTutor4() {}
  virtual void ReservedForTutor5() {}
  virtual bool HasCurrentStudent() const;

  SSite& GetSite() override { return site; }
  SString GetDataPath() const override { return dataPath; }
  SString GetProperty(const char* key) const override { return SApplication::GetProperty(key); }
  void PrepareMessage() override { SApplication::PrepareMessage(); }
  // Options that nobody has asked for yet are the defaults.
  const SKivTeacherOptionsDob* GetOptionsInForce() const override { return options.get(); }
  const SKivTeacherOptionsDob* GetOptions() override { return OwnOptions(); }
  const CurrentUser& GetCurrentUser() const override { return currentUser; }
  SKivGameDob* GetGame() override;
  SKivGameDob* GetPendingGame() const override { return pendingGame; }

  // Gives the application its records. Each is made by its factory when it is first asked for: most
  // commands ask for neither.
  void GiveRecords() { owesOptions = owesGame = true; }
  // Null without memory, and for an application without records.
  SKivTeacherOptionsDob* OwnOptions();

  // The host may point at the data root or at the classes folder: cuts a trailing classes folder,
  // with or without its extension, off the data path. Both need the separator behind them.
  void ApplyDataPath();
  // "autogame." and the extension of the game file type.
  SString AutoGameName() const;

  // Lays the options of up to three levels over each other. True unless a lock could not be had or
  // a shared file stayed locked past the retries; the record then holds the levels read so far.
  bool LoadTeacherOptions(const SOptionsRequest& request);
  bool ReloadCurrentOptions();
  // Takes and keeps the lock that marks the student's folder as in use.
  bool CheckStudentFree(const SLoginNameObj* studentEntry);
  void SetPendingGame(SKivGameDob* newGame) override;
  void CommitPendingGame();
  void SaveLastUser(const SString& fileName, const SString& extension) override;

  SKivGameDob* game = nullptr;                     // owned; null until it is asked for
  SKivGameDob* pendingGame = nullptr;              // owned unless it is `game`
  std::unique_ptr<SKivTeacherOptionsDob> options;  // null until they are asked for
  CurrentUser currentUser;
  std::unique_ptr<SLockFile> studentLock;  // made on first use

 private:
  // The levels of LoadTeacherOptions.
  void PlaceOptions(SFileSpec& spec, const SLoginNameObj* classEntry,
                    const SLoginNameObj* studentEntry);
  bool LoadStoreOptions(SKivTeacherOptionsDob& record, SLockFile* lock);
  bool MergeClassOptions(SKivTeacherOptionsDob& record, const SLoginNameObj* classEntry,
                         SLockFile* lock);
  bool MergeStudentOptions(SKivTeacherOptionsDob& record, const SLoginNameObj* classEntry,
                           const SLoginNameObj* studentEntry, SLockFile* lock);
  bool ReadWithRetry(SKivTeacherOptionsDob& record, SFileSpec& spec, bool merge);
  Outcome Read(SKivTeacherOptionsDob& record, const SFileSpec& spec, bool merge);
  bool Merge(SKivTeacherOptionsDob& record, const SFileSpec& spec);
  bool Retry(SKivTeacherOptionsDob& record, SFileSpec& spec, bool merge);
  // Aims the game's file at the student's automatic game.
  void PlaceAutoGame();

  SSite& site;
  bool owesOptions = false;
  bool owesGame = false;
  std::unique_ptr<SDob> levelRecord;  // what a level's file says, before it is laid over the others
};

}  // namespace kivstore
